#pragma once

#include <cstddef>

#include "records/text_window.h"

namespace Quillon9 {

/// A piece of markup in a window.
struct Markup {
  enum class Kind { kStartTag, kEmptyTag, kEndTag, kInstruction, kComment, kCData, kDocumentType };

  Kind kind = Kind::kStartTag;
  std::size_t end = TextWindow::kNone;  ///< past its last character; kNone where the text ends inside

  bool IsStart() const { return kind == Kind::kStartTag || kind == Kind::kEmptyTag; }
};

/// Find the end of the markup whose '<' is at \p at. Only borders are found; whether it is right is for a parser to say.
Markup ReadMarkup(TextWindow& window, std::size_t at);

/// Where an element ends.
struct ElementExtent {
  std::size_t end = 0;   ///< past its end tag, or where it stopped being whole
  bool isWhole = false;  ///< the text goes on to its end tag, and start tags and end tags match
};

/// The extent of the element whose start tag \p tag begins at \p at.
ElementExtent ReadExtent(TextWindow& window, std::size_t at, Markup const& tag);

/// Drop the element at the start of \p window piece by piece, however long it is. Return whether its end tag was there.
bool SkipElement(TextWindow& window);

/// The end of the name that begins at \p at.
std::size_t EndOfName(TextWindow& window, std::size_t at);

}  // namespace Quillon9
