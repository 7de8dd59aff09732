#include "xmlio/namespace_scope.h"

#include <utility>

#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

CNamespaceScope::CNamespaceScope(std::string const& defaultNamespace, Map const& bindings)
    : m_defaultNamespace(defaultNamespace), m_own(bindings), m_isWhole(true) {
  for (auto const& binding : m_own) m_prefixes[binding.second] = {binding.first, true};
}

CNamespaceScope::CNamespaceScope(std::shared_ptr<CNamespaceScope> outer)
    : m_outer(std::move(outer)),
      m_defaultNamespace(m_outer->m_defaultNamespace),
      m_isWhole(false),
      m_nextGenerated(m_outer->m_nextGenerated),
      m_isChanged(m_outer->m_isChanged) {}

CNamespaceScope::~CNamespaceScope() {
  while (m_outer.use_count() == 1) m_outer = std::shared_ptr<CNamespaceScope>(std::move(m_outer->m_outer));
}

std::string const* CNamespaceScope::Find(std::string const& uri) const {
  for (CNamespaceScope const* scope = this; scope != nullptr; scope = scope->m_outer.get()) {
    auto const found = scope->m_own.find(uri);
    if (found != scope->m_own.end()) return &found->second;
  }
  return nullptr;
}

void CNamespaceScope::Bind(std::string const& uri, std::string const& prefix) {
  if (Find(uri) != nullptr) m_isChanged = true;
  m_prefixes[prefix] = {uri, false};
  m_own[uri] = prefix;
}

void CNamespaceScope::AddAlias(std::string const& prefix, std::string const& uri) {
  m_prefixes[prefix] = {uri, true};
  if (Find(uri) == nullptr) m_own[uri] = prefix;
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
  m_prefixes[prefix] = {uri, false};
  return m_own[uri] = prefix;
}

CNamespaceScope::Bound const* CNamespaceScope::FindBound(std::string const& prefix) const {
  for (CNamespaceScope const* scope = this; scope != nullptr; scope = scope->m_outer.get()) {
    auto const found = scope->m_prefixes.find(prefix);
    if (found != scope->m_prefixes.end()) return &found->second;
  }
  return nullptr;
}

std::string const* CNamespaceScope::UriOf(std::string const& prefix) const {
  Bound const* const bound = FindBound(prefix);
  return bound != nullptr ? &bound->uri : nullptr;
}

bool CNamespaceScope::IsDeclared(std::string const& prefix) const {
  Bound const* const bound = FindBound(prefix);
  return bound != nullptr && bound->isDeclared;
}

CNamespaceScope::Map const& CNamespaceScope::All() {
  if (!m_isWhole) {
    for (CNamespaceScope const* scope = m_outer.get(); scope != nullptr; scope = scope->m_outer.get()) {
      m_own.insert(scope->m_own.begin(), scope->m_own.end());  // inner bindings take precedence
    }
    m_isWhole = true;
  }
  return m_own;
}

// The caller may change the value at any time, and this class cannot notice that.
std::string& CNamespaceScope::At(std::string const& uri) {
  std::string const* const known = Find(uri);
  auto const entry = m_own.emplace(uri, known != nullptr ? *known : std::string());
  m_isChanged = true;
  return entry.first->second;
}

}  // namespace Quillon9
