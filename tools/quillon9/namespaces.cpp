#include "namespaces.h"

#include <string_view>

#include "base/text_arguments.h"
#include "tree_walk.h"

namespace Quillon9Tool {

using Quillon9::CXmlAttribute;
using Quillon9::CXmlElement;
using Quillon9::CXmlWriter;
using Quillon9::StartsWith;

namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
constexpr std::string_view kOthers = "0123456789-.";
constexpr std::string_view kReserved = "XML";  // generated prefixes are in capital letters

/// The namespaces of the names in a tree.
struct UsedNamespaces {
  std::set<std::string> ofElements;
  std::set<std::string> ofAttributes;
};

UsedNamespaces FindUsed(CXmlElement const& root) {
  UsedNamespaces used;
  std::string const* last = nullptr;  // names are shared, and so are their namespaces
  auto const start = [&](CXmlElement const& element) {
    if (&element.GetNamespaceURI() != last) used.ofElements.insert(element.GetNamespaceURI());
    last = &element.GetNamespaceURI();
    for (CXmlAttribute const* const attribute : element.GetAttributes()) {
      if (!attribute->GetNamespaceURI().empty()) used.ofAttributes.insert(attribute->GetNamespaceURI());
    }
  };
  Walk(root, start, [](CXmlElement const&) {});
  return used;
}

}  // namespace

Namespaces::Namespaces(CXmlElement const& root, std::map<std::string, std::string> const& prefixes) {
  UsedNamespaces const used = FindUsed(root);
  m_prefixes.emplace(CXmlWriter::XML_NAMESPACE, "xml");
  m_taken = {"xml", "xmlns"};
  TakeGiven(prefixes);
  if (used.ofElements.count("") == 0) ChooseDefault(prefixes, root.GetNamespaceURI());
  for (std::string const& uri : used.ofElements) {
    if (!uri.empty() && uri != m_default) MakePrefix(uri);
  }
  for (std::string const& uri : used.ofAttributes) MakePrefix(uri);
}

void Namespaces::TakeGiven(std::map<std::string, std::string> const& prefixes) {
  for (auto const& [prefix, uri] : prefixes) {
    if (uri.empty() || !IsNcName(prefix) || !m_taken.insert(prefix).second) continue;
    if (!m_prefixes.emplace(uri, prefix).second) m_dropped.push_back(prefix);
  }
}

/// Only the last declaration of a prefix is known. So if there is a default namespace, the root's namespace is assumed
/// to be it, unless a prefix stands for that namespace.
void Namespaces::ChooseDefault(std::map<std::string, std::string> const& prefixes, std::string const& rootNamespace) {
  auto const declared = prefixes.find("");
  if (declared == prefixes.end()) return;
  m_default = m_prefixes.count(rootNamespace) == 0 ? rootNamespace : declared->second;
}

void Namespaces::MakePrefix(std::string const& uri) {
  if (m_prefixes.count(uri) != 0) return;
  std::string prefix;
  do {
    prefix = CXmlWriter::NsIntToString(m_nextGenerated++);
  } while (StartsWith(prefix, kReserved) || !m_taken.insert(prefix).second);
  m_prefixes.emplace(uri, prefix);
}

std::string Namespaces::NameOf(CXmlElement const& element) const {
  std::string const& uri = element.GetNamespaceURI();
  return WithPrefix(uri == m_default ? std::string() : uri, element.GetLocalName());
}

std::string Namespaces::NameOf(CXmlAttribute const& attribute) const {
  return WithPrefix(attribute.GetNamespaceURI(), attribute.GetLocalName());
}

std::string Namespaces::WithPrefix(std::string const& uri, std::string const& localName) const {
  return uri.empty() ? localName : m_prefixes.at(uri) + ":" + localName;
}

bool IsNcName(std::string const& name) {
  auto const isOf = [](std::string_view set, char character) {
    return static_cast<unsigned char>(character) >= 0x80 || set.find(character) != std::string_view::npos;
  };
  if (name.empty() || !isOf(kLetters, name[0])) return false;
  for (char const character : name) {
    if (!isOf(kLetters, character) && !isOf(kOthers, character)) return false;
  }
  return true;
}

}  // namespace Quillon9Tool
