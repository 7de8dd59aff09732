// Where the reading of generated classes fails, and how it goes on with a sink.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "generated/shop_types.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Shop;

namespace {

class Stop : public IFailureSink {
 public:
  bool OnFailure(CFailure const&) override { return false; }
};

/// What is left of a read.
struct Outcome {
  std::string full;  ///< the texts of the failure, if it ends so
  std::string report;
  FailureKind kind = FailureKind_Other;
  std::string object;

  bool operator==(Outcome const& other) const {
    return full == other.full && report == other.report && kind == other.kind && object == other.object;
  }
};

std::string Written(CXmlObjectBase const& object) {
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:shop");
  ctx.SetIgnoreMissingMandatoryElements(true);
  ctx.SetIgnoreMissingChoice(true);
  ctx.SetIgnoreInvalidCollectionCounts(true);
  try {
    return object.ToXml(true, false, EOLType_LF, ctx);
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
}

Outcome Read(std::string const& text, CXmlSerializationContext const& ctx) {
  CSmartPtr<COrder> const order = COrder::CreateInstance();
  Outcome outcome;
  try {
    order->FromXml(text.c_str(), ctx);
  } catch (CQnException const& failure) {
    CQnException const* cause = &failure;
    while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
    outcome.full = failure.GetFullMessage();
    outcome.report = failure.GetReport();
    outcome.kind = failure.GetKind();
  }
  outcome.object = Written(*order);
  return outcome;
}

/// Reads \p text without a sink, with one that stops, and with one that goes on. The first two must have the same
/// outcome, and the third must begin with the same failure. Returns all failures.
std::vector<CFailure> ReadInAllWays(std::string const& text, CXmlSerializationContext ctx, std::string* object) {
  Outcome const plain = Read(text, ctx);
  Stop stop;
  ctx.SetFailureSink(&stop);
  Outcome const stopped = Read(text, ctx);
  EXPECT_TRUE(plain == stopped) << text << "\n  " << plain.report << "\n  " << plain.full << "\n  " << stopped.report
                                << "\n  " << stopped.full << "\n  " << plain.object << "\n  " << stopped.object;
  CFailureList list(1000);
  ctx.SetFailureSink(&list);
  Outcome const all = Read(text, ctx);
  EXPECT_EQ("", all.full) << text;
  EXPECT_EQ(plain.full.empty(), !list.HasErrors()) << text << "\n  " << plain.full << list.GetReport();
  if (list.HasErrors()) {
    EXPECT_EQ(plain.report, list.GetFailures()[0].GetReport()) << text;
    EXPECT_EQ(plain.kind, list.GetFailures()[0].GetKind()) << text;
  } else {
    EXPECT_EQ(plain.object, all.object);
  }
  if (object != nullptr) *object = all.object;
  return list.GetFailures();
}

constexpr char kStart[] = "<order xmlns='urn:shop' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";
std::string const kParty = "<party xsi:type='Person' id='007'><name>N</name></party>";
std::string const kLine = "<line><quantity>2</quantity><price>3.5</price></line>";
std::string const kBogus = "<bogus/>";

struct Expected {
  FailureKind kind;
  std::string path;  ///< with "/>" after it for an end tag
};

void Expect(std::string const& content, std::initializer_list<Expected> expected, std::string const& attributes = "",
            CXmlSerializationContext const& ctx = {}) {
  std::string const text = kStart + attributes + ">" + content + "</order>";
  std::vector<CFailure> const failures = ReadInAllWays(text, ctx, nullptr);
  std::string report;
  for (CFailure const& failure : failures)
    report += std::to_string(failure.GetKind()) + " " + failure.GetReport() + "\n";
  std::string wanted;
  std::string found;
  for (Expected const& each : expected) wanted += std::to_string(each.kind) + " " + each.path + "\n";
  for (CFailure const& each : failures) {
    auto const offset = static_cast<std::size_t>(each.GetPlace().GetOffset());
    bool const isAtEnd = text.compare(offset, 2, "</") == 0;
    found += std::to_string(each.GetKind()) + " " + each.GetPlace().GetPath() + (isAtEnd ? "/>" : "") + "\n";
  }
  EXPECT_EQ(wanted, found) << content << "\n" << report;
}

TEST(BoundFailures, OfEveryKindAndPlace) {
  std::string const start = kParty + "<pickup>x</pickup>";
  Expect(start + kLine, {{FailureKind_BadValue, "/order/@status"}, {FailureKind_FixedValue, "/order/@version"}},
         " status='x' version='2'");
  Expect(start + kLine, {{FailureKind_UnexpectedAttribute, "/order/@own"}}, " own='1'");
  Expect("<party xsi:type='Person'><name>N</name></party><pickup/>" + kLine,
         {{FailureKind_MissingAttribute, "/order/party"}});
  Expect("<party id='007'><name>N</name></party><pickup/>" + kLine, {{FailureKind_Factory, "/order/party"}});
  Expect("<party xsi:type='Line' id='007'><name>N</name></party><pickup/>" + kLine,
         {{FailureKind_Factory, "/order/party/@xsi:type"}});
  Expect("<party xsi:type='Firm' id='007'><founded>1.1.</founded></party><pickup/>" + kLine,
         {{FailureKind_MissingElement, "/order/party/founded"}, {FailureKind_BadValue, "/order/party/founded"}});
  Expect(kParty + kLine, {{FailureKind_EmptyChoice, "/order/line"}});
  Expect(kParty + "<slot>1</slot><slot>x</slot><slot>3</slot>" + kLine, {{FailureKind_BadValue, "/order/slot[2]"}});
  Expect(kParty + "<slot>1</slot><slot>2</slot><slot>3</slot><slot>4</slot>" + kLine,
         {{FailureKind_Count, "/order/slot[4]"}});
  Expect(start + "<amount currency='EUR'>x</amount>" + kLine, {{FailureKind_BadValue, "/order/amount"}});
  Expect(start + "<amount xsi:nil='maybe'>1</amount>" + kLine, {{FailureKind_Nil, "/order/amount/@xsi:nil"}});
  Expect(start + "<from>x</from>" + kLine,
         {{FailureKind_BadValue, "/order/from"}, {FailureKind_MissingElement, "/order/line"}});
  Expect(start + "<text>a</text><mark>green</mark><text>b</text>" + kLine, {{FailureKind_BadValue, "/order/mark"}});
  Expect(start, {{FailureKind_Count, "/order/>"}});
  Expect(start + "<line><unit/></line><line><quantity>x</quantity><price>1</price></line>",
         {{FailureKind_MissingElement, "/order/line[1]/>"},
          {FailureKind_MissingElement, "/order/line[1]/>"},
          {FailureKind_BadValue, "/order/line[2]/quantity"}});
  Expect(start + kLine + "<weight>heavy</weight><colour>red</colour><colour>Red</colour>",
         {{FailureKind_BadValue, "/order/weight"}, {FailureKind_BadValue, "/order/colour[2]"}});
  Expect(start + kLine + "<e xmlns='urn:c'/><e xmlns='urn:a'/>", {{FailureKind_UnexpectedElement, "/order/e[1]"}});
  Expect(start + kLine + "<e xmlns=''/><e xmlns=''/><e xmlns=''/>", {{FailureKind_UnexpectedElement, "/order/e[3]"}});
  Expect("", {{FailureKind_MissingElement, "/order/>"},
              {FailureKind_EmptyChoice, "/order/>"},
              {FailureKind_Count, "/order/>"}});
}

TEST(BoundFailures, GoOnWithTheMemberThatKnowsTheNextElement) {
  std::string const start = kParty + "<pickup>x</pickup>";
  std::string many;
  for (int i = 0; i < 50; ++i) many += "<text>t</text>";
  for (std::string const& text :
       {kBogus + start + kLine, kParty + kBogus + "<street>s</street><city>c</city>" + kLine,
        kParty + "<street>s</street>" + kBogus + "<city>c</city>" + kLine,
        kParty + "<slot>1</slot>" + kBogus + "<slot>2</slot>" + kLine,
        start + "<from>2024-01-01</from>" + kBogus + "<until>2024-01-02</until>" + kLine,
        start + "<from>2024-01-01</from><card>1</card><until>2024-01-02</until>" + kLine,
        start + many + kBogus + many + kLine, start + many + "<pickup>y</pickup>" + many + kLine,
        start + many + "<card>1</card>" + many + kLine, start + kLine + kBogus + kLine,
        start + kLine + "<weight>1</weight>" + kLine + "<colour>red</colour>",
        start + kLine + "<colour>red</colour>" + kBogus + "<colour>blue</colour>",
        "<colour>red</colour>" + start + kLine + "<colour>blue</colour>",
        start + "<line><unit/>" + kBogus + "<price>1</price><quantity>1</quantity></line>",
        start + kLine + "<e xmlns=''/>" + kBogus + "<e xmlns=''/>"}) {
    std::string object;
    std::vector<CFailure> const failures = ReadInAllWays(kStart + (">" + text + "</order>"), {}, &object);
    EXPECT_EQ(1u, failures.size()) << text;
  }
  std::string object;
  ReadInAllWays(kStart + (">" + start + many + "<card>1</card>" + many + kLine + kBogus + kLine + "</order>"), {},
                &object);
  std::size_t rounds = 0;
  for (std::size_t at = object.find("<text>"); at != std::string::npos; at = object.find("<text>", at + 1)) ++rounds;
  EXPECT_EQ(100u, rounds);
  EXPECT_NE(std::string::npos, object.find("<card>1</card>")) << object;
}

TEST(BoundFailures, StrictReading) {
  CXmlSerializationContext strict;
  strict.SetChecksFacetsOnReading(true);
  strict.SetChecksFixedValuesOnReading(false);
  std::string const broken =
      kParty + "<pickup>x</pickup><amount>1.234</amount><line><quantity>1</quantity><price>1.234</price></line>";
  Expect(broken, {}, " version='2'", [] {
    CXmlSerializationContext lax;
    lax.SetChecksFixedValuesOnReading(false);
    lax.SetValueRules(ValueRules_Classic);
    return lax;
  }());
  Expect(broken, {{FailureKind_BrokenFacet, "/order/amount"}, {FailureKind_BrokenFacet, "/order/line/price"}},
         " version='2'", strict);
}

TEST(BoundFailures, DigitsOfListItems) {
  static constexpr CFacets kFacets{nullptr, -1, -1, -1, nullptr, nullptr, nullptr, nullptr, 2};
  static constexpr CValueType kType{ItemType_i4, CWhitespaceUtils::WhitespaceRule_Collapse, &kFacets};
  CElementRow const row = Rows::Values("i", "", 0, 0, -1, kType);
  CSmartPtr<CXmlObjectBase> const items = detail::NewCollection<Ci4Col>::ForRow(&row);
  CFailureList list;
  CXmlSerializationContext strict;
  strict.SetChecksFacetsOnReading(true);
  strict.SetFailureSink(&list);
  items->FromXml("<r><i>10</i><i>100</i><i>11</i></r>", strict);
  EXPECT_EQ("1:13: error: /r/i[2]: Invalid Value for i [100]\n", list.GetReport());
  EXPECT_EQ(2, static_cast<Ci4Col&>(*items).GetCount());
  items->FromXml("<r><i>100</i></r>");
  EXPECT_EQ(3, static_cast<Ci4Col&>(*items).GetCount());
}

TEST(BoundFailures, CountsNameWhatHasNoName) {
  static constexpr CNamespaceRule kRule{"urn:a ##local"};
  CElementRow const rounds = Rows::Rounds("choice", 0, 2, -1, COrder::CChoice::s_class);
  CElementRow const any = Rows::Anys(0, 2, -1, kRule);
  auto const causeOf = [](CSmartPtr<CXmlObjectBase> const& items) {
    EXPECT_THROW(static_cast<CXmlCollectionBase&>(*items).ValidateCount({}), CQnValidationException);
    try {
      static_cast<CXmlCollectionBase&>(*items).ValidateCount({});
    } catch (CQnException const& failure) {
      return failure.GetMessage();
    }
    return std::string();
  };
  EXPECT_EQ("The Minimum number of [text, mark] elements allowed in this collection is 2",
            causeOf(CObjectCol<COrder::CChoice>::ForRow(rounds)));
  EXPECT_EQ("The Minimum number of [urn:a ##local] elements allowed in this collection is 2",
            causeOf(CAnyElementCol::ForRow(any)));
}

// ---- Random damage

struct Node {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::string text;
  std::vector<Node> children;
};

Node Copy(CXmlElement const& element) {
  Node node{element.GetLocalName(), {}, element.GetFirstElement() == nullptr ? element.GetText() : "", {}};
  for (auto const* at = element.GetFirstAttribute(); at != nullptr; at = at->GetNextAttribute()) {
    bool const isOfSchema = at->GetLocalName() == "type";
    if (at->IsNamespaceAttribute() && !isOfSchema) continue;
    node.attributes.emplace_back((isOfSchema ? "xsi:" : "") + at->GetLocalName(), at->GetValue());
  }
  for (auto const* at = element.GetFirstElement(); at != nullptr; at = at->GetNextSiblingElement()) {
    node.children.push_back(Copy(*at));
  }
  return node;
}

void Print(Node const& node, std::string const& namespaces, std::string& text) {
  text += "<" + node.name + namespaces;
  for (auto const& [name, value] : node.attributes) text += " " + name + "='" + value + "'";
  text += ">" + node.text;
  for (Node const& child : node.children) Print(child, "", text);
  text += "</" + node.name + ">";
}

void Collect(Node& node, std::vector<Node*>& all) {
  all.push_back(&node);
  for (Node& child : node.children) Collect(child, all);
}

enum class Damage { Insert, Drop, Duplicate, Rename, Swap, Value, Attribute };

void Apply(Node& root, Damage damage, std::mt19937& random) {
  std::vector<Node*> all;
  Collect(root, all);
  auto const pick = [&](std::size_t count) { return static_cast<std::ptrdiff_t>(random() % count); };
  Node& node = *all[static_cast<std::size_t>(pick(all.size()))];
  auto& children = node.children;
  if (damage == Damage::Insert) {
    children.insert(children.begin() + pick(children.size() + 1), Node{"bogus", {}, "", {}});
  } else if (damage == Damage::Value) {
    if (children.empty()) node.text = "n o n e";
  } else if (damage == Damage::Attribute) {
    if (node.attributes.empty()) return node.attributes.emplace_back("own", "1"), void();
    auto& [name, value] = node.attributes[static_cast<std::size_t>(pick(node.attributes.size()))];
    (random() % 2 == 0 && name.find(':') == std::string::npos ? name : value) = "damaged";
  } else if (!children.empty()) {
    auto const at = children.begin() + pick(children.size());
    if (damage == Damage::Drop) children.erase(at);
    if (damage == Damage::Duplicate) children.insert(at, Node(*at));
    if (damage == Damage::Rename) at->name = "bogus";
    if (damage == Damage::Swap) std::swap(*at, *(children.begin() + pick(children.size())));
  }
}

TEST(BoundFailures, OfDamagedDocuments) {
  std::string const documents[] = {
      kParty +
          "<street>s</street><city>c</city><card>1</card><from>2024-01-01</from><until>2024-01-02</until>"
          "<text>a</text><mark>blue</mark><text>b</text>" +
          kLine + kLine +
          "<weight>1</weight><colour>red</colour>"
          "<colour>blue</colour><extra><p/><q/></extra>",
      "<party xsi:type='Firm' id='123'><name>A</name><founded>1999-01-31</founded></party><slot>1</slot><slot>2</slot>"
      "<amount currency='EUR'>12.5</amount><mark>red</mark><line><price>1</price><unit>g</unit><quantity>1</quantity>"
      "</line><colour>red</colour>",
      kParty + "<pickup>x</pickup>" + kLine};
  std::mt19937 random(17);
  for (int round = 0; round < 900; ++round) {
    CXmlDocument document;
    document.LoadXml((kStart + (" status='red' version='1.0'>" + documents[round % 3] + "</order>")).c_str());
    Node root = Copy(*document.GetDocumentElement());
    auto const damage = static_cast<Damage>(random() % 7);
    int const times = round % 5 == 0 ? 3 : 1;
    for (int i = 0; i < times; ++i) Apply(root, damage, random);
    std::string text;
    Print(root, std::string(kStart).substr(6), text);
    std::vector<CFailure> const failures = ReadInAllWays(text, {}, nullptr);
    if (times > 1) continue;
    bool const isOneFault =
        damage == Damage::Insert || damage == Damage::Value || damage == Damage::Duplicate || damage == Damage::Drop;
    std::size_t const most = isOneFault ? 1 : damage == Damage::Swap ? 6 : 2;
    EXPECT_LE(failures.size(), most) << text;
    if (HasFailure()) return;
  }
}

}  // namespace
