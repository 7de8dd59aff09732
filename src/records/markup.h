#pragma once

#include <cstddef>

#include "records/text_window.h"

namespace Quillon9 {

/// A piece of markup in a window.
struct Markup {
  enum class Kind { kStartTag, kEmptyTag, kEndTag, kInstruction, kComment, kCData, kDocumentType };

  Kind kind = Kind::kStartTag;
  std::size_t end = TextWindow::kNone;  ///< behind it; kNone where the text ends inside
};

/// Finds out where the markup ends whose '<' is at \p at. Only the borders are found: whether it is right is for a parser
/// to say.
Markup ReadMarkup(TextWindow& window, std::size_t at);

/// Where an element ends.
struct ElementExtent {
  std::size_t end = 0;   ///< behind its end tag, or where it stopped being whole
  bool isWhole = false;  ///< the text goes on to its end tag, and start tags and end tags match
};

/// The extent of the element whose start tag \p tag begins at \p at. Stops behind the position \p most.
ElementExtent ReadExtent(TextWindow& window, std::size_t at, Markup const& tag, std::size_t most);

/// The end of the name that begins at \p at.
std::size_t EndOfName(TextWindow& window, std::size_t at);

}  // namespace Quillon9
