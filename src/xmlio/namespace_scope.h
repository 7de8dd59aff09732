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

/// The namespace bindings in force inside an element of a writer, URI to prefix: what this element bound itself, over
/// those of the elements around it. Nothing is copied, so that a document with many namespaces costs no square of them.
class CNamespaceScope {
 public:
  using Map = std::map<std::string, std::string>;

  /// The scope of a document element, with these bindings.
  explicit CNamespaceScope(Map const& bindings);
  /// A scope inside \p outer, which must outlive it, with no bindings of its own yet.
  explicit CNamespaceScope(CNamespaceScope const* outer);

  /// The prefix of \p uri, or null when it has none. Valid until \p uri is bound anew.
  std::string const* Find(std::string const& uri) const;
  /// Bind \p uri, in place of an earlier binding.
  void Bind(std::string const& uri, std::string const& prefix);
  /// Bind \p uri, which has no prefix, to the first generated one that is free, as CXmlWriter::GetUniquePrefix() finds
  /// it.
  std::string const& BindToGenerated(std::string const& uri);
  /// All bindings in force. Made when it is asked for; valid until the next change.
  Map const& All() const;
  /// The prefix of \p uri in this scope, for changes; empty when it had none.
  std::string& At(std::string const& uri);

 private:
  bool IsTaken(std::string const& prefix) const;

  CNamespaceScope const* m_outer;
  Map m_own;
  std::set<std::string> m_prefixes;  ///< the values of m_own
  std::size_t m_nextGenerated = 0;   ///< every generated prefix with a smaller number is taken
  /// A binding was replaced, so that a prefix may have become free: the next one is looked for in all bindings.
  bool m_isChanged = false;
  mutable std::unique_ptr<Map> m_all;
  /// Neighbours mostly share a namespace; and the binding may be many scopes away.
  mutable Map::value_type const* m_lastFound = nullptr;
};

}  // namespace Quillon9
