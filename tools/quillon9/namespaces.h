#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// Decides how the namespaces of a document are declared when all of them are declared on its root.
class Namespaces {
 public:
  /// Take the namespaces of the tree below \p root and those that \p prefixes stand for, under these prefixes where
  /// possible. The default namespace, that of the empty prefix, stays unless it would include elements of no namespace.
  Namespaces(Quillon9::CXmlElement const& root, std::map<std::string, std::string> const& prefixes);

  /// Return the default namespace, empty for none.
  std::string const& GetDefault() const { return m_default; }
  /// Return the prefixes of all namespaces, by URI; the default namespace is among them only if it has a prefix, too.
  std::map<std::string, std::string> const& GetPrefixes() const { return m_prefixes; }
  /// Return the prefixes that are no longer declared, because their namespaces have another one.
  std::vector<std::string> const& GetDroppedPrefixes() const { return m_dropped; }

  /// Return the name of an element or attribute, with its prefix.
  std::string NameOf(Quillon9::CXmlElement const& element) const;
  std::string NameOf(Quillon9::CXmlAttribute const& attribute) const;

 private:
  void TakeGiven(std::map<std::string, std::string> const& prefixes);
  void ChooseDefault(std::map<std::string, std::string> const& prefixes, std::string const& rootNamespace);
  void MakePrefix(std::string const& uri);
  std::string WithPrefix(std::string const& uri, std::string const& localName) const;

  std::string m_default;
  std::map<std::string, std::string> m_prefixes;
  std::vector<std::string> m_dropped;
  std::set<std::string> m_taken;
  int m_nextGenerated = 0;
};

/// Return whether \p name is a name without a colon (Namespaces in XML 1.0, W3C); anything beyond ASCII is accepted.
bool IsNcName(std::string const& name);

}  // namespace Quillon9Tool
