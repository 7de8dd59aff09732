#pragma once

namespace Quillon9 {

/// Passes over markup that leaves nothing in a tree. Each function returns the end, or null if the markup is not
/// certainly right. \p end is the end of the input.
namespace MarkupSkip {

/// A comment, from behind "<!--" on.
char const* Comment(char const* at, char const* end);
/// A processing instruction, from behind "<?" on.
char const* Instruction(char const* at, char const* end);
/// A document type declaration that declares nothing itself, from behind "<!DOCTYPE" on. The parser does not fetch what
/// it refers to, so it leaves nothing in a tree either.
char const* DocumentType(char const* at, char const* end);
/// White space, comments and processing instructions around the document element, up to something else or \p end.
char const* Miscellaneous(char const* at, char const* end);
/// The byte order mark and the XML declaration of a document of version 1.0 in UTF-8, as far as they are there.
char const* Declaration(char const* at, char const* end);

}  // namespace MarkupSkip

}  // namespace Quillon9
