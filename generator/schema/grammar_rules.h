#pragma once

#include <string_view>
#include <vector>

#include "schema/attribute_kinds.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

/// An element of a schema document with its context, which decides what may stand in it: a global element has other
/// attributes than a local one.
enum class Form {
  Schema,
  Include,
  Import,
  Redefine,
  Annotation,
  Appinfo,
  Documentation,
  GlobalElement,
  LocalElement,
  ElementOfAll,
  GlobalAttribute,
  LocalAttribute,
  GlobalSimpleType,
  LocalSimpleType,
  GlobalComplexType,
  LocalComplexType,
  SimpleContent,
  ComplexContent,
  RestrictionOfSimpleType,
  RestrictionOfSimpleContent,
  RestrictionOfComplexContent,
  ExtensionOfSimpleContent,
  ExtensionOfComplexContent,
  List,
  Union,
  Facet,
  FreeFacet,
  GlobalGroup,
  GroupReference,
  AllOfGroup,
  ModelOfGroup,
  All,
  Model,
  GlobalAttributeGroup,
  AttributeGroupReference,
  Any,
  AnyAttribute,
  Notation,
  Key,
  Keyref,
  Selector,
  Field
};

struct AttributeRule {
  std::string_view name;
  AttributeKind kind;
  bool required = false;
};

/// Children that may stand at one point of the content.
struct Slot {
  struct Child {
    Tag tag;
    Form form;
  };
  std::vector<Child> children;
  bool required = false;
  bool repeated = true;
};

/// What may stand in one element (https://www.w3.org/TR/xmlschema-1/#normative-schemaSchema). Each element has an id.
struct Rule {
  std::vector<AttributeRule> attributes;
  std::vector<Slot> slots;
};

Rule const& RuleOf(Form form);

}  // namespace Quillon9Generator::Schema
