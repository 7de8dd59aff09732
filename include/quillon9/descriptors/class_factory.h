#pragma once

#include <string>

#include "quillon9/export.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// The base of generated class factories: tells which type an element of an abstract or substitutable kind has.
/// Any thread.
class QUILLON9_API CClassfactoryBase {
 public:
  virtual ~CClassfactoryBase();

  /// What follows the first colon of the value of xsi:type, or the value when it has none; empty when \p element,
  /// which may not be null, has no such attribute.
  static std::string GetElementType(CXmlElement* element);
  /// The namespace of that type: what the prefix of the value is bound to in the document, or the namespace of
  /// \p element itself when there is no prefix or nothing is known of it.
  static std::string GetElementTypeNamespaceUri(CXmlElement* element);
};

}  // namespace Quillon9
