#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Quillon9 {

/// Names that begin with "xml" are reserved for the XML recommendations; generated ones are all upper case.
inline bool IsReservedPrefix(std::string_view generated) { return generated.substr(0, 3) == "XML"; }

/// The default namespace and the namespace bindings in force inside an element of a writer, URI to prefix: those that
/// this element made itself, on top of those of the enclosing elements. The latter are shared instead of copied, so
/// that the time for a document with many namespaces is linear in their number, not quadratic. A shared scope must not
/// change any more: a change belongs in a scope inside it.
class CNamespaceScope {
 public:
  using Map = std::map<std::string, std::string>;

  /// The scope of a document element.
  CNamespaceScope(std::string const& defaultNamespace, Map const& bindings);
  /// A scope inside \p outer, with no bindings of its own yet.
  explicit CNamespaceScope(std::shared_ptr<CNamespaceScope> outer);
  /// Takes constant stack, however many enclosing scopes there are.
  ~CNamespaceScope();
  CNamespaceScope(CNamespaceScope const&) = delete;
  CNamespaceScope& operator=(CNamespaceScope const&) = delete;

  /// The default namespace, empty for none.
  ///@{
  std::string const& GetDefaultNamespace() const { return m_defaultNamespace; }
  void SetDefaultNamespace(std::string const& uri) { m_defaultNamespace = uri; }
  ///@}
  /// Return the prefix of \p uri, or null if it has none. Valid until \p uri is bound again.
  std::string const* Find(std::string const& uri) const;
  /// Bind \p uri, replacing an earlier binding.
  void Bind(std::string const& uri, std::string const& prefix);
  /// Bind \p uri, which has no prefix, to the first free generated one, as CXmlWriter::GetUniquePrefix() finds it.
  std::string const& BindToGenerated(std::string const& uri);
  /// Let \p prefix stand for \p uri, which may have another prefix, too. The document declares it.
  void AddAlias(std::string const& prefix, std::string const& uri);
  /// The URI that \p prefix was last bound to; null for none.
  std::string const* UriOf(std::string const& prefix) const;
  /// Whether \p prefix was last bound by AddAlias() or for the document element.
  bool IsDeclared(std::string const& prefix) const;
  /// Return all bindings in force, combined on request. Valid as long as this scope, later changes included.
  Map const& All();
  /// Return the prefix of \p uri in this scope, for changes; empty if it had none.
  std::string& At(std::string const& uri);

 private:
  struct Bound {
    std::string uri;
    bool isDeclared;
  };

  Bound const* FindBound(std::string const& prefix) const;
  bool IsTaken(std::string const& prefix) const { return UriOf(prefix) != nullptr; }

  std::shared_ptr<CNamespaceScope> m_outer;  ///< null for a document element
  std::string m_defaultNamespace;
  Map m_own;
  bool m_isWhole;                           ///< m_own includes the bindings of the enclosing scopes
  std::map<std::string, Bound> m_prefixes;  ///< those bound here
  std::size_t m_nextGenerated = 0;          ///< every generated prefix with a smaller number is taken
  /// A binding was replaced, which may have freed a prefix: look for the next one among all bindings.
  bool m_isChanged = false;
};

}  // namespace Quillon9
