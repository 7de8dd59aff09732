#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// The components of a set of schemas, under the names that XML Schema Part 1 gives them
/// (https://www.w3.org/TR/xmlschema-1/#components). They know nothing of C++. A SchemaSet owns them; they refer to one
/// another by plain pointers, which are valid as long as the set lives, and do not change once the set is complete.
namespace Quillon9Generator::Schema {

/// Where a component is in the text of its schema document.
struct Place {
  std::string const* file = nullptr;  ///< as the user gave it or as it was found; owned by the set; null for built-ins
  int line = 0;                       ///< from 1
  int column = 0;                     ///< from 1, in characters
};

/// An expanded name. The namespace is empty for none.
struct QualifiedName {
  std::string ns;
  std::string local;

  bool operator==(QualifiedName const& other) const { return local == other.local && ns == other.ns; }
  bool operator!=(QualifiedName const& other) const { return !(*this == other); }
  bool operator<(QualifiedName const& other) const { return ns != other.ns ? ns < other.ns : local < other.local; }
};

/// What all components have.
struct Component {
  Place place;
  std::string documentation;  ///< the text of xs:documentation, each paragraph on its own lines; empty for none
};

struct ComplexType;
struct ElementDeclaration;
struct ModelGroup;

/// The built-in types of XML Schema Part 2, including the two that are not derived from another.
enum class BuiltIn {
  None,  ///< a type of the user
  AnySimpleType,
  String,
  NormalizedString,
  Token,
  Language,
  NMToken,
  NMTokens,
  Name,
  NCName,
  ID,
  IDRef,
  IDRefs,
  Entity,
  Entities,
  Boolean,
  Base64Binary,
  HexBinary,
  Float,
  Double,
  Decimal,
  Integer,
  NonPositiveInteger,
  NegativeInteger,
  Long,
  Int,
  Short,
  Byte,
  NonNegativeInteger,
  UnsignedLong,
  UnsignedInt,
  UnsignedShort,
  UnsignedByte,
  PositiveInteger,
  Duration,
  DateTime,
  Time,
  Date,
  GYearMonth,
  GYear,
  GMonthDay,
  GDay,
  GMonth,
  AnyURI,
  QName,
  Notation
};

enum class Variety { Atomic, List, Union };
enum class WhiteSpace { Preserve, Replace, Collapse };

/// One value of an enumeration facet.
struct EnumerationValue : Component {
  std::string text;
  std::vector<QualifiedName> names;  ///< of xs:QName, xs:NOTATION and lists of them: what the text stands for
};

/// The constraining facets of one simple type with all those of its base types: a narrower one has replaced a wider one.
struct Facets {
  std::optional<long> length, minLength, maxLength, totalDigits, fractionDigits;
  std::optional<std::string> minInclusive, maxInclusive, minExclusive, maxExclusive;
  /// One entry for each derivation step that has patterns; the patterns within a step are alternatives.
  std::vector<std::vector<std::string>> patterns;
  std::vector<EnumerationValue> enumeration;  ///< of the narrowest step that has any; empty for none
  WhiteSpace whiteSpace = WhiteSpace::Collapse;
  unsigned fixed = 0;  ///< a bit for each facet that derived types cannot change
};

/// Ways to derive a type or to stand for an element, as bits of a set: what block and final exclude.
enum Derivations : unsigned { kExtension = 1, kRestriction = 2, kSubstitution = 4, kList = 8, kUnion = 16 };

struct SimpleType : Component {
  QualifiedName name;  ///< local part empty for an anonymous type
  BuiltIn builtIn = BuiltIn::None;
  SimpleType const* base = nullptr;  ///< null only for anySimpleType
  BuiltIn ancestor = BuiltIn::None;  ///< nearest built-in type from this one up; the type itself if it is built in
  Variety variety = Variety::Atomic;
  SimpleType const* itemType = nullptr;        ///< of a list
  std::vector<SimpleType const*> memberTypes;  ///< of a union
  Facets facets;                               ///< all that apply, including inherited ones
  unsigned final = 0;                          ///< Derivations that are not allowed
  bool hasLists = false;                       ///< it is a list, or a union with one

  bool IsAnonymous() const { return name.local.empty(); }
};

struct AttributeDeclaration : Component {
  QualifiedName name;
  bool global = false;
  SimpleType const* type = nullptr;
  std::optional<std::string> defaultValue, fixedValue;
};

/// An attribute as one complex type has it.
struct AttributeUse {
  AttributeDeclaration const* declaration = nullptr;
  bool required = false;
  std::optional<std::string> defaultValue, fixedValue;  ///< of the use, or else of the declaration
  Place place;
};

struct Wildcard : Component {
  enum class Constraint { Any, Other, Listed };
  enum class Processing { Strict, Lax, Skip };
  Constraint constraint = Constraint::Any;
  std::string notNamespace;             ///< for Other: the target namespace
  std::vector<std::string> namespaces;  ///< for Listed; an empty text stands for no namespace
  Processing processing = Processing::Strict;
  bool isLimited = false;  ///< attributes of XML Schema 1.1, which are not kept here, allow less
};

struct GroupDefinition;

struct Particle {
  static constexpr int kUnbounded = -1;

  int minOccurs = 1;
  int maxOccurs = 1;  ///< kUnbounded for no limit; particles with maxOccurs 0 have been removed
  std::variant<ElementDeclaration const*, ModelGroup const*, Wildcard const*> term;
  Place place;
  GroupDefinition const* group = nullptr;  ///< the named group that the term came from, by a reference; else null
};

struct ModelGroup : Component {
  enum class Compositor { Sequence, Choice, All };
  Compositor compositor = Compositor::Sequence;
  std::vector<Particle> particles;
};

struct GroupDefinition : Component {
  QualifiedName name;
  ModelGroup const* group = nullptr;
};

/// A rule that values within an element are unique, or refer to others.
struct IdentityConstraint : Component {
  enum class Kind { Unique, Key, Keyref };
  QualifiedName name;
  Kind kind = Kind::Unique;
  IdentityConstraint const* refer = nullptr;  ///< for Keyref
  std::string selector;                       ///< the path
  std::vector<std::string> fields;            ///< the paths
};

struct ElementDeclaration : Component {
  QualifiedName name;  ///< of a local element with its namespace by its form
  bool global = false;
  SimpleType const* simpleType = nullptr;    ///< this
  ComplexType const* complexType = nullptr;  ///< or this is set
  bool nillable = false;
  bool abstract = false;
  std::optional<std::string> defaultValue, fixedValue;
  unsigned block = 0;  ///< Derivations that documents cannot use in place of this element
  unsigned final = 0;  ///< Derivations that members of its substitution group cannot use
  std::vector<IdentityConstraint const*> identityConstraints;
  ElementDeclaration const* substitutionHead = nullptr;
  std::vector<ElementDeclaration const*> substitutes;  ///< direct members of its group, in document order
  /// The other elements that a document may have in its place: all members of its group that are neither abstract nor
  /// blocked, the most direct first.
  std::vector<ElementDeclaration const*> standIns;
};

struct ComplexType : Component {
  enum class Derivation { None, Restriction, Extension };  ///< None: restriction of anyType
  enum class Content { Empty, Simple, ElementOnly, Mixed };

  QualifiedName name;                         ///< local part empty for an anonymous type
  ElementDeclaration const* owner = nullptr;  ///< the element that declares an anonymous type
  bool abstract = false;
  bool anyType = false;  ///< the type xs:anyType itself
  unsigned final = 0;    ///< Derivations that are not allowed
  unsigned block = 0;    ///< Derivations that documents cannot use in place of this type
  Derivation derivation = Derivation::None;
  ComplexType const* base = nullptr;       ///< null where the base is anyType or a simple type
  SimpleType const* simpleBase = nullptr;  ///< the base if that is a simple type
  Content content = Content::Empty;
  SimpleType const* simpleContent = nullptr;  ///< the type of the text, for Content::Simple
  std::optional<Particle> particle;           ///< the whole content, for an extension the base's followed by its own
  std::optional<Particle> ownParticle;        ///< what an extension adds; otherwise the same as particle
  std::vector<AttributeUse> attributes;       ///< all, those of the base first
  std::vector<AttributeUse> ownAttributes;    ///< what an extension adds; otherwise the same as attributes
  std::optional<Wildcard> attributeWildcard;  ///< the complete one
  std::vector<ComplexType const*> derived;    ///< directly derived ones, anonymous ones too, in document order

  bool IsAnonymous() const { return name.local.empty(); }
};

/// All components of the documents that were loaded. The vectors hold the global ones in document order, the documents
/// in the order in which they were first referred to; anonymous and local components are reached through their owners.
struct SchemaSet {
  std::vector<std::string const*> files;  ///< the paths of all documents
  std::vector<Component> documents;       ///< the places and documentation of those that have some of their own
  std::vector<ElementDeclaration const*> elements;
  std::vector<AttributeDeclaration const*> attributes;
  std::vector<SimpleType const*> simpleTypes;    ///< without the built-in ones
  std::vector<ComplexType const*> complexTypes;  ///< without anyType
  std::vector<GroupDefinition const*> groups;
  std::vector<std::string> targetNamespaces;  ///< each once, in the order in which they were first met

  std::shared_ptr<void const> storage;  ///< owns every component
};

}  // namespace Quillon9Generator::Schema
