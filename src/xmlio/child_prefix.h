#pragma once

#include <string>

#include "base/text_copy.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Whether a child of the element \p open in the namespace \p uri gets a prefix that is known at once, mostly that of
/// \p open, or none, as the null that \p prefix must be then tells.
inline bool FindPrefixOfChild(CXmlWriter::CXmlWriterContext const& open, std::string const& uri,
                              std::string const*& prefix) {
  if (uri.empty()) return true;
  if (!IsSameText(uri, open.m_namespace)) return false;
  if (open.NeedsNoPrefix()) return true;
  prefix = open.FindPrefix(uri);
  return prefix != nullptr;
}

}  // namespace Quillon9
