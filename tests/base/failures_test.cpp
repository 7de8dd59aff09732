#include "quillon9/base/failures.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "base/bounded_text.h"
#include "base/failure_detail.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

TEST(BoundedText, CharactersAreNotDivided) {
  struct Row {
    std::string text, atEnd, inMiddle;
  } const rows[] = {
      {"", "", ""},
      {"0123456789", "0123456789", "0123456789"},
      {"0123456789a", "0123456...", "012...789a"},
      {"01\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z", "01\xC3\xA4\xE2\x82\xAC...", "01...\xF0\x9F\x98\x80z"},
      {"012345\xC3\xA4\xC3\xA4\xC3\xA4", "012345...", "012...\xC3\xA4\xC3\xA4"},
      {std::string(11, '\x80'), std::string(7, '\x80') + "...", std::string(3, '\x80') + "..."},
      {std::string("01234\0006789ab", 12), std::string("01234\0006...", 10), "012...89ab"},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(row.atEnd, BoundedText::CutEnd(row.text, 10));
    EXPECT_EQ(row.inMiddle, BoundedText::CutMiddle(row.text, 10));
    EXPECT_EQ(row.atEnd, BoundedText::CutEnd(row.atEnd, 10)) << "cut again";
  }
  std::string const nested(1000000, '[');
  EXPECT_EQ(BoundedText::kMost, BoundedText::CutMiddle(nested).size());
}

TEST(BoundedText, ControlCharactersAreEscaped) {
  struct Row {
    char const* locale;
    std::string text, shown;
  } const rows[] = {
      {"C", std::string("\n\r\t\x1B[31m\0\x7F\\", 11), R"(\n\r\t\x1B[31m\x00\x7F\)"},
      // UTF-8 in a locale that does not know it, as a class with TextEncoding_UTF8 has it
      {"C", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"C", "\xC2\x85\xD8\x9C\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA6", R"(\u{0085}\u{061C}\u{2028}\u{202E}\u{2066})"},
      // neither: lone, overlong, cut, a surrogate, beyond the last character
      {"C", "\xE9", R"(\xE9)"},
      {"C", "\xC0\x8A\xE0\x80\x8A", R"(\xC0\x8A\xE0\x80\x8A)"},
      {"C", "\xE2\x80", R"(\xE2\x80)"},
      {"C.UTF-8", "\xED\xA0\x80\xF4\x90\x80\x80\xFF", R"(\xED\xA0\x80\xF4\x90\x80\x80\xFF)"},
      {"C.UTF-8", "\xE2\x80\xAE\xE2\x82\xAC", "\\u{202E}\xE2\x82\xAC"},
      // A terminal in Latin-1 takes 0x9B for the start of a command, also where the bytes look like UTF-8.
      {"de_DE.ISO-8859-1", "\xE9\x9B\xC3\x9B", "\xE9\\u{009B}\xC3\\u{009B}"},
      {"ja_JP.SJIS", "\x83\x5C\x83", "\x83\x5C\\x83"},
  };
  for (Row const& row : rows) {
    Testing::ScopedLocale const locale(row.locale);
    if (!locale.IsThere()) continue;
    EXPECT_EQ(row.shown, BoundedText::Escape(row.text)) << row.locale;
  }
}

CFailurePlace Place(char const* file, std::uint64_t line, std::uint64_t column, std::int64_t offset, char const* path) {
  CFailurePlace place;
  place.SetFile(file);
  place.SetLine(line);
  place.SetColumn(column);
  place.SetOffset(offset);
  place.SetPath(path);
  return place;
}

TEST(Failures, Reports) {
  struct Row {
    CFailurePlace place;
    FailureSeverity severity;
    std::string text;
    char const* report;
  } const rows[] = {
      {CFailurePlace(), FailureSeverity_Error, "t", "error: t"},
      {CFailurePlace(), FailureSeverity_Remark, "", "remark: "},
      {Place("", 0, 0, -1, "/a/@b"), FailureSeverity_Error, "t", "error: /a/@b: t"},
      {Place("", 12, 7, 90, "/a/b[3]"), FailureSeverity_Error, "t", "12:7: error: /a/b[3]: t"},
      {Place("", 0, 0, 0, "/a"), FailureSeverity_Remark, "t", "@0: remark: /a: t"},
      {Place("o.xml", 0, 0, -1, ""), FailureSeverity_Error, "t", "o.xml: error: t"},
      {Place("o.xml", 12, 7, 90, "/a"), FailureSeverity_Error, "t", "o.xml:12:7: error: /a: t"},
      {Place("o.fi", 0, 0, 90, "/a"), FailureSeverity_Error, "t", "o.fi:@90: error: /a: t"},
      {Place("o\n1:1: error: x", 1, 1, 0, "/a\x1B"), FailureSeverity_Error, "[\r\n]",
       R"(o\n1:1: error: x:1:1: error: /a\x1B: [\r\n])"},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(row.report, CFailure(FailureKind_Other, row.severity, row.place, row.text).GetReport());
  }
  CFailure const hostile(FailureKind_BadValue, FailureSeverity_Error,
                         Place("", 1, 1, 0, std::string(1000000, '\x01').c_str()), std::string(1000000, '\n'));
  EXPECT_EQ(4096U, hostile.GetText().size());
  EXPECT_EQ(4096U, hostile.GetPlace().GetPath().size());
  EXPECT_GT(20000U, hostile.GetReport().size());
}

TEST(Failures, AListKeepsItsLimit) {
  CFailure const error(FailureKind_Count, FailureSeverity_Error, {}, "e");
  CFailure const remark(FailureKind_DroppedText, FailureSeverity_Remark, {}, "r");
  struct Row {
    std::size_t most;
    std::string goesOn;  // after each error
    char const* report;
  } const rows[] = {
      {0, "nn", ""},
      {1, "nn", "error: e\nremark: r\n"},
      {2, "yn", "error: e\nremark: r\nerror: e\nremark: r\n"},
      {9, "yy", "error: e\nremark: r\nerror: e\nremark: r\n"},
  };
  for (Row const& row : rows) {
    CFailureList list(row.most);
    for (int round = 0; round < 2; ++round) {
      EXPECT_TRUE(list.OnFailure(remark) && !list.HasErrors());
      list.Clear();
      for (char const expected : row.goesOn) {
        EXPECT_EQ(expected == 'y', list.OnFailure(error)) << row.most;
        EXPECT_TRUE(list.HasErrors()) << row.most;
        EXPECT_TRUE(list.OnFailure(remark)) << row.most;
      }
      EXPECT_EQ(row.report, list.GetReport());
      EXPECT_GE(2 * row.most, list.GetFailures().size());
      list.Clear();
    }
  }
}

TEST(Failures, AChainAndItsCopiesShareOnePlace) {
  CQnException const without("text");
  EXPECT_EQ(nullptr, without.GetPlace());
  EXPECT_EQ(FailureKind_Other, without.GetKind());
  EXPECT_EQ("error: text", without.GetReport());

  auto cause = OfKind(FailureKind_BadValue, CQnInvalidValueException("cause"));
  CQnInvalidValueException const before(cause);
  CQnException const outer("outer", CQnValidationException("middle", cause));
  CFailureDetail& detail = FailureAccess::DetailOf(cause);
  detail.place = Place("f.xml", 1, 2, 3, "/a");
  detail.hasPlace = true;
  std::unique_ptr<CQnException> const clone(outer.Clone());
  CQnException assigned("other");
  assigned = outer;
  CQnOverFlowException const sliced(outer);
  CQnException temporary(outer);
  CQnException const moved(std::move(temporary));
  for (CQnException const* chain :
       std::initializer_list<CQnException const*>{&cause, &before, &outer, clone.get(), &assigned, &sliced, &moved}) {
    EXPECT_EQ("f.xml:1:2: error: /a: cause", chain->GetReport());
    for (CQnException const* at = chain; at != nullptr; at = at->GetInnerException()) {
      EXPECT_EQ(cause.GetPlace(), at->GetPlace());
      EXPECT_EQ(FailureKind_BadValue, at->GetKind());
    }
  }
}

}  // namespace
}  // namespace Quillon9
