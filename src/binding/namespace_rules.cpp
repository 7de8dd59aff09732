// The rules of CXmlObjectHelper by which an element is recognised and a wildcard accepts a namespace.

#include <string_view>

#include "base/failure_detail.h"
#include "binding/name_match.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/object_helper.h"

namespace Quillon9 {

bool CXmlObjectHelper::DoesElementNameMatch(CXmlSerializationContext const& ctx, CXmlElement const* element,
                                            std::string const& name, std::string const& ns) {
  return IsElementNamed(ctx, element, name, ns);
}

// Only the first token of the list is interpreted. Every token after it counts as empty, which admits a namespace that
// is empty or equal to the whole list; checking each of them again would change nothing.
bool CXmlObjectHelper::IsNamespaceValid(std::string const& ns, std::string const& list, std::string const& target) {
  if (std::string_view(list) == "##any") return true;  // of nearly all generic content
  std::size_t const blank = list.find(' ');
  std::string_view const token = std::string_view(list).substr(0, blank);
  bool const validAsOther = ns.empty() || ns == list;
  bool valid;
  if (token == "##any") {
    valid = true;
  } else if (token == "##other") {
    valid = ns != target;
  } else if (token == "##local") {
    valid = ns.empty();
  } else if (token == "##targetNamespace") {
    valid = ns == target;
  } else {
    valid = validAsOther;
  }
  return valid || (blank != std::string::npos && validAsOther);
}

void CXmlObjectHelper::TestNamespace(std::string const& ns, std::string const& list, std::string const& target) {
  if (IsNamespaceValid(ns, list, target)) return;
  throw OfKind(FailureKind_Namespace,
               CQnInvalidNamespaceException(FormatString(
                   "Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s]",
                   ns.c_str(), list.c_str(), target.c_str())));
}

}  // namespace Quillon9
