#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <string>
#include <vector>

#include "quillon9/text/encoder.h"
#include "quillon9/text/unicode.h"
#include "quillon9/values/binary_data.h"
#include "support/expect_failure.h"
#include "support/scoped_locale.h"

namespace Quillon9 {
namespace {

using U8 = std::vector<std::uint8_t>;
using U16 = std::vector<std::uint16_t>;
using U32 = std::vector<std::uint32_t>;

/// Runs a converter into a target of \p room units, after measuring.
template <class Target, class Source>
Target Converted(unsigned long (*convert)(Source const*, Source const*, typename Target::value_type*,
                                          typename Target::value_type*),
                 std::vector<Source> const& source, unsigned long measured, std::size_t room = 16) {
  Source const* const begin = source.data();
  EXPECT_EQ(measured, convert(begin, begin + source.size(), nullptr, nullptr));
  Target target(room);
  target.resize(convert(begin, begin + source.size(), target.data(), target.data() + room));
  return target;
}

TEST(Unicode, CharactersOfEverySizeConvertBothWays) {
  U32 const utf32 = {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x10FFFF};
  U16 const utf16 = {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF};
  U8 const utf8 = {0x41, 0x7F, 0xC2, 0x80, 0xDF, 0xBF, 0xE0, 0xA0, 0x80, 0xED, 0x9F, 0xBF, 0xEE,
                   0x80, 0x80, 0xEF, 0xBF, 0xBF, 0xF0, 0x90, 0x80, 0x80, 0xF4, 0x8F, 0xBF, 0xBF};
  EXPECT_EQ(utf32, Converted<U32>(ConvertUTF8toUTF32, utf8, 10));
  EXPECT_EQ(utf8, Converted<U8>(ConvertUTF32toUTF8, utf32, 26, 26));
  EXPECT_EQ(utf32, Converted<U32>(ConvertUTF16toUTF32, utf16, 10));
  EXPECT_EQ(utf16, Converted<U16>(ConvertUTF32toUTF16, utf32, 12));
  EXPECT_EQ(utf8, Converted<U8>(ConvertUTF16toUTF8, utf16, 26, 26));
  EXPECT_EQ(utf16, Converted<U16>(ConvertUTF8toUTF16, utf8, 12));
}

TEST(Unicode, IllegalInputMeasuresAsNothingAndCutOffInputAsWhatIsWritten) {
  EXPECT_EQ(U32{'a'}, Converted<U32>(ConvertUTF8toUTF32, U8{'a', 0xC0, 0x80, 'b'}, 0));
  EXPECT_EQ(U32{'a'}, Converted<U32>(ConvertUTF8toUTF32, U8{'a', 0xE2, 0x82}, 1));
  EXPECT_EQ(U8{'a'}, Converted<U8>(ConvertUTF32toUTF8, U32{'a', 0xD800, 'b'}, 0));
  EXPECT_EQ((U8{'a', 0xEF, 0xBF, 0xBD, 'b'}), Converted<U8>(ConvertUTF32toUTF8, U32{'a', 0x110000, 'b'}, 5));
  EXPECT_EQ(U16{'a'}, Converted<U16>(ConvertUTF32toUTF16, U32{'a', 0x110000, 'b'}, 0));
  EXPECT_EQ(U32{'a'}, Converted<U32>(ConvertUTF16toUTF32, U16{'a', 0xDC00, 'b'}, 0));
  EXPECT_EQ(U32{'a'}, Converted<U32>(ConvertUTF16toUTF32, U16{'a', 0xD800}, 1));
  EXPECT_EQ(U16{'a'}, Converted<U16>(ConvertUTF32toUTF16, U32{'a', 0x10000}, 3, 2)) << "no half character";
}

// Every pair of first bytes, checked against the ranges of table 3-7 of the Unicode Standard; the other bytes are
// valid.
TEST(Unicode, WellFormedSequencesAreThoseOfTheStandard) {
  struct Row {
    int firstLead, lastLead, firstSecond, lastSecond, length;
  };
  constexpr Row kLegal[] = {{0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
                            {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
                            {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  for (int pair = 0; pair < 0x10000; ++pair) {
    std::uint8_t const bytes[] = {
        static_cast<std::uint8_t>(pair >> 8), static_cast<std::uint8_t>(pair), 0x80, 0xBF, 0x80, 0x80};
    int legalLength = bytes[0] < 0x80 ? 1 : 0;
    for (Row const& row : kLegal) {
      bool const isLead = bytes[0] >= row.firstLead && bytes[0] <= row.lastLead;
      if (isLead && bytes[1] >= row.firstSecond && bytes[1] <= row.lastSecond) legalLength = row.length;
    }
    for (int length = 0; length <= 6; ++length) {
      ASSERT_EQ(length > 0 && length == legalLength, IsLegalUTF8(bytes, length)) << pair << ' ' << length;
      ASSERT_EQ(legalLength > 0 && length >= legalLength, IsLegalUTF8Sequence(bytes, bytes + length)) << pair;
    }
  }
}

/// Sets a locale, and the switch back to false, for one test.
class Encoder : public testing::Test {
 protected:
  ~Encoder() override { ASCIIOnly(false); }
  static void Use(char const* locale) { ASSERT_NE(nullptr, std::setlocale(LC_ALL, locale)) << locale; }
  static std::string Local(std::string const& utf8) {
    auto const* bytes = reinterpret_cast<unsigned char const*>(utf8.data());
    std::string const result = CEncoder::Utf8ToLocalCodePage(bytes, static_cast<int>(utf8.size()));
    wchar_t wide[4];
    char narrow[4];
    EXPECT_EQ(result, CEncoder::Utf8ToLocalCodePage(bytes, static_cast<int>(utf8.size()), wide, 4, narrow, 4));
    EXPECT_TRUE(result == utf8 || !CEncoder::IsUtf8SameInLocalCodePage(utf8.data(), utf8.size()));
    return result;
  }
  static std::string Text(CBinaryData const& data) {
    return std::string(data.GetData(), data.GetData() + data.GetLength());
  }
  static std::string Utf8(char const* local) { return Text(CEncoder::LocalCodePageToUtf8Binary(local)); }
  static std::wstring Wide(char const* local) {
    CBinaryData const data = CEncoder::LocalCodePageToUnicodeBinary(local);
    auto const* characters = reinterpret_cast<wchar_t const*>(data.GetData());
    return std::wstring(characters, data.GetLength() / sizeof(wchar_t));
  }

 private:
  Testing::ScopedLocale const m_restored{"C"};
};

struct LocaleRow {
  char const* locale;
  std::string utf8;
  std::string local;  ///< the result of reading
  std::string out;    ///< the result of writing, from \p utf8 taken as text of the locale
  std::wstring wide;  ///< the same as wide characters
};

TEST_F(Encoder, TextConvertsByTheLocaleOfTheCall) {
  LocaleRow const kRows[] = {
      {"C", "0123456789abcdefg", "0123456789abcdefg", "0123456789abcdefg", L"0123456789abcdefg"},
      {"C", "x\xE2\x82\xACy", "x?y", "x???y", L"x???y"},
      {"C", "12345678x\xE2\x82", "12345678x", "12345678x??", L"12345678x??"},
      {"C.UTF-8", "x\xE2\x82\xAC\xF4\x8F\xBF\xBF", "x\xE2\x82\xAC\xF4\x8F\xBF\xBF", "x\xE2\x82\xAC\xF4\x8F\xBF\xBF",
       L"x\u20AC\U0010FFFF"},
      {"C.UTF-8", "x\xE2\x82\xAC\xE2\x82", "x\xE2\x82\xAC", "x\xE2\x82\xAC??", L"x\u20AC??"},
      {"C.UTF-8", "\xED\xA0\x80z", "", "???z", L"???z"},
      {"C.UTF-8", "x\xF4\x90\x80\x80z", "x", "x\xEF\xBF\xBDz", L"x\x110000z"},
  };
  for (LocaleRow const& row : kRows) {
    Use(row.locale);
    EXPECT_EQ(row.local, Local(row.utf8)) << row.locale << ' ' << row.utf8;
    EXPECT_EQ(row.out, Utf8(row.utf8.c_str())) << row.locale << ' ' << row.utf8;
    EXPECT_EQ(row.wide, Wide(row.utf8.c_str())) << row.locale << ' ' << row.utf8;
    EXPECT_EQ("x", Local(std::string("x\0", 2) + row.utf8)) << row.locale << ' ' << row.utf8;
  }
}

// The second byte of the characters here is that of '|'.
TEST_F(Encoder, CharactersOfOneAndOfTwoBytes) {
  LocaleRow const kRows[] = {
      {"de_DE.ISO-8859-1", "x\u00E4\u00E4|", "x\xE4\xE4|", "", L"x\u00E4\u00E4|"},
      {"zh_CN.GB18030", "x\u4E85\u4E85|", "x\x81|\x81||", "", L"x\u4E85\u4E85|"},
      {"ja_JP.SJIS", "x\u30DD\u30DD|", "x\x83|\x83||", "", L"x\u30DD\u30DD|"},
  };
  for (LocaleRow const& row : kRows) {
    Testing::ScopedLocale const locale(row.locale);
    if (!locale.IsThere()) continue;
    EXPECT_EQ(row.local, Local(row.utf8)) << row.locale;
    EXPECT_EQ(row.utf8, Utf8(row.local.c_str())) << row.locale;
    EXPECT_EQ(row.wide, Wide(row.local.c_str())) << row.locale;
  }
}

TEST_F(Encoder, AsciiOnlyKeepsBytesInBothDirections) {
  Use("C");
  ASCIIOnly(true);
  EXPECT_EQ(std::string("x\0\xC3\xBC\xC3", 5), Local(std::string("x\0\xC3\xBC\xC3", 5)));
  EXPECT_EQ("\xC3\xBC\xC3", Utf8("\xC3\xBC\xC3"));
  EXPECT_EQ(L"??", Wide("\xC3\xBC"));
}

TEST_F(Encoder, EmptyNullAndNegative) {
  EXPECT_EQ("", CEncoder::Utf8ToLocalCodePage(static_cast<char const*>(nullptr)));
  EXPECT_EQ("", CEncoder::Utf8ToLocalCodePage(reinterpret_cast<unsigned char const*>("abc"), -1));
  EXPECT_EQ(CBinaryData(), CEncoder::LocalCodePageToUtf8Binary(""));
  EXPECT_EQ(CBinaryData(), CEncoder::UnicodeToUtf8Binary(L""));
  EXPECT_EQ(0U, CEncoder::LocalCodePageToUnicodeBinary("").GetLength());
}

TEST_F(Encoder, WideText) {
  EXPECT_EQ("xy", Text(CEncoder::UnicodeToUtf8Binary(L"xy")));
  EXPECT_EQ("x\xE2\x82\xAC\xEF\xBF\xBD", Text(CEncoder::UnicodeToUtf8Binary(L"x\u20AC\x7FFFFFFF")));
  EXPECT_EQ("", Text(CEncoder::UnicodeToUtf8Binary(L"x\xD800")));
  Use("C.UTF-8");
  EXPECT_EQ("x\xE2\x82\xAC?z", UnicodeToMultiByte(L"x\u20AC\xDC00z"));
}

TEST(Encoding, Utf16IsRefusedInTheFamilyAndAsLogicError) {
  EXPECT_FAILURE(CQnUtf16Exception, "Text in UTF-16 can not be converted", CEncoder::Utf16ToLocalCodePage(nullptr, 0));
  EXPECT_THROW(CEncoder::Utf16ToLocalCodePage(nullptr, 0), std::logic_error);
  CQnException const outer("outer", CQnUtf16Exception("inner"));
  EXPECT_NE(nullptr, dynamic_cast<CQnUtf16Exception const*>(outer.GetInnerException()));
}

}  // namespace
}  // namespace Quillon9
