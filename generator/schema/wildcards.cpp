#include <algorithm>

#include "schema/builder.h"
#include "schema/limits.h"

namespace Quillon9Generator::Schema {

namespace {

using Constraint = Wildcard::Constraint;

bool Lists(Wildcard const& wildcard, std::string const& ns) {
  return std::find(wildcard.namespaces.begin(), wildcard.namespaces.end(), ns) != wildcard.namespaces.end();
}

bool List(Wildcard& wildcard, std::string const& ns) {
  if (wildcard.namespaces.size() >= kMaxNamespaces) return false;
  if (!Lists(wildcard, ns)) wildcard.namespaces.push_back(ns);
  return true;
}

/// Return \p wildcard, which lists namespaces, without those that \p predicate selects.
template <class Predicate>
Wildcard Without(Wildcard wildcard, Predicate predicate) {
  auto& all = wildcard.namespaces;
  all.erase(std::remove_if(all.begin(), all.end(), predicate), all.end());
  return wildcard;
}

/// Return whether not too many namespaces are listed.
bool ReadNamespaces(Wildcard& wildcard, std::string_view names, std::string const& target) {
  if (names == "##any") return true;
  wildcard.constraint = names == "##other" ? Constraint::Other : Constraint::Listed;
  if (names == "##other") {
    wildcard.notNamespace = target;
    return true;
  }
  while (!names.empty()) {
    std::size_t const end = std::min(names.find_first_of(" \t\r\n"), names.size());
    std::string_view const name = names.substr(0, end);
    names = Trimmed(names.substr(end));
    std::string const ns = name == "##targetNamespace" ? target : name == "##local" ? "" : std::string(name);
    if (!List(wildcard, ns)) return false;
  }
  return true;
}

}  // namespace

Wildcard Builder::MakeWildcard(Document const& document, Node const& node) {
  Wildcard wildcard;
  Describe(wildcard, node);
  if (!ReadNamespaces(wildcard, Trimmed(node.Find("namespace").value_or("##any")), document.targetNamespace)) {
    m_diagnostics.Error(node.place, "more than " + std::to_string(kMaxNamespaces) + " namespaces in one wildcard");
  }
  wildcard.isLimited = node.Has("notNamespace") || node.Has("notQName");
  std::string_view const processing = Trimmed(node.Find("processContents").value_or("strict"));
  if (processing == "lax") {
    wildcard.processing = Wildcard::Processing::Lax;
  } else if (processing == "skip") {
    wildcard.processing = Wildcard::Processing::Skip;
  }
  return wildcard;
}

/// What both allow (https://www.w3.org/TR/xmlschema-1/#cos-aw-intersect), otherwise like the first.
Wildcard Builder::Intersection(Wildcard const& first, Wildcard const& second) {
  Wildcard result = first;
  if (second.constraint == Constraint::Any) return result;
  if (first.constraint == Constraint::Any) {
    result.constraint = second.constraint;
    result.notNamespace = second.notNamespace;
    result.namespaces = second.namespaces;
    return result;
  }
  if (first.constraint == Constraint::Listed && second.constraint == Constraint::Listed) {
    return Without(result, [&](std::string const& ns) { return !Lists(second, ns); });
  }
  if (first.constraint == Constraint::Other && second.constraint == Constraint::Other) {
    if (first.notNamespace.empty()) result.notNamespace = second.notNamespace;
    if (!result.notNamespace.empty() && !second.notNamespace.empty() && result.notNamespace != second.notNamespace) {
      m_diagnostics.Error(first.place, "no wildcard allows what is in neither of two namespaces");
    }
    return result;
  }
  Wildcard const& listed = first.constraint == Constraint::Listed ? first : second;
  Wildcard const& other = first.constraint == Constraint::Other ? first : second;
  result.constraint = Constraint::Listed;
  result.namespaces = listed.namespaces;
  return Without(result, [&](std::string const& ns) { return ns.empty() || ns == other.notNamespace; });
}

/// What either allows (https://www.w3.org/TR/xmlschema-1/#cos-aw-union), otherwise like the first.
Wildcard Builder::United(Wildcard const& first, Wildcard const& second) {
  Wildcard result = first;
  if (first.constraint == Constraint::Any || second.constraint == Constraint::Any) {
    result.constraint = Constraint::Any;
    return result;
  }
  if (first.constraint == Constraint::Listed && second.constraint == Constraint::Listed) {
    for (std::string const& ns : second.namespaces) List(result, ns);
    return result;
  }
  if (first.constraint == Constraint::Other && second.constraint == Constraint::Other) {
    if (first.notNamespace != second.notNamespace) result.notNamespace.clear();
    return result;
  }
  Wildcard const& listed = first.constraint == Constraint::Listed ? first : second;
  Wildcard const& other = first.constraint == Constraint::Other ? first : second;
  bool const hasExcluded = Lists(listed, other.notNamespace);
  bool const hasNone = Lists(listed, "");
  result.constraint = hasExcluded && hasNone ? Constraint::Any : Constraint::Other;
  result.namespaces.clear();
  result.notNamespace = hasExcluded ? std::string() : other.notNamespace;
  if (hasNone && !hasExcluded) {
    m_diagnostics.Error(first.place, "no wildcard allows what is in no namespace and in all but one");
  }
  return result;
}

}  // namespace Quillon9Generator::Schema
