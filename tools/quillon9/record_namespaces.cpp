#include "record_namespaces.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "namespaces.h"
#include "tree_walk.h"

namespace Quillon9Tool {

using Quillon9::CXmlAttribute;
using Quillon9::CXmlDocument;
using Quillon9::CXmlElement;

namespace {

bool IsReserved(std::string const& prefix) {
  std::string start = prefix.substr(0, 3);
  for (char& character : start) character = static_cast<char>(character | 0x20);
  return start == "xml";
}

std::string NamespaceAt(CXmlElement const& element, std::string const& prefix) {
  std::string uri;
  element.GetDocument()->LookupNamespace(element, prefix, uri);
  return uri;
}

/// Finds out which prefixes a tree uses. A prefix that stands for several namespaces is that of the first one.
class NamespaceSearch {
 public:
  explicit NamespaceSearch(CXmlElement const& tree) : m_known(tree.GetDocument()->GetNamespaceAliases()) {
    Walk(
        tree, [this](CXmlElement const& element) { Look(element); }, [](CXmlElement const&) {});
    if (m_hasNameWithoutNamespace) m_needed.erase("");
  }

  std::map<std::string, std::string> const& GetNeeded() const { return m_needed; }

 private:
  void Look(CXmlElement const& element) {
    std::string const& uri = element.GetNamespaceURI();
    if (uri.empty()) m_hasNameWithoutNamespace = true;
    if (&uri != m_last) AddName(element, uri, true);
    m_last = &uri;
    AddValue(element, element.GetTextView());
    for (CXmlAttribute const& attribute : element.Attributes()) {
      AddName(element, attribute.GetNamespaceURI(), false);
      AddValue(element, attribute.GetValueView());
    }
  }

  void AddName(CXmlElement const& element, std::string const& uri, bool canBeDefault) {
    if (uri.empty() || !(canBeDefault ? m_ofElements : m_ofAttributes).insert(uri).second) return;
    for (auto const& known : m_known) {
      std::string const& prefix = known.first;
      if (prefix.empty() && !canBeDefault) continue;
      if (NamespaceAt(element, prefix) == uri && Add(prefix, uri)) return;
    }
  }

  void AddValue(CXmlElement const& element, std::string_view value) {
    for (std::size_t colon = value.find(':'); colon != std::string_view::npos; colon = value.find(':', colon + 1)) {
      for (auto const& known : m_known) {
        std::string const& prefix = known.first;
        if (prefix.empty() || !StandsBefore(value, colon, prefix)) continue;
        std::string const uri = NamespaceAt(element, prefix);
        if (!uri.empty()) Add(prefix, uri);
      }
    }
  }

  static bool StandsBefore(std::string_view value, std::size_t colon, std::string const& prefix) {
    return colon >= prefix.size() && value.compare(colon - prefix.size(), prefix.size(), prefix) == 0 &&
           (colon == prefix.size() || !IsNcName("_" + std::string(1, value[colon - prefix.size() - 1])));
  }

  bool Add(std::string const& prefix, std::string const& uri) {
    if (IsReserved(prefix)) return uri == Quillon9::CXmlWriter::XML_NAMESPACE;
    return m_needed.emplace(prefix, uri).first->second == uri;
  }

  std::map<std::string, std::string> const& m_known;
  std::map<std::string, std::string> m_needed;
  std::set<std::string> m_ofElements;
  std::set<std::string> m_ofAttributes;
  std::string const* m_last = nullptr;  // names are shared, and so are their namespaces
  bool m_hasNameWithoutNamespace = false;
};

}  // namespace

std::map<std::string, std::string> NeededNamespaces(CXmlElement const& tree) {
  return NamespaceSearch(tree).GetNeeded();
}

std::map<std::string, std::string> NamespacesAround(std::vector<CXmlElement const*> const& around, bool needsPrefixes) {
  std::map<std::string, std::string> namespaces;
  if (around.empty()) return namespaces;
  auto const hasNone = [](CXmlElement const* element) { return element->GetNamespaceURI().empty(); };
  bool const canHaveDefault = !needsPrefixes && std::none_of(around.begin(), around.end(), hasNone);
  for (auto const& known : around.front()->GetDocument()->GetNamespaceAliases()) {
    std::string const& prefix = known.first;
    if (prefix.empty() ? !canHaveDefault : IsReserved(prefix)) continue;
    std::string const uri = NamespaceAt(*around.back(), prefix);
    if (!uri.empty()) namespaces.emplace(prefix, uri);
  }
  return namespaces;
}

bool HasNameWithoutNamespace(CXmlElement const& tree) {
  bool has = false;
  Walk(
      tree, [&has](CXmlElement const& element) { has |= element.GetNamespaceURI().empty(); },
      [](CXmlElement const&) {});
  return has;
}

}  // namespace Quillon9Tool
