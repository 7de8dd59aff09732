#pragma once

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"

namespace Quillon9 {

/// Finds the place of a failure that ended a write.
class WriteFailure {
 public:
  /// Give \p failure, which the write of \p object under \p ctx has thrown, the path in the graph of objects. For that
  /// the graph is walked again up to the same failure. Without a path where that is not found, as for a failure of the
  /// output. Throws nothing.
  static void AddPlace(CQnException& failure, CXmlObjectBase const& object,
                       CXmlSerializationContext const& ctx) noexcept;
  /// The same for a write that \p encoder did, which is a new one in the state in which the root is written to it.
  static void AddPlace(CQnException& failure, CXmlObjectBase const& object, CXmlSerializationContext const& ctx,
                       CXmlWriter& encoder) noexcept;
  /// The same for a write of Fast Infoset with the declaration \p decl. Of no effect if that is the failure.
  static void AddPlaceInInfoset(CQnException& failure, CXmlObjectBase const& object, FInfoDecl decl,
                                CXmlSerializationContext const& ctx) noexcept;
};

}  // namespace Quillon9
