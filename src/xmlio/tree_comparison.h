#pragma once

#include <string>

#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// Say how the tree of \p right differs from that of \p left, or in which of the namespace declarations and what was
/// counted the documents differ; empty if nothing differs. Works for trees of any depth.
std::string FirstDifference(CXmlDocument& left, CXmlDocument& right);

/// Let the parser read the input of \p document, whose tree the FastReader has built, once more. Ends the process with a
/// message unless both trees are equal.
/// \throws std::bad_alloc.
void CompareWithParser(CXmlDocument& document);

}  // namespace Quillon9
