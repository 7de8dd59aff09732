#pragma once

#include <cstdint>

#include "quillon9/text/whitespace.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/schema_form.h"
#include "quillon9/values/value_rules.h"

namespace Quillon9 {

class CClassTables;
class CEnumTexts;
struct CTypeParts;

/// The facets of a simple type. Null and -1 stand for a facet that is not set.
struct CFacets {
  char const* pattern = nullptr;       ///< a regular expression as the generator has rewritten it for PCRE
  int length = -1;                     ///< of a text in characters, of binary data in bytes, or of a list in items
  int minLength = -1;                  ///< at least so many of them
  int maxLength = -1;                  ///< at most so many of them
  char const* minInclusive = nullptr;  ///< the smallest value
  char const* maxInclusive = nullptr;  ///< the largest value
  char const* minExclusive = nullptr;  ///< smaller than all values
  char const* maxExclusive = nullptr;  ///< larger than all values
  int totalDigits = -1;                ///< at most so many digits
  int fractionDigits = -1;             ///< at most so many after the point
};

/// How the values of a simple type are read, checked and written.
struct CValueType {
  ItemType kind = ItemType_string;  ///< how a variant holds it
  CWhitespaceUtils::WhitespaceRule whitespace =
      CWhitespaceUtils::WhitespaceRule_Collapse;  ///< applied to the text first
  CFacets const* facets = nullptr;                ///< null for none
  CEnumTexts const* enumeration = nullptr;        ///< null unless the values are enumerators; kind is ItemType_i4 then
  CTypeParts const* parts = nullptr;              ///< null unless there is more to say
  SchemaForm form = SchemaForm::Any;              ///< which texts are values, by the rules of XML Schema

  /// How the C++ value or, of a list, each of its items is held.
  constexpr ItemType HeldKind() const;
};

/// What the values of a simple type stand for.
enum class ValueRole : std::uint8_t {
  None,           ///< for themselves
  QualifiedName,  ///< a name with a namespace: CQName. The kind is ItemType_string
  Identifier      ///< xs:ID
};

/// What only some simple types have.
struct CTypeParts {
  CValueType const* item = nullptr;  ///< of a list: the type of its items; the kind of the list is ItemType_string then
  CValueType const* const* members = nullptr;  ///< of a union: one of these types has to accept the value
  int memberCount = 0;                         ///< of a union
  /// All values there are, where they are not held as enumerators; "{namespace}name" for qualified names.
  char const* const* values = nullptr;
  int valueCount = 0;                ///< of these
  ValueRole role = ValueRole::None;  ///< of the value, not of the items of a list
};

constexpr ItemType CValueType::HeldKind() const {
  return parts != nullptr && parts->item != nullptr ? parts->item->kind : kind;
}

/// The namespaces that a wildcard allows: "##any", "##other", or a list of URIs, of which "##local" stands for none.
struct CNamespaceRule {
  char const* allowed = "##any";  ///< what the schema says
  char const* target = "";        ///< the namespace that "##other" excludes
};

/// How types are derived, as bits of a set.
enum Derivation : std::uint8_t { Derivation_None = 0, Derivation_Extension = 1, Derivation_Restriction = 2 };

/// One element of a substitution group.
struct CGroupElement {
  char const* name = "";               ///< its local name
  char const* ns = "";                 ///< its namespace; empty for none
  CClassTables const* type = nullptr;  ///< null for an element with any content, which is held as a CElement
  std::uint8_t block = 0;              ///< derivations that an xsi:type must not use
};

/// The elements that may stand where the head of a substitution group is declared: all members, and the head itself,
/// but for abstract ones.
struct CElementGroup {
  CGroupElement const* elements = nullptr;  ///< sorted by name, then by namespace, octet by octet
  int count = 0;                            ///< of these
};

/// What a row of an element table describes.
enum class RowKind : std::uint8_t {
  Value,          ///< a value
  Values,         ///< a collection of values
  Object,         ///< an object
  Objects,        ///< a collection of objects
  Rounds,         ///< a collection of objects without a tag: the rounds of a repeated group
  Any,            ///< one element of a wildcard
  Anys,           ///< a collection of them
  AnyType,        ///< an element of one name with any content
  AnyTypes,       ///< a collection of them
  BeginSequence,  ///< the members up to EndGroup are a sequence
  BeginChoice,    ///< a choice
  BeginAll,       ///< an all group
  EndGroup        ///< the end of the group that began last
};

/// Whether a member or group must occur where it stands.
enum class Occurs : std::uint8_t { Once, Optional };

/// One entry of the element table of a generated class, or the begin or end of a group.
struct CElementRow {
  RowKind kind = RowKind::Value;         ///< what it describes
  Occurs occurs = Occurs::Once;          ///< of single members and of groups
  int property = -1;                     ///< the number of the property; -1 for groups
  char const* name = "";                 ///< of the element
  char const* ns = "";                   ///< its namespace; empty for none
  int minOccurs = 0;                     ///< of repeated members
  int maxOccurs = -1;                    ///< -1 for no limit
  CValueType const* value = nullptr;     ///< of values
  CClassTables const* type = nullptr;    ///< of objects
  CNamespaceRule const* rule = nullptr;  ///< of wildcards
  char const* defaultText = nullptr;     ///< null for none
  char const* fixedText = nullptr;       ///< null for none
  /// Of objects, in place of a type: what may stand where this element, the head of the group, is declared.
  CElementGroup const* group = nullptr;
  std::uint8_t block = 0;  ///< of objects: derivations that an xsi:type must not use
};

/// One entry of the attribute table of a generated class.
struct CAttributeRow {
  int property = -1;                     ///< the number of the property
  char const* name = "";                 ///< of the attribute
  char const* ns = "";                   ///< its namespace; empty for none
  Occurs occurs = Occurs::Optional;      ///< whether it is required
  CValueType const* value = nullptr;     ///< null for the attributes of a wildcard
  CNamespaceRule const* rule = nullptr;  ///< of a wildcard
  char const* defaultText = nullptr;     ///< null for none
  char const* fixedText = nullptr;       ///< null for none
};

/// Makers of rows and short names, so that a table reads like the schema. No name of a generated class is like these.
namespace Rows {

/// Short names.
///@{
using ElementRow = CElementRow;
using AttributeRow = CAttributeRow;
using ValueType = CValueType;
using TypeParts = CTypeParts;
using Quillon9::SchemaForm;
using Quillon9::ValueRole;
using Facets = CFacets;
using NamespaceRule = CNamespaceRule;
using GroupElement = CGroupElement;
using ElementGroup = CElementGroup;
using Quillon9::Derivation_Extension;
using Quillon9::Derivation_Restriction;

inline constexpr Occurs kOnce = Occurs::Once;
inline constexpr Occurs kOptional = Occurs::Optional;
inline constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
inline constexpr auto kReplace = CWhitespaceUtils::WhitespaceRule_Replace;
inline constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
///@}

/// Each makes the row of the kind that has its name. The texts and references are kept; null stands for no text.
///@{
constexpr CElementRow Value(char const* name, char const* ns, int property, Occurs occurs, CValueType const& value,
                            char const* defaultText = nullptr, char const* fixedText = nullptr) {
  return {RowKind::Value, occurs, property, name, ns, 0, -1, &value, nullptr, nullptr, defaultText, fixedText};
}
constexpr CElementRow Values(char const* name, char const* ns, int property, int minOccurs, int maxOccurs,
                             CValueType const& value) {
  return {RowKind::Values, kOptional, property, name, ns, minOccurs, maxOccurs, &value};
}
constexpr CElementRow Object(char const* name, char const* ns, int property, Occurs occurs, CClassTables const& type,
                             int block = 0) {
  return {RowKind::Object, occurs, property, name,    ns,      0,       -1,
          nullptr,         &type,  nullptr,  nullptr, nullptr, nullptr, static_cast<std::uint8_t>(block)};
}
constexpr CElementRow Objects(char const* name, char const* ns, int property, int minOccurs, int maxOccurs,
                              CClassTables const& type, int block = 0) {
  return {RowKind::Objects, kOptional, property, name,    ns,      minOccurs, maxOccurs,
          nullptr,          &type,     nullptr,  nullptr, nullptr, nullptr,   static_cast<std::uint8_t>(block)};
}
constexpr CElementRow Head(char const* name, char const* ns, int property, Occurs occurs, CElementGroup const& group) {
  return {RowKind::Object, occurs, property, name, ns, 0, -1, nullptr, nullptr, nullptr, nullptr, nullptr, &group};
}
constexpr CElementRow Heads(char const* name, char const* ns, int property, int minOccurs, int maxOccurs,
                            CElementGroup const& group) {
  return {RowKind::Objects, kOptional, property, name,    ns,      minOccurs, maxOccurs,
          nullptr,          nullptr,   nullptr,  nullptr, nullptr, &group};
}
constexpr CElementRow Rounds(char const* name, int property, int minOccurs, int maxOccurs, CClassTables const& type) {
  return {RowKind::Rounds, kOptional, property, name, "", minOccurs, maxOccurs, nullptr, &type};
}
constexpr CElementRow Any(int property, Occurs occurs, CNamespaceRule const& rule) {
  return {RowKind::Any, occurs, property, "", "", 0, -1, nullptr, nullptr, &rule};
}
constexpr CElementRow Anys(int property, int minOccurs, int maxOccurs, CNamespaceRule const& rule) {
  return {RowKind::Anys, kOptional, property, "", "", minOccurs, maxOccurs, nullptr, nullptr, &rule};
}
constexpr CElementRow AnyType(char const* name, char const* ns, int property, Occurs occurs) {
  return {RowKind::AnyType, occurs, property, name, ns};
}
constexpr CElementRow AnyTypes(char const* name, char const* ns, int property, int minOccurs, int maxOccurs) {
  return {RowKind::AnyTypes, kOptional, property, name, ns, minOccurs, maxOccurs};
}
constexpr CElementRow BeginSequence(Occurs occurs) { return {RowKind::BeginSequence, occurs}; }
constexpr CElementRow BeginChoice(Occurs occurs) { return {RowKind::BeginChoice, occurs}; }
constexpr CElementRow BeginAll(Occurs occurs) { return {RowKind::BeginAll, occurs}; }
constexpr CElementRow EndGroup() { return {RowKind::EndGroup}; }

constexpr CAttributeRow Attribute(char const* name, char const* ns, int property, Occurs occurs,
                                  CValueType const& value, char const* defaultText = nullptr,
                                  char const* fixedText = nullptr) {
  return {property, name, ns, occurs, &value, nullptr, defaultText, fixedText};
}
constexpr CAttributeRow AnyAttributes(int property, CNamespaceRule const& rule) {
  return {property, "", "", kOptional, nullptr, &rule};
}
///@}

}  // namespace Rows

/// What a generated class is, in constants.
struct CClassRow {
  char const* typeName = "";                  ///< of the type in its schema, for xsi:type; empty for an anonymous type
  char const* typeNamespace = "";             ///< of that type
  char const* targetNamespace = "";           ///< of its element where that is the document root
  CClassTables* base = nullptr;               ///< the class it derives from, whose rows come first; null for none
  CElementRow const* elements = nullptr;      ///< its own, not those of the base
  int elementCount = 0;                       ///< of its own
  CAttributeRow const* attributes = nullptr;  ///< its own
  int attributeCount = 0;                     ///< of its own
  int firstProperty = 0;                      ///< the number of properties of all bases
  int propertyCount = 0;                      ///< of its own
  int textProperty = -1;                      ///< the property that holds the text of the element; -1 for none
  CValueType const* text = nullptr;           ///< of that property; null for the text of mixed content
  bool round = false;                         ///< has no tag: one round of a repeated group
  bool rejectUnknownAttributes = true;        ///< whether others are a failure
  CClassTables* const* derived = nullptr;     ///< all classes derived from it, also indirectly
  int derivedCount = 0;                       ///< of these
  /// Whether the elements are those of the bases as a restriction has them, under the property numbers of the bases: no
  /// row of a base applies, and a property without a row must not be set.
  bool replacesBaseElements = false;
  bool replacesBaseAttributes = false;  ///< the same of the attributes
  std::uint8_t derivation = 0;          ///< how it is derived from its base, where an element or type blocks that
  std::uint8_t block = 0;               ///< derivations that an xsi:type must not use where this type is declared
  char const* textDefault = nullptr;    ///< the text of an empty element; null for none
  char const* textFixed = nullptr;      ///< the only text that there is; null for none
  /// The rules of values where the context does not say.
  ValueRules valueRules = ValueRules_XmlSchema;
};

namespace Rows {

/// A short name.
using ClassRow = CClassRow;

}  // namespace Rows

}  // namespace Quillon9
