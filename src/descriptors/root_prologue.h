#pragma once

#include "quillon9/descriptors/generated_class.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Write what \p ctx says to stand in front of the document element, and bind the namespaces that it declares there. The
/// instructions that \p unknown, which may be null, has there are not written twice.
void WriteRootPrologue(CXmlWriter& writer, CUnknownContent const* unknown, CXmlSerializationContext const& ctx);
/// Bind the prefixes that \p object keeps while the document element has not started, so that its name has one of them.
/// What \p ctx binds comes first.
void BindKeptPrefixes(CXmlGeneratedClass const& object, CXmlSerializationContext const& ctx, CXmlWriter& writer);

}  // namespace Quillon9
