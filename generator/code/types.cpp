#include "code/types.h"

#include <string_view>
#include <vector>

namespace Quillon9Generator::Code {

using Plan::ValueType;

namespace {

/// What depends on the kind of a value only. The index is the number of the kind.
struct Kind {
  char const* name;        ///< in the library, without "ItemType_"
  char const* cpp;         ///< the type that holds a value
  char const* collection;  ///< the class of the library for repeated values
  bool scalar;
  bool shared;          ///< another kind has the same C++ type
  char const* initial;  ///< for a data member
};

constexpr Kind kKinds[] = {
    {"invalid", "", "", false, false, ""},
    {"hexBinary", "Quillon9::CBinaryData", "ChexBinaryCol", false, true, ""},
    {"base64Binary", "Quillon9::CBinaryData", "Cbase64BinaryCol", false, true, ""},
    {"i1", "std::int8_t", "Ci1Col", true, false, " = 0"},
    {"i2", "std::int16_t", "Ci2Col", true, false, " = 0"},
    {"i4", "std::int32_t", "Ci4Col", true, false, " = 0"},
    {"i8", "std::int64_t", "Ci8Col", true, false, " = 0"},
    {"ui1", "std::uint8_t", "Cui1Col", true, true, " = 0"},
    {"ui2", "std::uint16_t", "Cui2Col", true, true, " = 0"},
    {"ui4", "std::uint32_t", "Cui4Col", true, false, " = 0"},
    {"ui8", "std::uint64_t", "Cui8Col", true, false, " = 0"},
    {"r4", "float", "Cr4Col", true, false, " = 0"},
    {"r8", "double", "Cr8Col", true, false, " = 0"},
    {"duration", "Quillon9::CDateTimeSpan", "CdurationCol", false, false, ""},
    {"yearMonth", "Quillon9::CDateTime", "CyearMonthCol", false, true, ""},
    {"monthDay", "Quillon9::CDateTime", "CmonthDayCol", false, true, ""},
    {"year", "std::uint16_t", "CyearCol", true, true, " = 0"},
    {"month", "std::uint8_t", "CmonthCol", true, true, " = 0"},
    {"day", "std::uint8_t", "CdayCol", true, true, " = 0"},
    {"date", "Quillon9::CDateTime", "CdateCol", false, true, ""},
    {"datetime", "Quillon9::CDateTime", "CdatetimeCol", false, true, ""},
    {"time", "Quillon9::CDateTime", "CtimeCol", false, true, ""},
    {"char", "char", "", true, false, " = 0"},
    {"string", "std::string", "CstringCol", false, false, ""},
    {"boolean", "bool", "CbooleanCol", true, false, " = false"},
    {"decimal", "Quillon9::CDecimal", "CdecimalCol", false, false, ""},
    {"integer", "Quillon9::CBigInteger", "CintegerCol", false, false, ""},
    {"xmlObject", "", "", false, false, ""},
    {"xmlCollection", "", "", false, false, ""},
};

Kind const& Of(Quillon9::ItemType kind) { return kKinds[static_cast<std::size_t>(kind)]; }

/// A pattern that is longer is not shown in a comment.
constexpr std::size_t kLongestPattern = 60;
/// More values are not shown.
constexpr std::size_t kMostValues = 20;

std::string Count(long least, long most, char const* what) {
  std::string const unit = std::string(" ") + what;
  if (least == most) return std::to_string(least) + unit;
  if (most < 0) return std::to_string(least) + " or more" + unit;
  if (least < 0) return "at most " + std::to_string(most) + unit;
  return std::to_string(least) + " to " + std::to_string(most) + unit;
}

/// \p pattern without what the plan has put around it so that it matches whole values.
std::string SchemaPattern(std::string const& pattern) {
  constexpr std::string_view kBefore = "(?:";
  constexpr std::string_view kAfter = ")\\z";
  bool const isWrapped = pattern.size() > kBefore.size() + kAfter.size() &&
                         pattern.compare(0, kBefore.size(), kBefore) == 0 &&
                         pattern.compare(pattern.size() - kAfter.size(), kAfter.size(), kAfter) == 0;
  if (!isWrapped) return pattern;
  return pattern.substr(kBefore.size(), pattern.size() - kBefore.size() - kAfter.size());
}

void Add(std::vector<std::string>& parts, std::string const& value, char const* before, char const* after) {
  if (!value.empty()) parts.push_back(before + value + after);
}

}  // namespace

std::string CppType(ValueType const& value) { return value.isQualifiedName ? "Quillon9::CQName" : Of(value.kind).cpp; }

std::string CollectionType(ValueType const& value) {
  if (value.enumeration != nullptr) return "Quillon9::CEnumCol<" + value.enumeration->cppName + ">";
  return std::string("Quillon9::") + Of(value.kind).collection;
}

bool IsScalar(ValueType const& value) {
  return value.item == nullptr && (value.enumeration != nullptr || Of(value.kind).scalar);
}

bool SharesCppType(Quillon9::ItemType kind) { return Of(kind).shared; }

std::string KindName(Quillon9::ItemType kind) { return std::string("ItemType_") + Of(kind).name; }

std::string Initializer(ValueType const& value) { return value.enumeration != nullptr ? "{}" : Of(value.kind).initial; }

bool HasChecks(Plan::Member const& member) { return member.value.HasChecks() || member.fixedValue.has_value(); }

std::string DescribeFacets(ValueType const& value) {
  Plan::Facets const& facets = value.facets;
  std::vector<std::string> parts;
  Add(parts, facets.minInclusive, "", " or more");
  Add(parts, facets.minExclusive, "more than ", "");
  Add(parts, facets.maxInclusive, "at most ", "");
  Add(parts, facets.maxExclusive, "less than ", "");
  if (value.item != nullptr) {
    if (facets.length >= 0) parts.push_back(Count(facets.length, facets.length, "items"));
    if (facets.minLength >= 0 || facets.maxLength >= 0) {
      parts.push_back(Count(facets.minLength, facets.maxLength, "items"));
    }
  } else if (facets.length >= 0) {
    parts.push_back("length " + std::to_string(facets.length));
  } else if (facets.minLength >= 0 || facets.maxLength >= 0) {
    parts.push_back("length " + Count(facets.minLength, facets.maxLength, ""));
    parts.back().pop_back();
  }
  if (facets.totalDigits >= 0) parts.push_back(Count(-1, facets.totalDigits, "digits"));
  if (facets.fractionDigits >= 0) parts.push_back(Count(-1, facets.fractionDigits, "digits of the fraction"));
  std::string const pattern = SchemaPattern(facets.pattern);
  if (pattern.size() > kLongestPattern) {
    parts.push_back("a pattern");
  } else {
    Add(parts, pattern, "pattern ", "");
  }
  std::string text;
  for (std::string const& part : parts) text += (text.empty() ? "Facets: " : ", ") + part;
  if (!text.empty()) text += '.';
  if (!value.values.empty() && value.values.size() <= kMostValues && value.remark.empty()) {
    std::string list;
    for (std::string const& each : value.values) list += (list.empty() ? "" : ", ") + each;
    text += (text.empty() ? "One of: " : " One of: ") + list + ".";
  }
  if (!value.remark.empty()) text += (text.empty() ? "" : " ") + value.remark;
  std::string const ofItem = value.item != nullptr ? DescribeFacets(*value.item) : "";
  if (!ofItem.empty()) text += (text.empty() ? "Each item: " : " Each item: ") + ofItem;
  return text;
}

}  // namespace Quillon9Generator::Code
