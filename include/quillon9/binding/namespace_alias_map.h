#pragma once

#include <map>
#include <string>

#include "quillon9/export.h"

namespace Quillon9 {

/// Holds the prefixes that a written document declares on its root, one for each namespace. They are declared in the
/// byte order of the namespace URIs. Belongs to one thread at a time, even for const operations: see
/// GetAliasFromNamespace().
class QUILLON9_API CNamespaceAliasMap {
 public:
  CNamespaceAliasMap();
  /// Copies all bindings.
  ///@{
  CNamespaceAliasMap(CNamespaceAliasMap const&) = default;
  CNamespaceAliasMap& operator=(CNamespaceAliasMap const&) = default;
  ///@}
  virtual ~CNamespaceAliasMap();

  /// Bind \p ns to \p alias, replacing any earlier alias of \p ns. This does not check whether the alias is in use: two
  /// namespaces can share one.
  void Add(char const* alias, char const* ns);
  /// Remove \p ns. Does nothing if the namespace is unknown.
  void RemoveNamespace(char const* ns);

  /// The number of namespaces that are bound.
  int GetNamespaceCount() const;
  /// The namespace at \p index in byte order of the URIs.
  /// \throws CQnException "Index %d is out of range" when \p index is not between 0 and GetNamespaceCount() - 1.
  std::string GetNamespaceAt(int index) const;
  /// Whether this namespace is bound; whether any namespace has this alias.
  ///@{
  bool DoesNamespaceExist(char const* ns) const;
  bool DoesAliasExist(char const* alias) const;
  ///@}
  /// The first namespace, in byte order, that has \p alias.
  /// \throws CQnException "Namespace alias [%s] not found".
  std::string GetNamespaceFromAlias(char const* alias) const;
  /// The alias of \p ns. If the namespace is unknown, this adds it with an empty alias and returns that: the lookup
  /// changes the map. Call DoesNamespaceExist() first to avoid this.
  std::string GetAliasFromNamespace(char const* ns) const;

 private:
  mutable std::map<std::string, std::string> m_map;
};

}  // namespace Quillon9
