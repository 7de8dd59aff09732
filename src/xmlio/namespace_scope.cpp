#include "xmlio/namespace_scope.h"

#include "quillon9/xmlio/writer.h"
#include "xmlio/text_copy.h"

namespace Quillon9 {

CNamespaceScope::CNamespaceScope(Map const& bindings) : m_outer(nullptr), m_own(bindings) {
  for (auto const& binding : m_own) m_prefixes.insert(binding.second);
}

CNamespaceScope::CNamespaceScope(CNamespaceScope const* outer)
    : m_outer(outer), m_nextGenerated(outer->m_nextGenerated), m_isChanged(outer->m_isChanged) {}

std::string const* CNamespaceScope::Find(std::string const& uri) const {
  if (m_lastFound != nullptr && IsSameText(m_lastFound->first, uri)) return &m_lastFound->second;
  for (CNamespaceScope const* scope = this; scope != nullptr; scope = scope->m_outer) {
    auto const found = scope->m_own.find(uri);
    if (found == scope->m_own.end()) continue;
    m_lastFound = &*found;
    return &found->second;
  }
  return nullptr;
}

void CNamespaceScope::Bind(std::string const& uri, std::string const& prefix) {
  if (Find(uri) != nullptr) m_isChanged = true;
  m_all.reset();
  m_lastFound = nullptr;
  m_own[uri] = prefix;
  m_prefixes.insert(prefix);
}

std::string const& CNamespaceScope::BindToGenerated(std::string const& uri) {
  std::string prefix;
  if (m_isChanged) {
    prefix = CXmlWriter::GetUniquePrefix(All());
  } else {
    do {
      prefix = CXmlWriter::NsIntToString(static_cast<int>(m_nextGenerated++));
    } while (IsReservedPrefix(prefix) || IsTaken(prefix));
  }
  m_all.reset();
  m_prefixes.insert(prefix);
  return m_own[uri] = prefix;
}

bool CNamespaceScope::IsTaken(std::string const& prefix) const {
  for (CNamespaceScope const* scope = this; scope != nullptr; scope = scope->m_outer) {
    if (scope->m_prefixes.count(prefix) != 0) return true;
  }
  return false;
}

CNamespaceScope::Map const& CNamespaceScope::All() const {
  if (m_outer == nullptr) return m_own;
  if (m_all == nullptr) {
    auto all = std::make_unique<Map>(m_own);
    for (CNamespaceScope const* scope = m_outer; scope != nullptr; scope = scope->m_outer) {
      all->insert(scope->m_own.begin(), scope->m_own.end());  // what is nearer stays
    }
    m_all = std::move(all);
  }
  return *m_all;
}

// The caller may change the value at any time, which nothing here can follow.
std::string& CNamespaceScope::At(std::string const& uri) {
  std::string const* const known = Find(uri);
  auto const entry = m_own.emplace(uri, known != nullptr ? *known : std::string());
  m_isChanged = true;
  m_all.reset();
  m_lastFound = nullptr;
  return entry.first->second;
}

}  // namespace Quillon9
