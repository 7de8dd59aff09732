#pragma once

#include <string>
#include <string_view>

#include "quillon9/fwd.h"
#include "quillon9/generated/qualified_name.h"

namespace Quillon9 {

/// How a variant holds a qualified name: "{namespace}prefix:local", without what is empty. The text has no white space,
/// so that it can be an item of a list.
struct QualifiedNameText {
  /// \throws CQnInvalidValueException "[%s] is not a local name".
  static std::string From(CQName const& name);
  static CQName Parse(std::string_view text);
  /// The name that \p text, "prefix:local" or "local", is at \p element of a document.
  /// \throws CQnInvalidValueException "The prefix of the name [%s] is not declared".
  static std::string Resolved(std::string_view text, CXmlElement const& element);
  /// The text of the name for a document, in the element that was started last.
  /// \throws CQnValidationException "The name [%s] has no namespace, which cannot be written where there is a default
  ///         namespace"; what CXmlWriter::PrefixForValues() throws.
  static std::string Declared(std::string_view name, CXmlWriter& writer);
};

}  // namespace Quillon9
