#pragma once

#include "quillon9/fwd.h"

namespace Quillon9 {

/// Read \p object from \p element, as the one that a caller asked for, within the scopes and the report of its read.
/// \throws what CXmlObjectBase::FromXmlElement() throws.
void ReadObject(CXmlElement const& element, CXmlObjectBase& object, CXmlSerializationContext const& ctx);

}  // namespace Quillon9
