#include "quillon9/binding/typed_collections.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

using namespace Testing;
using Quillon9Data::CElementInfoSeqPrimCol;

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

template <class Collection>
Collection* Make(char const* minInclusive = "", char const* format = nullptr, int minOccurs = 0, int maxOccurs = -1) {
  return new Collection("v", "", minOccurs, maxOccurs, "", -1, -1, minInclusive, "", "", "", -1, kCollapse, format);
}

class EventLog : public IEventSink {
 public:
  void OnEvent(CXmlObjectBase*, MsgType type, void* data) override {
    m_log += std::to_string(static_cast<int>(type));
    if (type >= CollectionRemove) m_log += "(" + std::to_string(*static_cast<int*>(data)) + ")";
  }
  std::string Take() { return std::exchange(m_log, ""); }

 private:
  std::string m_log;
};

/// Reads <root> with the collection as its only content, and returns what is then written.
std::string RoundTrip(CXmlTypeCollection* collection, char const* content) {
  Shape const shape({}, {new CElementInfoSeqPrimCol("v", "", 0)});
  DynamicClass object(shape);
  object.With(0, collection);
  return ReadBack(object, ("<root>" + std::string(content) + "</root>").c_str());
}

TEST(TypedCollections, EveryMemberReadsAndWritesItsKind) {
  struct {
    CXmlTypeCollection* collection;
    char const* content;
    char const* written;  // null when it equals the content
  } const rows[] = {
      {Make<ChexBinaryCol>(), "<v>0AFF</v><v/>", "<v>0AFF</v><v/>"},
      {Make<Cbase64BinaryCol>(), "<v>TWFu</v>", nullptr},
      {Make<Ci1Col>(), "<v>-128</v>", nullptr},
      {Make<Ci2Col>(), "<v>-32768</v>", nullptr},
      {Make<Ci4Col>(), "<v> 7 </v><v>-2147483648</v>", "<v>7</v><v>-2147483648</v>"},
      {Make<Ci8Col>(), "<v>9223372036854775807</v>", nullptr},
      {Make<Cui1Col>(), "<v>255</v>", nullptr},
      {Make<Cui2Col>(), "<v>65535</v>", nullptr},
      {Make<Cui4Col>(), "<v>4294967295</v>", nullptr},
      {Make<Cui8Col>(), "<v>18446744073709551615</v>", nullptr},
      {Make<Cr4Col>("", kShortestFormat), "<v>16777216.0</v><v>0.10000000149</v>", "<v>16777216</v><v>0.1</v>"},
      {Make<Cr4Col>("", "%.2f"), "<v>1.5</v><v>NaN</v>", "<v>1.50</v><v>NaN</v>"},
      {Make<Cr8Col>(), "<v>0.1</v><v>-INF</v>", nullptr},
      {Make<CdurationCol>(), "<v>P1DT2H</v>", nullptr},
      {Make<CyearMonthCol>(), "<v>2001-05</v>", nullptr},
      {Make<CmonthDayCol>(), "<v>--02-29</v>", nullptr},
      {Make<CyearCol>(), "<v>2001</v>", nullptr},
      {Make<CmonthCol>(), "<v>--05</v>", nullptr},
      {Make<CdayCol>(), "<v>---09</v>", nullptr},
      {Make<CdateCol>(), "<v>2001-05-06Z</v>", nullptr},
      {Make<CdatetimeCol>(), "<v>2001-05-06T07:08:09.5+01:00</v>", nullptr},
      {Make<CtimeCol>(), "<v>07:08:09</v>", nullptr},
      {Make<CstringCol>(), "<v>a  b</v><v/>", "<v>a b</v><v/>"},
      {Make<CbooleanCol>(), "<v>1</v><v>false</v>", "<v>true</v><v>false</v>"},
      {Make<CdecimalCol>(), "<v>1.10</v><v>-0.05</v>", "<v>1.1</v><v>-0.05</v>"},
      {Make<CintegerCol>(), "<v>123456789012345678901234567890</v>", nullptr},
  };
  for (auto const& row : rows) {
    std::string const expected = row.written != nullptr ? row.written : row.content;
    EXPECT_EQ("<root>" + expected + "</root>", RoundTrip(row.collection, row.content));
  }
}

TEST(TypedCollections, FailuresGoUpAsTheyAre) {
  std::string const root = "Failed to process the element [root]\n";
  EXPECT_EQ(root + "The value [x] can not be converted to a i4", RoundTrip(Make<Ci4Col>(), "<v>x</v>"));
  EXPECT_EQ(root + "Invalid Value for v [4]", RoundTrip(Make<Ci4Col>("5"), "<v>5</v><v>4</v>"));
  EXPECT_EQ(root + "Dates added to this collection must be of type dt_date",
            RoundTrip(Make<CdateCol>(), "<v>2001</v>"));
  EXPECT_EQ(root + "Invalid Value for v [2001-01-01]", RoundTrip(Make<CdateCol>("2001-01-02"), "<v>2001-01-01</v>"));
  EXPECT_EQ(root + "Invalid Value for v [0.99]", RoundTrip(Make<CdecimalCol>("1"), "<v>0.99</v>"));
}

TEST(TypedCollections, EventsAndFailuresInOrder) {
  CSmartPtr<Ci4Col> const numbers(Make<Ci4Col>("5"));
  EventLog log;
  numbers->AddEventListener(&log);
  numbers->Add(5);
  EXPECT_EQ("120", log.Take());
  EXPECT_FAILURE(CQnException, "Invalid Value for v [4]", numbers->Add(4));
  EXPECT_EQ("1", log.Take());
  EXPECT_FAILURE(CQnInvalidParamException, "Index out of range", numbers->AddAt(2, 4));  // checked before the facets
  EXPECT_EQ("1", log.Take());
  numbers->AddAt(0, 6);
  numbers->AddAt(1, 7);
  numbers->AddFromString(" 8 ");
  log.Take();
  numbers->Remove(2);
  EXPECT_EQ("3(2)4(0)0", log.Take());
  EXPECT_FAILURE(CQnInvalidParamException, "Index 3 is out of range, use 0 - 3", numbers->Remove(3));
  EXPECT_EQ("3(3)", log.Take());
  EXPECT_FAILURE(CQnInvalidParamException, "Index -1 is out of range, use 0 - 3", numbers->Item(-1));
  std::string values;
  for (std::int32_t const value : *numbers) values += std::to_string(value);
  EXPECT_EQ("678", values);
  numbers->Remove(0);
  numbers->AddAt(0, 9);
  EXPECT_EQ(9, numbers->Item(0));
  EXPECT_EQ(7, numbers->Item(1));
  log.Take();
  numbers->Clear();
  EXPECT_EQ("3(0)4(0)03(0)4(0)03(0)4(0)0", log.Take());
}

TEST(TypedCollections, AddOneOfTheirOwnValuesAndSurviveTheirListeners) {
  struct Reader : IEventSink {
    void OnEvent(CXmlObjectBase* sender, MsgType type, void* data) override {
      if (type == CollectionAdd && m_clears) static_cast<CintegerCol*>(sender)->Clear();
      if (type == CollectionAddComplete) m_seen = static_cast<CBigInteger*>(data)->ToString();
      if (type == CollectionRemoveComplete && m_refills) static_cast<CintegerCol*>(sender)->Add(CBigInteger("1"));
    }
    bool m_clears = false;
    bool m_refills = false;
    std::string m_seen;
  } reader;
  CSmartPtr<CintegerCol> const collection(Make<CintegerCol>());
  collection->AddEventListener(&reader);
  collection->Add(CBigInteger("123456789012345678901234567890"));
  for (int i = 0; i < 5; ++i) collection->AddAt(0, *collection->begin());
  EXPECT_EQ("123456789012345678901234567890", reader.m_seen);
  reader.m_clears = true;
  EXPECT_FAILURE(CQnInvalidParamException, "Index out of range", collection->Add(*collection->begin()));
  reader.m_clears = false;
  collection->Add(CBigInteger("2"));
  reader.m_refills = true;
  EXPECT_FAILURE(CQnException, "The collection [v] is filled while it is cleared", collection->Clear());
}

TEST(TypedCollections, RemoveIfIsOneChange) {
  CSmartPtr<Ci4Col> const numbers(Make<Ci4Col>());
  for (int i = 0; i < 6; ++i) numbers->Add(i);
  EventLog log;
  numbers->AddEventListener(&log);
  EXPECT_EQ(0, numbers->RemoveIf([](std::int32_t value) { return value > 5; }));
  EXPECT_EQ("", log.Take());
  EXPECT_EQ(3, numbers->RemoveIf([](std::int32_t value) { return value % 2 == 0; }));
  EXPECT_EQ("3(4)3(2)3(0)4(0)4(0)4(0)0", log.Take());
  EXPECT_EQ((std::vector<std::int32_t>{1, 3, 5}), std::vector<std::int32_t>(numbers->begin(), numbers->end()));

  struct Meddler : IEventSink {
    void OnEvent(CXmlObjectBase* sender, MsgType type, void*) override {
      if (type == CollectionRemove && !std::exchange(m_isDone, true)) static_cast<Ci4Col*>(sender)->Add(7);
    }
    bool m_isDone = false;
  } meddler;
  numbers->AddEventListener(&meddler);
  EXPECT_FAILURE(CQnInvalidStateException, "The collection [v] was changed while values were removed from it",
                 numbers->RemoveIf([](std::int32_t) { return true; }));
  EXPECT_EQ(4, numbers->GetCount());
  EXPECT_EQ(4, numbers->RemoveIf([](std::int32_t) { return true; }));
  EXPECT_EQ(0, numbers->GetCount());
}

template <class Collection, class Value>
void ExpectRemovalsAsOfVector(Value (*make)(unsigned)) {
  CSmartPtr<Collection> const collection(Make<Collection>());
  std::vector<Value> expected;
  std::minstd_rand random(1);
  for (int step = 0; step < 2000; ++step) {
    auto const any = static_cast<unsigned>(random());
    auto const at = static_cast<std::ptrdiff_t>(any % (expected.size() + 1));
    if (any % 100 == 0) {
      std::vector<Value> kept;
      for (std::size_t i = 0; i < expected.size(); ++i) {
        if (i % 3 != 0) kept.push_back(expected[i]);
      }
      int asked = 0;
      collection->RemoveIf([&](Value const&) { return asked++ % 3 == 0; });
      expected = kept;
    } else if (any % 16 < 7 && at < static_cast<std::ptrdiff_t>(expected.size())) {
      collection->Remove(static_cast<int>(at));
      expected.erase(expected.begin() + at);
    } else {
      collection->AddAt(static_cast<int>(at), make(any));
      expected.insert(expected.begin() + at, make(any));
    }
    ASSERT_EQ(expected, std::vector<Value>(collection->begin(), collection->end())) << step;
  }
}

TEST(TypedCollections, RemovalsKeepTheOthersInOrder) {
  ExpectRemovalsAsOfVector<CstringCol, std::string>([](unsigned any) { return std::string(any % 40, 'a'); });
  ExpectRemovalsAsOfVector<CbooleanCol, bool>([](unsigned any) { return any % 3 == 0; });
}

TEST(TypedCollections, DatesAreCheckedBeforeAnyEvent) {
  CSmartPtr<CdateCol> const dates(Make<CdateCol>("2001-01-02"));
  EventLog log;
  dates->AddEventListener(&log);
  CDateTime time;
  time.SetTime(1, 2, 3);
  EXPECT_FAILURE(CQnInvalidParamException, "Dates added to this collection must be of type dt_date", dates->Add(time));
  EXPECT_FAILURE(CQnException, "Invalid Value for v [2001-01-01]", dates->AddAt(9, CDateTime(2001, 1, 1)));
  EXPECT_EQ("", log.Take());
  EXPECT_FAILURE(CQnInvalidParamException, "Index out of range", dates->AddAt(9, CDateTime(2001, 1, 3)));
  EXPECT_EQ("1", log.Take());
  dates->Add(CDateTime(2001, 1, 3));
  EXPECT_EQ("2001-01-03", dates->Item(0).ToString());
}

TEST(TypedCollections, CountIsJudgedBeforeAnythingIsWritten) {
  Shape const shape({}, {});
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.Open();
  CSmartPtr<Ci4Col> const numbers(Make<Ci4Col>("", nullptr, 2));
  numbers->Add(1);
  EXPECT_FAILURE(CQnValidationException, "The Minimum number of [v] elements allowed in this collection is 2",
                 CXmlObjectBase::ToXml_Int(numbers.Get(), &writer, false, "", CXmlSerializationContext(), false));
  EXPECT_EQ(0U, stream.GetLength());
}

TEST(TypedCollections, RemovingManyItemsIsLinear) {
  CSmartPtr<CstringCol> const texts(Make<CstringCol>());
  struct Listener : IEventSink {
    void OnEvent(CXmlObjectBase*, MsgType, void*) override {}
  } listener;
  texts->AddEventListener(&listener);
  auto const fill = [&texts] {
    for (int i = 0; i < 400000; ++i) texts->Add("x");
  };
  fill();
  texts->Clear();
  EXPECT_EQ(0, texts->GetCount());
  fill();
  while (texts->GetCount() > 1) texts->Remove(1);
  fill();
  bool isWanted = false;
  EXPECT_EQ(200001, texts->RemoveIf([&isWanted](std::string const&) { return isWanted = !isWanted; }));
  EXPECT_EQ(200000, texts->GetCount());
}

}  // namespace
}  // namespace Quillon9
