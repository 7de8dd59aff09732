#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "expect_failure.h"
#include "orders.h"
#include "quillon9/quillon9.h"
#include "record_comparison.h"

using namespace Quillon9;
using Orders::CItems;
using Testing::TextOf;
using Testing::Utf8Context;

namespace {

using Item = CItems::CItem;

std::string ItemText(std::string const& number, std::string const& quantity = "1") {
  return "<item partNum='" + number + "'><productName>Trowel</productName><quantity>" + quantity +
         "</quantity><USPrice>12.50</USPrice></item>\n";
}

std::string Order(std::string const& items) {
  return "<purchaseOrder orderDate='2024-03-18'>\n<items>\n" + items + "</items></purchaseOrder>";
}

std::string Repeated(std::string const& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

/// Takes any content.
struct AnyElement : CElement {
  AnyElement() : CElement("") {}
};

std::string Utf16(std::u16string const& text) {
  std::string octets;
  for (char16_t const unit : text) octets += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
  return octets;
}

/// The part numbers of the records, or what went wrong with them.
std::vector<std::string> PartNumbers(CXmlRecordReader& reader) {
  std::vector<std::string> numbers;
  for (std::string last;;) {
    try {
      CSmartPtr<Item> const item = reader.Next<Item>();
      if (!item) return numbers;
      numbers.push_back(item->GetPartNum());
    } catch (CQnException const& failure) {
      std::string const text = failure.GetReport();
      if (text == last) return numbers;
      numbers.push_back(last = text);
    }
  }
}

}  // namespace

TEST(CXmlRecordReader, ReadsRecordsAndGoesOnAfterABadOne) {
  std::string const text = Order(ItemText("111-AA") + ItemText("222-BB", "many") + ItemText("333-CC") + "<other/>" +
                                 ItemText("4") + ItemText("555-EE"));
  CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()));
  reader.SelectRecords("/purchaseOrder/items/item");
  std::vector<std::string> const numbers = PartNumbers(reader);
  ASSERT_EQ(numbers.size(), 5U);
  EXPECT_EQ(numbers[0], "111-AA");
  EXPECT_NE(numbers[1].find("4:57"), std::string::npos) << numbers[1];
  EXPECT_NE(numbers[1].find("/purchaseOrder/items/item[2]/quantity"), std::string::npos) << numbers[1];
  EXPECT_EQ(numbers[2], "333-CC");
  EXPECT_NE(numbers[3].find("/purchaseOrder/items/item[4]/@partNum"), std::string::npos) << numbers[3];
  EXPECT_EQ(numbers[4], "555-EE");
  EXPECT_EQ(reader.GetCount(), 5U);
  EXPECT_EQ(reader.GetInputOffset(), text.size());
}

TEST(CXmlRecordReader, EndsWithADocumentThatIsNotWellFormed) {
  std::string attributes;
  for (int i = 0; i < 1001; ++i) attributes += "a" + std::to_string(i) + " CDATA #IMPLIED\n";
  struct {
    char const* what;
    std::string text;
    std::size_t records;
    std::string failure;
  } const rows[] = {
      {"a wrong tag in a record", Order(ItemText("111-AA") + "<item>\n</itm>" + ItemText("333-CC")), 1,
       "mismatched tag at line 5 (5)"},
      {"a wrong tag between records", Order(ItemText("111-AA") + "</x>" + ItemText("333-CC")), 1,
       "mismatched tag at line 4 (4)"},
      {"cut off in a record", Order(ItemText("111-AA") + ItemText("222-BB")).substr(0, 180), 1,
       "no element found at line 4 (4)"},
      {"cut off between records", "<purchaseOrder><items>" + ItemText("111-AA"), 1, "no element found at line 2 (2)"},
      {"cut off in a comment", "<purchaseOrder><items>" + ItemText("111-AA") + "<!-- ", 1,
       "unclosed token at line 2 (2)"},
      {"an undeclared entity in a record", Order(ItemText("111-AA") + "<item>&x;</item>"), 1,
       "undefined entity at line 4 (4)"},
      {"an undeclared prefix", Order(ItemText("111-AA") + "<p:item/>"), 1, "unbound prefix at line 4 (4)"},
      {"two roots", Order(ItemText("111-AA")) + "<x/>", 1, "junk after document element at line 4 (4)"},
      {"nothing", "", 0, "XML Stream is empty!"},
      {"half a character", Utf16(u"\uFEFF<purchaseOrder/>\n") + " ", 0,
       "not well-formed (invalid token) at line 2 (2)"},
      {"half a pair", Utf16(u"\uFEFF<purchaseOrder/>\n\xD83D"), 0, "not well-formed (invalid token) at line 2 (2)"},
      {"too many default attributes", "<!DOCTYPE a [<!ATTLIST x " + attributes + ">]><a><x/></a>", 0,
       "The document type declares more than 1000 attributes for the element [x]"},
  };
  for (auto const& row : rows) {
    CXmlRecordReader reader(CRecordSource::Memory(row.text.data(), row.text.size()));
    reader.SelectRecords("//item");
    std::size_t count = 0;
    std::string failure;
    try {
      while (reader.Next<Item>()) ++count;
    } catch (CQnException const& thrown) {
      failure = TextOf(thrown);
    }
    EXPECT_EQ(failure, row.failure) << row.what;
    EXPECT_TRUE(reader.IsAtEnd()) << row.what;
    EXPECT_EQ(reader.GetCount(), row.records) << row.what;
    EXPECT_EQ(count, row.records) << row.what;
    EXPECT_FAILURE(CQnException, failure.substr(0, failure.rfind(" (")), reader.Next<Item>());
  }
}

TEST(CXmlRecordReader, FindsTheElementsOfAPath) {
  std::string const text =
      "<a:list xmlns:a='urn:a' xmlns='urn:b'><row n='1'/><a:row n='2'/><group><row n='3'><row n='4'/></row>"
      "<x xmlns=''><row n='5'/></x></group><row n='6'/></a:list>";
  struct {
    char const* path;
    char const* rows;
  } const rows[] = {
      {"/list/row", "1 2 6 "},      {"/a:list/a:row", "2 "},
      {"/*/row", "1 2 6 "},         {"/list/{urn:b}row", "1 6 "},
      {"//row", "1 2 3 5 6 "},      {"//{}row", "5 "},
      {"/list//x/row", "5 "},       {"/list/row/row", ""},
      {"//group//row", "3 5 "},     {"//row/row", "4 "},
      {"/list/group/*", "3  "},     {"//*//a:*", "2 "},
      {"/list/{urn:a}*", "2 "},     {"/row", ""},
      {"/{urn:a}list//x//*", "5 "}, {"//list", " "},
  };
  for (auto const& row : rows) {
    CXmlSerializationContext ctx;
    ctx.GetNamespaceAliases()->Add("a", "urn:a");
    CFailureList failures;
    ctx.SetFailureSink(&failures);
    CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()), ctx);
    reader.SelectRecords(row.path);
    std::string found;
    while (reader.Advance()) found += reader.GetElement()->GetAttribute("n", "") + " ";
    EXPECT_EQ(found, row.rows) << row.path;
    EXPECT_EQ(failures.GetReport(),
              found.empty() ? "remark: No element matches the path [" + std::string(row.path) + "]\n" : "");
  }
  for (char const* path : {"", "row", "/", "//", "/a/", "/{urn:a/row", "/{urn:a}", "/p:row", "/a///b"}) {
    CXmlRecordReader reader(CRecordSource::Memory("<a/>", 4));
    EXPECT_THROW(reader.SelectRecords(path), CQnInvalidParamException) << path;
  }
}

TEST(CXmlRecordReader, ReadsWhatSurroundsTheRecords) {
  std::string const text =
      "<!DOCTYPE log [<!ENTITY e 'Zo&#xEB;'><!ATTLIST head d CDATA 'x'>]><log v='1'><head n='&e;'/><day d='Mon'>"
      "<r>&e;</r><r/></day><day d='Tue'><r>3</r></day><tail>4</tail></log>";
  CXmlRecordReader reader(CRecordSource(CBinaryData(text.c_str())), Utf8Context());
  std::string seen;
  reader.SelectRecords("/log/day/r");
  reader.OnElement("/log/head", [&](CXmlRecordReader& at) {
    seen += at.GetElement()->GetAttribute("n", "") + at.GetElement()->GetAttribute("d", "") + ";";
  });
  reader.OnElement("/log/tail", [&](CXmlRecordReader& at) { seen += at.GetElement()->GetText() + ";"; });
  EXPECT_FAILURE(CQnInvalidStateException, "There is no record", reader.Read<Item>());
  while (reader.Advance()) {
    std::vector<CXmlElement const*> const around = reader.GetAncestors();
    ASSERT_EQ(around.size(), 2U);
    seen += around[1]->GetAttribute("d", "") + around[0]->GetAttribute("v", "") + reader.GetElement()->GetText() +
            reader.GetPlace().GetPath() + ";";
  }
  EXPECT_EQ(seen, "Zo\xC3\xABx;Mon1Zo\xC3\xAB/log/day/r;Mon1/log/day/r[2];Tue13/log/day[2]/r;4;");
  EXPECT_FAILURE(CQnInvalidStateException, "The read has begun", reader.SelectRecords("//x"));
}

TEST(CXmlRecordReader, PassesOverARecordThatIsTooLarge) {
  std::string const huge = "<item partNum='222-BB'><!-- > ' " + std::string(300000, 'x') +
                           "--><a b='>'/><![CDATA[</item>" + std::string(300000, 'y') + "]]><?p </item>?></item>";
  for (std::string const& text :
       {Order(ItemText("111-AA") + huge + ItemText("333-CC")), Order(huge.substr(0, 250000))}) {
    CXmlRecordReader reader{CRecordSource([&text, at = std::size_t{0}](char* to, std::size_t size) mutable {
      std::size_t const count = text.copy(to, std::min<std::size_t>(size, 1000), at);
      at += count;
      return count;
    })};
    reader.SelectRecords("//item");
    reader.SetMaxRecordSize(200000);
    std::vector<std::string> const numbers = PartNumbers(reader);
    bool const isWhole = text.size() > 300000;
    ASSERT_EQ(numbers.size(), isWhole ? 3U : 2U);
    EXPECT_NE(numbers[isWhole ? 1 : 0].find("The record exceeds the limit of 200000 bytes"), std::string::npos);
    EXPECT_EQ(numbers.back().find("333-CC") == 0, isWhole) << numbers.back();
  }
  std::string const comment = "<a><!--" + std::string(300000, 'x') + "--><item/></a>";
  CXmlRecordReader reader(CRecordSource::Memory(comment.data(), comment.size()));
  reader.SelectRecords("//item");
  reader.SetMaxRecordSize(200000);
  EXPECT_FAILURE(CQnException, "The markup exceeds the limit of 200000 bytes", reader.Skip());
}

TEST(CXmlRecordReader, ThrowsWhatASourceThrows) {
  std::string const start = "<purchaseOrder><items>" + ItemText("111-AA");
  CXmlRecordReader reader{CRecordSource([&start, at = std::size_t{0}](char* to, std::size_t size) mutable {
    if (at == start.size()) throw std::runtime_error("line dropped");
    std::size_t const count = start.copy(to, size, at);
    at += count;
    return count;
  })};
  reader.SelectRecords("//item");
  EXPECT_TRUE(reader.Next<Item>());
  EXPECT_THROW(reader.Next<Item>(), std::runtime_error);
  EXPECT_THROW(reader.Skip(), std::runtime_error);
  EXPECT_EQ(reader.GetCount(), 1U);
}

TEST(CXmlRecordReader, ReadsInSeveralThreads) {
  constexpr int kCount = 5000;
  std::string items;
  std::vector<std::string> numbers;
  for (int i = 0; i < kCount; ++i) {
    numbers.push_back(std::to_string(100 + i % 900) + "-AB");
    items += ItemText(numbers.back(), std::to_string(i % 90 + 1));
  }
  std::string const good = Order("<note>n</note>" + items);
  std::string const bad = Order(items + ItemText("1") + ItemText("2") + items);
  struct {
    std::string const& text;
    RecordOrder order;
    unsigned threads;
    bool throws;
  } const rows[] = {
      {good, RecordOrder_Any, 3, false},    {good, RecordOrder_Document, 3, false}, {good, RecordOrder_Any, 1, false},
      {bad, RecordOrder_Document, 4, true}, {bad, RecordOrder_Any, 0, true},
  };
  for (auto const& row : rows) {
    CXmlRecordReader reader(CRecordSource::Memory(row.text.data(), row.text.size()));
    reader.SelectRecords("//item");
    bool hasNote = false;
    reader.OnElement("//note", [&](CXmlRecordReader& at) { hasNote = at.GetElement()->GetText() == "n"; });
    ASSERT_TRUE(reader.Skip());
    std::mutex mutex;
    std::vector<std::string> seen;
    auto const collect = [&](CSmartPtr<Item> const& item) {
      std::lock_guard<std::mutex> const lock(mutex);
      seen.push_back(item->GetPartNum());
    };
    if (row.throws) {
      EXPECT_THROW(reader.ForEachRecord<Item>(row.threads, collect, row.order), CQnException);
      EXPECT_THROW(reader.Skip(), CQnException);
    } else {
      EXPECT_EQ(reader.ForEachRecord<Item>(row.threads, collect, row.order), kCount - 1U);
      EXPECT_FALSE(reader.Skip());
    }
    EXPECT_EQ(hasNote, !row.throws);
    std::vector<std::string> expected(numbers.begin() + 1, numbers.end());
    if (row.order == RecordOrder_Any) {
      std::sort(seen.begin(), seen.end());
      std::sort(expected.begin(), expected.end());
    }
    if (!row.throws || row.order == RecordOrder_Document) {
      EXPECT_EQ(seen, expected);
    }
  }
}

TEST(CXmlRecordReader, StopsItsThreadsWhenTheFunctionThrows) {
  std::string items;
  for (int i = 0; i < 20000; ++i) items += ItemText("111-AA");
  std::string const text = Order(items);
  for (RecordOrder const order : {RecordOrder_Any, RecordOrder_Document}) {
    CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()));
    reader.SelectRecords("//item");
    std::atomic<int> calls{0};
    auto const fail = [&](CSmartPtr<Item> const&) {
      if (++calls >= 100) throw std::runtime_error("enough");
    };
    EXPECT_THROW(reader.ForEachRecord<Item>(2, fail, order), std::runtime_error);
    EXPECT_LT(calls, 20000);
    EXPECT_THROW(reader.Next<Item>(), std::runtime_error);
  }
}

/// The same for each element name of a document, however the input comes and the records are put together.
TEST(RecordStream, GivesWhatAWholeReadGives) {
  std::string const documents[] = {
      "<a><b>1</b><b>2</b><c><b/></c><b>3</b></a>",
      "<?xml version='1.0' encoding='ISO-8859-1'?>\r\n<!-- x --><l:a xmlns:l='u' b='\xE9'><l:b "
      "c='\xFC'>\xDF</l:b>\r<l:b/></l:a><?p?>",
      "<!DOCTYPE a [<!ENTITY e '1'><!ATTLIST b k CDATA '>'>]><a><b>&e;</b><b "
      "k=\"'\"/><b><![CDATA[<b>]]></b></a>",
      Utf16(u"\uFEFF<a><b/>\u20AC<b>\U0001F600</b></a>"),
      "<?xml-stylesheet href='encoding.xsl' type='text/xsl'?><a><b/></a>",
      "\xEF\xBB\xBF<a xmlns='u' xmlns:p='v'><p:b xmlns:p='w'><p:c/></p:b><p:b p:x='1'/><b xmlns=''><c/></b></a>",
  };
  for (std::string const& octets : documents) {
    CXmlSerializationContext const ctx = Utf8Context();
    CXmlDocument whole(ctx);
    whole.LoadXmlStream(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
    std::set<std::string> names;
    Testing::CollectNames(*whole.GetDocumentElement(), names);
    for (std::string const& name : names) {
      for (std::size_t const piece : {1U, 2U, 3U, 7U, 64U, 100000U}) {
        for (std::size_t const batch : {1U, 20U, 100000U}) {
          EXPECT_EQ(Testing::DifferenceOfRecords(whole, octets, name, piece, batch), "") << octets;
        }
      }
    }
  }
}

TEST(CXmlRecordReader, BeginsAtAnyRecordAndEndsAtAnyOffset) {
  std::string text =
      "<?xml version='1.0' standalone='yes'?><!DOCTYPE a [<!ENTITY e 'x\"y'>]>\n<p:a xmlns:p='u' t='%:\xE2\x82\xAC'>";
  for (int day = 0; day < 5; ++day) {
    text += "<day n='" + std::to_string(day) + "'>";
    for (int i = 0; i < 7; ++i) text += "<p:r>&e;" + std::to_string(i) + "</p:r>\n";
    text += "</day><p:r/>";
  }
  text += "</p:a>";
  auto const read = [&](std::string const& start, std::uint64_t end, std::vector<std::string>& points) {
    CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()), Utf8Context());
    reader.SelectRecords("//r");
    if (!start.empty()) reader.SetStart(start);
    reader.SetEnd(end);
    std::string seen;
    while (reader.Advance()) {
      points.push_back(reader.GetResumePoint());
      for (CXmlElement const* const element : reader.GetAncestors()) {
        seen += element->GetAttribute("n", "") + element->GetAttribute("t", "");
      }
      seen += reader.GetElement()->GetText() + std::to_string(reader.GetPlace().GetOffset()) + "/" +
              std::to_string(reader.GetPlace().GetLine()) + "/" + std::to_string(reader.GetPlace().GetColumn()) + ";";
    }
    return seen;
  };
  std::vector<std::string> points;
  std::vector<std::string> unused;
  std::string const whole = read("", text.size(), points);
  ASSERT_EQ(points.size(), 40U);
  for (std::string const& point : points) {
    std::size_t const offset = std::stoul(point.substr(point.find(':') + 1));
    EXPECT_EQ(read("", offset, unused) + read(point, text.size(), unused), whole) << point;
    EXPECT_EQ(read("", offset - 1, unused) + read(point, offset + 1, unused) + read(point, text.size(), unused),
              read("", offset + 1, unused) + read(point, text.size(), unused))
        << point;
  }
  for (char const* point : {"", "records1", "records1:1:2:3:x:r:", "records1:1:2:3:4:r:%4", "records1:1:2:3:4:r::1"}) {
    CXmlRecordReader reader(CRecordSource::Memory("<a/>", 4));
    EXPECT_THROW(reader.SetStart(point), CQnInvalidParamException) << point;
  }
  CXmlRecordReader reader{CRecordSource([](char*, std::size_t) { return std::size_t{0}; })};
  reader.SetStart(points[3]);
  EXPECT_FAILURE(CQnInvalidStateException, "The input cannot be read from a place in the middle", reader.Skip());
}

TEST(CXmlRecordReader, RefusesAStartThatOpensNoElements) {
  std::string const text = "<a><g><r/></g><g><r/></g><g><r/></g></a>";
  for (char const* point : {"records1:3:1:4:1:r::1:%3Ca%2F%3E", "records1:3:1:4:1:r::1:%3Ca%3E:1:%3Cb%3E%3C/b%3E",
                            "records1:3:1:4:1:r::1:%3Ca%3E:1:t%3Cb%3E", "records1:3:1:4:1:r::1:%3Ca",
                            "records1:3:1:4:1:r:%3C%3Fxml%20version%3D%271%27%20standalone%3D%27yes%27%3F%3E",
                            "records1:18446744073709551615:1:4:1:r::1:%3Ca%3E"}) {
    CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()));
    reader.SelectRecords("//r");
    reader.SetStart(point);
    EXPECT_THROW(while (reader.Skip()){}, CQnException) << point;
  }
  CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()));
  reader.SelectRecords("//r");
  reader.SetStart("records1:17:1:18:1:r::1:%3Ca%3E:2:%3Cg%3E");
  ASSERT_TRUE(reader.Skip() && reader.Skip());
  EXPECT_EQ(reader.GetPlace().GetPath(), "/a/g[3]/r");
}

TEST(RecordStream, FindsTheStartOfAReferenceThatComesInPieces) {
  std::string const text = "<a>\n\n  &undeclared;</a>";
  for (std::size_t const piece : {1U, 3U, 100U}) {
    std::size_t at = 0;
    CXmlRecordReader reader{CRecordSource([&](char* to, std::size_t size) {
      std::size_t const count = text.copy(to, std::min(size, piece), at);
      at += count;
      return count;
    })};
    reader.SelectRecords("//r");
    try {
      reader.Skip();
      ADD_FAILURE();
    } catch (CQnException const& failure) {
      EXPECT_EQ(failure.GetPlace()->GetOffset(), 7) << piece;
      EXPECT_EQ(failure.GetPlace()->GetColumn(), 3U) << piece;
    }
  }
}

TEST(CXmlRecordReader, HasLimitsForWhatItKeeps) {
  std::string const three = Order(ItemText("111-AA") + ItemText("222-BB", std::string(90, '1')) + ItemText("333-CC"));
  CXmlRecordReader reader(CRecordSource::Memory(three.data(), three.size()));
  reader.SelectRecords("//item");
  reader.SetMaxRecordSize(150);
  std::vector<std::string> const numbers = PartNumbers(reader);
  ASSERT_EQ(numbers.size(), 3U);
  EXPECT_NE(numbers[1].find("The record exceeds the limit of 150 bytes"), std::string::npos) << numbers[1];
  std::string const tags = "<a b='" + std::string(9000000, 'x') + "'><a b='" + std::string(9000000, 'x') + "'><item/>";
  CXmlRecordReader nested(CRecordSource::Memory(tags.data(), tags.size()));
  nested.SelectRecords("//item");
  EXPECT_FAILURE(CQnException, "The start tags of the open elements exceed the limit of 16777216 bytes", nested.Skip());
  std::string const deep = "<a><item>" + Repeated("<b>", 3000) + Repeated("</b>", 3000) + "</item><item/></a>";
  CXmlRecordReader levels(CRecordSource::Memory(deep.data(), deep.size()));
  levels.SelectRecords("//item");
  EXPECT_FAILURE(CQnException, "The element nesting exceeds the limit of 1000 levels", levels.Skip());
  EXPECT_TRUE(levels.Skip());
}

TEST(CXmlRecordReader, RefusesToGoOnInAHandler) {
  std::string const text = "<a><h/><r/><r/><h/><r/></a>";
  for (bool const isParallel : {false, true}) {
    CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()));
    reader.SelectRecords("//r");
    int failures = 0;
    reader.OnElement("//h", [&](CXmlRecordReader& at) {
      EXPECT_FAILURE(CQnInvalidStateException, "A handler of the reader cannot go on with the read", at.Skip());
      EXPECT_EQ(at.GetElement()->GetLocalName(), "h");
      if (++failures == 2) throw std::runtime_error("no more");
    });
    std::atomic<int> count{0};
    auto const read = [&] {
      if (isParallel)
        return void(reader.ForEachRecord<AnyElement>(
            2, [&](auto const&) { ++count; }, RecordOrder_Document));
      while (reader.Skip()) ++count;
    };
    EXPECT_THROW(read(), std::runtime_error);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(failures, 2);
  }
}

TEST(CXmlRecordReader, EndsWhereWhatIsAroundTheRecordsIsReadTooOften) {
  std::uint64_t const before = CLimits::GetMaxContentSize();
  CLimits::SetMaxContentSize(0x100000);
  std::string const type = "<!DOCTYPE a [<!ENTITY e '" + std::string(100000, 'x') + "'>]>";
  struct {
    std::string text;
    bool isRead;
  } const rows[] = {
      {type + "<a>" + Repeated("<g><r/></g>", 1000) + "</a>", false},
      {type + "<a>" + Repeated("<r/>", 1000) + "</a>", true},
      {"<a>" + Repeated("<g><r/></g>", 10000) + "</a>", true},
      {type.substr(0, type.size() - 2) + "<!ENTITY f '&e;&e;&e;&e;&e;'>]><a>" + Repeated("<g><r>&f;</r></g>", 1000) +
           "</a>",
       false},
  };
  for (auto const& row : rows) {
    CXmlRecordReader reader(CRecordSource::Memory(row.text.data(), row.text.size()));
    reader.SelectRecords("//r");
    std::string failure;
    try {
      while (reader.Skip()) {
      }
    } catch (CQnException const& thrown) {
      failure = thrown.GetMessage();
    }
    EXPECT_EQ(failure.find("The content of the document exceeds the limit of ") == 0, !row.isRead) << failure;
    EXPECT_TRUE(reader.IsAtEnd());
  }
  CLimits::SetMaxContentSize(before);
}

TEST(CXmlRecordReader, ShowsTreesOfRecordsThatItReads) {
  std::string const text = Order(Repeated(ItemText("111-AA"), 1000));
  CXmlRecordReader reader(CRecordSource::Memory(text.data(), text.size()));
  reader.SelectRecords("//item");
  int count = 0;
  for (; reader.Advance(); ++count) {
    ASSERT_EQ(reader.GetElement()->GetAttribute("partNum", ""), reader.Read<Item>()->GetPartNum());
  }
  EXPECT_EQ(count, 1000);
}
