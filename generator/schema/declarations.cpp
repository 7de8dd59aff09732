#include "schema/builder.h"
#include "schema/lexical.h"

namespace Quillon9Generator::Schema {

namespace {

std::string At(Place const& place) {
  return place.file == nullptr
             ? std::string("built in")
             : "at " + *place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

}  // namespace

Builder::Builder(Storage& storage, Diagnostics& diagnostics)
    : m_storage(storage), m_diagnostics(diagnostics), m_builtIns(AddBuiltInTypes(storage)) {
  for (SimpleType& type : storage.simpleTypes) m_simpleTypes[type.name] = {nullptr, nullptr, &type, State::Filled};
  ComplexType& anyType = storage.complexTypes.front();
  m_complexTypes[anyType.name] = {nullptr, nullptr, &anyType, State::Filled};
}

void Builder::Build(Documents const& documents, SchemaSet& set) {
  m_documents = &documents;
  set.files = documents.Paths();
  std::set<std::string> namespaces;
  std::set<Node const*> roots;  // a document may count for several namespaces
  for (Document const* document : documents.All()) {
    if (roots.insert(&document->Root()).second) DescribeDocument(document->Root(), set);
    if (namespaces.insert(document->targetNamespace).second) set.targetNamespaces.push_back(document->targetNamespace);
    Declare(*document);
  }
  Redefine(documents.All());
  FillAll(set);
}

void Builder::DescribeDocument(Node const& root, SchemaSet& set) {
  Component description;
  Describe(description, root);
  if (!description.documentation.empty()) set.documents.push_back(std::move(description));
}

void Builder::Finish(SchemaSet const& set) {
  MergeOriginals();
  LinkDerivedTypes(set);
}

void Builder::Declare(Document const& document) {
  for (Node const& node : document.Root().children) DeclareOne(document, node);
}

void Builder::DeclareOne(Document const& document, Node const& node) {
  switch (node.tag) {
    case Tag::Element: return AddGlobal(m_elements, m_storage.elements, document, node);
    case Tag::Attribute: return AddGlobal(m_attributes, m_storage.attributes, document, node);
    case Tag::Group: return AddGlobal(m_groups, m_storage.groups, document, node);
    case Tag::AttributeGroup: return AddGlobal(m_attributeGroups, m_attributeSets, document, node);
    case Tag::SimpleType:
    case Tag::ComplexType: return AddType(document, node);
    case Tag::Notation: return AddNotation(document, node);
    default: return;  // the rest has no name, or does not change what classes there are
  }
}

void Builder::AddNotation(Document const& document, Node const& node) {
  std::optional<QualifiedName> const name = GlobalName(document, node);
  if (!name || m_notations.try_emplace(*name, &node).second) return;
  m_diagnostics.Error(node.place, "xs:notation \"" + name->local + "\" is defined twice; the first is " +
                                      At(m_notations[*name]->place));
}

template <class Object>
void Builder::AddGlobal(Table<Object>& table, std::deque<Object>& storage, Document const& document, Node const& node) {
  std::optional<QualifiedName> const name = GlobalName(document, node);
  if (!name) return;
  auto const [entry, isNew] = table.try_emplace(*name);
  if (!isNew) return ReportDuplicate(document, node, entry->second);
  entry->second = {&node, &document, &NewObject(storage, *name, node), State::Empty};
  m_order.emplace_back(node.tag, *name);
}

template <class Object>
Object& Builder::NewObject(std::deque<Object>& storage, QualifiedName const& name, Node const& node) {
  Object& object = storage.emplace_back();
  if constexpr (!std::is_same_v<Object, AttributeSet>) {
    object.name = name;
    Describe(object, node);
  }
  if constexpr (std::is_same_v<Object, SimpleType>) object.base = m_builtIns.Get(BuiltIn::AnySimpleType);
  if constexpr (std::is_same_v<Object, GroupDefinition>) object.group = &m_storage.modelGroups.emplace_back();
  return object;
}

template SimpleType& Builder::NewObject(std::deque<SimpleType>&, QualifiedName const&, Node const&);
template ComplexType& Builder::NewObject(std::deque<ComplexType>&, QualifiedName const&, Node const&);
template GroupDefinition& Builder::NewObject(std::deque<GroupDefinition>&, QualifiedName const&, Node const&);
template Builder::AttributeSet& Builder::NewObject(std::deque<AttributeSet>&, QualifiedName const&, Node const&);

void Builder::AddType(Document const& document, Node const& node) {
  std::optional<QualifiedName> const name = GlobalName(document, node);
  if (!name) return;
  auto const simple = m_simpleTypes.find(*name);
  if (simple != m_simpleTypes.end()) return ReportDuplicate(document, node, simple->second);
  auto const complex = m_complexTypes.find(*name);
  if (complex != m_complexTypes.end()) return ReportDuplicate(document, node, complex->second);
  if (node.tag == Tag::SimpleType) return AddGlobal(m_simpleTypes, m_storage.simpleTypes, document, node);
  AddGlobal(m_complexTypes, m_storage.complexTypes, document, node);
}

/// The built-in types stay. Imports from several places may bring different copies of one namespace, of which the first
/// is taken, as validators do it.
template <class Object>
void Builder::ReportDuplicate(Document const& document, Node const& node, Global<Object> const& first) {
  if (first.node == nullptr) return;
  if (document.import != first.document->import) {
    return m_diagnostics.Warning(document.Root().place, "definitions of the namespace \"" + document.targetNamespace +
                                                            "\" that are there already are ignored; the first are " +
                                                            At(first.document->Root().place));
  }
  m_diagnostics.Error(node.place, "xs:" + std::string(node.name) + " \"" + std::string(Trimmed(*node.Find("name"))) +
                                      "\" is defined twice; the first is " + At(first.node->place));
}

template void Builder::ReportDuplicate(Document const&, Node const&, Global<SimpleType> const&);
template void Builder::ReportDuplicate(Document const&, Node const&, Global<ComplexType> const&);
template void Builder::ReportDuplicate(Document const&, Node const&, Global<GroupDefinition> const&);
template void Builder::ReportDuplicate(Document const&, Node const&, Global<AttributeSet> const&);

std::optional<QualifiedName> Builder::GlobalName(Document const& document, Node const& node) {
  std::string const name = ReadName(node);
  if (name.empty()) return std::nullopt;
  if (node.tag == Tag::Attribute) CheckAttributeNamespace(document.targetNamespace, node);
  return QualifiedName{document.targetNamespace, name};
}

void Builder::CheckAttributeNamespace(std::string const& ns, Node const& node) {
  if (ns != "http://www.w3.org/2001/XMLSchema-instance") return;
  m_diagnostics.Error(node.place, "an attribute of the namespace \"" + ns + "\" cannot be declared");
}

std::optional<QualifiedName> Builder::LocalName(Document const& document, Node const& node,
                                                std::string_view formDefault) {
  std::string const name = ReadName(node);
  if (name.empty()) return std::nullopt;
  std::string const ns = IsQualified(document, node, formDefault) ? document.targetNamespace : "";
  if (node.tag == Tag::Attribute) CheckAttributeNamespace(ns, node);
  return QualifiedName{ns, name};
}

/// Return the name, or an empty text after an error.
std::string Builder::ReadName(Node const& node) {
  std::string_view const name = Trimmed(node.Find("name").value_or(""));
  return IsNCName(name) ? std::string(name) : std::string();
}

void Builder::FillAll(SchemaSet& set) {
  for (auto const& [tag, name] : m_order) FillGlobal(tag, name, set);
  for (auto const& original : m_oldGroups.all) FillGroup(*original.object, *original.document, *original.node);
  for (; !m_pending.empty(); m_pending.pop_front()) {
    Pending const next = m_pending.front();
    FillComplexType(*next.type, *next.document, *next.node);
  }
  CompleteSubstitutions();
  CollectStandIns();
  ResolveKeyrefs();
  CheckRedefinitions();
  CheckGroups();
}

void Builder::FillGlobal(Tag tag, QualifiedName const& name, SchemaSet& set) {
  if (tag == Tag::Element) {
    auto const& global = m_elements[name];
    global.object->global = true;
    FillElement(*global.object, *global.document, *global.node);
    set.elements.push_back(global.object);
  } else if (tag == Tag::Attribute) {
    auto const& global = m_attributes[name];
    global.object->global = true;
    FillAttribute(*global.object, *global.document, *global.node);
    set.attributes.push_back(global.object);
  } else if (tag == Tag::Group) {
    auto const& global = m_groups[name];
    FillGroup(*global.object, *global.document, *global.node);
    set.groups.push_back(global.object);
  } else if (tag == Tag::AttributeGroup) {
    Complete(m_attributeGroups[name]);
  } else if (tag == Tag::SimpleType) {
    Complete(m_simpleTypes[name]);
    set.simpleTypes.push_back(m_simpleTypes[name].object);
  } else {
    Complete(m_complexTypes[name]);
    set.complexTypes.push_back(m_complexTypes[name].object);
  }
}

}  // namespace Quillon9Generator::Schema
