#include "generated/namespace_rule.h"

#include <string>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

bool TokenAllows(std::string_view token, std::string_view ns, std::string_view target) {
  if (token == "##any") return true;
  if (token == "##other") return !ns.empty() && ns != target;
  if (token == "##local") return ns.empty();
  if (token == "##targetNamespace") return ns == target;
  return ns == token;
}

}  // namespace

bool Allows(CNamespaceRule const& rule, std::string_view ns) {
  std::string_view rest = rule.allowed;
  constexpr std::string_view kBlanks = " \t\n\r";
  while (true) {
    std::size_t const start = rest.find_first_not_of(kBlanks);
    if (start == std::string_view::npos) return false;
    rest.remove_prefix(start);
    std::string_view const token = rest.substr(0, rest.find_first_of(kBlanks));
    if (TokenAllows(token, ns, rule.target)) return true;
    rest.remove_prefix(token.size());
  }
}

void RequireAllowed(CNamespaceRule const& rule, std::string_view ns) {
  if (Allows(rule, ns)) return;
  throw OfKind(FailureKind_Namespace,
               CQnInvalidNamespaceException(FormatString(
                   "Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s]",
                   std::string(ns).c_str(), rule.allowed, rule.target)));
}

}  // namespace Quillon9
