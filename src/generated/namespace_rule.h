#pragma once

#include <string_view>

#include "quillon9/generated/rows.h"

namespace Quillon9 {

/// Whether a wildcard allows the namespace \p ns (W3C XML Schema Part 1, 3.10.4, "Wildcard allows Namespace Name").
bool Allows(CNamespaceRule const& rule, std::string_view ns);
/// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace() when it does not.
void RequireAllowed(CNamespaceRule const& rule, std::string_view ns);

}  // namespace Quillon9
