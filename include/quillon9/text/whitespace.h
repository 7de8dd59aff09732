#pragma once

#include <string>

#include "quillon9/export.h"

namespace Quillon9 {

/// Applies the whiteSpace facet (W3C XML Schema Part 2, 4.3.6) to text. White space is space, tab, line feed and
/// carriage return; unlike the facet, every operation here drops carriage returns without a replacement. All functions
/// are static and stateless: any thread may call them. Only ApplyRule() throws.
class QUILLON9_API CWhitespaceUtils {
 public:
  /// How ApplyRule() treats white space.
  enum WhitespaceRule : int {
    WhitespaceRule_None = 0,      ///< the text unchanged
    WhitespaceRule_Preserve = 1,  ///< Preserve()
    WhitespaceRule_Replace = 2,   ///< Replace()
    WhitespaceRule_Collapse = 3,  ///< Collapse()
  };

  /// True for space, tab, line feed and carriage return.
  static bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

  /// The first \p length bytes of \p text without carriage returns; zero bytes stay. Empty when \p text is null or \p
  /// length is not positive.
  static std::string Preserve(char const* text, int length);
  /// The same for all of \p text.
  static std::string Preserve(std::string const& text);

  /// Turn each tab and line feed into a space and drop carriage returns. When \p text holds any white space, the result
  /// ends before the first zero byte; otherwise it is \p text unchanged.
  static std::string Replace(std::string const& text);

  /// Turn each run of spaces, tabs and line feeds into one space, and drop those at both ends and all carriage returns
  /// ("a\rb" gives "ab"). The result ends before the first zero byte; a space just before that byte stays.
  static std::string Collapse(std::string const& text);

  /// Apply \p rule to \p text.
  /// \throws CQnException "Unknown WhitespaceRule" when \p rule is not one of the enumerators.
  static std::string ApplyRule(WhitespaceRule rule, std::string const& text);
  /// The same, without a copy where the rule changes nothing: the result is then \p text itself, otherwise \p scratch,
  /// which receives the new text. Both must outlive the result.
  static std::string const& ApplyRule(WhitespaceRule rule, std::string const& text, std::string& scratch);
  /// Deleted: a temporary text would not outlive the result.
  static std::string const& ApplyRule(WhitespaceRule rule, std::string const&& text, std::string& scratch) = delete;
};

}  // namespace Quillon9
