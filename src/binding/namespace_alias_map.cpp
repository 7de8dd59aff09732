#include "quillon9/binding/namespace_alias_map.h"

#include <algorithm>
#include <iterator>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

template <class Map>
auto FindAlias(Map const& map, char const* alias) {
  return std::find_if(map.begin(), map.end(), [alias](auto const& entry) { return entry.second == alias; });
}

}  // namespace

CNamespaceAliasMap::CNamespaceAliasMap() = default;
CNamespaceAliasMap::~CNamespaceAliasMap() = default;

void CNamespaceAliasMap::Add(char const* alias, char const* ns) { m_map[ns] = alias; }

void CNamespaceAliasMap::RemoveNamespace(char const* ns) { m_map.erase(ns); }

int CNamespaceAliasMap::GetNamespaceCount() const { return static_cast<int>(m_map.size()); }

std::string CNamespaceAliasMap::GetNamespaceAt(int index) const {
  if (index < 0 || index >= GetNamespaceCount()) throw CQnException(FormatString("Index %d is out of range", index));
  return std::next(m_map.begin(), index)->first;
}

bool CNamespaceAliasMap::DoesNamespaceExist(char const* ns) const { return m_map.find(ns) != m_map.end(); }

bool CNamespaceAliasMap::DoesAliasExist(char const* alias) const { return FindAlias(m_map, alias) != m_map.end(); }

std::string CNamespaceAliasMap::GetNamespaceFromAlias(char const* alias) const {
  auto const entry = FindAlias(m_map, alias);
  if (entry == m_map.end()) throw CQnException(FormatString("Namespace alias [%s] not found", alias));
  return entry->first;
}

std::string CNamespaceAliasMap::GetAliasFromNamespace(char const* ns) const { return m_map[ns]; }

}  // namespace Quillon9
