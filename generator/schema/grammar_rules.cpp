#include "schema/grammar_rules.h"

#include <initializer_list>
#include <map>

namespace Quillon9Generator::Schema {

namespace {

using Kind = AttributeKind;
using Children = std::vector<Slot::Child>;

Children Joined(std::initializer_list<Children> lists) {
  Children all;
  for (Children const& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

Slot Optional(Children children) { return {std::move(children), false, false}; }
Slot One(Children children) { return {std::move(children), true, false}; }
Slot Any(Children children) { return {std::move(children), false, true}; }
Slot Some(Children children) { return {std::move(children), true, true}; }

AttributeRule const kName = {"name", Kind::Name, true};
AttributeRule const kLocalName = {"name", Kind::Name, false};
AttributeRule const kReference = {"ref", Kind::QualifiedName, true};
AttributeRule const kLocalReference = {"ref", Kind::QualifiedName, false};
AttributeRule const kType = {"type", Kind::QualifiedName};
AttributeRule const kDefault = {"default", Kind::Text};
AttributeRule const kFixed = {"fixed", Kind::Text};
AttributeRule const kForm = {"form", Kind::Form};
AttributeRule const kMinOccurs = {"minOccurs", Kind::Count};
AttributeRule const kMaxOccurs = {"maxOccurs", Kind::CountOrUnbounded};
AttributeRule const kBase = {"base", Kind::QualifiedName, true};
AttributeRule const kMixed = {"mixed", Kind::Boolean};
AttributeRule const kLocation = {"schemaLocation", Kind::Uri, true};
AttributeRule const kXPath = {"xpath", Kind::Text, true};
AttributeRule const kNamespaces = {"namespace", Kind::Namespaces};
AttributeRule const kProcessing = {"processContents", Kind::Processing};

Slot Annotation() { return Optional({{Tag::Annotation, Form::Annotation}}); }

Children Facets() {
  return {{Tag::MinExclusive, Form::Facet}, {Tag::MinInclusive, Form::Facet},    {Tag::MaxExclusive, Form::Facet},
          {Tag::MaxInclusive, Form::Facet}, {Tag::TotalDigits, Form::Facet},     {Tag::FractionDigits, Form::Facet},
          {Tag::Length, Form::Facet},       {Tag::MinLength, Form::Facet},       {Tag::MaxLength, Form::Facet},
          {Tag::WhiteSpace, Form::Facet},   {Tag::Enumeration, Form::FreeFacet}, {Tag::Pattern, Form::FreeFacet}};
}

Children Definitions() {
  return {{Tag::SimpleType, Form::GlobalSimpleType},
          {Tag::ComplexType, Form::GlobalComplexType},
          {Tag::Group, Form::GlobalGroup},
          {Tag::AttributeGroup, Form::GlobalAttributeGroup}};
}

Children Models() {
  return {{Tag::Group, Form::GroupReference},
          {Tag::All, Form::All},
          {Tag::Choice, Form::Model},
          {Tag::Sequence, Form::Model}};
}

Children Particles() {
  return {{Tag::Element, Form::LocalElement},
          {Tag::Group, Form::GroupReference},
          {Tag::Choice, Form::Model},
          {Tag::Sequence, Form::Model},
          {Tag::Any, Form::Any}};
}

Children LocalTypes() { return {{Tag::SimpleType, Form::LocalSimpleType}, {Tag::ComplexType, Form::LocalComplexType}}; }

Slot IdentityConstraints() {
  return Any({{Tag::Unique, Form::Key}, {Tag::Key, Form::Key}, {Tag::Keyref, Form::Keyref}});
}

std::vector<Slot> WithAttributes(std::vector<Slot> slots) {
  slots.push_back(Any({{Tag::Attribute, Form::LocalAttribute}, {Tag::AttributeGroup, Form::AttributeGroupReference}}));
  slots.push_back(Optional({{Tag::AnyAttribute, Form::AnyAttribute}}));
  return slots;
}

std::vector<Slot> ContentOfType() {
  Children const contents = {{Tag::SimpleContent, Form::SimpleContent}, {Tag::ComplexContent, Form::ComplexContent}};
  return WithAttributes({Annotation(), Optional(Joined({contents, Models()}))});
}

void AddDocuments(std::map<Form, Rule>& rules) {
  Children const annotations = {{Tag::Annotation, Form::Annotation}};
  rules[Form::Schema] = {
      {{"targetNamespace", Kind::Uri},
       {"version", Kind::Text},
       {"finalDefault", Kind::FinalDefault},
       {"blockDefault", Kind::Block},
       {"attributeFormDefault", Kind::Form},
       {"elementFormDefault", Kind::Form}},
      {Any(Joined({annotations,
                   {{Tag::Include, Form::Include}, {Tag::Import, Form::Import}, {Tag::Redefine, Form::Redefine}}})),
       Any(Joined({annotations,
                   Definitions(),
                   {{Tag::Element, Form::GlobalElement},
                    {Tag::Attribute, Form::GlobalAttribute},
                    {Tag::Notation, Form::Notation}}}))}};
  rules[Form::Include] = {{kLocation}, {Annotation()}};
  rules[Form::Import] = {{{"schemaLocation", Kind::Uri}, {"namespace", Kind::Uri}}, {Annotation()}};
  rules[Form::Redefine] = {{kLocation}, {Any(Joined({annotations, Definitions()}))}};
  rules[Form::Annotation] = {{}, {Any({{Tag::Appinfo, Form::Appinfo}, {Tag::Documentation, Form::Documentation}})}};
  rules[Form::Appinfo] = {{{"source", Kind::Uri}}, {}};
  rules[Form::Documentation] = {{{"source", Kind::Uri}}, {}};
  rules[Form::Notation] = {{kName, {"public", Kind::Text}, {"system", Kind::Uri}}, {Annotation()}};
}

void AddDeclarations(std::map<Form, Rule>& rules) {
  std::vector<Slot> const ofElement = {Annotation(), Optional(LocalTypes()), IdentityConstraints()};
  std::vector<Slot> const ofAttribute = {Annotation(), Optional({{Tag::SimpleType, Form::LocalSimpleType}})};
  AttributeRule const nillable = {"nillable", Kind::Boolean};
  AttributeRule const block = {"block", Kind::Block};
  rules[Form::GlobalElement] = {{kName,
                                 kType,
                                 {"substitutionGroup", Kind::QualifiedName},
                                 kDefault,
                                 kFixed,
                                 nillable,
                                 {"abstract", Kind::Boolean},
                                 {"final", Kind::DerivationSet},
                                 block},
                                ofElement};
  rules[Form::LocalElement] = {
      {kLocalName, kLocalReference, kType, kMinOccurs, kMaxOccurs, kDefault, kFixed, nillable, block, kForm},
      ofElement};
  rules[Form::ElementOfAll] = rules[Form::LocalElement];
  rules[Form::GlobalAttribute] = {{kName, kType, kDefault, kFixed}, ofAttribute};
  rules[Form::LocalAttribute] = {{kLocalName, kLocalReference, kType, {"use", Kind::Use}, kDefault, kFixed, kForm},
                                 ofAttribute};
  Slot const selector = One({{Tag::Selector, Form::Selector}});
  Slot const fields = Some({{Tag::Field, Form::Field}});
  rules[Form::Key] = {{kName}, {Annotation(), selector, fields}};
  rules[Form::Keyref] = {{kName, {"refer", Kind::QualifiedName, true}}, {Annotation(), selector, fields}};
  rules[Form::Selector] = {{kXPath}, {Annotation()}};
  rules[Form::Field] = {{kXPath}, {Annotation()}};
}

void AddSimpleTypes(std::map<Form, Rule>& rules) {
  Children const anonymous = {{Tag::SimpleType, Form::LocalSimpleType}};
  std::vector<Slot> const content = {
      Annotation(),
      One({{Tag::Restriction, Form::RestrictionOfSimpleType}, {Tag::List, Form::List}, {Tag::Union, Form::Union}})};
  rules[Form::GlobalSimpleType] = {{kName, {"final", Kind::FinalOfSimpleType}}, content};
  rules[Form::LocalSimpleType] = {{}, content};
  rules[Form::RestrictionOfSimpleType] = {{{"base", Kind::QualifiedName}},
                                          {Annotation(), Optional(anonymous), Any(Facets())}};
  rules[Form::List] = {{{"itemType", Kind::QualifiedName}}, {Annotation(), Optional(anonymous)}};
  rules[Form::Union] = {{{"memberTypes", Kind::QualifiedNames}}, {Annotation(), Any(anonymous)}};
  rules[Form::Facet] = {{{"value", Kind::Text, true}, {"fixed", Kind::Boolean}}, {Annotation()}};
  rules[Form::FreeFacet] = {{{"value", Kind::Text, true}}, {Annotation()}};
}

void AddComplexTypes(std::map<Form, Rule>& rules) {
  Children const anonymous = {{Tag::SimpleType, Form::LocalSimpleType}};
  rules[Form::GlobalComplexType] = {
      {kName, kMixed, {"abstract", Kind::Boolean}, {"final", Kind::DerivationSet}, {"block", Kind::DerivationSet}},
      ContentOfType()};
  rules[Form::LocalComplexType] = {{kMixed}, ContentOfType()};
  rules[Form::SimpleContent] = {{},
                                {Annotation(), One({{Tag::Restriction, Form::RestrictionOfSimpleContent},
                                                    {Tag::Extension, Form::ExtensionOfSimpleContent}})}};
  rules[Form::ComplexContent] = {{kMixed},
                                 {Annotation(), One({{Tag::Restriction, Form::RestrictionOfComplexContent},
                                                     {Tag::Extension, Form::ExtensionOfComplexContent}})}};
  rules[Form::RestrictionOfSimpleContent] = {{kBase},
                                             WithAttributes({Annotation(), Optional(anonymous), Any(Facets())})};
  rules[Form::ExtensionOfSimpleContent] = {{kBase}, WithAttributes({Annotation()})};
  rules[Form::RestrictionOfComplexContent] = {{kBase}, WithAttributes({Annotation(), Optional(Models())})};
  rules[Form::ExtensionOfComplexContent] = rules[Form::RestrictionOfComplexContent];
  rules[Form::GlobalAttributeGroup] = {{kName}, WithAttributes({Annotation()})};
  rules[Form::AttributeGroupReference] = {{kReference}, {Annotation()}};
  rules[Form::AnyAttribute] = {{kNamespaces, kProcessing}, {Annotation()}};
}

void AddGroups(std::map<Form, Rule>& rules) {
  Slot const ofAll = Any({{Tag::Element, Form::ElementOfAll}});
  rules[Form::GlobalGroup] = {
      {kName},
      {Annotation(),
       One({{Tag::All, Form::AllOfGroup}, {Tag::Choice, Form::ModelOfGroup}, {Tag::Sequence, Form::ModelOfGroup}})}};
  rules[Form::GroupReference] = {{kReference, kMinOccurs, kMaxOccurs}, {Annotation()}};
  rules[Form::AllOfGroup] = {{}, {Annotation(), ofAll}};
  rules[Form::ModelOfGroup] = {{}, {Annotation(), Any(Particles())}};
  rules[Form::All] = {{kMinOccurs, kMaxOccurs}, {Annotation(), ofAll}};
  rules[Form::Model] = {{kMinOccurs, kMaxOccurs}, {Annotation(), Any(Particles())}};
  rules[Form::Any] = {{kMinOccurs, kMaxOccurs, kNamespaces, kProcessing}, {Annotation()}};
}

std::map<Form, Rule> MakeRules() {
  std::map<Form, Rule> rules;
  AddDocuments(rules);
  AddDeclarations(rules);
  AddSimpleTypes(rules);
  AddComplexTypes(rules);
  AddGroups(rules);
  return rules;
}

}  // namespace

Rule const& RuleOf(Form form) {
  static auto const& rules = *new std::map<Form, Rule>(MakeRules());
  return rules.at(form);
}

}  // namespace Quillon9Generator::Schema
