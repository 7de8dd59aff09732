#include "schema/values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "schema/lexical.h"
#include "schema/moments.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr std::string_view kDigits = "0123456789";

bool AreDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of(kDigits) == std::string_view::npos;
}

/// A decimal number in parts, without zeros that do not count.
struct Decimal {
  bool negative = false;
  std::string_view integer;
  std::string_view fraction;
};

bool ReadDecimal(std::string_view text, Decimal& result) {
  result.negative = text.substr(0, 1) == "-";
  if (result.negative || text.substr(0, 1) == "+") text.remove_prefix(1);
  std::size_t const point = std::min(text.find('.'), text.size());
  result.integer = text.substr(0, point);
  result.fraction = text.substr(std::min(point + 1, text.size()));
  if (result.integer.empty() && result.fraction.empty()) return false;
  if (!result.integer.empty() && !AreDigits(result.integer)) return false;
  if (!result.fraction.empty() && !AreDigits(result.fraction)) return false;
  result.integer.remove_prefix(std::min(result.integer.find_first_not_of('0'), result.integer.size()));
  result.fraction = result.fraction.substr(0, result.fraction.find_last_not_of('0') + 1);
  if (result.integer.empty() && result.fraction.empty()) result.negative = false;
  return true;
}

Order Opposite(Order order) {
  return order == Order::Less ? Order::Greater : order == Order::Greater ? Order::Less : order;
}

Order OrderOf(int comparison) { return comparison < 0 ? Order::Less : comparison > 0 ? Order::Greater : Order::Equal; }

Order CompareDecimals(std::string_view first, std::string_view second) {
  Decimal a, b;
  if (!ReadDecimal(first, a) || !ReadDecimal(second, b)) return Order::Incomparable;
  if (a.negative != b.negative) return a.negative ? Order::Less : Order::Greater;
  Order order = Order::Equal;
  if (a.integer.size() != b.integer.size()) {
    order = a.integer.size() < b.integer.size() ? Order::Less : Order::Greater;
  } else {
    int const comparison = a.integer.compare(b.integer);
    order = OrderOf(comparison != 0 ? comparison : a.fraction.compare(b.fraction));
  }
  return a.negative ? Opposite(order) : order;
}

bool IsFloat(std::string_view text) {
  if (text == "INF" || text == "-INF" || text == "NaN") return true;
  std::size_t const exponent = std::min(text.find_first_of("eE"), text.size());
  Decimal ignored;
  if (!ReadDecimal(text.substr(0, exponent), ignored)) return false;
  if (exponent == text.size()) return true;
  text.remove_prefix(exponent + 1);
  if (text.substr(0, 1) == "-" || text.substr(0, 1) == "+") text.remove_prefix(1);
  return AreDigits(text);
}

double ReadFloat(std::string_view text, bool isSingle) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (text == "INF") return kInfinity;
  if (text == "-INF") return -kInfinity;
  if (text == "NaN") return std::numeric_limits<double>::quiet_NaN();
  if (text.substr(0, 1) == "+") text.remove_prefix(1);
  double value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    bool const isSmall = text.find("e-") != std::string_view::npos || text.find("E-") != std::string_view::npos;
    value = isSmall ? 0 : text.front() == '-' ? -kInfinity : kInfinity;
  }
  if (!isSingle || std::isinf(value)) return value;
  constexpr double kMost = std::numeric_limits<float>::max();
  if (std::fabs(value) > kMost) return value < 0 ? -kInfinity : kInfinity;
  return static_cast<double>(static_cast<float>(value));
}

Order CompareFloats(std::string_view first, std::string_view second, bool isSingle) {
  double const a = ReadFloat(first, isSingle);
  double const b = ReadFloat(second, isSingle);
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b) ? Order::Equal : Order::Incomparable;
  return a < b ? Order::Less : a > b ? Order::Greater : Order::Equal;
}

bool IsHexadecimal(std::string_view text) {
  return text.size() % 2 == 0 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::string WithoutBlanks(std::string_view text) {
  std::string result(text);
  result.erase(std::remove(result.begin(), result.end(), ' '), result.end());
  return result;
}

bool IsBase64(std::string_view spaced) {
  std::string const text = WithoutBlanks(spaced);
  if (text.size() % 4 != 0) return false;
  std::size_t const end = text.find('=');
  std::string_view const padding = std::string_view(text).substr(std::min(end, text.size()));
  if (!padding.empty() && padding != "=" && padding != "==") return false;
  std::string_view const data = std::string_view(text).substr(0, std::min(end, text.size()));
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  if (data.find_first_not_of(kAlphabet) != std::string_view::npos) return false;
  // The last character before the padding must not have bits that belong to no octet.
  if (padding == "=") return std::string_view("AEIMQUYcgkosw048").find(data.back()) != std::string_view::npos;
  return padding.empty() || std::string_view("AQgw").find(data.back()) != std::string_view::npos;
}

bool IsTrue(std::string_view text) { return text == "true" || text == "1"; }

bool HasSameLetters(std::string_view a, std::string_view b) {
  auto const lowered = [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char c, char d) { return lowered(c) == lowered(d); });
}

}  // namespace

BuiltIn PrimitiveOf(SimpleType const& type) {
  if (type.variety != Variety::Atomic) return BuiltIn::AnySimpleType;
  SimpleType const* each = &type;
  while (each->base != nullptr && each->base->builtIn != BuiltIn::AnySimpleType) each = each->base;
  return each->builtIn;
}

bool IsValueOf(BuiltIn primitive, std::string_view text) {
  Decimal ignored;
  switch (primitive) {
    case BuiltIn::Boolean: return IsTrue(text) || text == "false" || text == "0";
    case BuiltIn::Decimal: return ReadDecimal(text, ignored);
    case BuiltIn::Float:
    case BuiltIn::Double: return IsFloat(text);
    case BuiltIn::HexBinary: return IsHexadecimal(text);
    case BuiltIn::Base64Binary: return IsBase64(text);
    case BuiltIn::AnyURI: return IsUri(text);
    case BuiltIn::QName:
    case BuiltIn::Notation: return IsQName(text);
    case BuiltIn::Duration: return IsDuration(text);
    default: return !HasMoments(primitive) || IsMoment(primitive, text);
  }
}

Order Compare(BuiltIn primitive, std::string_view a, std::string_view b) {
  if (HasMoments(primitive)) return CompareMoments(primitive, a, b);
  bool isEqual = a == b;
  switch (primitive) {
    case BuiltIn::Decimal: return CompareDecimals(a, b);
    case BuiltIn::Float:
    case BuiltIn::Double: return CompareFloats(a, b, primitive == BuiltIn::Float);
    case BuiltIn::Duration: return CompareDurations(a, b);
    case BuiltIn::Boolean: isEqual = IsTrue(a) == IsTrue(b); break;
    case BuiltIn::HexBinary: isEqual = HasSameLetters(a, b); break;
    case BuiltIn::Base64Binary: isEqual = WithoutBlanks(a) == WithoutBlanks(b); break;
    default: break;
  }
  return isEqual ? Order::Equal : Order::Incomparable;
}

long LengthOf(BuiltIn primitive, std::string_view value) {
  if (primitive == BuiltIn::HexBinary) return static_cast<long>(value.size() / 2);
  if (primitive == BuiltIn::Base64Binary) {
    std::string const text = WithoutBlanks(value);
    auto const padding = std::count(text.begin(), text.end(), '=');
    return static_cast<long>(text.size() / 4 * 3) - padding;
  }
  // Each character has one octet that does not continue another.
  return std::count_if(value.begin(), value.end(), [](char c) { return (c & 0xC0) != 0x80; });
}

DigitCount DigitsOf(std::string_view decimal) {
  Decimal parts;
  if (!ReadDecimal(decimal, parts)) return {};
  auto const fraction = static_cast<long>(parts.fraction.size());
  std::size_t total = parts.integer.size() + parts.fraction.size();
  if (parts.integer.empty()) total = parts.fraction.size();
  return {std::max(1L, static_cast<long>(total)), fraction};
}

}  // namespace Quillon9Generator::Schema
