#include <algorithm>

#include "schema/builder.h"

namespace Quillon9Generator::Schema {

namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

}  // namespace

std::optional<QualifiedName> Builder::Resolve(Document const& document, Node const& node, std::string_view text) {
  text = Trimmed(text);
  std::size_t const colon = text.find(':');
  std::string_view const prefix = colon == std::string_view::npos ? std::string_view() : text.substr(0, colon);
  std::string_view const local = colon == std::string_view::npos ? text : text.substr(colon + 1);
  std::optional<std::string_view> const ns = node.scope->Find(prefix);
  if (!ns) {
    m_diagnostics.Error(node.place, "the prefix " + Quoted(prefix) + " is not declared");
    return std::nullopt;
  }
  if (ns->empty() && document.chameleon) return QualifiedName{document.targetNamespace, std::string(local)};
  return QualifiedName{std::string(*ns), std::string(local)};
}

template <class Object>
Builder::Global<Object>* Builder::Find(Table<Object>& table, char const* kind, Document const& document,
                                       Node const& node, std::string_view text) {
  std::optional<QualifiedName> const name = Resolve(document, node, text);
  if (!name) return nullptr;
  auto const found = table.find(*name);
  if (found != table.end()) return &found->second;
  bool const isInTarget = table.count({document.targetNamespace, name->local}) != 0;
  ReportMissing(kind, node, text, *name, isInTarget);
  return nullptr;
}

template Builder::Global<ElementDeclaration>* Builder::Find(Table<ElementDeclaration>&, char const*, Document const&,
                                                            Node const&, std::string_view);
template Builder::Global<AttributeDeclaration>* Builder::Find(Table<AttributeDeclaration>&, char const*,
                                                              Document const&, Node const&, std::string_view);
template Builder::Global<GroupDefinition>* Builder::Find(Table<GroupDefinition>&, char const*, Document const&,
                                                         Node const&, std::string_view);
template Builder::Global<Builder::AttributeSet>* Builder::Find(Table<AttributeSet>&, char const*, Document const&,
                                                               Node const&, std::string_view);

void Builder::ReportMissing(char const* kind, Node const& node, std::string_view text, QualifiedName const& name,
                            bool isInTarget) {
  std::string const message = "no " + std::string(kind) + " " + Quoted(Trimmed(text));
  m_diagnostics.Error(node.place, message + HintFor(name, isInTarget));
}

std::string Builder::HintFor(QualifiedName const& name, bool isInTarget) const {
  if (isInTarget) return "; is a prefix missing?";
  if (name.ns == kSchemaNamespace) return " in XML Schema";
  if (m_documents->HasNamespace(name.ns)) {
    return name.ns.empty() ? " without a namespace" : " in the namespace " + Quoted(name.ns);
  }
  auto const& lost = m_documents->GetLostImports();
  if (auto const import = lost.find(name.ns); import != lost.end() && !import->second.location.empty()) {
    return "; \"" + import->second.location + "\" was not found; name a file for it with --catalog";
  }
  return "; is an import missing?";
}

Builder::TypeReference Builder::FindType(Document const& document, Node const& node, std::string_view text) {
  if (auto* const complex = Original(m_oldComplexTypes, document, node)) return {nullptr, complex};
  if (auto* const simple = Original(m_oldSimpleTypes, document, node)) {
    Complete(*simple);
    return {simple->object, nullptr};
  }
  std::optional<QualifiedName> const name = Resolve(document, node, text);
  if (!name) return {};
  if (auto const simple = m_simpleTypes.find(*name); simple != m_simpleTypes.end()) {
    Complete(simple->second);
    bool const isComplete = simple->second.state == State::Filled;  // else after an error
    return {isComplete ? simple->second.object : m_builtIns.Get(BuiltIn::AnySimpleType), nullptr};
  }
  if (auto const complex = m_complexTypes.find(*name); complex != m_complexTypes.end()) {
    return {nullptr, &complex->second};
  }
  QualifiedName const inTarget{document.targetNamespace, name->local};
  bool const isInTarget = m_simpleTypes.count(inTarget) != 0 || m_complexTypes.count(inTarget) != 0;
  ReportMissing("type", node, text, *name, isInTarget);
  return {};
}

SimpleType const* Builder::FindSimpleType(Document const& document, Node const& node, std::string_view text) {
  TypeReference const type = FindType(document, node, text);
  if (type.complex != nullptr) {
    m_diagnostics.Error(node.place, Quoted(Trimmed(text)) + " is a complex type, where a simple one is needed");
  }
  return type.simple != nullptr ? type.simple : m_builtIns.Get(BuiltIn::AnySimpleType);
}

}  // namespace Quillon9Generator::Schema
