#pragma once

#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/fast_reader.h"
#include "xmlio/node_access.h"
#include "xmlio/tree_comparison.h"

namespace Quillon9::Testing {

/// What happens when both readers of text read the same input.
struct BothReaders {
  bool isTaken = false;    ///< the fast reader has read it
  std::string failure;     ///< the parser's; empty for none
  std::string difference;  ///< between what they read, or what the fast reader has left behind; empty if all is well
};

/// Let the parser and the fast reader read \p input.
inline BothReaders ReadByBoth(std::string const& input,
                              CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext) {
  BothReaders result;
  CXmlDocument parsed(context);
  bool const isUsed = CLimits::GetUseFastReader();
  CLimits::SetUseFastReader(false);
  try {
    parsed.LoadXmlStream(reinterpret_cast<unsigned char const*>(input.data()), input.size());
  } catch (CQnException const& failure) {
    result.failure = failure.GetFullMessage();
  }
  CLimits::SetUseFastReader(isUsed);
  if (parsed.GetInputData() == nullptr) return result;
  CXmlDocument read(context);
  XmlNodeAccess::LendInput(read, parsed);
  result.isTaken = FastReader::Read(read);
  if (!result.isTaken) {
    bool const isClean = XmlNodeAccess::IsUntouched(read) && XmlNodeAccess::ContentSize(read) == 0;
    if (!isClean) result.difference = "something is left behind";
  } else if (!result.failure.empty()) {
    result.difference = "the parser fails: " + result.failure;
  } else {
    result.difference = FirstDifference(parsed, read);
  }
  return result;
}

}  // namespace Quillon9::Testing
