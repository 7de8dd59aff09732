#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/variant.h"

namespace {

using namespace Quillon9;
using Fuzzing::Require;
using Fuzzing::RequireEqual;
using Rule = CWhitespaceUtils::WhitespaceRule;

/// The second octet: a whitespace rule, and the meaning of the fields after the text.
enum Options : unsigned { kRuleMask = 3, kFacets = 4, kLengths = 8, kFormat = 16 };

QnVariant Parsed(std::string const& text, ItemType kind, Rule rule = CWhitespaceUtils::WhitespaceRule_Collapse) {
  QnVariant value;
  value.FromString(text, kind, rule);
  return value;
}

bool IsDate(ItemType kind) {
  return kind == ItemType_date || kind == ItemType_datetime || kind == ItemType_time || kind == ItemType_yearMonth ||
         kind == ItemType_monthDay;
}

/// A fraction that rounds up to one stays one, and prints one digit too many: 1 and zeros.
bool MayBeRoundedToOne(std::string const& decimal) {
  std::size_t const point = decimal.find('.');
  return point != std::string::npos && decimal.size() - point > 2 && decimal[point + 1] == '1' &&
         decimal.find_first_not_of('0', point + 2) == std::string::npos;
}

/// Values whose text is unchanged when it is read and printed once more.
bool IsStable(QnVariant const& value, ItemType kind, std::string const& text) {
  if (kind == ItemType_duration) return Fuzzing::IsReadAgain(value.GetDuration());
  if (kind == ItemType_year) return text.size() == 4;  // years of other lengths are not read
  return kind != ItemType_decimal || !MayBeRoundedToOne(text);
}

/// A printed number has some digits less than it needs, so another one may be read, whose text may differ, too.
bool IsNear(double got, double expected, ItemType kind) {
  return std::abs(got - expected) <= std::abs(expected) * (kind == ItemType_r4 ? 1e-6 : 1e-15);
}

void PrintAndParse(QnVariant const& value, ItemType kind) {
  std::string const text = value.ToString();
  RequireEqual(QnVariant(value).ToString(), text, "a copy is the same");
  if (!IsStable(value, kind, text)) return;
  bool const isText = kind == ItemType_string || kind == ItemType_char;
  QnVariant again;
  try {
    again =
        Parsed(text, kind, isText ? CWhitespaceUtils::WhitespaceRule_None : CWhitespaceUtils::WhitespaceRule_Collapse);
  } catch (CQnException const& failure) {
    if (kind == ItemType_char && text.empty()) return;  // the character 0
    Require(false, "what is printed is read", failure.GetFullMessage(), text);
  }
  if (kind == ItemType_decimal) {  // a product with a power of ten keeps its zeros
    Require(again.GetDecimal() == value.GetDecimal(), "a printed decimal is read as the same one", again.ToString(),
            text);
    return;
  }
  bool const isNear = (kind == ItemType_r4 && IsNear(again.GetR4(), value.GetR4(), kind)) ||
                      (kind == ItemType_r8 && IsNear(again.GetR8(), value.GetR8(), kind));
  bool const isRoundedUp =
      kind == ItemType_r8 && again.ToString().find("INF") != std::string::npos;  // from the largest
  if (!isNear && !isRoundedUp) RequireEqual(again.ToString(), text, "what is printed is read as the same value");
}

// ---- Facets

/// Whether the four bounds hold, by the order of \p Number.
template <class Number>
bool IsWithin(Number const& value, CPrimitiveRestrictions const& facets, ItemType kind) {
  auto const number = [kind](std::string const& text) { return Number(Parsed(text, kind).ToString().c_str()); };
  return !((!facets.minInclusive.empty() && value < number(facets.minInclusive)) ||
           (!facets.maxInclusive.empty() && value > number(facets.maxInclusive)) ||
           (!facets.minExclusive.empty() && value <= number(facets.minExclusive)) ||
           (!facets.maxExclusive.empty() && value >= number(facets.maxExclusive)));
}

/// Requires that bounds are judged like those of numbers of unlimited size.
void CheckBounds(QnVariant const& value, ItemType kind, CPrimitiveRestrictions const& facets) {
  bool holds = true;
  try {
    CXmlObjectHelper::CheckRestriction("name", value, kind, facets);
  } catch (CQnException const&) {
    holds = false;
  }
  if (kind < ItemType_i1 || kind > ItemType_ui8) return;
  bool expected = false;
  try {
    expected = IsWithin(CBigInteger(value.ToString().c_str()), facets, kind);
  } catch (CQnException const&) {
    return;  // an invalid bound: the order of the failures does not matter
  }
  Require(holds == expected, "the bounds of a machine number", value.ToString());
}

void CheckLengths(QnVariant const& value, ItemType kind, Fuzzing::Input& input) {
  CPrimitiveRestrictions facets;
  facets.length = static_cast<std::int32_t>(input.Options()) - 1;
  facets.minLength = static_cast<std::int32_t>(input.Options()) - 1;
  facets.maxLength = static_cast<std::int32_t>(input.Options()) - 1;
  bool holds = true;
  try {
    CXmlObjectHelper::CheckRestriction("name", value, kind, facets);
  } catch (CQnException const&) {
    holds = false;
  }
  std::int64_t length = -1;
  if (kind == ItemType_string) length = static_cast<std::int64_t>(value.GetString().size());
  if (kind == ItemType_hexBinary) length = static_cast<std::int64_t>(value.GetHexBinary().GetLength());
  if (length < 0) return;
  bool const expected = (facets.length < 0 || length == facets.length) && length >= facets.minLength &&
                        (facets.maxLength < 0 || length <= facets.maxLength);
  Require(holds == expected, "the lengths", std::to_string(length));
}

// ---- Arithmetic

template <class Number>
void CountTogether(Number const& a, Number const& b) {
  Require(((a + b) - b) == a, "adding and subtracting", a.ToString(), b.ToString());
  Require((a + b) == (b + a), "adding in either order", a.ToString(), b.ToString());
  Require((a < b) + (a > b) + (a == b) == 1 || (a == b), "one order", a.ToString(), b.ToString());
  // Products of numbers of many digits are documented as slow.
  if (a.ToString().size() + b.ToString().size() > 4000) return;
  Require((a * b) == (b * a), "multiplying in either order", a.ToString(), b.ToString());
  if (!(b == Number("0"))) (void)(a / b).ToString();
}

void DivideIntegers(CBigInteger const& a, CBigInteger const& b) {
  if (!(b > CBigInteger("0")) || a.ToString().size() + b.ToString().size() > 4000) return;
  CBigInteger const magnitude = a.GetAbs();
  Require((magnitude / b) * b + magnitude % b == magnitude, "quotient and remainder", a.ToString(), b.ToString());
}

void MoveDate(CDateTime const& date, std::string const& text, ItemType kind) {
  (void)date.GetNormalized();
  try {
    (void)date.CompareTo(Parsed(text, kind).GetDateTime());
  } catch (CQnException const&) {
  }
  CDateTimeSpan const span = Parsed(text, ItemType_duration).GetDuration();
  (void)(date + span).ToString();
  (void)(date - span).ToString();
}

void Count(QnVariant const& value, ItemType kind, std::string const& other) {
  if (IsDate(kind)) return MoveDate(value.GetDateTime(), other, kind);
  if (kind == ItemType_duration) {
    (void)value.GetDuration().CompareTo(Parsed(other, kind).GetDuration());
  } else if (kind == ItemType_integer) {
    CountTogether(value.GetInteger(), Parsed(other, kind).GetInteger());
    DivideIntegers(value.GetInteger(), Parsed(other, kind).GetInteger());
  } else if (kind == ItemType_decimal) {
    CDecimal const second = Parsed(other, kind).GetDecimal();
    if (MayBeRoundedToOne(value.ToString()) || MayBeRoundedToOne(second.ToString())) return;
    CountTogether(value.GetDecimal(), second);
  }
}

bool HasLongNumber(std::string const& format) {
  std::size_t digits = 0;
  for (char const c : format) {
    digits = c >= '0' && c <= '9' ? digits + 1 : 0;
    if (digits > 3) return true;
  }
  return false;
}

void Run(Fuzzing::Input& input) {
  ItemType const kind = static_cast<ItemType>(input.Options());
  unsigned const options = input.Options();
  std::string const text = input.Field('|');
  QnVariant const value = Parsed(text, kind, static_cast<Rule>(options & kRuleMask));
  PrintAndParse(value, kind);
  if ((options & kFormat) != 0) {
    std::string const format = input.Field('|');
    // Formats come from the program itself; one that asks for a million characters gets them.
    if (!HasLongNumber(format)) (void)value.ToString(format.c_str());
  } else if ((options & kLengths) != 0) {
    CheckLengths(value, kind, input);
  } else if ((options & kFacets) != 0) {
    CPrimitiveRestrictions facets;
    facets.minInclusive = input.Field('|');
    facets.maxInclusive = input.Field('|');
    facets.minExclusive = input.Field('|');
    facets.maxExclusive = input.Field('|');
    facets.pattern = input.Rest();
    CheckBounds(value, kind, facets);
  } else {
    Count(value, kind, input.Rest());
  }
}

}  // namespace

/// After the options, one of which is the kind, come the text of a value and the data for operations on it. A value is
/// restored from its text, satisfies the facets that its number satisfies, and follows the arithmetic of numbers.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  try {
    Run(input);
  } catch (CQnException const&) {
  }
  return 0;
}
