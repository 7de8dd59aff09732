#pragma once

#include <string>

#include "quillon9/export.h"

namespace Quillon9 {

/// Return whether \p value matches \p pattern, a regular expression of W3C XML Schema Part 2, appendix F.
///
/// The pattern is rewritten for PCRE: the escapes i, I, c and C and the blocks IsBasicLatin, IsLatin-1Supplement,
/// IsLatinExtended-A and IsLatinExtended-B are replaced by plain text substitution, inside character classes too. (PCRE
/// refuses the replacement of the last one, so it always fails.) PCRE reads the rest in UTF-8 mode as usual. The
/// pattern gets one try from the start of the value, and the first match that PCRE finds must reach its end: "a|ab"
/// does not match "ab".
///
/// \p pattern is UTF-8, \p value is in the local code page; both end before their first zero byte. Work and memory are
/// bounded: a match that would need more than a million steps (plus two for each byte of the value) or 128 MiB of
/// backtracking memory counts as no match. "[a-z]*" takes no such memory, "(a|b)*" 32 bytes per character. Where
/// the pattern cannot be compiled to machine code, the bound for PCRE 8 is the thread's stack, with 1 KiB per level of
/// backtracking; PCRE2 takes some 150 bytes of the 128 MiB per level.
///
/// PCRE 8 and PCRE2 give the same answers with these exceptions: their messages and some offsets; characters added to
/// Unicode after version 7, which PCRE 8 does not know; a class that contains both a property and one of D, S and W,
/// such as "[\D\p{L}]", in which PCRE 8 misses characters above U+00FF; and, outside of XML Schema: recursion, which is
/// atomic only in PCRE 8, the escapes X, 8 and 9, scripts as properties, and constructs that PCRE 8 refuses.
///
/// Any thread. Each thread remembers its compiled patterns.
/// \throws CQnException "Invalid pattern [%s]: %s at offset %d" when PCRE cannot compile the pattern, with the pattern
///         as given, PCRE's message and the offset in the rewritten pattern; "The value is too long to be matched" for
///         a value above 2 GiB. std::bad_alloc.
QUILLON9_API bool TestRegEx(std::string pattern, std::string value);

/// Replace every occurrence of \p search in \p text by \p replacement, as if searching again from the start after each
/// replacement, until none is left. A failure leaves \p text unchanged.
/// \throws CQnException when that would never end (\p search is empty, or occurs in \p text and in \p replacement) or
///         when the text would grow beyond 1 GiB.
///@{
QUILLON9_API void FindReplace(std::string& text, std::string const& search, std::string const& replacement);
QUILLON9_API void FindReplace(std::wstring& text, std::wstring const& search, std::wstring const& replacement);
///@}

}  // namespace Quillon9
