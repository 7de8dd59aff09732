#pragma once

#include <string_view>

namespace Quillon9 {

/// The namespace of the attributes that declare namespaces (Namespaces in XML 1.0, W3C, section 3), which nothing else
/// may have. That of "xml" is CXmlWriter::XML_NAMESPACE.
constexpr std::string_view kDeclarationsNamespace = "http://www.w3.org/2000/xmlns/";

}  // namespace Quillon9
