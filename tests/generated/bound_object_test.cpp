#include "quillon9/generated/bound_object.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "expect_failure.h"
#include "generated/namespace_rule.h"
#include "generated/shop_types.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Shop;

namespace {

constexpr char kStart[] = "<order xmlns='urn:shop' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";
std::string const kParty = "<party xsi:type='Person' id='007'><name>Zo\xc3\xab</name></party>";
std::string const kLine = "<line><quantity>2</quantity><price>3.5</price></line>";

std::string Order(std::string const& content, std::string const& attributes = "") {
  return kStart + attributes + ">" + content + "</order>";
}

/// What is written, with the namespace of the schema as the default one.
std::string Written(CXmlObjectBase const& object) {
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:shop");
  ctx.GetNamespaceAliases()->Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
  CBinaryData const bytes = object.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, ctx);
  std::string text(reinterpret_cast<char const*>(bytes.GetData()), bytes.GetLength());
  std::replace(text.begin(), text.end(), '"', '\'');
  return text;
}

/// The cause for which \p run fails; empty if it does not.
template <class Run>
std::string CauseOf(Run run) {
  try {
    run();
  } catch (CQnException const& failure) {
    CQnException const* cause = &failure;
    while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
    return cause->GetMessage();
  }
  return "";
}

std::string WriteFailure(CXmlObjectBase const& object) {
  return CauseOf([&] { Written(object); });
}

TEST(BoundObject, WritesWhatItRead) {
  struct {
    std::string content;
    std::string attributes = "";
  } const cases[] = {
      {kParty + "<pickup>x</pickup>" + kLine},
      {"<party xsi:type='Firm' id='123'><name>A</name><founded>1999-01-31</founded></party><pickup>x</pickup>" + kLine},
      {kParty + "<street>s</street>" + kLine},
      {kParty + "<street>s</street><city>c</city>" + kLine},
      {kParty + "<slot>1</slot><slot>2</slot><slot>3</slot>" + kLine},
      {kParty + "<pickup>x</pickup><card>4</card>" + kLine},
      {kParty + "<pickup>x</pickup><amount currency='EUR'>12.5</amount>" + kLine},
      {kParty + "<pickup>x</pickup><amount xsi:nil='true'></amount>" + kLine},
      {kParty + "<pickup>x</pickup><from>2024-02-29</from><until>2024-03-01</until>" + kLine},
      {kParty +
       "<pickup>x</pickup><text>a</text><mark>blue</mark><text>b</text><text>c</text><mark>light green</mark>" + kLine +
       kLine},
      {kParty + "<pickup>x</pickup>" + kLine + "<weight>0.1</weight><colour>red</colour><colour>blue</colour>"},
      {kParty + "<pickup>x</pickup>" + kLine + "<weight xsi:nil='true'></weight>"},
      {kParty + "<pickup>x</pickup>" + kLine + "<extra a='1'><p>q</p></extra>"},
      {kParty + "<pickup>x</pickup>" + kLine, " version='1.0' status='light green'"},
  };
  for (auto const& [content, attributes] : cases) {
    std::string text = Order(content, attributes);
    std::string written = Written(*ReadOrder(XmlText(text)));
    for (std::string* const each : {&text, &written}) {  // elements without content may be written either way
      for (char const* const name : {"amount", "weight"}) {
        std::string const empty = std::string("></") + name + ">";
        if (each->find(empty) != std::string::npos) each->replace(each->find(empty), empty.size(), "/>");
      }
    }
    if (attributes.empty()) {
      EXPECT_EQ(text, written);
    }
    EXPECT_EQ(written, Written(*ReadOrder(XmlText(Written(*ReadOrder(XmlText(text)))))));
  }
}

TEST(BoundObject, KeepsForeignElementsAndAttributes) {
  auto const order = ReadOrder(XmlText(Order(
      kParty + "<pickup>x</pickup>" + kLine + "<a:e xmlns:a='urn:a'/><e xmlns=''/>", " xmlns:o='urn:o' o:k='v'")));
  ASSERT_EQ(2u, order->GetAny().size());
  EXPECT_EQ("urn:a", order->GetAny()[0].GetNamespace());
  EXPECT_EQ("", order->GetAny()[1].GetNamespace());
  EXPECT_EQ("v", order->GetAnyAttributes().Find("k", "urn:o")->GetValue());
  order->GetAny().erase(order->GetAny().begin());
  order->GetAny().Add("f", "urn:b");
  EXPECT_EQ(2u, ReadOrder(XmlText(order->ToXml(false)))->GetAny().size());
  EXPECT_FAILURE(CQnInvalidNamespaceException,
                 "Invalid namespace [urn:c]. The namespace must be one of [urn:a urn:b ##local] where the target "
                 "namespace is [urn:shop]",
                 order->GetAny().Add("f", "urn:c"));
  order->GetAnyAttributes().Add("own", "1", "urn:shop");
  EXPECT_EQ(
      "Invalid namespace [urn:shop]. The namespace must be one of [##other] where the target namespace is [urn:shop]",
      WriteFailure(*order));
}

TEST(BoundObject, DropsTheLayoutOfForeignElements) {
  auto const order =
      ReadOrder(XmlText(Order(kParty + "<pickup>x</pickup>" + kLine + "<extra>\n <p>\n  <q> </q>\n </p> </extra>")));
  EXPECT_EQ(Order(kParty + "<pickup>x</pickup>" + kLine + "<extra><p><q> </q></p></extra>"), Written(*order));
}

TEST(BoundObject, RefusesWhatTheSchemaDoes) {
  std::string const start = kParty + "<pickup>x</pickup>";
  struct {
    std::string content;
    std::string cause;
    std::string attributes = "";
  } const cases[] = {
      {"<pickup>x</pickup>" + kLine, "Failed to find a required element [party]"},
      {kParty + kLine, "Failed to find one of the required elements [pickup, street, slot]"},
      {kParty + "<city>c</city>" + kLine, "Failed to find one of the required elements [pickup, street, slot]"},
      {start + "<slot>1</slot>" + kLine, "The Minimum number of [line] elements allowed in this collection is 1"},
      {kParty + "<slot>1</slot><slot>2</slot><slot>3</slot><slot>4</slot>" + kLine,
       "The Maximum number of [slot] elements allowed in this collection is 3"},
      {start + "<from>2024-01-01</from>" + kLine, "Failed to find a required element [until]"},
      {start + "<line><quantity>2</quantity></line>", "Failed to find a required element [price]"},
      {start + "<line/>", "Failed to find a required element [quantity]"},
      {start + "<line><price>1</price><price>1</price><quantity>1</quantity></line>",
       "Failed to find a required element [quantity]"},
      {start + "<mark>green</mark>" + kLine, "The value [green] is not one of the enumeration [EColour]"},
      {start + kLine + "<colour>Red</colour>", "The value [Red] is not one of the enumeration [EColour]"},
      {start + kLine + "<e xmlns='urn:c'/>",
       "Failed read all the elements held within the element [order]. The unexpected element [e] remains un processed"},
      {start + kLine + "<e xmlns=''/><e xmlns=''/><e xmlns=''/>",
       "Failed read all the elements held within the element [order]. The unexpected element [e] remains un processed"},
      {start + kLine, "The value [2.0] of [version] is not the fixed value [1.0]", " version='2.0'"},
      {start + kLine, "Unexpected Attribute [own] found.", " own='1'"},
      {start + "<text xsi:nil='true'/><line xsi:nil='true'/>", "Unexpected Attribute [nil] found."},
      {"<party id='007'><name>N</name></party>", "The type [Party] of the element [party] is abstract"},
      {"<party xsi:type='Line' id='007'><name>N</name></party>",
       "The type [Line] of the element [party] is not derived from [Party]"},
      {"<party xsi:type='q:Firm' id='007'><name>N</name></party>",
       "The type [q:Firm] of the element [party] is not derived from [Party]"},
      {"<party xsi:type='Firm'><name>N</name></party>", "Failed to find the required Attribute [id]"},
  };
  for (auto const& [content, cause, attributes] : cases) {
    std::string const document = Order(content, attributes);
    EXPECT_EQ(cause, CauseOf([&document] { ReadOrder(XmlText(document)); })) << content;
  }
}

TEST(BoundObject, FindsTheTypeThatAPrefixNames) {
  for (char const* const type : {"s:Firm", " s:Firm\n", "Firm"}) {
    std::string const text =
        "<s:party xmlns:s='urn:shop' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:type='" +
        std::string(type) + "' id='007'><s:name>N</s:name></s:party>";
    CSmartPtr<CXmlObjectBase> const party = Shop::ReadRoot(XmlText(text));
    ASSERT_NE(nullptr, dynamic_cast<CFirm*>(party.Get())) << type;
    EXPECT_EQ(
        "<party xmlns='urn:shop' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:type='Firm' id='007'>"
        "<name>N</name></party>",
        Written(*party));
  }
}

TEST(BoundObject, DefaultsAreWhatGettersSayAndAreNotWritten) {
  auto const order = ReadOrder(XmlText(Order(
      kParty + "<pickup>x</pickup><amount>1</amount><line><unit/><price>1</price><quantity>7</quantity></line>")));
  EXPECT_EQ("EUR", order->GetAmount()->GetCurrency());
  EXPECT_FALSE(order->GetAmount()->HasCurrency());
  EXPECT_EQ(EColour::Red, order->GetStatus());
  EXPECT_TRUE(order->GetLine()[0].HasUnit());  // an empty element has the default as its value
  EXPECT_EQ("kg", order->GetLine()[0].GetUnit());
  EXPECT_EQ(Order(kParty + "<pickup>x</pickup><amount>1</amount>"
                           "<line><unit>kg</unit><price>1</price><quantity>7</quantity></line>"),
            Written(*order));
}

TEST(BoundObject, SettingOneAlternativeUnsetsTheOthers) {
  auto const order = CreateOrder();
  EXPECT_EQ(COrder::EChoice::None, order->GetChoice());
  order->SetCity("c");
  EXPECT_EQ(COrder::EChoice::Street, order->GetChoice());
  order->SetPickup("p");
  EXPECT_EQ(COrder::EChoice::Pickup, order->GetChoice());
  EXPECT_FALSE(order->GetCity());
  order->SetStreet(std::nullopt);  // sets nothing, so it unsets nothing else
  EXPECT_EQ(COrder::EChoice::Pickup, order->GetChoice());
  order->CreateAmount().SetValue("1.25");
  EXPECT_EQ(COrder::EChoice2::Amount, order->GetChoice2());
  order->SetCard("1");
  EXPECT_EQ(nullptr, order->GetAmount());

  order->SetParty(CPerson::CreateInstance());
  order->GetParty().SetId("001");
  order->GetParty().SetName("N");
  order->GetLine().Add().SetQuantity(1);
  order->GetSlot().Add(1);
  EXPECT_EQ("More than one of the elements [pickup, street, slot] is set, but they exclude each other",
            WriteFailure(*order));
  order->SetPickup(std::nullopt);
  EXPECT_EQ(COrder::EChoice::Slot, order->GetChoice());
  EXPECT_EQ("", WriteFailure(*order));
}

TEST(BoundObject, WritesOnlyWhatTheSchemaAllows) {
  auto const order = CreateOrder();
  EXPECT_EQ("The required element [party] is not set", WriteFailure(*order));
  order->SetParty(CFirm::CreateInstance());
  order->GetParty().SetName("N");
  EXPECT_EQ("Invalid Value for id []", WriteFailure(*order));
  order->GetParty().SetId("001");
  EXPECT_EQ("None of the elements [pickup, street, slot] is set, and one is required", WriteFailure(*order));
  order->SetCity("c");
  EXPECT_EQ("The required element [street] is not set", WriteFailure(*order));
  order->SetStreet("s");
  order->SetUntil(CDateTime(2024, 1, 1));
  EXPECT_EQ("The required element [from] is not set", WriteFailure(*order));
  EXPECT_EQ("Invalid Value for from [2019-12-31]", CauseOf([&] { order->SetFrom(CDateTime(2019, 12, 31)); }));
  order->SetFrom(CDateTime(2024, 1, 1));  // a month before that of the bound
  order->SetUntil(CDateTime(2024, 1, 1, 0, 0, 0));
  EXPECT_EQ("The value [2024-01-01T00:00:00] is a dateTime instead of a date", WriteFailure(*order));
  order->SetFrom(std::nullopt);
  order->SetUntil(std::nullopt);
  EXPECT_EQ("The Minimum number of [line] elements allowed in this collection is 1", WriteFailure(*order));
  EXPECT_EQ("Invalid Value for quantity [0]", CauseOf([&] {
              order->GetLine().Add();
              Written(*order);
            }));
  order->GetLine()[0].SetQuantity(1);
  order->GetRounds().Add();
  EXPECT_EQ("None of the elements [text, mark] is set, and one is required", WriteFailure(*order));
  order->GetRounds()[0].SetMark(EColour::Blue);
  EXPECT_EQ(Order("<party xsi:type='Firm' id='001'><name>N</name></party><street>s</street><city>c</city>"
                  "<mark>blue</mark><line><quantity>1</quantity><price>0</price></line>"),
            Written(*order));
}

TEST(BoundObject, ARestrictionHasRowsOfItsOwn) {
  std::string const type = " xsi:type='HomeOrder'";
  std::string const status = " status='blue'";
  std::string const start = "<party id='007'><name>N</name></party>";
  std::string const street = "<street>s</street>";
  auto const order = ReadOrder(XmlText(Order(start + street + kLine, type + status)));
  EXPECT_EQ(Order(start + street + kLine, type + status), Written(*order));
  EXPECT_EQ(COrder::EChoice::Street, order->GetChoice());  // what the base knows still holds
  EXPECT_EQ("N", order->GetParty().GetName());

  struct {
    std::string content;
    std::string cause;
    std::string attributes;
  } const cases[] = {
      {start + "<pickup>x</pickup>" + kLine, "Failed to find a required element [street]", status},
      {start + street + kLine + kLine, "The Maximum number of [line] elements allowed in this collection is 1", status},
      {start + street + kLine, "Failed to find the required Attribute [status]", ""},
      {start + street + kLine, "Unexpected Attribute [version] found.", status + " version='1.0'"},
      {"<party xsi:type='Firm' id='007'><name>N</name></party>",
       "The type [Firm] of the element [party] is not derived from [Person]", status},
  };
  for (auto const& [content, cause, attributes] : cases) {
    std::string const document = Order(content, type + attributes);
    EXPECT_EQ(cause, CauseOf([&document] { ReadOrder(XmlText(document)); })) << content;
  }

  EXPECT_NE("", CauseOf([&] { order->SetStreet(""); }));
  order->SetCity("c");
  EXPECT_EQ("[city] is set, but the type [HomeOrder] does not allow it", WriteFailure(*order));
  order->SetCity(std::nullopt);
  order->SetVersion("1.0");
  EXPECT_EQ("[version] is set, but the type [HomeOrder] does not allow it", WriteFailure(*order));
  order->SetVersion(std::nullopt);
  order->GetLine().Clear();
  order->GetLine().Add().SetQuantity(1);
  EXPECT_EQ("", WriteFailure(*order));
  EXPECT_EQ("", CauseOf([&] { CHomeOrder::CreateInstance()->GetParty().SetName("N"); }));  // not of the abstract type
}

TEST(BoundObject, SettersCheckValues) {
  auto const order = CreateOrder();
  auto const party = CPerson::CreateInstance();
  CLine& line = order->GetLine().Add();
  CAmount& amount = order->CreateAmount();
  struct {
    char const* cause;
    std::string actual;
  } const cases[] = {
      {"",
       CauseOf([&] { party->SetName("Zo\xc3\xab Zo\xc3\xab Zo\xc3\xab Zo\xc3\xab Zo\xc3\xab"); })},  // 19 characters
      {"Invalid Value for name []", CauseOf([&] { party->SetName(""); })},
      {"Invalid Value for id [x07]", CauseOf([&] { party->SetId("x07"); })},
      {"Invalid Value for quantity [100]", CauseOf([&] { line.SetQuantity(100); })},
      {"", CauseOf([&] { line.SetPrice("1234.56"); })},
      {"", CauseOf([&] { line.SetPrice("-0001234.5000"); })},
      {"Invalid Value for price [12345.67]", CauseOf([&] { line.SetPrice("12345.67"); })},
      {"Invalid Value for price [0.125]", CauseOf([&] { line.SetPrice("0.125"); })},
      {"Invalid Value for Amount [0.125]", CauseOf([&] { amount.SetValue("0.125"); })},
      {"The value [1.1] of [version] is not the fixed value [1.0]", CauseOf([&] { order->SetVersion("1.1"); })},
      {"", CauseOf([&] { order->SetVersion("1.0"); })},
      {"The Property [party] is mandatory, it may node be NULL", CauseOf([&] { order->SetParty(nullptr); })},
      {"This property requrires an element with the name party the element being set has the element name other",
       CauseOf([&] { order->SetParty(CPerson::CreateInstance("other")); })},
      {"The type [Party] is abstract", CauseOf([&] { order->GetParty(); })},
      {"The element [party] is not set", CauseOf([&] { const_cast<COrder const&>(*order).GetParty(); })},
  };
  for (auto const& [cause, actual] : cases) EXPECT_EQ(cause, actual);
  EXPECT_EQ(CDecimal("-1234.5"), line.GetPrice());
}

TEST(BoundObject, ConstObjectsMakeNoCollections) {
  CSmartPtr<COrder> const made = CreateOrder();
  COrder const& order = *made;
  EXPECT_TRUE(order.GetLine().empty());
  EXPECT_EQ(order.GetSlot().begin(), order.GetSlot().end());
  EXPECT_EQ(0u, order.GetColour().size());
  EXPECT_TRUE(order.GetAny().empty());
  CSmartPtr<COrder> const another = CreateOrder();
  COrder const& other = *another;
  EXPECT_EQ(&other.GetLine(), &order.GetLine());
}

TEST(BoundObject, IsAsNewBeforeEachRead) {
  auto const order = ReadOrder(XmlText(Order(
      kParty + "<street>s</street><card>1</card><from>2024-01-01</from><until>2024-01-02</until><mark>red</mark>" +
          kLine + "<weight>1</weight><colour>red</colour><extra/><e xmlns=''/>",
      " status='blue' version='1.0' xmlns:o='urn:o' o:k='v'")));
  std::string const text = Order(kParty + "<pickup>x</pickup>" + kLine);
  order->FromXml(text.c_str());
  EXPECT_EQ(text, Written(*order));
}

TEST(BoundObject, LenientReadsSkipWhatIsUnknown) {
  CXmlSerializationContext unknown;
  unknown.SetIgnoreUnknownElements(true);
  std::string const u = "<u/>";
  auto const order = ReadOrder(XmlText(Order(u + kParty + u + "<street>s</street><city>c</city>" + u + "<line>" + u +
                                             "<price>1</price>" + u + "<quantity>7</quantity></line>" + u)),
                               unknown);
  EXPECT_EQ(7, order->GetLine()[0].GetQuantity());
  EXPECT_EQ("c", order->GetCity());

  CXmlSerializationContext missing;
  missing.SetIgnoreMissingMandatoryElements(true);
  missing.SetIgnoreMissingChoice(true);
  missing.SetIgnoreInvalidCollectionCounts(true);
  auto const partial = ReadOrder(XmlText(Order("<from>2024-01-01</from>")), missing);
  EXPECT_TRUE(partial->GetFrom());
  EXPECT_NE(std::string::npos, partial->ToXml(false, false, EOLType_LF, missing).find("from>2024-01-01</"));
}

TEST(BoundObject, ThreadsShareTables) {
  std::string const text = Order(kParty + "<pickup>x</pickup><text>a</text>" + kLine);
  std::atomic<int> equal{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] { equal += Written(*ReadOrder(XmlText(text))) == text ? 1 : 0; });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(4, equal);
}

TEST(NamespaceRule, AllowsWhatTheListSays) {
  struct {
    char const* allowed;
    char const* yes;  // separated by blanks; - for none
    char const* no;
  } const cases[] = {
      {"##any", "- urn:t urn:x", ""},
      {"##other", "urn:x", "- urn:t"},
      {"##local", "-", "urn:t urn:x"},
      {"##targetNamespace", "urn:t", "- urn:x"},
      {"urn:a\n urn:b", "urn:a urn:b", "- urn:t urn:x"},
      {"##local ##targetNamespace urn:a", "- urn:t urn:a", "urn:x"},
      {"", "", "- urn:t"},
  };
  for (auto const& [allowed, yes, no] : cases) {
    CNamespaceRule const rule{allowed, "urn:t"};
    for (bool const expected : {true, false}) {
      std::istringstream list(expected ? yes : no);
      for (std::string ns; list >> ns;) EXPECT_EQ(expected, Allows(rule, ns == "-" ? "" : ns)) << allowed << " " << ns;
    }
  }
}

}  // namespace
