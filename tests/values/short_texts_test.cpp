// Truncated texts: every function that reads a text gets each text of one octet, and of two octets that a grammar
// knows. The checks of the standard library (_GLIBCXX_ASSERTIONS) and the sanitizers detect reads beyond the end.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "fastinfoset/algorithms.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/pattern.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/schema_values.h"
#include "quillon9/values/variant.h"
#include "support/scoped_locale.h"
#include "values/fixed_pattern.h"

namespace Quillon9 {
namespace {

constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;

std::vector<std::string> ShortTexts() {
  using namespace std::string_view_literals;
  constexpr auto kSecond = "019aAbBdDeEfFgGhHiIlmMnNpPsStTwxXyYZ+-.:/=%\\[](){}*?^$|#,_ \t\r\n\0\x7F\x80\xC3\xFF"sv;
  std::vector<std::string> texts{""};
  for (int first = 0; first < 256; ++first) texts.emplace_back(1, static_cast<char>(first));
  for (char const first : kSecond) {
    for (char const second : kSecond) texts.push_back({first, second});
  }
  return texts;
}

/// Whether \p action passes; otherwise it must fail with one of the library's own exceptions.
template <class Action>
bool Passes(Action action) {
  try {
    action();
    return true;
  } catch (CQnException const& failure) {
    EXPECT_FALSE(failure.GetMessage().empty());
    return false;
  }
}

// Texts need no zero after them here. What is read prints as a text that reads back as the same value.
TEST(ShortTexts, EveryKindOfValueByTheRulesOfXmlSchema) {
  for (std::string const& text : ShortTexts()) {
    std::vector<char> const exact(text.begin(), text.end());
    std::string_view const view(exact.data(), exact.size());
    for (int form = 0; form <= static_cast<int>(SchemaForm::QName); ++form) {
      CSchemaValues::HasForm(view, static_cast<SchemaForm>(form));
    }
    for (int kind = ItemType_hexBinary; kind <= ItemType_integer; ++kind) {
      auto const type = static_cast<ItemType>(kind);
      QnVariant value;
      if (!Passes([&] { value = CSchemaValues::FromText(view, type, kNone); })) continue;
      if (type == ItemType_char && value.GetChar() == '\0') continue;  // which no document has
      QnVariant const again = CSchemaValues::FromText(CSchemaValues::ToText(value), type, kNone);
      EXPECT_EQ(ValueOrder_Equal, CSchemaValues::Compare(value, again)) << text << kind;
    }
  }
}

TEST(ShortTexts, EveryKindOfValueAndBound) {
  for (std::string const& text : ShortTexts()) {
    CPrimitiveRestrictions const bounds("", -1, -1, text, text, text, text, -1);
    for (int kind = ItemType_hexBinary; kind <= ItemType_integer; ++kind) {
      auto const type = static_cast<ItemType>(kind);
      QnVariant value;
      bool const isRead = Passes([&] { value.FromString(text, type, kNone); });
      EXPECT_EQ(isRead, value.IsValid()) << text << kind;
      if (isRead) Passes([&] { value.ToString(); });
      if (isRead && type != ItemType_char) {
        Passes([&] { CXmlObjectHelper::CheckRestriction("a", value, type, bounds); });
      }
    }
  }
}

TEST(ShortTexts, NumbersAreReadAsLibcDoes) {
  Testing::ScopedLocale const point("C");
  for (std::string const& text : ShortTexts()) {
    char* end = nullptr;
    double const floating = std::strtod(text.c_str(), &end);
    if (!text.empty() && *end == '\0') {
      EXPECT_EQ(floating, CConversions::r8FromString(text, kNone)) << text;
    }
    if (*end != '\0') {
      EXPECT_FALSE(Passes([&] { CConversions::r4FromString(text, kNone); })) << text;
    }
    long const whole = std::strtol(text.c_str(), &end, 10);
    if (*end == '\0') {
      EXPECT_EQ(whole, CConversions::i4FromString(text, kNone)) << text;
    }
    if (*end != '\0') {
      EXPECT_FALSE(Passes([&] { CConversions::ui8FromString(text, kNone); })) << text;
    }
  }
}

TEST(ShortTexts, DatesAndFormats) {
  for (std::string const& text : ShortTexts()) {
    CDateTime date(2001, 2, 3, 4, 5, 6);
    Passes([&] { date.SetZone(text.c_str()); });
    for (void (CDateTime::*parse)(char const*) :
         {&CDateTime::ParseXSDDate, &CDateTime::ParseXSDTime, &CDateTime::ParseXSDDateTime}) {
      EXPECT_FALSE(Passes([&] { (CDateTime().*parse)(text.c_str()); })) << text;
    }
    Passes([&] { CDateTime(2001, 2, 3).ToString(text.c_str()); });
    Passes([&] { CDateTime(2001, 2, 3).ToString(("%" + text).c_str()); });
    Passes([&] { CConversions::r8ToString(1.5, ("%" + text).c_str()); });
    Passes([&] { CConversions::decimalToString(CDecimal("1.5"), text.c_str()); });
  }
}

TEST(ShortTexts, Patterns) {
  for (std::string const& text : ShortTexts()) {
    bool matches = false;
    bool const isPattern = Passes([&] { matches = TestRegEx(text, "a"); });
    auto const fixed = CFixedPattern::Parse(text);
    if (fixed) {
      EXPECT_TRUE(isPattern && matches == fixed->Matches("a")) << text;
    }
    Passes([&] { TestRegEx("." + text, text); });
    for (char const* opening : {"[", "\\", "(", "a{", "\\p{"}) Passes([&] { TestRegEx(opening + text, text); });
  }
}

TEST(ShortTexts, FastInfosetAlgorithms) {
  for (std::string const& text : ShortTexts()) {
    for (unsigned long algorithm = 1; algorithm <= 10; ++algorithm) {
      std::string octets;
      if (!Passes([&] { AppendEncoded(algorithm, text.c_str(), octets); })) {
        EXPECT_EQ("", octets);
      }
      Passes([&] { DecodedText(algorithm, reinterpret_cast<unsigned char const*>(text.data()), text.size()); });
    }
  }
}

}  // namespace
}  // namespace Quillon9
