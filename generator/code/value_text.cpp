#include "code/value_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "code/text.h"
#include "code/types.h"
#include "quillon9/text/whitespace.h"

namespace Quillon9Generator::Code {

using Quillon9::CWhitespaceUtils;
using Quillon9::ItemType;

namespace {

/// An expression that converts \p text when it is evaluated, for kinds and values that have no literal.
std::string Conversion(ItemType kind, std::string const& text) {
  std::string const name = KindName(kind).substr(std::string_view("ItemType_").size());
  return "Quillon9::CConversions::" + name + "FromString(" + Literal(text) +
         ", Quillon9::CWhitespaceUtils::WhitespaceRule_Collapse)";
}

std::string_view WithoutPlus(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  return text;
}

template <class Number>
bool Parse(std::string_view text, Number& value) {
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

std::string SignedLiteral(ItemType kind, std::string const& text) {
  std::int64_t value = 0;
  // The least number has no literal: its digits without the sign do not fit.
  if (!Parse(WithoutPlus(text), value) || value == INT64_MIN) return Conversion(kind, text);
  return std::to_string(value);
}

std::string UnsignedLiteral(ItemType kind, std::string const& text) {
  std::uint64_t value = 0;
  if (!Parse(WithoutPlus(text), value)) return Conversion(kind, text);
  return std::to_string(value) + (value > INT64_MAX ? "U" : "");
}

std::string FloatLiteral(ItemType kind, std::string const& text) {
  std::string literal(WithoutPlus(text));
  float single = 0;
  double number = 0;
  bool const isFloat = kind == Quillon9::ItemType_r4;
  bool const isNumber = std::all_of(literal.begin(), literal.end(), [](char c) {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
  });
  if (!isNumber || !(isFloat ? Parse(literal, single) : Parse(literal, number))) return Conversion(kind, text);
  if (literal.find_first_of(".eE") == literal.npos) literal += ".0";
  return literal + (isFloat ? "F" : "");
}

}  // namespace

std::string ValueText(Plan::ValueType const& type, std::string const& text, std::string const& enumerationName) {
  if (type.kind == Quillon9::ItemType_string && type.enumeration == nullptr) {
    static constexpr CWhitespaceUtils::WhitespaceRule kRules[] = {CWhitespaceUtils::WhitespaceRule_Preserve,
                                                                  CWhitespaceUtils::WhitespaceRule_Replace,
                                                                  CWhitespaceUtils::WhitespaceRule_Collapse};
    return Literal(CWhitespaceUtils::ApplyRule(kRules[static_cast<int>(type.whiteSpace)], text));
  }
  std::string const collapsed = CWhitespaceUtils::Collapse(text);
  if (type.enumeration != nullptr) {
    Plan::Enumerator const* const found = type.enumeration->Find(text);
    return enumerationName + (found != nullptr ? "::" + found->name : "{}");
  }
  switch (type.kind) {
    case Quillon9::ItemType_boolean: return collapsed == "true" || collapsed == "1" ? "true" : "false";
    case Quillon9::ItemType_i1:
    case Quillon9::ItemType_i2:
    case Quillon9::ItemType_i4:
    case Quillon9::ItemType_i8: return SignedLiteral(type.kind, collapsed);
    case Quillon9::ItemType_ui1:
    case Quillon9::ItemType_ui2:
    case Quillon9::ItemType_ui4:
    case Quillon9::ItemType_ui8: return UnsignedLiteral(type.kind, collapsed);
    case Quillon9::ItemType_r4:
    case Quillon9::ItemType_r8: return FloatLiteral(type.kind, collapsed);
    case Quillon9::ItemType_decimal: return "Quillon9::CDecimal(" + Literal(collapsed) + ")";
    case Quillon9::ItemType_integer: return "Quillon9::CBigInteger(" + Literal(collapsed) + ")";
    default: return Conversion(type.kind, collapsed);
  }
}

}  // namespace Quillon9Generator::Code
