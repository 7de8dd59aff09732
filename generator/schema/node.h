#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

constexpr std::string_view kSchemaNamespace = "http://www.w3.org/2001/XMLSchema";
constexpr std::string_view kXmlNamespace = "http://www.w3.org/XML/1998/namespace";

/// The elements of XML Schema. Foreign stands for an element of another namespace, Unknown for one of this namespace
/// that XML Schema 1.0 and 1.1 do not define.
enum class Tag {
  Foreign,
  Unknown,
  All,
  Alternative,
  Annotation,
  Any,
  AnyAttribute,
  Appinfo,
  Assert,
  Assertion,
  Attribute,
  AttributeGroup,
  Choice,
  ComplexContent,
  ComplexType,
  DefaultOpenContent,
  Documentation,
  Element,
  Enumeration,
  ExplicitTimezone,
  Extension,
  Field,
  FractionDigits,
  Group,
  Import,
  Include,
  Key,
  Keyref,
  Length,
  List,
  MaxExclusive,
  MaxInclusive,
  MaxLength,
  MinExclusive,
  MinInclusive,
  MinLength,
  Notation,
  OpenContent,
  Override,
  Pattern,
  Redefine,
  Restriction,
  Schema,
  Selector,
  Sequence,
  SimpleContent,
  SimpleType,
  TotalDigits,
  Union,
  Unique,
  WhiteSpace
};

/// Return the tag of an element of the namespace of XML Schema.
Tag TagOf(std::string_view localName);
/// Return the local name of an element of the namespace of XML Schema.
std::string_view NameOf(Tag tag);

/// The prefixes that one start tag declares, in alphabetical order, and the scope around it. The default namespace has
/// an empty prefix.
struct Scope {
  Scope const* outer = nullptr;
  std::vector<std::pair<std::string_view, std::string_view>> bindings;

  /// Return the namespace that \p prefix stands for: empty for the default namespace where none is declared, no value
  /// for an unknown prefix.
  std::optional<std::string_view> Find(std::string_view prefix) const;
};

struct NodeAttribute {
  std::string_view ns;
  std::string_view name;
  std::string_view value;
};

/// One element of a schema document. The texts belong to its SourceFile. Elements within xs:documentation and
/// xs:appinfo have no nodes; the text of xs:documentation includes theirs.
struct Node {
  Tag tag = Tag::Foreign;
  std::string_view ns;
  std::string_view name;
  std::string_view text;  ///< without that of child elements, except in xs:documentation
  Place place;
  Scope const* scope = nullptr;
  std::vector<NodeAttribute> attributes;  ///< without the declarations of namespaces
  std::vector<Node> children;

  /// Return the value of an attribute without a namespace, as it is written.
  std::optional<std::string_view> Find(std::string_view attribute) const;
  /// Return whether there is such an attribute.
  bool Has(std::string_view attribute) const { return Find(attribute).has_value(); }
  /// Return the first child with \p child, or null.
  Node const* Child(Tag child) const;
};

/// Return \p text without white space around it.
std::string_view Trimmed(std::string_view text);

}  // namespace Quillon9Generator::Schema
