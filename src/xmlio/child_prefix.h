#pragma once

#include <string>

#include "base/text_copy.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Return whether the prefix of a child of the element \p open in the namespace \p uri is known at once: usually that
/// of \p open, or none, in which case \p prefix, which must be null, stays null.
inline bool FindPrefixOfChild(CXmlWriter::CXmlWriterContext const& open, std::string const& uri,
                              std::string const*& prefix) {
  if (uri.empty()) return true;
  if (!IsSameText(uri, open.m_namespace)) return false;
  if (open.NeedsNoPrefix()) return true;
  prefix = open.FindPrefix(uri);
  return prefix != nullptr;
}

}  // namespace Quillon9
