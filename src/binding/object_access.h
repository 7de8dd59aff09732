#pragma once

#include "quillon9/binding/object_base.h"

namespace Quillon9 {

/// The only friend of the objects: the one operation that the descriptors need and no public function passes on.
struct ObjectAccess {
  static CXmlElement* FromXml(CXmlObjectBase& object, CXmlElement* parent, CXmlElement* cursor,
                              CXmlSerializationContext const& ctx, bool inChoice) {
    return object.FromXml_Int(parent, cursor, ctx, inChoice);
  }
};

}  // namespace Quillon9
