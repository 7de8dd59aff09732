#pragma once

namespace Quillon9 {

/// The encoding of the text in memory, which one read or write uses.
enum TextEncoding : int {
  TextEncoding_Locale = 0,  ///< the code page of the locale, or whatever ASCIIOnly(bool) says
  TextEncoding_UTF8 = 1,    ///< UTF-8 in any locale
};

}  // namespace Quillon9
