#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quillon9/values/item_type.h"
#include "quillon9/values/schema_form.h"
#include "schema/components.h"

/// Which classes there will be for a set of schemas: a value of its own, from which C++ text (or anything else) is
/// made. Nothing here is text of a program but the names.
namespace Quillon9Generator::Plan {

/// One enumerator.
struct Enumerator {
  std::string name;  ///< in C++
  std::string text;  ///< in documents
  std::string documentation;
};

struct Enumeration {
  std::string cppName;  ///< without the namespace, with the classes around it: CItems::EColour
  std::string cppNamespace;
  Schema::QualifiedName name;
  std::string documentation;
  Schema::Place place;
  std::vector<Enumerator> enumerators;
  struct Class const* owner = nullptr;  ///< the class that it is nested in; null for none

  /// The enumerator with this text, also without the white space around it; null for none.
  Enumerator const* Find(std::string const& text) const;
};

/// The facets that a value is checked against. Texts are lexical forms of the schema.
struct Facets {
  std::string pattern;  ///< all steps as one pattern; empty for none
  long length = -1, minLength = -1, maxLength = -1, totalDigits = -1, fractionDigits = -1;
  std::string minInclusive, maxInclusive, minExclusive, maxExclusive;
  bool operator==(Facets const& other) const;
  bool Empty() const;
};

/// How the value of a simple type is held.
struct ValueType {
  Quillon9::ItemType kind = Quillon9::ItemType_string;
  Schema::WhiteSpace whiteSpace = Schema::WhiteSpace::Collapse;
  Facets facets;
  Enumeration const* enumeration = nullptr;  ///< held as its enumerator; kind is then ItemType_i4
  std::shared_ptr<ValueType const> item;     ///< of a list, which is held as a vector; kind is ItemType_string then
  std::vector<ValueType> members;            ///< of a union: one of them has to accept the value; empty for no check
  std::vector<ValueType> uncheckedMembers;   ///< of a union that accepts any text, in place of members
  /// All values, where they are no enumerators: texts, or "{namespace}name" for qualified names; empty for no limit.
  std::vector<std::string> values;
  bool isQualifiedName = false;  ///< QName or NOTATION, held as CQName; kind is ItemType_string then
  bool isIdentifier = false;     ///< xs:ID
  Quillon9::SchemaForm form = Quillon9::SchemaForm::Any;  ///< of texts, by the rules of XML Schema
  std::string remark;      ///< for comments: a sentence about what is not a facet; or empty
  std::string schemaName;  ///< for comments: "xs:int", "po:SKU"; empty for an anonymous type

  /// What one C++ value holds: an item of a list, or the value.
  ValueType const& Single() const { return item != nullptr ? *item : *this; }
  /// Whether a value may be refused because of its type.
  bool HasChecks() const;
  /// Whether all is the same but the name.
  bool HasSameRules(ValueType const& other) const;
  /// Whether both have the same C++ type and are read and written in the same way, but for checks.
  bool IsHeldLike(ValueType const& other) const;
  /// Have unions find out which of their members a value belongs to, because it is compared with another one.
  void CompareByMember();
};

struct Class;

/// The elements that may stand where the head of a substitution group is declared. All members of classes that are of
/// one head share it.
struct ElementGroup {
  struct Element {
    Schema::QualifiedName name;
    Schema::Place place;
    Class const* type = nullptr;  ///< or, if null, the value of a simple type
    ValueType value;
    bool anyType = false;                                 ///< held as a CElement
    std::optional<std::string> defaultValue, fixedValue;  ///< of a value
    unsigned block = 0;                                   ///< as Member::block
  };
  /// What holds each of the elements.
  enum class Holder {
    Class,        ///< type: they are of that class, or derived from it
    Value,        ///< an object for a value of the C++ type of value
    BoundObject,  ///< they have no other class in common
    AnyObject     ///< one of them is held as a CElement
  };

  Schema::ElementDeclaration const* head = nullptr;
  std::vector<Element> elements;  ///< those that are not abstract, sorted by name, then by namespace
  Holder holder = Holder::BoundObject;
  Class const* type = nullptr;
  ValueType value;
  bool canCreateHead = false;  ///< the head is an element of its own, and an object of what holds the elements
};

struct Member {
  enum class Kind {
    Value,           ///< of a simple type, enumerations included
    Values,          ///< repeated
    Object,          ///< of a class
    Objects,         ///< repeated
    NillableValue,   ///< of a simple type, may be nil: CValueElement
    NillableValues,  ///< repeated
    Rounds,          ///< a repeated group: objects of a class without a tag
    Any,             ///< one element of any name that the wildcard allows
    Anys,            ///< repeated
    AnyType,         ///< an element of this name with any content
    AnyTypes,        ///< repeated
    AnyAttributes    ///< the attributes of a wildcard
  };
  enum class Place { Element, Attribute, Text };

  /// Whether it has the default and fixed value of its declaration: all of a simple type but Values, whose collections
  /// have no place for one.
  bool MayHaveDefault() const {
    return kind == Kind::Value || kind == Kind::NillableValue || kind == Kind::NillableValues;
  }

  Kind kind = Kind::Value;
  Place place = Place::Element;
  int property = 0;            ///< the number of the property, those of the base class included
  std::string cppName;         ///< as in Get...(): ShipTo
  std::string field;           ///< the data member: m_shipTo
  Schema::QualifiedName name;  ///< in documents; empty for rounds and wildcards
  int minOccurs = 1;
  int maxOccurs = 1;                    ///< Schema::Particle::kUnbounded for no limit
  bool mandatory = false;               ///< held as a plain value or reference: present in every valid object
  ValueType value;                      ///< of Value..., NillableValue...
  Class const* type = nullptr;          ///< of Object..., Rounds; null where a group has no class
  ElementGroup const* group = nullptr;  ///< of Object...: the elements that may stand in place of this one
  std::optional<std::string> defaultValue, fixedValue;
  unsigned block = 0;           ///< of Object...: Schema::Derivations that an xsi:type must not use
  std::string restriction;      ///< of a wildcard: "##any", "##other", or a list of URIs, "##local" for no namespace
  std::string targetNamespace;  ///< of a wildcard: the namespace that ##other excludes
  std::string documentation;
  Schema::Place schemaPlace;
  int choice = -1;  ///< index into Class::choices of the innermost choice that it is an alternative of; -1 for none
  Member const* restates = nullptr;  ///< of Class::restated: the member of a base that it is
};

/// One row of a class's element table.
struct Row {
  enum class Kind { Member, BeginSequence, BeginChoice, BeginAll, End };
  Kind kind = Kind::Member;
  int member = -1;        ///< index into Class::members, or into Class::restated where that replaces the elements
  bool optional = false;  ///< of a group: minOccurs 0
  int choice = -1;        ///< of BeginChoice: index into Class::choices; -1 where the choice is that of a base
};

/// A choice that occurs once and so belongs to the class around it.
struct Choice {
  std::string cppName;                    ///< Choice, Choice2
  std::vector<std::string> alternatives;  ///< names of the enumerators, in order, without None
  int row = 0;                            ///< the row that begins it
};

struct Class {
  std::string cppName;         ///< with the classes around it: CItems::CItem
  std::string cppNamespace;    ///< Company::Orders
  std::string shortName;       ///< CItem
  Schema::QualifiedName name;  ///< of the type; local part empty for an anonymous type or a group
  std::string
      defaultElementName;  ///< what CreateInstance() takes by default; empty where several elements have this type
  std::string targetNamespace;
  std::string documentation;
  Schema::Place place;
  Class const* base = nullptr;
  Class const* owner = nullptr;  ///< the class that it is nested in
  bool abstract = false;
  unsigned derivation = 0;     ///< how it is derived from its base, of Schema::Derivations, if anything blocks that
  unsigned block = 0;          ///< Schema::Derivations that an xsi:type must not use where this type is declared
  bool round = false;          ///< has no tag
  bool classicValues = false;  ///< uses the classic rules of values where the context does not say
  bool nillable = false;
  bool mixed = false;
  bool rejectUnknownAttributes = true;
  int firstProperty = 0;        ///< the number of properties of all bases
  std::vector<Member> members;  ///< its own: in schema order, elements first, then text, then attributes
  std::vector<Row> rows;        ///< its own elements
  /// The members of its bases that a restriction keeps, as it has them: with the properties and names of the bases.
  std::vector<Member> restated;
  bool replacesElements = false;    ///< the rows are of restated members, and those of the bases do not apply
  bool replacesAttributes = false;  ///< the same of attributes
  std::vector<Choice> choices;
  std::vector<Class const*> nested;  ///< in the order of definition
  std::vector<Enumeration const*> nestedEnumerations;
  std::vector<Class const*> derived;  ///< all classes derived from it, also indirectly, in order
};

/// What Row::member is an index into.
inline std::vector<Member> const& MembersOfRows(Class const& cls) {
  return cls.replacesElements ? cls.restated : cls.members;
}

/// A global element: what ReadX() and ReadRoot() read.
struct Root {
  std::string cppName;  ///< PurchaseOrder
  Schema::QualifiedName name;
  Schema::Place place;
  Class const* type = nullptr;  ///< or, if null, the value of a simple type
  ValueType value;
  std::string alias;       ///< CPurchaseOrder where that is another, free name; else empty
  bool anyType = false;    ///< read as a CElement
  bool isDocument = true;  ///< documents may begin with it; if not, objects for it are only made
  std::optional<std::string> defaultValue, fixedValue;  ///< of a value
  unsigned block = 0;                                   ///< as Member::block
  std::string documentation;
};

/// Everything that goes into one C++ namespace.
struct Namespace {
  std::string cppName;                           ///< Company::Orders
  std::string fileStem;                          ///< orders
  std::vector<Enumeration const*> enumerations;  ///< those that are not nested
  std::vector<Class const*> classes;  ///< those that are not nested; a base stands before what derives from it
  std::vector<Root> roots;            ///< those that documents may begin with come first
  bool classicValues = false;         ///< as of a class, for elements of simple type
};

struct Plan {
  std::vector<Namespace> namespaces;     ///< the first has ReadRoot() for the document elements of all
  std::vector<Class const*> classes;     ///< of all namespaces, in an order in which they can be defined
  std::vector<std::string> schemaFiles;  ///< for the first comment: names without folders, or else namespaces
  std::vector<std::unique_ptr<Class>> classStorage;
  std::vector<std::unique_ptr<Enumeration>> enumerationStorage;
  std::vector<std::unique_ptr<ElementGroup>> groupStorage;
};

}  // namespace Quillon9Generator::Plan
