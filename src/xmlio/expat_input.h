#pragma once

#include <expat.h>

#include <cstddef>

#include "xmlio/document_outline.h"

namespace Quillon9 {

/// What those that feed an input to expat share. The bytes are borrowed for the call.
struct ExpatInput {
  unsigned char const* data;
  std::size_t size;

  /// Feed all of it.
  XML_Status FeedTo(XML_Parser parser, bool isFinal) const;
  /// Describe the encoding \p name, which expat does not know; false if nobody knows it.
  /// \throws std::bad_alloc.
  bool FillEncoding(XML_Char const* name, XML_Encoding& encoding) const;
  /// Where \p parser is: at the start of the present event, or at a fault.
  InputPosition PositionOf(XML_Parser parser) const;
  /// Whether the text begins with a byte order mark.
  bool HasByteOrderMark() const;
  /// Whether the first bytes show that the text is in UTF-8 or UTF-16, whatever it declares.
  bool ShowsUnicode() const;
};

}  // namespace Quillon9
