#include "xmlio/namespace_declarations.h"

#include <iterator>
#include <set>
#include <utility>

namespace Quillon9 {

std::string const& NamespaceDeclarations::Add(CXmlElement const* parent, CXmlElement const* before,
                                              std::string_view prefix, std::string_view uri, Kind kind) {
  bool const isInside = parent != nullptr && kind == Kind::Declaration;
  Binding* const last = m_declarations.empty() ? nullptr : m_declarations.back().binding;
  bool const isRepeated = last != nullptr && last->first.first == prefix && last->first.second == uri;
  Binding* const binding =
      isRepeated ? last : &*m_bindings.emplace(std::make_pair(std::string(prefix), std::string(uri)), isInside).first;
  binding->second = binding->second && isInside;
  m_declarations.push_back({parent, before, binding});
  m_indexed = nullptr;
  return binding->first.second;
}

std::string const* NamespaceDeclarations::Find(CXmlElement const* root, CXmlElement const& element,
                                               std::string_view prefix) const {
  auto const first = m_bindings.lower_bound({std::string(prefix), std::string()});
  if (first == m_bindings.end() || first->first.first != prefix) return nullptr;
  if (IsUnique(first) && !first->second) return &first->first.second;
  if (m_indexed != root) MakeIndex(root);
  auto const found = m_index.find(&element);
  for (Scope const* scope = found != m_index.end() ? found->second : nullptr; scope != nullptr; scope = scope->outer) {
    for (Binding const* binding : scope->bindings) {
      if (binding->first.first == prefix) return &binding->first.second;
    }
  }
  return nullptr;
}

/// Whether \p binding, the first one of its prefix, is the only one.
bool NamespaceDeclarations::IsUnique(Bindings::const_iterator binding) const {
  auto const next = std::next(binding);
  return next == m_bindings.end() || next->first.first != binding->first.first;
}

std::vector<std::pair<std::string, std::string>> NamespaceDeclarations::ForDocumentElement() const {
  std::vector<std::pair<std::string, std::string>> prefixes;
  std::set<std::string_view> known = {"", "xml"};
  for (Declaration const& each : m_declarations) {
    std::string const& prefix = each.binding->first.first;
    bool const applies = each.parent == nullptr || IsUnique(m_bindings.lower_bound({prefix, std::string()}));
    if (applies && known.insert(prefix).second) prefixes.push_back(each.binding->first);
  }
  return prefixes;
}

// Uses a list instead of the stack, since a document may nest deeply.
void NamespaceDeclarations::MakeIndex(CXmlElement const* root) const {
  m_index.clear();
  m_scopes.clear();
  using Place = std::pair<CXmlElement const*, CXmlElement const*>;
  std::map<Place, std::vector<Binding const*>> places;
  for (Declaration const& each : m_declarations) places[{each.parent, each.before}].push_back(each.binding);
  std::vector<std::pair<CXmlElement const*, Scope const*>> open;
  auto const enter = [&](CXmlElement const* parent, CXmlElement const* before, CXmlElement const* element,
                         Scope const* scope) {
    auto const declared = places.find({parent, before});
    if (declared != places.end()) {
      m_scopes.push_back(std::make_unique<Scope>(Scope{scope, std::move(declared->second)}));
      scope = m_scopes.back().get();
    }
    if (scope != nullptr) m_index.emplace(element, scope);
    if (element->GetFirstElement() != nullptr) open.emplace_back(element, scope);
  };
  if (root != nullptr) enter(nullptr, nullptr, root, nullptr);
  while (!open.empty()) {
    auto const [parent, scope] = open.back();
    open.pop_back();
    CXmlElement const* before = nullptr;
    for (CXmlElement const* child = parent->GetFirstElement(); child != nullptr;
         child = child->GetNextSiblingElement()) {
      enter(parent, before, child, scope);
      before = child;
    }
  }
  m_indexed = root;
}

}  // namespace Quillon9
