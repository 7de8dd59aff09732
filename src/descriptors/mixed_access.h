#pragma once

#include "quillon9/descriptors/generic_content.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// What reading does with elements that keep where their text stands.
struct MixedAccess {
  /// Let \p copy, which was made from \p source, keep where the text of \p source stands, if that has mixed content.
  static void KeepPlaces(CElement& copy, CXmlElement const& source) { copy.KeepPlaces(source); }
};

}  // namespace Quillon9
