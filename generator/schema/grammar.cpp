#include "schema/grammar.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <unordered_map>
#include <vector>

namespace Quillon9Generator::Schema {

namespace {

/// What may stand in one element (https://www.w3.org/TR/xmlschema-1/#normative-schemaSchema).
struct Rule {
  std::vector<std::string_view> attributes;  ///< besides id
  std::vector<Tag> children;                 ///< besides xs:annotation
  std::vector<Tag> oneOf;                    ///< of these, at most one child
};

std::vector<Tag> Joined(std::initializer_list<std::vector<Tag>> lists) {
  std::vector<Tag> all;
  for (std::vector<Tag> const& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

std::unordered_map<Tag, Rule> MakeRules() {
  std::vector<Tag> const types = {Tag::SimpleType, Tag::ComplexType};
  std::vector<Tag> const models = {Tag::Group, Tag::All, Tag::Choice, Tag::Sequence};
  std::vector<Tag> const particles = {Tag::Element, Tag::Group, Tag::Choice, Tag::Sequence, Tag::Any};
  std::vector<Tag> const attributes = {Tag::Attribute, Tag::AttributeGroup, Tag::AnyAttribute};
  std::vector<Tag> const identity = {Tag::Unique, Tag::Key, Tag::Keyref};
  std::vector<Tag> const definitions = {Tag::SimpleType, Tag::ComplexType, Tag::Group, Tag::AttributeGroup};
  std::vector<Tag> const facets = {Tag::Enumeration,  Tag::FractionDigits, Tag::Length,       Tag::MaxExclusive,
                                   Tag::MaxInclusive, Tag::MaxLength,      Tag::MinExclusive, Tag::MinInclusive,
                                   Tag::MinLength,    Tag::Pattern,        Tag::TotalDigits,  Tag::WhiteSpace};
  std::vector<Tag> const contents = Joined({{Tag::SimpleContent, Tag::ComplexContent}, models});
  std::vector<Tag> const derivations = {Tag::Restriction, Tag::Extension};
  Rule const facet = {{"value", "fixed"}, {}, {}};
  Rule const identityRule = {{"name", "refer"}, {Tag::Selector, Tag::Field}, {Tag::Selector}};

  std::unordered_map<Tag, Rule> rules = {
      {Tag::Schema,
       {{"targetNamespace", "version", "finalDefault", "blockDefault", "attributeFormDefault", "elementFormDefault"},
        Joined({{Tag::Include, Tag::Import, Tag::Redefine, Tag::Element, Tag::Attribute, Tag::Notation}, definitions}),
        {}}},
      {Tag::Include, {{"schemaLocation"}, {}, {}}},
      {Tag::Import, {{"schemaLocation", "namespace"}, {}, {}}},
      {Tag::Redefine, {{"schemaLocation"}, definitions, {}}},
      {Tag::Element,
       {{"name", "ref", "type", "substitutionGroup", "minOccurs", "maxOccurs", "default", "fixed", "nillable",
         "abstract", "final", "block", "form"},
        Joined({types, identity}),
        types}},
      {Tag::Attribute,
       {{"name", "ref", "type", "use", "default", "fixed", "form"}, {Tag::SimpleType}, {Tag::SimpleType}}},
      {Tag::ComplexType, {{"name", "mixed", "abstract", "final", "block"}, Joined({contents, attributes}), contents}},
      {Tag::SimpleContent, {{}, derivations, derivations}},
      {Tag::ComplexContent, {{"mixed"}, derivations, derivations}},
      {Tag::Extension, {{"base"}, Joined({models, attributes}), models}},
      {Tag::Restriction,
       {{"base"}, Joined({{Tag::SimpleType}, models, attributes, facets}), Joined({{Tag::SimpleType}, models})}},
      {Tag::SimpleType,
       {{"name", "final"}, {Tag::Restriction, Tag::List, Tag::Union}, {Tag::Restriction, Tag::List, Tag::Union}}},
      {Tag::List, {{"itemType"}, {Tag::SimpleType}, {Tag::SimpleType}}},
      {Tag::Union, {{"memberTypes"}, {Tag::SimpleType}, {}}},
      {Tag::Group, {{"name", "ref", "minOccurs", "maxOccurs"}, {Tag::All, Tag::Choice, Tag::Sequence}, models}},
      {Tag::AttributeGroup, {{"name", "ref"}, attributes, {}}},
      {Tag::All, {{"minOccurs", "maxOccurs"}, {Tag::Element}, {}}},
      {Tag::Choice, {{"minOccurs", "maxOccurs"}, particles, {}}},
      {Tag::Sequence, {{"minOccurs", "maxOccurs"}, particles, {}}},
      {Tag::Any, {{"namespace", "processContents", "minOccurs", "maxOccurs"}, {}, {}}},
      {Tag::AnyAttribute, {{"namespace", "processContents"}, {}, {}}},
      {Tag::Notation, {{"name", "public", "system"}, {}, {}}},
      {Tag::Unique, identityRule},
      {Tag::Key, identityRule},
      {Tag::Keyref, identityRule},
      {Tag::Selector, {{"xpath"}, {}, {}}},
      {Tag::Field, {{"xpath"}, {}, {}}},
  };
  for (Tag const tag : facets) rules[tag] = facet;
  return rules;
}

Rule const* RuleFor(Tag tag) {
  static auto const& rules = *new std::unordered_map<Tag, Rule>(MakeRules());
  auto const found = rules.find(tag);
  return found != rules.end() ? &found->second : nullptr;
}

template <class List, class Item>
bool Contains(List const& list, Item const& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

std::string Named(Node const& node) { return "xs:" + std::string(node.name); }

/// What XML Schema 1.1 added and what only checks documents, so that leaving it out does no harm to the classes.
bool IsCheckOfVersion11(Tag tag) { return tag == Tag::Assert || tag == Tag::Assertion || tag == Tag::ExplicitTimezone; }

bool IsStructureOfVersion11(Tag tag) {
  return tag == Tag::Alternative || tag == Tag::OpenContent || tag == Tag::DefaultOpenContent || tag == Tag::Override;
}

void CheckAttributes(Node const& node, Rule const& rule, Diagnostics& diagnostics) {
  for (NodeAttribute const& attribute : node.attributes) {
    if (!attribute.ns.empty() || attribute.name == "id" || Contains(rule.attributes, attribute.name)) continue;
    diagnostics.Error(node.place, Named(node) + " has no attribute \"" + std::string(attribute.name) + "\"");
  }
}

/// Return whether the child may stand there.
bool CheckChild(Node const& node, Node const& child, Rule const& rule, Diagnostics& diagnostics) {
  if (Contains(rule.children, child.tag)) return true;
  if (IsCheckOfVersion11(child.tag)) {
    diagnostics.Warning(child.place, Named(child) + " belongs to XML Schema 1.1 and is not checked");
  } else if (IsStructureOfVersion11(child.tag)) {
    diagnostics.Error(child.place, Named(child) + " belongs to XML Schema 1.1, which is not supported");
  } else if (child.tag == Tag::Foreign) {
    diagnostics.Error(child.place, "unexpected element \"" + std::string(child.name) + "\" in " + Named(node));
  } else if (child.tag == Tag::Unknown && node.tag == Tag::Restriction) {
    diagnostics.Error(child.place, "unknown facet " + Named(child));
  } else {
    diagnostics.Error(child.place, "unexpected " + Named(child) + " in " + Named(node));
  }
  return false;
}

void CheckNode(Node const& node, Diagnostics& diagnostics) {
  Rule const* const rule = RuleFor(node.tag);
  if (rule == nullptr) return;
  CheckAttributes(node, *rule, diagnostics);
  Node const* only = nullptr;
  for (Node const& child : node.children) {
    if (child.tag == Tag::Annotation) continue;
    if (!CheckChild(node, child, *rule, diagnostics)) continue;
    CheckNode(child, diagnostics);
    if (!Contains(rule->oneOf, child.tag)) continue;
    if (only != nullptr) {
      diagnostics.Error(child.place, Named(child) + " cannot stand next to " + Named(*only) + " in " + Named(node));
    }
    only = &child;
  }
}

}  // namespace

void CheckGrammar(Node const& schema, Diagnostics& diagnostics) { CheckNode(schema, diagnostics); }

}  // namespace Quillon9Generator::Schema
