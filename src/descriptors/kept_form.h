#pragma once

#include <string>
#include <utility>
#include <vector>

#include "quillon9/fwd.h"

namespace Quillon9 {

/// What reading and writing do with the form of a document besides its text.
struct KeptForm {
  /// Let \p object, which was read from \p root, keep the form of the document if \p root is its document element.
  static void Keep(CXmlElement const& root, CXmlObjectBase& object);

  /// Attributes of xsi, by their local names.
  using Locations = std::vector<std::pair<char const*, std::string>>;
  /// The locations of schemas that the form of \p object has, without those that the object has as attributes of its
  /// own, or that \p ctx adds. Call this before the document element of \p writer, which gets the prefix for them.
  static Locations LocationsFor(CXmlGeneratedClass const& object, CXmlWriter& writer,
                                CXmlSerializationContext const& ctx);
  static void Write(Locations const& locations, CXmlWriter& writer);
};

}  // namespace Quillon9
