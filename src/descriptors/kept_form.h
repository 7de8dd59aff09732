#pragma once

#include "quillon9/fwd.h"

namespace Quillon9 {

/// What reading and writing do with the form of a document besides its text.
struct KeptForm {
  /// Let \p object, which was read from \p root, keep the form of the document if \p root is its document element.
  static void Keep(CXmlElement const& root, CXmlObjectBase& object);

  /// Before the document element: bind a prefix for WriteLocations(). \p form may be null.
  static void BindPrefix(CDocumentForm const* form, CXmlWriter& writer);
  /// Write the locations of schemas as attributes of the document element, without those that \p additional, which may
  /// be null, or \p ctx has as well.
  static void WriteLocations(CDocumentForm const* form, CAttributeCol const* additional, CXmlWriter& writer,
                             CXmlSerializationContext const& ctx);
};

}  // namespace Quillon9
