#pragma once

#include <cstddef>

#include "binding/node_pool.h"
#include "quillon9/binding/collection.h"

namespace Quillon9 {

/// The only friend of objects and collections: what the descriptors need and no public function passes on.
struct ObjectAccess {
  static CXmlElement* FromXml(CXmlObjectBase& object, CXmlElement* parent, CXmlElement* cursor,
                              CXmlSerializationContext const& ctx, bool inChoice) {
    return object.FromXml_Int(parent, cursor, ctx, inChoice);
  }
  /// Let reads of \p collection end where it has \p count items; -1 for no limit.
  static void StopAt(CXmlCollectionBase& collection, int count) { collection.m_stopsAt = count; }
  /// Make room for \p count items that are about to be added to \p collection, if it is empty.
  static void Reserve(CXmlCollection& collection, std::size_t count) { NodePool::Reserve(collection.m_nodes, count); }
};

}  // namespace Quillon9
