#pragma once

#include <string>

#include "quillon9/export.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// Base of generated class factories, which determine the type of an element of an abstract or substitutable kind. Any
/// thread may call its operations.
class QUILLON9_API CClassfactoryBase {
 public:
  virtual ~CClassfactoryBase();

  /// The part of the value of xsi:type after its first colon, or the whole value when it has none; empty when
  /// \p element, which must not be null, has no such attribute.
  static std::string GetElementType(CXmlElement* element);
  /// The namespace of that type: the one that the document binds to the prefix of the value, or the namespace of
  /// \p element itself when there is no prefix or the prefix is unknown.
  static std::string GetElementTypeNamespaceUri(CXmlElement* element);
};

}  // namespace Quillon9
