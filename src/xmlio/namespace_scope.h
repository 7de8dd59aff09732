#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace Quillon9 {

/// Names that begin with "xml" are reserved to the XML recommendations; generated ones are upper case throughout.
inline bool IsReservedPrefix(std::string_view generated) { return generated.substr(0, 3) == "XML"; }

/// The default namespace and the namespace bindings in force inside an element of a writer, URI to prefix: what this
/// element bound itself, over those of the elements around it. The latter are shared instead of copied, so that the time
/// for a document with many namespaces grows with their number and not with its square. A scope that is shared must not
/// change any more: a change belongs into a scope inside it.
class CNamespaceScope {
 public:
  using Map = std::map<std::string, std::string>;

  /// The scope of a document element.
  CNamespaceScope(std::string const& defaultNamespace, Map const& bindings);
  /// A scope inside \p outer, with nothing of its own yet.
  explicit CNamespaceScope(std::shared_ptr<CNamespaceScope> outer);
  /// Takes constant stack, however many scopes there are around.
  ~CNamespaceScope();
  CNamespaceScope(CNamespaceScope const&) = delete;
  CNamespaceScope& operator=(CNamespaceScope const&) = delete;

  /// The default namespace, empty for none.
  ///@{
  std::string const& GetDefaultNamespace() const { return m_defaultNamespace; }
  void SetDefaultNamespace(std::string const& uri) { m_defaultNamespace = uri; }
  ///@}
  /// The prefix of \p uri, or null when it has none. Valid until \p uri is bound anew.
  std::string const* Find(std::string const& uri) const;
  /// Bind \p uri, in place of an earlier binding.
  void Bind(std::string const& uri, std::string const& prefix);
  /// Bind \p uri, which has no prefix, to the first generated one that is free, as CXmlWriter::GetUniquePrefix() finds
  /// it.
  std::string const& BindToGenerated(std::string const& uri);
  /// All bindings in force, put together when they are asked for. Valid as long as this scope, later changes included.
  Map const& All();
  /// The prefix of \p uri in this scope, for changes; empty when it had none.
  std::string& At(std::string const& uri);

 private:
  bool IsTaken(std::string const& prefix) const;

  std::shared_ptr<CNamespaceScope> m_outer;  ///< null for a document element
  std::string m_defaultNamespace;
  Map m_own;
  bool m_isWhole;                    ///< m_own has the bindings of the scopes around as well
  std::set<std::string> m_prefixes;  ///< those bound here
  std::size_t m_nextGenerated = 0;   ///< every generated prefix with a smaller number is taken
  /// A binding was replaced, so that a prefix may have become free: the next one is looked for in all bindings.
  bool m_isChanged = false;
  /// Neighbours mostly share a namespace; and the binding may be many scopes away.
  mutable Map::value_type const* m_lastFound = nullptr;
};

}  // namespace Quillon9
