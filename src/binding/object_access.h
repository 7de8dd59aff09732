#pragma once

#include "quillon9/binding/collection.h"

namespace Quillon9 {

/// The only friend of objects and collections: what the descriptors need and no public function passes on.
struct ObjectAccess {
  static CXmlElement* FromXml(CXmlObjectBase& object, CXmlElement* parent, CXmlElement* cursor,
                              CXmlSerializationContext const& ctx, bool inChoice) {
    return object.FromXml_Int(parent, cursor, ctx, inChoice);
  }
  /// Let reads of \p collection end where it has as many items as it may have.
  static void StopWhenFull(CXmlCollectionBase& collection) {
    collection.m_stopsWhenFull = collection.GetMaxOccurs() >= 0;
  }
};

}  // namespace Quillon9
