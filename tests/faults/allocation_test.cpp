// Simulates a lack of memory: in each row one allocation fails, or all from one on, starting with the first, then the
// second, until the row passes. The failure is reported, nothing leaks, and a second try gives the result that the
// first should have given.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "base/fast_paths.h"
#include "failing_allocations.h"
#include "octets.h"
#include "quillon9/quillon9.h"
#include "sample_order.h"

#ifndef QN_THREAD_SANITIZER

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;
using Orders::CPurchaseOrderType;

constexpr auto& kDefault = CXmlSerializationContext::m_defaultContext;

/// The operation under test: `act` runs under the shortage, `show` without it.
struct Subject {
  std::function<void()> act;
  std::function<std::string()> show;
};

enum class Promise {
  Report,      ///< a failure is reported, and a second try works
  KeepsState,  ///< and the failed operation changed nothing
  NeverFails   ///< it succeeds without the memory
};

struct Row {
  char const* name;
  Subject (*make)();
  Promise promise = Promise::Report;
};

struct Outcome {
  bool isStarved = false;
  std::string failure;  ///< empty when the operation passed
  std::string secondFailure;
  std::string before;
  std::string afterFailure;
  std::string shown;
};

template <class Act>
std::string FailureOf(Act act) {
  try {
    act();
  } catch (std::bad_alloc const&) {
    return "out of memory";
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  } catch (...) {
    return "a failure of a foreign class";
  }
  return "";
}

/// Runs in a separate thread, so that what the library remembers for a thread is empty, and gone afterwards.
Outcome Try(Row const& row, unsigned long passing, Shortage shortage) {
  Outcome outcome;
  std::thread([&] {
    Subject const subject = row.make();
    if (row.promise == Promise::KeepsState) outcome.before = subject.show();
    outcome.failure = FailureOf([&] {
      FailingAllocations const failing(passing, shortage);
      subject.act();
    });
    outcome.isStarved = FailingAllocations::HasFailed();
    if (!outcome.failure.empty()) {
      if (row.promise == Promise::KeepsState) outcome.afterFailure = subject.show();
      outcome.secondFailure = FailureOf(subject.act);
    }
    outcome.shown = outcome.secondFailure.empty() ? subject.show() : outcome.secondFailure;
  }).join();
  return outcome;
}

/// The ways in which a failed allocation may be reported. A file that libc has no memory to open counts as one that
/// does not open.
bool IsReport(std::string const& failure) {
  for (char const* text :
       {"out of memory", "Failed to compress data. [Error Code: -4]", "failed to get memory",
        "failed to allocate heap memory", "Failed to open the file", "Failed to write data to the file"}) {
    if (failure.find(text) != std::string::npos) return true;
  }
  return false;
}

constexpr unsigned long kNever = ~0UL;

void ExpectAllShortagesReported(Row const& row, Shortage shortage) {
  Try(row, kNever, shortage);  // creates what the process keeps for ever
  Outcome const whole = Try(row, kNever, shortage);
  ASSERT_EQ("", whole.failure);
  std::string const& expected = whole.shown;
  unsigned long reports = 0;
  for (unsigned long passing = 0;; ++passing) {
    SCOPED_TRACE(passing);
    long const live = CountLiveAllocations();
    {
      Outcome const outcome = Try(row, passing, shortage);
      ASSERT_EQ(expected, outcome.shown) << outcome.failure;
      if (!outcome.isStarved) break;
      if (!outcome.failure.empty()) {
        ++reports;
        ASSERT_TRUE(IsReport(outcome.failure)) << outcome.failure;
        ASSERT_EQ(outcome.before, outcome.afterFailure);
      }
    }
    ASSERT_EQ(live, CountLiveAllocations()) << "allocations that nobody freed";
  }
  EXPECT_EQ(row.promise == Promise::NeverFails, reports == 0) << reports << " failures";
}

void ExpectAllShortagesReported(Row const& row) {
  SCOPED_TRACE(row.name);
  ExpectAllShortagesReported(row, Shortage::One);
  ExpectAllShortagesReported(row, Shortage::Lasts);
}

template <std::size_t count>
void ExpectAllShortagesReported(Row const (&rows)[count]) {
  for (Row const& row : rows) ExpectAllShortagesReported(row);
}

// ---- Reading

std::string const& OrderFile() {
  static std::string const path = testing::TempDir() + "allocation_test.xml";
  return path;
}

CBinaryData OrderAs(bool isFastInfoset, CompressionType compression) {
  if (isFastInfoset) return NewOrder()->ToFastInfosetStream(FInfoDecl_None, kDefault, compression);
  return NewOrder()->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, kDefault, compression);
}

template <class Read>
Subject Reading(Read read) {
  auto const order = CPurchaseOrderType::CreateInstance();
  return {[=] { read(*order.Get()); }, [=] { return order->ToXml(); }};
}

Subject ReadingStream(bool isFastInfoset, CompressionType compression) {
  return Reading([data = OrderAs(isFastInfoset, compression)](CXmlObjectBase& order) { order.FromXmlStream(data); });
}

Subject ReadingWideText() {
  std::wstring const wide(kOrder, kOrder + sizeof kOrder - 1);
  return Reading([wide](CXmlObjectBase& order) { order.FromXml(wide.c_str()); });
}

Subject ReadingRefusedText() {
  auto const order = CPurchaseOrderType::CreateInstance();
  auto const refusal = std::make_shared<std::string>();
  return {[=] {
            try {
              order->FromXml("<purchaseOrder><shipTo><name>N</name></shipTo></purchaseOrder>");
            } catch (CQnException const& failure) {
              std::string message = failure.GetFullMessage();
              if (message.find("required element [street]") == std::string::npos) throw;
              *refusal = std::move(message);
            }
          },
          [=] { return *refusal; }};
}

Subject ReadingGenericContent() {
  CSmartPtr<CElement> const element(new CElement("r", ""));
  return {[=] {
            CXmlDocument document;
            document.LoadXml("<r xmlns='urn:a' a='1'>text<b><c d='2' xmlns=''/></b><b/></r>");
            element->CopyXmlElement(document.GetDocumentElement());
          },
          [=] { return element->ToXml(); }};
}

TEST(Allocation, Reading) {
  NewOrder()->ToXmlFile(OrderFile().c_str());
  Row const rows[] = {
      {"text", [] { return Reading([](CXmlObjectBase& order) { order.FromXml(kOrder); }); }},
      {"wide text", &ReadingWideText},
      {"bytes", [] { return ReadingStream(false, CompressionType_None); }},
      {"gzip", [] { return ReadingStream(false, CompressionType_GZip); }},
      {"zlib", [] { return ReadingStream(false, CompressionType_ZLib); }},
      {"Fast Infoset", [] { return ReadingStream(true, CompressionType_None); }},
      {"Fast Infoset in gzip", [] { return ReadingStream(true, CompressionType_GZip); }},
      {"file", [] { return Reading([](CXmlObjectBase& order) { order.FromXmlFile(OrderFile().c_str()); }); }},
      {"refused text", &ReadingRefusedText},
      {"generic content", &ReadingGenericContent},
  };
  ExpectAllShortagesReported(rows);
  std::remove(OrderFile().c_str());
}

// ---- Writing

template <class Write>
Subject Writing(Write write) {
  auto const order = NewOrder();
  auto const written = std::make_shared<std::string>();
  return {[=] { *written = write(*order.Get()); }, [=] { return *written; }};
}

Subject WritingStream(XmlEncoding encoding, CompressionType compression) {
  return Writing([=](CXmlObjectBase& order) {
    return Bytes(order.ToXmlStream(true, true, encoding, EOLType_LF, kDefault, compression));
  });
}

Subject WritingFastInfoset(CompressionType compression) {
  return Writing(
      [=](CXmlObjectBase& order) { return Bytes(order.ToFastInfosetStream(FInfoDecl_None, kDefault, compression)); });
}

std::string WriteUnderManyOptions(CXmlObjectBase& order) {
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:a:default:namespace");
  ctx.GetNamespaceAliases()->Add("p", "urn:a:namespace:with:an:alias");
  ctx.GetAdditionalRootAttributes()->Add("a", "1", "urn:a:namespace:without:one");
  ctx.GetProcessingInstructions().push_back("<?a-processing-instruction?>");
  CXmlSerializationContext const copy(ctx);
  return order.ToXml(true, true, EOLType_LF, copy) + Bytes(order.ToFastInfosetStream(FInfoDecl_None, copy));
}

Subject WritingFile() {
  auto const order = NewOrder();
  return {[=] { order->ToXmlFile(OrderFile().c_str()); },
          [] {
            auto const copy = CPurchaseOrderType::CreateInstance();
            copy->FromXmlFile(OrderFile().c_str());
            return copy->ToXml();
          }};
}

/// A record that fails for want of memory is written again.
Subject WritingRecords(bool isInfoset) {
  return Writing([=](CXmlObjectBase& order) {
    std::string output;
    CXmlRecordWriter writer(CRecordTarget::Memory(output));
    if (isInfoset) writer.SetFastInfoset();
    writer.OpenElement("orders");
    writer.WriteAttribute("a", "1", "urn:a:namespace:without:a:prefix");
    for (int i = 0; i < 3; ++i) {
      if (!FailureOf([&] { writer.Write(order, "order"); }).empty()) writer.Write(order, "order");
    }
    writer.Finish();
    return output;
  });
}

TEST(Allocation, Writing) {
  Row const rows[] = {
      {"text", [] { return Writing([](CXmlObjectBase& order) { return order.ToXml(); }); }},
      {"UTF-8", [] { return WritingStream(XmlEncoding_UTF8, CompressionType_None); }},
      {"UTF-16", [] { return WritingStream(XmlEncoding_UTF16, CompressionType_None); }},
      {"gzip", [] { return WritingStream(XmlEncoding_UTF8, CompressionType_GZip); }},
      {"zlib", [] { return WritingStream(XmlEncoding_UTF8, CompressionType_ZLib); }},
      {"Fast Infoset", [] { return WritingFastInfoset(CompressionType_None); }},
      {"Fast Infoset in gzip", [] { return WritingFastInfoset(CompressionType_GZip); }},
      {"many options", [] { return Writing(&WriteUnderManyOptions); }},
      {"file", &WritingFile},
      {"records", [] { return WritingRecords(false); }},
      {"records in Fast Infoset", [] { return WritingRecords(true); }},
  };
  ExpectAllShortagesReported(rows);
  std::remove(OrderFile().c_str());
}

// Otherwise a document that was cut short would close without a failure.
TEST(Allocation, ElementThatFailsHalfWayStaysOpen) {
  std::string const text(3000000, '<');
  int halfWay = 0;
  bool hasFailed = true;
  for (unsigned long passing = 0; hasFailed; ++passing) {
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.WriteStartElement("r", "");
    hasFailed = !FailureOf([&] {
                   FailingAllocations const shortage(passing, Shortage::One);
                   writer.WriteTextElement("a", "", text, ItemType_string);
                 }).empty();
    writer.WriteEndElement();
    bool const isHalfWay = hasFailed && std::string_view(stream.GetText()).find("<a") != std::string_view::npos;
    EXPECT_EQ(isHalfWay, !FailureOf([&] { writer.Close(); }).empty()) << passing;
    if (isHalfWay) ++halfWay;
  }
  EXPECT_GT(halfWay, 1);
}

// ---- Values

/// \p value, and what \p act does to it.
template <class Value, class Act, class Show>
Subject Changing(Value value, Act act, Show show) {
  auto const shared = std::make_shared<Value>(std::move(value));
  return {[=] { act(*shared); }, [=] { return show(*shared); }};
}

constexpr char kNumber[] = "-12345678901234567890123456789012345678901234567890.123456789";

template <class Act>
Subject ChangingDecimal(Act act) {
  return Changing(CDecimal(kNumber), act, [](CDecimal const& value) { return value.ToString(); });
}

template <class Act>
Subject ChangingInteger(Act act) {
  return Changing(CBigInteger(std::string(400, '7').c_str()), act,
                  [](CBigInteger const& value) { return value.ToString(); });
}

template <class Act>
Subject ChangingVariant(Act act) {
  QnVariant value;
  value.SetString("a text that does not fit into the string object itself");
  return Changing(std::move(value), act, [](QnVariant const& v) { return v.GetType() + ' ' + v.ToString(); });
}

/// The holder of the bytes is shared, so a change copies it first.
template <class Act>
Subject ChangingBytes(Act act) {
  auto const values = std::make_shared<std::pair<CBinaryData, CBinaryData>>();
  values->first.SetBuffer("bytes");
  values->second = values->first;
  return {[=] { act(values->first); },
          [=] { return values->first.GetAsHexString() + ' ' + values->second.GetAsHexString(); }};
}

template <class Act>
Subject ChangingCollection(Act act) {
  CSmartPtr<CdecimalCol> const values(new CdecimalCol("v", "", 0, -1, "", -1, -1, "0", kNumber + 1, "", "", -1,
                                                      CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
  values->AddFromString("1");
  return {[=] { act(*values.Get()); },
          [=] {
            std::string text;
            for (CDecimal const& value : *values.Get()) text += value.ToString() + ' ';
            return text;
          }};
}

TEST(Allocation, ChangesOfValuesHappenWholeOrNotAtAll) {
  Row const rows[] = {
      {"decimal +=", [] { return ChangingDecimal([](CDecimal& v) { v += CDecimal("0.00000000000000000000001"); }); }},
      {"decimal *=", [] { return ChangingDecimal([](CDecimal& v) { v *= CDecimal(kNumber); }); }},
      {"decimal /=", [] { return ChangingDecimal([](CDecimal& v) { v /= CDecimal("-7.000000000000000001"); }); }},
      {"decimal =", [] { return ChangingDecimal([](CDecimal& v) { v = CDecimal(std::string(99, '1').c_str()); }); }},
      {"decimal parsed", [] { return ChangingDecimal([](CDecimal& v) { v.Parse("1.23456789012345678901e-9"); }); }},
      {"integer *=",
       [] { return ChangingInteger([](CBigInteger& v) { v *= CBigInteger("-123456789012345678901"); }); }},
      {"integer +=",
       [] {
         return Changing(
             CBigInteger("1e400"), [](CBigInteger& v) { v += CBigInteger("1e40"); },
             [](CBigInteger const& v) { return v.ToString(); });
       }},
      {"integer /=", [] { return ChangingInteger([](CBigInteger& v) { v /= CBigInteger("123456789012345678901"); }); }},
      {"variant parsed",
       [] {
         return ChangingVariant(
             [](QnVariant& v) { v.FromString(kNumber, ItemType_decimal, CWhitespaceUtils::WhitespaceRule_Collapse); });
       }},
      {"bytes appended", [] { return ChangingBytes([](CBinaryData& v) { v.Append(std::string(20000, 'x')); }); }},
      {"byte changed", [] { return ChangingBytes([](CBinaryData& v) { v[1] = 'x'; }); }},
      {"value added", [] { return ChangingCollection([](CdecimalCol& c) { c.AddFromString(kNumber + 1); }); }},
  };
  for (Row row : rows) {
    row.promise = Promise::KeepsState;
    ExpectAllShortagesReported(row);
  }
}

// ---- Facets

Subject Checking(ItemType type, std::string const& text, CPrimitiveRestrictions const& facets) {
  auto const value = std::make_shared<QnVariant>();
  value->FromString(text, type, CWhitespaceUtils::WhitespaceRule_Preserve);
  return {[=] { CXmlObjectHelper::CheckRestriction("v", *value, type, facets); }, [] { return "passed"; }};
}

Subject CheckingPattern(char const* pattern, std::string const& text) {
  return Checking(ItemType_string, text, {pattern, 1, 1000000, "", "", "", "", -1});
}

// A pattern first used when there was no memory to compile it to machine code must still get its machine code later.
Subject MatchingShortThenLong() {
  char const* const pattern = "(x|y)*";
  return {[=] { TestRegEx(pattern, "xy"); },
          [=] { return TestRegEx(pattern, std::string(100000, 'x')) ? "a long value matches" : "it does not"; }};
}

Subject CheckingBounds(ItemType type, char const* low, char const* text, char const* high) {
  return Checking(type, text, {"", -1, -1, low, high, low, high, -1});
}

TEST(Allocation, Facets) {
  // Only remembering a bound takes memory.
  constexpr Promise kBounds = kRememberedValue.IsOn() ? Promise::Report : Promise::NeverFails;
  Row const rows[] = {
      {"pattern", [] { return CheckingPattern("[a-z]{3}-(x|y)+\\d\\i\\c*", "abc-xyxy1name"); }},
      {"pattern on a short and a long value", &MatchingShortThenLong},
      {"decimal", [] { return CheckingBounds(ItemType_decimal, "0.1", "123456789012345678901234567890", "1e40"); }},
      {"integer",
       [] {
         return CheckingBounds(ItemType_integer, "1", "123456789012345678901234567890",
                               "1234567890123456789012345678901");
       }},
      {"i4", [] { return CheckingBounds(ItemType_i4, "1", "2", "3"); }, kBounds},
      {"r8", [] { return CheckingBounds(ItemType_r8, "0.1", "2.5", "1e300"); }, kBounds},
      {"dateTime",
       [] {
         return CheckingBounds(ItemType_datetime, "2000-01-01T00:00:00Z", "2024-03-18T10:11:12",
                               "2100-01-01T00:00:00Z");
       },
       kBounds},
      {"duration", [] { return CheckingBounds(ItemType_duration, "P1D", "P2D", "P3D"); }, kBounds},
  };
  ExpectAllShortagesReported(rows);
}

// ---- Tables, and destruction

struct Tables {
  ~Tables() { Clean(); }
  void Clean() { CXmlGeneratedClass::CleanMetaData(info, elements, attributes); }

  CParentElementInfo* info = nullptr;
  CElementInfo** elements = nullptr;
  CAttributeInfo** attributes = nullptr;
};

void Build(Tables& tables) {
  constexpr auto collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
  CPrimitiveRestrictions const facets("a pattern beyond a small string", 1, 2, "a bound beyond a small string", "", "",
                                      "", -1);
  tables.Clean();
  tables.info = new CParentElementInfo(XmlElementGroupType_All, XmlElementType_Element, "a type beyond a small string",
                                       "urn:a:namespace:beyond:a:small:string", -1, true, false);
  tables.elements = new CElementInfo* [3] {};
  tables.elements[0] =
      new CElementInfoSeqPrimMnd("an-element-beyond-a-small-string", "", 0, ItemType_string, nullptr, collapse, facets);
  tables.elements[1] = new CElementInfoSeqPrimCol("another-element-beyond-a-small-string", "", 1);
  tables.attributes = new CAttributeInfo* [2] {};
  tables.attributes[0] =
      new CAttributeInfoPrimitive("an-attribute-beyond-a-small-string", "urn:a:namespace:beyond:a:small:string", 2,
                                  true, ItemType_string, nullptr, collapse, facets, "a default beyond a small string");
}

Subject BuildingTables() {
  auto const tables = std::make_shared<Tables>();
  return {[=] { Build(*tables); }, [=] { return tables->attributes[0] != nullptr ? "built" : ""; }};
}

Subject DroppingGenericContent() {
  auto const element = std::make_shared<CSmartPtr<CElement>>(new CElement("r", ""));
  (*element)->FromXml("<r a='1'><b><c><d/><e/></c></b><b/></r>");
  return {[=] { *element = nullptr; }, [] { return "gone"; }};
}

Subject DroppingDocumentOfAnotherThread() {
  auto const document = std::make_shared<std::unique_ptr<CXmlDocument>>(new CXmlDocument);
  std::thread([=] { (*document)->LoadXml(kOrder); }).join();
  return {[=] { document->reset(); }, [] { return "gone"; }};
}

TEST(Allocation, TablesAndDestruction) {
  Row const rows[] = {
      {"tables of a class", &BuildingTables},
      {"generic content dropped", &DroppingGenericContent, Promise::NeverFails},
  };
  ExpectAllShortagesReported(rows);
}

TEST(Allocation, DocumentOfAnotherThreadDropped) {
  ExpectAllShortagesReported({"document", &DroppingDocumentOfAnotherThread, Promise::NeverFails});
}

// The assumption of the tests above: the C libraries ask this program for memory, and their requests can fail.
TEST(Allocation, ReachesTheCLibraries) {
  if (!AreCLibrariesIncluded()) GTEST_SKIP() << "the sanitizer owns malloc";
  auto const fails = [](std::string const& text) {
    return [text](Row const& row) {
      for (unsigned long passing = 0;; ++passing) {
        Outcome const outcome = Try(row, passing, Shortage::One);
        if (outcome.failure.find(text) != std::string::npos) return true;
        if (!outcome.isStarved) return false;
      }
    };
  };
  CLimits::SetUseFastReader(false);
  EXPECT_TRUE(fails("out of memory at line")({"expat", [] { return ReadingStream(false, CompressionType_None); }}));
  CLimits::SetUseFastReader(true);
  EXPECT_TRUE(
      fails("[Error Code: -4]")({"zlib", [] { return WritingStream(XmlEncoding_UTF8, CompressionType_GZip); }}));
  Row const pattern = {"PCRE", [] { return CheckingPattern("[a-z]*", "abc"); }};
  EXPECT_TRUE(fails("failed to get memory")(pattern) || fails("failed to allocate heap memory")(pattern));
}

}  // namespace
}  // namespace Quillon9

#endif
