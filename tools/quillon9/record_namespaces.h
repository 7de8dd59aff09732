#pragma once

#include <map>
#include <string>
#include <vector>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// The prefixes that a tree needs where it stands on its own, each with its namespace; the empty prefix is the default
/// namespace. Values are taken into account, too: `xs:int` needs the prefix xs, if it is declared.
std::map<std::string, std::string> NeededNamespaces(Quillon9::CXmlElement const& tree);

/// The prefixes that the elements \p around records declare. The empty prefix is among them if \p needsPrefixes is false
/// and each of the elements has a namespace.
std::map<std::string, std::string> NamespacesAround(std::vector<Quillon9::CXmlElement const*> const& around,
                                                    bool needsPrefixes);

/// Whether an element of \p tree has no namespace, so that there can be no default namespace around it.
bool HasNameWithoutNamespace(Quillon9::CXmlElement const& tree);

}  // namespace Quillon9Tool
