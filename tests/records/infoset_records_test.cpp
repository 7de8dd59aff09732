#include "records/infoset_records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/base/limits.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/fastinfoset/writer.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/streams.h"
#include "record_comparison.h"
#include "support/dump.h"
#include "support/octets.h"
#include "support/scoped_locale.h"
#include "xmlio/node_access.h"

namespace Quillon9 {
namespace {

using Testing::Bytes;
using Testing::CollectNames;
using Testing::CollectRecords;
using Testing::DifferenceOfRecords;
using Testing::Dump;
using Testing::InPieces;
using Testing::Octets;
using Testing::Utf8Context;

constexpr std::size_t kWhole = 1 << 30;

/// A document whose header has no optional components.
std::string Document(std::string const& notation) { return Octets("E0 00 00 01 00 " + notation); }

void Load(CXmlDocument& document, std::string const& octets) {
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
}

std::string Written(std::function<void(CFastInfosetWriter&)> const& write, CFastInfosetContext const& options,
                    FInfoDecl declaration = FInfoDecl_None) {
  CBinaryStream stream;
  CFastInfosetWriter writer(options, stream);
  writer.Open();
  writer.WriteStartDocument(declaration);
  write(writer);
  writer.WriteEndDocument();
  writer.Close();
  return Bytes(stream.GetBinaryStream());
}

/// Many records in two lists, whose values repeat after a while.
void WriteOrders(CFastInfosetWriter& writer) {
  int constexpr kOrders = 900;
  writer.WriteStartElement("orders", "urn:o");
  writer.WriteAttributeString("day", "", "Mon", ItemType_string);
  for (int i = 0; i < kOrders; ++i) {
    if (i % 300 == 0) writer.WriteStartElement("list", "urn:o");
    writer.WriteStartElement("order", "urn:o");
    writer.WriteAttributeString("id", "urn:a", std::to_string(i % 200), ItemType_i4);
    writer.WriteAttributeString("none", "", "", ItemType_string);
    writer.WriteTextElement("n" + std::to_string(i % 40), i % 3 == 0 ? "" : "urn:o", std::to_string(i % 400),
                            ItemType_string);
    writer.WriteTextElement("note", "urn:o", std::string(static_cast<std::size_t>(i % 290), 'x'), ItemType_string);
    writer.WriteTextElement("isPaid", "urn:o", i % 2 != 0 ? "true" : "false", ItemType_boolean);
    writer.WriteEndElement();
    writer.WriteTextElement("rest", "urn:o", std::to_string(i), ItemType_decimal);
    if (i % 300 == 299) writer.WriteEndElement();
  }
  writer.WriteEndElement();
}

/// Compare the records of all names with a whole read.
void ExpectRecordsOfAllNames(std::string const& octets, std::vector<std::size_t> const& batchSizes,
                             std::vector<std::size_t> const& pieceSizes = {1, 2, 3, 7, 64, kWhole}) {
  CXmlSerializationContext const ctx = Utf8Context();
  CXmlDocument whole(ctx);
  Load(whole, octets);
  std::set<std::string> names;
  CollectNames(*whole.GetDocumentElement(), names);
  for (std::string const& name : names) {
    for (std::size_t const batchSize : batchSizes) {
      for (std::size_t const pieceSize : pieceSizes) {
        EXPECT_EQ(DifferenceOfRecords(whole, octets, name, pieceSize, batchSize), "") << pieceSize << ' ' << batchSize;
      }
    }
  }
}

TEST(InfosetRecords, AllFormsOfItems) {
  char const* const rows[] = {
      // Terminators, names and declarations.
      "3C 00'a' 3C 00'b' 3C 00'c' FF 02 FF F0",
      "7C 00'a' 78 00'x' 40'1' F0 7C 00'b' 00 80 FF 01 F0 41 00 80 FF F0",
      "3F 00'p' 00'u' 00'a' 3F 81 81 80 01 F0 F0 3D 80 80 FF F0",
      "38 CF 00'p' 00'u' CD 00'd' CE 00'q' CC CD 81 F0 3D 81 00'a' 38 CF 82 81 F0 3F 82 81 00'b' F0 01 F0 FF",
      "78 F0 3C 00'a' 78 00'x' 00'1' F0 38 F0 00 FF FF",
      // Strings, in the tables or not, and in all encodings.
      "3C 00'a' 3C 00'b' 90'1' F0 01 A0 F0 3C 00'c' A0 90'2' F0 01 A1 80'3' FF",
      "7C 00'a' 78 00'x' 40'1' 78 00'y' 00'2' F0 7C 00'b' 00 80 78 00'y' 48 00'123456789' F0 F0 41 01 81 00 FF FF F0",
      "3C 00'a' 3C 00'b' 92 00'678' 9C 0A 01 0001 FFFE 98 01 1C D5 F0 01 A2 A1 A0 8C 14 38 88 05 20 AD FF",
      "7C 00'a' 78 00'x' 60 01 12 3F F0 7C 00'b' 00 80 78 00'y' 70 21 0102 F0 FF F0",
      // What has no place in a tree.
      "C4 E1 01'pi' 40'y' F0 E2 00'c' 3C 00'a' E2 40'c' 3C 00'b' C8 00'e' E1 80 80 90'1' F0 01 E2 80 A0 FF E2 00'd' F0",
  };
  for (char const* row : rows) ExpectRecordsOfAllNames(Document(row), {1U, 0x10000U});
  // A header with an initial vocabulary, notations and a version.
  ExpectRecordsOfAllNames(Octets("E0 00 00 01 31 18 80 04'urn:v' 00 00'z' 00 00'l' C0 00'n' F0 02'1.0' 3C 00'a' 3C "
                                 "00'b' F0 01 F0 FF"),
                          {1});
}

TEST(InfosetRecords, TablesThatGrowFromRecordToRecord) {
  CFastInfosetContext options;
  options.SetSuggestedValues();
  ExpectRecordsOfAllNames(Written(WriteOrders, options, FInfoDecl_Version10), {3000}, {7});
  options.SetElementMaxAddLength(400);
  CXmlSerializationContext const ctx = Utf8Context();
  CXmlDocument whole(ctx);
  std::string const octets = Written(WriteOrders, options);
  Load(whole, octets);
  for (char const* name : {"{urn:o}order", "{urn:o}list", "{urn:o}note", "{urn:o}n7", "{}n3"}) {
    for (std::size_t const batchSize : {1U, 500U, 0x10000U}) {
      EXPECT_EQ(DifferenceOfRecords(whole, octets, name, 1000, batchSize), "") << batchSize;
    }
  }
}

struct Outcome {
  std::vector<std::string> records;
  std::string failure;  // with its place
};

std::string Described(CQnException const& failure) {
  CFailurePlace const& place = *failure.GetPlace();
  std::string path = place.GetPath();
  for (std::size_t at; (at = path.find("[1]")) != std::string::npos;) path.erase(at, 3);  // known only afterwards
  return failure.GetFullMessage() + " @" + std::to_string(place.GetOffset()) + ' ' + path + ' ' +
         std::to_string(failure.GetKind());
}

/// What a read of records gives. A record that fails and does not end it is there as its failure.
Outcome ReadRecords(std::string const& octets, char const* path, RecordLimits const& limits = {},
                    CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext,
                    std::size_t pieceSize = 64) {
  Outcome outcome;
  std::string const file;
  std::unique_ptr<RecordBatch> batch;
  try {
    auto const stream =
        OpenRecords(InPieces(octets, pieceSize), {RecordPath(path, *ctx.GetNamespaceAliases())}, limits, ctx, file);
    while ((batch = stream->Next(Utf8Text::Use::kNo)) != nullptr) {
      for (std::size_t i = 0; i < batch->Size(); ++i) {
        try {
          outcome.records.push_back(Dump(*batch->Load(i, Utf8Text::Use::kNo)));
        } catch (CQnException const& failure) {
          if (batch->IsAtEnd()) throw;
          outcome.records.push_back(Described(failure));
        }
      }
    }
  } catch (CQnException const& failure) {
    outcome.failure = Described(failure);
  }
  return outcome;
}

/// Compare a read that may fail with a whole one, whose tree has the elements up to the fault.
void ExpectSameEnd(std::string const& octets, std::string const& what) {
  CXmlDocument whole;
  std::string failure;
  try {
    Load(whole, octets);
  } catch (CQnException const& caught) {
    failure = Described(caught);
  }
  std::vector<std::string> expected;
  if (whole.GetDocumentElement() != nullptr) CollectRecords(*whole.GetDocumentElement(), "{}b", expected);
  for (std::size_t const batchSize : {1U, 0x10000U}) {
    RecordLimits limits;
    limits.batchSize = batchSize;
    Outcome const read = ReadRecords(octets, "//{}b", limits);
    ASSERT_EQ(read.failure, failure) << what;
    ASSERT_LE(read.records.size(), expected.size()) << what;
    ASSERT_GE(read.records.size() + (failure.empty() ? 0 : 1), expected.size()) << what;  // one is not whole
    for (std::size_t i = 0; i < read.records.size(); ++i) ASSERT_EQ(read.records[i], expected[i]) << what;
  }
}

TEST(InfosetRecords, DamageEndsTheReadWhereItEndsAWholeRead) {
  std::string const octets = Document(
      "7C 00'a' 78 00'x' 40'1' F0 3C 00'b' 90'1' F0 41 00 80 FF 3F 00'p' 00'u' 00'c' 01 92 00'678' 9C 0A 01 "
      "0001 FFFE F0 42 00 60 01 12 3F FF F0 01 A2 98 01 1C D5 38 CD 00'v' F0 3D 82 81 F0 F0 FF");
  ASSERT_EQ(ReadRecords(octets, "//b").failure, "");
  std::size_t constexpr kHeader = 5;
  for (std::size_t size = kHeader + 1; size < octets.size(); ++size) {
    ExpectSameEnd(octets.substr(0, size), "the first " + std::to_string(size));
  }
  for (std::size_t at = kHeader; at < octets.size(); ++at) {
    for (int const octet : {0x00, 0x05, 0x3C, 0x41, 0x7B, 0x80, 0x8C, 0x9C, 0xA0, 0xA9, 0xB4, 0xC8, 0xCF, 0xF0, 0xFF}) {
      std::string damaged = octets;
      damaged[at] = static_cast<char>(octet);
      ExpectSameEnd(damaged, std::to_string(octet) + " at " + std::to_string(at));
    }
  }
}

/// Sets limits of the process for the life of a scope.
struct Limits {
  std::uint32_t depth = CLimits::GetMaxElementDepth();
  std::uint64_t size = CLimits::GetMaxContentSize();
  std::uint64_t total = CLimits::GetMaxContentTotal();
  ~Limits() {
    CLimits::SetMaxElementDepth(depth);
    CLimits::SetMaxContentSize(size);
    CLimits::SetMaxContentTotal(total);
  }
};

TEST(InfosetRecords, RecordsBeyondALimitArePassedOver) {
  Limits const restored;
  RecordLimits limits;
  limits.mostRecord = 12;
  // The names and values of the second record are those of the third one.
  std::string const large = Document("3C 00'a' 3C 00'b' F0 01 7C 00'c' 78 00'x' 40'1' F0 93 00000000'" +
                                     std::string(259, 'L') + "' FF 01 42 00 80 FF F0 01 A0 FF F0");
  Outcome read = ReadRecords(large, "/a/b", limits);
  EXPECT_EQ(read.failure, "");
  std::vector<std::string> const kept = {"b", "The record exceeds the limit of 12 bytes @12 /a/b[2] 3", "b (c @x=1)",
                                         "b '" + std::string(259, 'L') + "'"};
  EXPECT_EQ(read.records, kept);

  // One that is too large by the end of its last item.
  limits.mostRecord = 3;
  read = ReadRecords(Document("3C 00'a' 3C 00'b' F0 01 A0 F0 01 81'xy' F0 01 F0 FF"), "/a/b", limits);
  EXPECT_EQ(read.failure.substr(0, 60), "Failed to parse FastInfoset. Invalid Index beyond its table.");
  read = ReadRecords(Document("3C 00'a' 3C 00'b' F0 01 90'x' F0 01 A0 F0 01 81'xy' F0 01 F0 FF"), "/a/b", limits);
  std::string const tooLarge = "The record exceeds the limit of 3 bytes @";
  std::vector<std::string> const withoutLarge = {tooLarge + "8 /a/b 3", tooLarge + "12 /a/b[2] 3", "b 'x'",
                                                 tooLarge + "19 /a/b[4] 3", "b"};
  EXPECT_EQ(read.records, withoutLarge);

  CLimits::SetMaxElementDepth(4);
  std::string const deep = Document("3C 00'a' 3C 00'b' F0 01 3C 00'c' 02 38 F0 02 FF FF 01 3C 00'n' FF F0");
  read = ReadRecords(deep, "/a/b");
  EXPECT_EQ(read.failure, "");
  std::vector<std::string> const withoutDeep = {
      "b", "Failed to parse FastInfoset. The element nesting exceeds the limit of 4 levels @20 /a/b[2]/c/c 3", "b (n)"};
  EXPECT_EQ(read.records, withoutDeep);
  CLimits::SetMaxElementDepth(1);
  EXPECT_EQ(ReadRecords(deep, "/a/b").failure,
            "Failed to parse FastInfoset. The element nesting exceeds the limit of 1 levels @9 /a 3");
}

TEST(InfosetRecords, ContentIsLimitedForEachRecord) {
  Limits const restored;
  CLimits::SetMaxContentSize(3000);
  CLimits::SetMaxContentTotal(3000);
  std::string octets = Document("3C 00'a' 3C 00'b' 93 00000000'" + std::string(259, 'L') + "' F0");
  for (int i = 0; i < 20; ++i) octets += Octets("01 A0 A0 F0");
  octets += Octets("01") + std::string(24, '\xA0') + Octets("F0 01 A0 FF");
  Outcome const read = ReadRecords(octets, "/a/b");
  EXPECT_EQ(read.failure, "");
  ASSERT_EQ(read.records.size(), 23u);
  EXPECT_EQ(read.records[20], "b '" + std::string(518, 'L') + "'");
  EXPECT_EQ(read.records[21].substr(0, 57), "The content of the document exceeds the limit of 3000 byt");
  EXPECT_EQ(read.records[22], "b '" + std::string(259, 'L') + "'");
}

TEST(InfosetRecords, TablesAndStartTagsAreLimited) {
  Limits const restored;
  CLimits::SetMaxContentSize(10000);
  std::string octets = Document("3C 00'a' 3C 00'b' F0");
  for (int i = 0; i < 40; ++i) octets += Octets("93 00000000") + std::string(259, static_cast<char>('a' + i % 20));
  Outcome read = ReadRecords(octets + Octets("FF"), "/a/b");
  EXPECT_EQ(read.records, std::vector<std::string>{"b"});
  EXPECT_EQ(read.failure.substr(0, 58), "The tables of the document exceed the limit of 10000 bytes");

  octets = Document("7C 00'a' 78 00'x' 0C 01000000") + std::string(0x1000000 + 265, 'x') + Octets("F0 3C 00'b' FF F0");
  EXPECT_EQ(ReadRecords(octets, "/a/b", {}, CXmlSerializationContext::m_defaultContext, kWhole).failure.substr(0, 71),
            "The start tags of the open elements exceed the limit of 16777216 bytes ");
}

TEST(InfosetRecords, CommentsAreKeptOnWish) {
  CXmlSerializationContext ctx;
  ctx.SetKeepUnknown(true);
  std::string const octets = Document(
      "C4 E1 01'pi' 40'y' F0 3C 00'a' E2 42'one' 3C 00'b' C8 00'e' E1 80 80 F0 01 E2 81 E1 81 00'z' FF E2 81 F0");
  RecordPath const path("/a/b", *ctx.GetNamespaceAliases());
  for (std::size_t const batchSize : {1U, 0x10000U}) {
    RecordLimits limits;
    limits.batchSize = batchSize;
    std::string const file;
    auto const stream = OpenRecords(InPieces(octets, 3), {path}, limits, ctx, file);
    std::string shown;
    while (auto const batch = stream->Next(Utf8Text::Use::kNo)) {
      for (std::size_t i = 0; i < batch->Size(); ++i) {
        for (CMarkup const& each : XmlNodeAccess::MarkupIn(*batch->Load(i, Utf8Text::Use::kNo))) {
          shown += each.target + ':' + each.text + ' ';
        }
        shown += "| ";
      }
    }
    EXPECT_EQ(shown, "pi:y | :one e:z | ");
  }
}

TEST(InfosetRecords, VocabularyOfTheContext) {
  CXmlSerializationContext ctx;
  CFIVocabulary& vocabulary = ctx.GetFIContext()->GetVocabulary();
  vocabulary.AddElement("p", "urn:o", "order");
  vocabulary.AddAttribute("", "", "none");
  vocabulary.AddElementValue("12");
  vocabulary.AddAttributeValue("Mon");
  ctx.GetFIContext()->SetUseGeneratedVocabulary(true);
  std::string const octets = Written(WriteOrders, *ctx.GetFIContext());
  CXmlDocument whole(ctx);
  Load(whole, octets);
  std::vector<std::string> expected;
  CollectRecords(*whole.GetDocumentElement(), "{urn:o}order", expected);
  for (std::size_t const batchSize : {1U, 0x10000U}) {
    RecordLimits limits;
    limits.batchSize = batchSize;
    Outcome const read = ReadRecords(octets, "/*/{urn:o}list/{urn:o}order", limits, ctx);
    EXPECT_EQ(read.failure, "");
    EXPECT_EQ(read.records, expected);
  }
}

TEST(InfosetRecords, AncestorsAndPlaces) {
  std::string const octets = Document(
      "78 CF 00'p' 00'u' F0 3F 81 81 00'a' 78 00'x' 40'1' F0 7C 00'l' 00 80 F0 3C 00'b' F0 02 3C 00'c' 90'1' "
      "FF F0 3C 00'r' F0 42 00 80 F0 FF");
  std::string const file = "orders.finf";
  CXmlSerializationContext const ctx;
  auto const stream = OpenRecords(
      InPieces(octets, 7),
      {RecordPath("/a/r", *ctx.GetNamespaceAliases()), RecordPath("//b", *ctx.GetNamespaceAliases())}, {}, ctx, file);
  std::string shown;
  while (auto const batch = stream->Next(Utf8Text::Use::kNo)) {
    for (std::size_t i = 0; i < batch->Size(); ++i) {
      CXmlElement const* const record = batch->Load(i, Utf8Text::Use::kNo);
      shown += std::to_string(batch->Selection(i)) + batch->Place(i).GetPath();
      if (record->GetFirstElement() == nullptr) continue;
      ASSERT_TRUE(batch->Places().HasPositionsOf(record->GetFirstElement()));
      CFailurePlace const place = batch->Places().Find({record->GetFirstElement()});
      EXPECT_EQ(place.GetPath(), "/p:a/l/b[2]/c");
      EXPECT_EQ(place.GetOffset(), 34);
      EXPECT_EQ(place.GetFile(), file);
    }
  }
  EXPECT_EQ(shown, "1/p:a/l/b1/p:a/l/b[2]0/p:a/r1/p:a/b");
}

TEST(InfosetRecords, AreLoadedInAnyOrder) {
  Limits const restored;
  std::string const chunk = "83 00000000'" + std::string(259, 'L') + "'";
  std::string const octets = Document("3C 00'a' 3C 00'b' 90'1' F0 01 " + chunk + "F0 01 A0 F0 01 A0 80'2' F0 FF");
  CXmlSerializationContext const ctx;
  std::string const file;
  std::string const wanted[] = {"b '1'", "b '" + std::string(259, 'L') + "'", "b '1'", "b '12'"};
  for (bool const areSingle : {false, true}) {
    if (areSingle) {  // all records together are too much
      CLimits::SetMaxContentSize(1000);
      CLimits::SetMaxContentTotal(1000);
    }
    auto const stream =
        OpenRecords(InPieces(octets, kWhole), {RecordPath("/a/b", *ctx.GetNamespaceAliases())}, {}, ctx, file);
    auto const batch = stream->Next(Utf8Text::Use::kNo);
    ASSERT_EQ(batch->Size(), 4u);
    for (std::size_t const record : {3U, 1U, 2U, 2U, 0U, 3U}) {
      CXmlElement const* const element = batch->Load(record, Utf8Text::Use::kNo);
      EXPECT_EQ(Dump(*element), wanted[record]);
      ASSERT_EQ(batch->Ancestors().size(), 1u);
      EXPECT_EQ(batch->Ancestors()[0]->GetLocalName(), "a");
    }
  }
}

TEST(InfosetRecords, RecordsThatAreThereDoNotWait) {
  std::string const octets = Octets("E0 00 00 01 00 3C 00'a' 3C 00'b' F0 01 90'1' F0");
  std::size_t delivered = 0;
  auto input = InputOfFunction([&](char* to, std::size_t size) {
    EXPECT_LT(delivered, octets.size()) << "it would wait for the octets after the second record";
    std::size_t const count = std::min(size, octets.size() - delivered);
    octets.copy(to, count, delivered);
    delivered += count;
    return count;
  });
  CXmlSerializationContext const ctx;
  std::string const file;
  auto const stream = OpenRecords(std::move(input), {RecordPath("/a/b", *ctx.GetNamespaceAliases())}, {}, ctx, file);
  EXPECT_EQ(stream->Next(Utf8Text::Use::kNo)->Size(), 2u);
}

TEST(InfosetRecords, AnInputThatFailsEndsTheRead) {
  std::string const octets = Octets("E0 00 00 01 00 3C 00'a' 3C 00'b' F0 01 3C 00'c' 90'1'");
  bool isRead = false;
  auto input = InputOfFunction([&](char* to, std::size_t size) {
    if (std::exchange(isRead, true)) throw std::runtime_error("the line is dead");
    octets.copy(to, std::min(size, octets.size()));
    return std::min(size, octets.size());
  });
  CXmlSerializationContext const ctx;
  std::string const file;
  auto buffered = std::make_unique<PeekedInput>(std::move(input));
  buffered->Peek(octets.size());
  auto const stream = OpenRecords(std::move(buffered), {RecordPath("/a/b", *ctx.GetNamespaceAliases())}, {}, ctx, file);
  auto const batch = stream->Next(Utf8Text::Use::kNo);
  ASSERT_EQ(batch->Size(), 1u);
  EXPECT_EQ(Dump(*batch->Load(0, Utf8Text::Use::kNo)), "b");
  EXPECT_THROW(stream->Next(Utf8Text::Use::kNo), std::runtime_error);
  EXPECT_THROW(stream->Next(Utf8Text::Use::kNo), std::runtime_error);
}

TEST(InfosetRecords, TextIsHeldAsAskedFor) {
  Testing::ScopedLocale const locale("de_DE.ISO-8859-1");
  if (!locale.IsThere()) GTEST_SKIP() << "no locale de_DE.ISO-8859-1";
  std::string const octets = Document("3C 00'a' 3C 00'b' 91 C3A4 F0 01 A0 FF");
  CXmlSerializationContext const ctx;
  std::string const file;
  auto const stream = OpenRecords(InPieces(octets, 64), {RecordPath("//b", *ctx.GetNamespaceAliases())}, {}, ctx, file);
  auto const batch = stream->Next(Utf8Text::Use::kNo);
  EXPECT_EQ(batch->Load(0, Utf8Text::Use::kNo)->GetText(), "\xE4");
  EXPECT_EQ(batch->Load(0, Utf8Text::Use::kYes)->GetText(), "\xC3\xA4");
  EXPECT_EQ(batch->Load(1, Utf8Text::Use::kYes)->GetText(), "\xC3\xA4");
  EXPECT_EQ(batch->Load(1, Utf8Text::Use::kNo)->GetText(), "\xE4");
}

}  // namespace
}  // namespace Quillon9
