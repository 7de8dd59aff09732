#pragma once

#include <memory>

#include "records/octet_input.h"
#include "records/text_window.h"

namespace Quillon9 {

/// The text of a document in UTF-8, whatever encoding its byte order mark and its XML declaration name, without the mark.
struct Utf8Document {
  std::unique_ptr<OctetInput> input;
  TextPosition start;        ///< past the byte order mark
  bool isConverted = false;  ///< the bytes are not those of the document
};

/// \throws CQnException "XML Stream is empty!"; "unknown encoding at line 1" for an encoding that is unknown, or in
///         which a character can have several bytes, except for UTF-8 and UTF-16; what \p input throws.
Utf8Document OpenUtf8(std::unique_ptr<OctetInput> input);

}  // namespace Quillon9
