#pragma once

#include <string>

namespace Quillon9Tool {

/// Whether \p name can be the name of something in C++ that a user declares.
bool IsCppName(std::string const& name);

/// Whether \p name can be a namespace for generated classes: such names with "::" between them, none of which is the
/// library's or the standard's.
bool IsCppNamespace(std::string const& name);

/// The namespace for the classes of the schema \p path: PurchaseOrder for purchase_order.xsd.
/// \throws UsageError if its name is not one.
std::string NamespaceFor(std::string const& path);

}  // namespace Quillon9Tool
