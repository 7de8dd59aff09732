#include "generated/value_rule.h"

#include <gtest/gtest.h>

#include <string>

#include "quillon9/quillon9.h"
#include "values/rules_in_use.h"

namespace Quillon9 {
namespace {

constexpr CFacets Facets(char const* pattern, int minLength = -1, int maxLength = -1,
                         char const* maxInclusive = nullptr) {
  CFacets facets;
  facets.pattern = pattern;
  facets.minLength = minLength;
  facets.maxLength = maxLength;
  facets.maxInclusive = maxInclusive;
  return facets;
}

constexpr CFacets kUpTo9 = Facets(nullptr, -1, -1, "9");
constexpr CFacets kWord = Facets("[a-z]+", 2, 3);
constexpr CFacets kTwoOrThree = Facets("[^,]* [^,]*", 2, 3);
constexpr CFacets kNotDigits = Facets("\\D*|\\d");

constexpr CWhitespaceUtils::WhitespaceRule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
constexpr CValueType kDigit{ItemType_i4, kCollapse, &kUpTo9};
constexpr CValueType kShortWord{ItemType_string, kCollapse, &kWord};
constexpr CValueType kNumber{ItemType_decimal, kCollapse};
constexpr CTypeParts kOfDigits{&kDigit};
constexpr CValueType kDigits{ItemType_string, kCollapse, &kTwoOrThree, nullptr, &kOfDigits};
constexpr char const* kPair[] = {"1 2"};
constexpr CTypeParts kOfPair{&kDigit, nullptr, 0, kPair, 1};
constexpr CValueType kEnumeratedList{ItemType_string, kCollapse, nullptr, nullptr, &kOfPair};

constexpr CValueType const* kMembers[] = {&kDigit, &kShortWord};
constexpr CTypeParts kOfMembers{nullptr, kMembers, 2};
constexpr CValueType kUnion{ItemType_string, kCollapse, nullptr, nullptr, &kOfMembers};
constexpr CTypeParts kOfUnions{&kUnion};
constexpr CValueType kListOfUnions{ItemType_string, kCollapse, &kTwoOrThree, nullptr, &kOfUnions};
constexpr CValueType const* kListOrNumber[] = {&kDigits, &kNumber};
constexpr char const* kListOrNumberValues[] = {"1 2", "1.5"};
constexpr CTypeParts kOfLists{nullptr, kListOrNumber, 2};
constexpr CTypeParts kOfListsOrValues{nullptr, kListOrNumber, 2, kListOrNumberValues, 2};
constexpr CValueType kUnionOfLists{ItemType_string, kCollapse, &kNotDigits, nullptr, &kOfLists};
constexpr CValueType kEnumeratedUnion{ItemType_string, kCollapse, nullptr, nullptr, &kOfListsOrValues};

TEST(ValueRule, FacetsOfListsAndUnions) {
  struct {
    char const* what;
    CValueType const& type;
    char const* accepted[3];
    char const* refused[6];
  } const rows[] = {
      {"the length in items, the facets of each, the pattern of all",
       kDigits,
       {"1 2", " 1\n2\t 3 ", "01 +2"},
       {"", "1", "1 2 3 4", "1 10", "1 x", "1 2,"}},
      {"values of a list", kEnumeratedList, {"1 2", "01  2", "+1 2"}, {"", "1", "2 1", "1 2 2", "1 3", "12"}},
      {"the first member that accepts, with its facets",
       kUnion,
       {"7", "abc", " ab "},
       {"", "10", "a", "abcd", "7a", "ab c"}},
      {"items that are unions",
       kListOfUnions,
       {"7 abc", "ab ab", "1 2 ab"},
       {"", "7", "7 a", "10 ab", "1 2 3 4", "a,b 1"}},
      {"a pattern of a union", kUnionOfLists, {"5", "6", " 7 "}, {"", "1 2", "5.0", "55", "x", "1 10"}},
      {"values of a union", kEnumeratedUnion, {"1 2", "1.50", "01 02"}, {"", "1", "2 1", "1 2 3", "15", "x"}},
  };
  CXmlSerializationContext const ctx;
  RulesInUse::Scope const rules(ValueRules_XmlSchema);
  for (auto const& row : rows) {
    ValueRule const rule("v", row.type, nullptr, nullptr);
    for (char const* const text : row.accepted)
      EXPECT_NO_THROW(rule.Read(text, false, &ctx)) << row.what << ": " << text;
    for (char const* const text : row.refused) {
      EXPECT_THROW(rule.Read(text, false, &ctx), CQnException) << row.what << ": " << text;
    }
  }
}

TEST(ValueRule, FixedValuesOfListsAndUnionsAreComparedByValue) {
  struct {
    CValueType const& type;
    char const* fixed;
    char const* same;
    char const* other;
  } const rows[] = {
      {kDigits, "1 2", "01\n+2", "2 1"},
      {kUnion, "7", "+07", "8"},
      {kListOfUnions, "7 ab", "007  ab", "7 abc"},
  };
  CXmlSerializationContext const ctx;
  RulesInUse::Scope const rules(ValueRules_XmlSchema);
  for (auto const& row : rows) {
    ValueRule const rule("v", row.type, nullptr, row.fixed);
    EXPECT_THROW(rule.Read(row.other, false, &ctx), CQnException) << row.fixed;
    EXPECT_NO_THROW(rule.Read(row.same, false, &ctx)) << row.fixed;
  }
}

}  // namespace
}  // namespace Quillon9
