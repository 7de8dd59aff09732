#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/quillon9.h"

namespace Quillon9 {

inline bool IsInName(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '-' || c == '.';
}

/// What stands in front of the colons of a value.
inline std::vector<std::string> PrefixesIn(std::string const& value) {
  std::vector<std::string> prefixes;
  for (auto colon = value.find(':'); colon != value.npos; colon = value.find(':', colon + 1)) {
    auto begin = colon;
    while (begin != 0 && IsInName(value[begin - 1])) --begin;
    if (begin != colon) prefixes.push_back(value.substr(begin, colon - begin));
  }
  return prefixes;
}

using Scope = std::map<std::string, std::string>;  // the URI of each prefix

/// An element of a tree that was read without namespaces, so that it still has the declarations.
struct ComparedElement {
  CXmlElement const* element;
  Scope scope;

  static ComparedElement Of(CXmlElement const& element, Scope scope) {
    for (CXmlAttribute const& attribute : element.Attributes()) {
      std::string const& name = attribute.GetLocalName();
      if (IsDeclaration(name)) scope[name.size() > 5 ? name.substr(6) : ""] = attribute.GetValue();
    }
    return {&element, std::move(scope)};
  }
  static bool IsDeclaration(std::string const& name) { return name == "xmlns" || name.rfind("xmlns:", 0) == 0; }

  std::string UriOf(std::string const& prefix) const {
    auto const found = scope.find(prefix);
    return found != scope.end() ? found->second : std::string();
  }
  std::string Expanded(std::string const& name, bool isAttribute = false) const {
    auto const colon = name.find(':');
    if (colon == name.npos) return (isAttribute ? "" : UriOf("")) + '|' + name;
    return UriOf(name.substr(0, colon)) + '|' + name.substr(colon + 1);
  }
  /// The names that stand in a list.
  std::string Names(std::string const& list) const {
    std::string names;
    for (std::size_t begin = 0; begin < list.size();) {
      auto const end = std::min(list.find(' ', begin), list.size());
      names += Expanded(list.substr(begin, end - begin)) + ' ';
      begin = end + 1;
    }
    return names;
  }
  std::map<std::string, std::string> Attributes() const {
    std::map<std::string, std::string> attributes;
    for (CXmlAttribute const& attribute : element->Attributes()) {
      std::string const name = Expanded(attribute.GetLocalName(), true);
      bool const isKept = !IsDeclaration(attribute.GetLocalName()) &&
                          name != "http://www.w3.org/2001/XMLSchema-instance|schemaLocation";
      if (isKept) attributes[name] = CWhitespaceUtils::Collapse(attribute.GetValue());
    }
    return attributes;
  }
  /// The texts and the elements in order; white space does not count.
  std::vector<std::pair<std::string, CXmlElement const*>> Content() const {
    std::vector<std::pair<std::string, CXmlElement const*>> content;
    for (auto const& item : element->Content()) {
      std::string const text = CWhitespaceUtils::Collapse(std::string(item.GetText()));
      if (item.GetElement() != nullptr || !text.empty()) content.emplace_back(text, item.GetElement());
    }
    return content;
  }
};

/// Compares two documents by content, and says where they differ first.
class DocumentComparison {
 public:
  std::string Compare(CXmlDocument const& first, CXmlDocument const& second) {
    Elements(ComparedElement::Of(*first.GetDocumentElement(), {}),
             ComparedElement::Of(*second.GetDocumentElement(), {}));
    return m_difference;
  }

 private:
  void Note(std::string const& what) {
    if (m_difference.empty()) m_difference = m_path + ": " + what;
  }

  /// The same text with the same meaning of its prefixes, or else the same names or the same truth value.
  void Values(ComparedElement const& one, ComparedElement const& other, std::string const& first,
              std::string const& second) {
    auto const truth = [](std::string const& text) { return text == "1" ? "true" : text == "0" ? "false" : text; };
    if (first != second && truth(first) != truth(second) && one.Names(first) != other.Names(second)) {
      return Note(first + " -> " + second);
    }
    for (std::string const& prefix : PrefixesIn(first == second ? first : "")) {
      std::string const uri = one.UriOf(prefix);
      if (prefix != "xml" && !uri.empty() && uri != other.UriOf(prefix)) Note("the prefix of " + first);
    }
  }

  void Attributes(ComparedElement const& one, ComparedElement const& other) {
    auto const first = one.Attributes();
    auto const second = other.Attributes();
    for (auto const& [name, value] : first) {
      auto const same = second.find(name);
      if (same == second.end()) return Note("@" + name + " is lost");
      Values(one, other, value, same->second);
    }
    if (first.size() != second.size()) Note("more attributes");
  }

  void Elements(ComparedElement const& one, ComparedElement const& other) {
    std::string const outer = m_path;
    std::string const name = one.Expanded(one.element->GetLocalName());
    m_path += '/' + name.substr(name.find('|') + 1);
    if (name != other.Expanded(other.element->GetLocalName())) Note("another name");
    Attributes(one, other);
    auto const first = one.Content();
    auto const second = other.Content();
    if (first.size() != second.size()) Note("other content");
    for (std::size_t i = 0; i < first.size() && m_difference.empty(); ++i) {
      if ((first[i].second == nullptr) != (second[i].second == nullptr)) {
        Note("text and elements in another order");
      } else if (first[i].second == nullptr) {
        Values(one, other, first[i].first, second[i].first);
      } else {
        Elements(ComparedElement::Of(*first[i].second, one.scope), ComparedElement::Of(*second[i].second, other.scope));
      }
    }
    m_path = outer;
  }

  std::string m_path;
  std::string m_difference;
};

/// Where the documents differ first; empty if they have the same content.
inline std::string DifferenceBetween(CXmlSource const& first, CXmlSource const& second) {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  ctx.SetSchemaType(SchemaType_DTD);
  CXmlDocument one(ctx);
  CXmlDocument other(ctx);
  first.Load(one);
  second.Load(other);
  return DocumentComparison().Compare(one, other);
}

}  // namespace Quillon9
