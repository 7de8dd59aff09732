#include "schema/source_file.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "schema/limits.h"
#include "schema/versions.h"

namespace Quillon9Generator::Schema {

namespace {

bool IsNamespaceDeclaration(std::string_view name) { return name == "xmlns" || name.substr(0, 6) == "xmlns:"; }

std::string_view DeclaredPrefix(std::string_view name) { return name.size() > 6 ? name.substr(6) : std::string_view(); }

std::pair<std::string_view, std::string_view> Split(std::string_view name) {
  std::size_t const colon = name.find(':');
  if (colon == std::string_view::npos) return {{}, name};
  return {name.substr(0, colon), name.substr(colon + 1)};
}

void AppendText(std::string& text, Quillon9::CXmlElement const& element) {
  text += element.GetTextView();
  for (Quillon9::CXmlElement const& child : element.Children()) AppendText(text += ' ', child);
}

}  // namespace

SourceFile::SourceFile(std::string const* path) : m_path(path) {
  // The tree keeps the declarations of prefixes only this way; the values of many attributes need them.
  m_context.SetSchemaType(Quillon9::SchemaType_DTD);
  m_context.SetTextEncoding(Quillon9::TextEncoding_UTF8);
  m_document = std::make_unique<Quillon9::CXmlDocument>(m_context);
}

bool SourceFile::Read(Files const& files, Diagnostics& diagnostics, Place const& reference) {
  try {
    files.Load(*m_document, *m_path);
  } catch (Quillon9::CQnException const& failure) {
    ReportUnreadable(diagnostics, reference, failure.GetMessage());
    return false;
  }
  BuildNodes(&diagnostics);
  return true;
}

void SourceFile::ReadText(char const* text) {
  m_document->LoadXml(text);
  BuildNodes(nullptr);
}

std::string_view SourceFile::GetOctets() const {
  return {reinterpret_cast<char const*>(m_document->GetInputData()), m_document->GetInputSize()};
}

void SourceFile::ReportUnreadable(Diagnostics& diagnostics, Place const& reference, std::string const& reason) const {
  if (m_document->GetInputData() == nullptr) {
    return reference.file != nullptr ? diagnostics.Error(reference, reason) : diagnostics.Error(*m_path, reason);
  }
  std::optional<MalformedText> const malformed = FindTags(GetOctets()).malformed;
  if (!malformed) return diagnostics.Error(*m_path, reason);
  diagnostics.Error(Place{m_path, malformed->place.line, malformed->place.column}, malformed->reason);
}

void SourceFile::BuildNodes(Diagnostics* diagnostics) {
  m_diagnostics = diagnostics;
  if (m_path != nullptr) m_tags = FindTags(GetOctets());
  Fill(m_root, *m_document->GetDocumentElement(), nullptr, 1);
  m_tags = {};
}

Place SourceFile::NextPlace() {
  if (m_nextPlace >= m_tags.places.size()) return {m_path, 0, 0};
  TagPlace const place = m_tags.places[m_nextPlace++];
  return {m_path, place.line, place.column};
}

void SourceFile::Fill(Node& node, Quillon9::CXmlElement const& element, Scope const* outer, int depth) {
  node.place = NextPlace();
  FillAttributes(node, element, outer);
  Name(node, element.GetLocalName());
  if (node.tag == Tag::Documentation) return FillDocumentation(node, element);
  if (node.tag == Tag::Appinfo) return SkipTags(element);
  node.text = element.GetTextView();
  FillChildren(node, element, depth);
}

void SourceFile::FillChildren(Node& node, Quillon9::CXmlElement const& element, int depth) {
  if (depth == kMaxLevels) {
    SkipTags(element);
    if (m_diagnostics != nullptr) m_diagnostics->Error(node.place, "the elements are nested too deeply");
    return;
  }
  for (Quillon9::CXmlElement const& child : element.Children()) {
    Node& added = node.children.emplace_back();
    Fill(added, child, node.scope, depth + 1);
    if (m_diagnostics != nullptr && !IsForThisVersion(added, *m_diagnostics)) node.children.pop_back();
  }
}

void SourceFile::FillAttributes(Node& node, Quillon9::CXmlElement const& element, Scope const* outer) {
  node.scope = outer;
  std::vector<std::pair<std::string_view, std::string_view>> bindings;
  for (Quillon9::CXmlAttribute const& attribute : element.Attributes()) {
    std::string_view const name = attribute.GetLocalName();
    if (IsNamespaceDeclaration(name)) {
      bindings.emplace_back(DeclaredPrefix(name), attribute.GetValueView());
    } else {
      node.attributes.push_back({{}, name, attribute.GetValueView()});
    }
  }
  if (!bindings.empty() || outer == nullptr) {
    std::sort(bindings.begin(), bindings.end());
    m_scopes.push_back({outer, std::move(bindings)});
    node.scope = &m_scopes.back();
  }
  for (NodeAttribute& attribute : node.attributes) {
    auto const [prefix, local] = Split(attribute.name);
    if (prefix.empty()) continue;
    attribute.ns = node.scope->Find(prefix).value_or("?");
    attribute.name = local;
  }
}

void SourceFile::Name(Node& node, std::string_view name) {
  auto const [prefix, local] = Split(name);
  std::optional<std::string_view> const ns = node.scope->Find(prefix);
  if (!ns && m_diagnostics != nullptr) {
    m_diagnostics->Error(node.place, "the prefix \"" + std::string(prefix) + "\" is not declared");
  }
  node.ns = ns.value_or("?");
  node.name = local;
  node.tag = node.ns == kSchemaNamespace ? TagOf(local) : Tag::Foreign;
}

void SourceFile::FillDocumentation(Node& node, Quillon9::CXmlElement const& element) {
  std::size_t const number = m_nextPlace - 1;
  SkipTags(element);
  if (element.GetFirstElement() == nullptr) {
    node.text = element.GetTextView();
    return;
  }
  std::string& text = m_texts.emplace_back();
  if (auto const found = m_tags.documentation.find(number); found != m_tags.documentation.end()) {
    text = std::move(found->second);
  } else {
    AppendText(text, element);
  }
  node.text = text;
}

void SourceFile::SkipTags(Quillon9::CXmlElement const& element) {
  for (Quillon9::CXmlElement const& child : element.Children()) {
    ++m_nextPlace;
    SkipTags(child);
  }
}

}  // namespace Quillon9Generator::Schema
