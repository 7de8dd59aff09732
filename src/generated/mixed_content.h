#pragma once

#include "quillon9/fwd.h"

namespace Quillon9 {

/// Where the text of generated classes with mixed content stands.
struct MixedContent {
  /// \p object has been read from \p element: keep the places of its text, or drop text that is only layout.
  static void AfterRead(CBoundObject& object, CXmlElement const& element, CXmlSerializationContext const& ctx);
};

}  // namespace Quillon9
