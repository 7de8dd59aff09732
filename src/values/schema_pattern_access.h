#pragma once

#include <string_view>

#include "quillon9/values/schema_pattern.h"

namespace Quillon9 {

/// The only friend of CSchemaPattern.
struct SchemaPatternAccess {
  /// Compile the text of CPrimitiveRestrictions::pattern, in UTF-8: an expression of XML Schema, as programs write it
  /// into their tables, or what CSchemaPattern::Combine() has made of one or more, as the generator does.
  /// \throws CQnException like the constructor.
  static CSchemaPattern FromRestriction(std::string_view pattern);
  /// Whether \p text matches, decided without PCRE.
  /// \throws CQnException "The value is too long to be matched"
  static bool MatchesWithoutPcre(CSchemaPattern const& pattern, std::string_view text);
};

}  // namespace Quillon9
