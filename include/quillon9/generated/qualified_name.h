#pragma once

#include <string>
#include <tuple>
#include <utility>

namespace Quillon9 {

/// A value of the types xs:QName and xs:NOTATION (W3C XML Schema Part 2, 3.2.18): a local name and the namespace that its
/// prefix stands for. A read resolves the prefix by the declarations in scope; a write declares a prefix where the value
/// stands, unless there is one.
class CQName {
 public:
  /// An empty name, which is written as an empty text.
  CQName() = default;
  /// \p namespaceUri is empty for none. \p prefix is the one that a write declares if it has to, and if it is free there;
  /// otherwise, and where it is empty, a generated one takes its place.
  explicit CQName(std::string namespaceUri, std::string localName, std::string prefix = {})
      : m_namespaceUri(std::move(namespaceUri)), m_localName(std::move(localName)), m_prefix(std::move(prefix)) {}

  /// The namespace; empty for none.
  std::string const& GetNamespace() const { return m_namespaceUri; }
  /// The name without its prefix.
  std::string const& GetLocalName() const { return m_localName; }
  /// The prefix of the document that was read, or the preferred one.
  std::string const& GetPrefix() const { return m_prefix; }

  /// Whether both are the same name. Prefixes do not count.
  ///@{
  friend bool operator==(CQName const& a, CQName const& b) {
    return a.m_namespaceUri == b.m_namespaceUri && a.m_localName == b.m_localName;
  }
  friend bool operator!=(CQName const& a, CQName const& b) { return !(a == b); }
  ///@}
  /// An order for maps: by namespace, then by local name.
  friend bool operator<(CQName const& a, CQName const& b) {
    return std::tie(a.m_namespaceUri, a.m_localName) < std::tie(b.m_namespaceUri, b.m_localName);
  }

 private:
  std::string m_namespaceUri;
  std::string m_localName;
  std::string m_prefix;
};

}  // namespace Quillon9
