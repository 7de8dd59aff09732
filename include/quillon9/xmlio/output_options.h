#pragma once

namespace Quillon9 {

/// The line end that a text writer writes between lines and for each line feed of element content.
enum EOLType : int {
  EOLType_CRLF = 0,  ///< carriage return and line feed
  EOLType_LF = 1,    ///< line feed
};

/// The encoding that the XML declaration names and in which the bytes of a document are encoded.
enum XmlEncoding : int {
  XmlEncoding_Default = 0,  ///< none is declared, and there is no encoded form: the text stays unchanged
  XmlEncoding_UTF8 = 1,     ///< declared and encoded as UTF-8
  XmlEncoding_UTF16 = 2,    ///< declared as UTF-16; the bytes are wide characters of 32 bits in machine order
  XmlEncoding_Unicode = 3,  ///< none is declared; the bytes are as for XmlEncoding_UTF16
};

}  // namespace Quillon9
