#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

/// A regular expression of W3C XML Schema Part 2, appendix F (https://www.w3.org/TR/xmlschema-2/#regexs), complete: it
/// matches whole texts, alternatives have no order, and counts have no limit of their own. Immutable once constructed;
/// any number of threads may use one.
class QUILLON9_API CSchemaPattern {
 public:
  /// Compile \p pattern, in UTF-8.
  /// \throws CQnException "Invalid pattern [%s]: %s at offset %d" with what breaks the grammar.
  explicit CSchemaPattern(std::string_view pattern);
  ~CSchemaPattern();
  CSchemaPattern(CSchemaPattern&&) noexcept;
  CSchemaPattern& operator=(CSchemaPattern&&) noexcept;

  /// Whether the whole of \p text, in UTF-8, matches.
  /// \throws CQnException "The value is too long to be matched" where that would take more than a bounded time.
  bool Matches(std::string_view text) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled const> m_compiled;
};

}  // namespace Quillon9
