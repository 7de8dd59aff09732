#pragma once

#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

/// Walk over the graph of \p object as a write under \p ctx would.
inline void WalkAsWrite(CXmlObjectBase const& object, CXmlSerializationContext const& ctx, CheckingWriter& writer) {
  try {
    std::string const targetNamespace = object.GetTargetNamespace();
    CXmlObjectBase::ToXml_Int(&object, &writer, true, targetNamespace.c_str(), ctx, false);
    writer.Close();
  } catch (CQnException& failure) {
    writer.GoesOn(failure);
  }
}

}  // namespace Quillon9
