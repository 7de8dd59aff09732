#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/generated/rows.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/variant.h"
#include "values/facet_filter.h"

namespace Quillon9 {

/// The facets of a row as the library's descriptors take them. The digits are not among them.
CPrimitiveRestrictions RestrictionsOf(CValueType const& type);
/// How values of this kind are printed in generated classes; null for the usual form.
char const* FormatOf(ItemType kind);

/// How the values of one member of a generated class are read, checked and written. Immutable.
class ValueRule {
 public:
  /// The texts may be null. The others are constants that live until the process ends.
  ValueRule(char const* name, CValueType const& type, char const* defaultText, char const* fixedText);

  /// The value of a text; an enumerator is the number of it. An empty text of an element that has a default or fixed
  /// value stands for that. \p ctx, if it is not null, says what is checked.
  /// \throws CQnInvalidValueException for a text that does not convert, and for one that is not the fixed value; what
  ///         Check() throws if \p ctx says that facets are checked.
  QnVariant Read(std::string_view text, bool isElement, CXmlSerializationContext const* ctx = nullptr) const;
  /// The same without any check of the value.
  QnVariant ValueOf(std::string_view text, bool isElement) const { return Convert(TextOf(text, isElement)); }
  /// The checks of Read() for the value of \p text, which is TextOf() what stands in the document.
  void CheckRead(QnVariant const& value, std::string_view text, CXmlSerializationContext const* ctx) const;
  /// What \p text stands for: the default or fixed value for an empty text of an element.
  std::string_view TextOf(std::string_view text, bool isElement) const {
    return isElement && text.empty() && m_default != nullptr ? m_default : text;
  }
  /// Whether a read under \p ctx checks facets.
  static bool ChecksFacets(CXmlSerializationContext const& ctx);
  /// \throws as CBoundObject::Assign() does.
  void Check(QnVariant const& value) const;
  /// The part of Check() that the library's descriptors do not do: the digits, the parts and the fixed value.
  void CheckOwn(QnVariant const& value) const {
    if (HasDigits(m_type)) CheckDigits(m_name, *m_type.facets, value);
    if (HasParts(m_type)) CheckParts(value);
    if (m_fixed != nullptr) CheckFixed(value);
  }
  /// The text of a value.
  std::string Print(QnVariant const& value) const;

  /// Put the namespaces of prefixes at \p element into a value that has names.
  /// \throws CQnInvalidValueException "The prefix of the name [%s] is not declared".
  QnVariant Resolve(QnVariant const& value, CXmlElement const& element) const;
  /// The part of CheckRead() for which a value that has names must have their namespaces, too.
  void CheckResolved(QnVariant const& value) const;
  /// The text of a value that has names, in the element that was started last.
  /// \throws what QualifiedNameText::Declared() throws.
  std::string Declare(QnVariant const& value, CXmlWriter& writer) const;
  /// The same for a text that is written.
  /// \throws CQnException "Invalid Value for %s [%s]" for one that does not match the pattern.
  std::string NamesText(QnVariant const& value, CXmlWriter& writer) const;

  CValueType const& GetType() const { return m_type; }
  bool HasFixedValue() const { return m_fixed != nullptr; }

  /// Whether CTypeParts says more than that it is an identifier.
  static bool HasParts(CValueType const& type) {
    CTypeParts const* const parts = type.parts;
    if (parts == nullptr) return false;
    return parts->item != nullptr || parts->memberCount != 0 || parts->valueCount != 0 || IsName(type);
  }
  /// Whether values are qualified names, or lists of them.
  static bool HasNames(CValueType const& type) { return IsName(IsList(type) ? *type.parts->item : type); }
  static bool IsList(CValueType const& type) { return type.parts != nullptr && type.parts->item != nullptr; }
  /// Whether values of this type have rules that CPrimitiveRestrictions does not express.
  static bool HasOwnRules(CValueType const& type) { return HasDigits(type) || HasParts(type); }
  /// Whether they have a number of digits.
  static bool HasDigits(CValueType const& type) {
    return type.facets != nullptr && (type.facets->totalDigits >= 0 || type.facets->fractionDigits >= 0);
  }
  /// \throws CQnException "Invalid Value for %s [%s]" for a number with too many digits.
  static void CheckDigits(char const* name, CFacets const& facets, QnVariant const& number);

 private:
  static bool IsName(CValueType const& type) {
    return type.parts != nullptr && type.parts->role == ValueRole::QualifiedName;
  }
  QnVariant Convert(std::string_view text) const;
  QnVariant Held(std::string_view item) const;
  void CheckFacets(QnVariant const& value, std::string_view text) const;
  void CheckFacets(QnVariant const& value) const;
  void CheckBySchema(QnVariant const& value, std::string_view text) const;
  void CheckParts(QnVariant const& value) const;
  void CheckList(QnVariant const& list) const;
  void RequireItems(std::string const& list) const;
  void RequireNames(std::string_view text) const;
  void CheckPatternOfNames(std::string_view text) const;
  bool Accepts(std::string const& text) const;
  bool IsAcceptedByMember(std::string const& text) const;
  void CheckFixed(QnVariant const& value) const;  // there must be one
  bool IsSame(QnVariant const& a, QnVariant const& b) const;
  bool IsSameInUnion(std::string const& a, std::string const& b) const;
  bool IsSameList(std::string const& a, std::string const& b) const;
  [[noreturn]] void RefuseValue(QnVariant const& value) const;

  char const* m_name;
  CValueType const& m_type;
  CPrimitiveRestrictions m_restrictions;
  std::unique_ptr<CFacetFilter const> m_filter;  // null for rare facets
  detail::LazySchemaFacets m_schemaFacets;
  std::unique_ptr<ValueRule const> m_item;                  // of a list
  std::vector<std::unique_ptr<ValueRule const>> m_members;  // of a union
  char const* m_default;                                    // for an element without content; null for none
  char const* m_fixed;
};

}  // namespace Quillon9
