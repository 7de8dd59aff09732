#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "quillon9/values/item_type.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/schema_form.h"
#include "quillon9/values/schema_pattern.h"
#include "quillon9/values/variant.h"
#include "text/whitespace_view.h"

namespace Quillon9 {

/// Checks values of one kind against facets as W3C XML Schema Part 2, 4.3, has them: bounds by the order of the type,
/// where a value that is neither above nor below a bound does not keep to it; lengths in characters, or in octets for
/// binary data; patterns on the text of a value of any kind, in XML Schema's own syntax or as CSchemaPattern::Combine()
/// writes them. Everything is parsed once. Immutable, for any thread.
class SchemaFacets {
 public:
  /// What CPrimitiveRestrictions does not have.
  struct Others {
    std::int32_t totalDigits = -1;     ///< -1: not set
    std::int32_t fractionDigits = -1;  ///< -1: not set
    SchemaForm form = SchemaForm::Any;
  };

  /// For values of the kind \p type. A bound or a pattern that does not parse fails at each check instead. The pattern
  /// is text as the calling thread holds it, so this happens under Utf8Text for tables in UTF-8.
  SchemaFacets(ItemType type, CPrimitiveRestrictions const& restrictions, Others const& others);
  SchemaFacets(ItemType type, CPrimitiveRestrictions const& restrictions);
  ~SchemaFacets();
  SchemaFacets(SchemaFacets&&) noexcept;
  SchemaFacets& operator=(SchemaFacets&&) noexcept;

  /// Whether Check() looks at the text of a value that is not a string.
  bool UsesText() const { return m_hasPattern && m_type != ItemType_string; }

  /// Fail unless \p value keeps to all facets. \p text is the text of a value that is not a string, in the document or
  /// from CSchemaValues::ToText(), with normalised white space; it is not used unless UsesText(). A value of another
  /// kind counts as the value of its text.
  /// \throws CQnException "Invalid Value for %s [%s]", with \p name and the value; if a bound or the pattern does not
  ///         parse, what CSchemaValues::FromText() or CSchemaPattern throws.
  void Check(char const* name, QnVariant const& value, std::string_view text) const {
    if (value.GetItemType() != m_type) return CheckOther(name, value);
    if (!Keeps(value, text)) RefuseValue(name, value);
  }

  /// The same for a text as it stands in a document, with all its white space.
  void CheckRead(char const* name, QnVariant const& value, std::string_view text) const {
    if (m_extent == Extent::All && UsesText()) return CheckWithSpace(name, value, text);
    Check(name, value, text);
  }

  /// The text of \p value for a document: that of CSchemaValues::ToText(), or another one of the same value if only
  /// that matches the pattern, such as "1.50" where there must be two digits after the point. Check() refuses the text
  /// if there is none.
  /// \throws what CSchemaValues::ToText() and Check() throw.
  std::string TextOf(QnVariant const& value) const;

  /// Check() for a value whose text is not at hand: it is that of TextOf().
  void Check(char const* name, QnVariant const& value) const;

 private:
  enum class Extent : std::uint8_t { Nothing, Bounds, LengthOfText, PatternOfText, All };

  class Bounds {
   public:
    virtual ~Bounds() = default;
    virtual bool Contain(QnVariant const& value) const = 0;
  };
  template <auto get>
  class BoundsOf;
  struct Parsed {
    std::unique_ptr<Bounds const> bounds;   // null for none
    std::optional<CSchemaPattern> pattern;  // empty for none
  };

  std::unique_ptr<Bounds const> MakeBounds() const;
  Parsed Parse() const;
  Extent FindExtent() const;
  bool IsMeasured() const;
  bool Keeps(QnVariant const& value, std::string_view text) const {
    switch (m_extent) {
      case Extent::Nothing: return true;
      case Extent::Bounds: return m_parsed.bounds->Contain(value);
      case Extent::LengthOfText: return HasAllowedLength(value.GetString());
      case Extent::PatternOfText: return KeepsPattern(value.GetString());
      case Extent::All: break;
    }
    return KeepsToAll(value, text);
  }
  bool KeepsToAll(QnVariant const& value, std::string_view text) const;
  bool KeepsTo(Parsed const& parsed, QnVariant const& value, std::string_view text) const;
  bool KeepsText(Parsed const& parsed, std::string const& value) const;
  bool KeepsPattern(std::string const& value) const;
  bool HasAllowedLength(std::string const& value) const;
  bool IsAllowedLength(std::size_t length) const;
  bool HasAllowedDigits(QnVariant const& number) const;
  bool KeepsForm(Parsed const& parsed, std::string_view utf8) const;
  void CheckWithSpace(char const* name, QnVariant const& value, std::string_view text) const;
  void CheckOther(char const* name, QnVariant const& value) const;
  [[noreturn]] static void RefuseValue(char const* name, QnVariant const& value);

  ItemType m_type;
  CPrimitiveRestrictions m_restrictions;
  Others m_others;
  Parsed m_parsed;
  bool m_isBroken = false;  // a bound or the pattern does not parse
  bool m_hasPattern;
  bool m_hasDigits;
  bool m_isMeasured;  // there are lengths that count for the type
  Extent m_extent;    // what there is to check
};

}  // namespace Quillon9
