#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

/// A regular expression of W3C XML Schema Part 2, appendix F (https://www.w3.org/TR/xmlschema-2/#regexs), complete: it
/// matches whole texts, alternatives have no order, and counts have no limit of their own. The characters of names are
/// those of the fifth edition of XML, the categories those of the version of Unicode that PCRE knows, and the blocks
/// those of appendix F.1.1. Immutable once constructed; any number of threads may use one.
class QUILLON9_API CSchemaPattern {
 public:
  /// What is wrong with a text.
  struct Faults {
    std::string error;    ///< why it breaks the grammar; empty if it does not
    int offset = 0;       ///< where, in bytes
    std::string warning;  ///< what the grammar does not allow, but is taken as most processors take it
  };

  /// Compile \p pattern, in UTF-8.
  /// \throws CQnException "Invalid pattern [%s]: %s at offset %d" with what breaks the grammar, or for more than 100
  ///         levels of groups.
  explicit CSchemaPattern(std::string_view pattern);
  ~CSchemaPattern();
  /// Take over the compiled expression; an object that was moved from may only be assigned to or destroyed.
  ///@{
  CSchemaPattern(CSchemaPattern&&) noexcept;
  CSchemaPattern& operator=(CSchemaPattern&&) noexcept;
  ///@}

  /// Whether the whole of \p text, in UTF-8, matches. A text that is not UTF-8 does not.
  /// \throws CQnException "The value is too long to be matched" where that would take more than a bounded time, which
  ///         only long texts, or hostile expressions and texts, can need; std::bad_alloc.
  bool Matches(std::string_view text) const;

  /// What the constructor would say of \p pattern, and what it takes without a word.
  static Faults Check(std::string_view pattern);

  /// The patterns of a type as one text for CPrimitiveRestrictions::pattern. \p steps are the derivation steps: each
  /// must match, by one of its alternatives. TestRegEx() takes the result for a pattern of its own, and finds a way to the
  /// end of the value wherever there is one. Empty without steps.
  /// \throws CQnException like the constructor. TestRegEx() may still refuse the result where it is too large for PCRE.
  static std::string Combine(std::vector<std::vector<std::string>> const& steps);

 private:
  friend struct SchemaPatternAccess;
  struct Compiled;
  explicit CSchemaPattern(std::unique_ptr<Compiled const> compiled);

  std::unique_ptr<Compiled const> m_compiled;
};

}  // namespace Quillon9
