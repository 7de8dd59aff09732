#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "golden/stations.h"
#include "quillon9/quillon9.h"

namespace Quillon9Generator::Testing {
namespace {

using Stations::CStation;
using Stations::EDay;

CSmartPtr<CStation> Read(std::string const& text, bool checks = false) {
  Quillon9::CXmlSerializationContext ctx;
  ctx.SetChecksFacetsOnReading(checks);
  if (!checks) ctx.SetValueRules(Quillon9::ValueRules_Classic);
  return Stations::ReadStation(Quillon9::XmlText(text), ctx);
}

std::string Document(std::string const& attributes, std::string const& position, std::string const& rest,
                     std::string const& sensors = "<sensor id='a'/>", std::string const& end = "") {
  return "<station xmlns='urn:station' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'" + attributes +
         "><position>" + position + "</position>" + rest + sensors + end + "</station>";
}

TEST(Lists, AreVectors) {
  auto const station =
      Read(Document(" even='2.0 4'", " 1.5\n-2 ",
                    "<open>Mo\tTu</open><dates>2024-01-31 2024-02-01</dates><codes>7 255</codes><level>3</level>",
                    "<sensor id='a'><path>1 2</path><path>3 4</path></sensor>", "<flags>1 false</flags>"));
  EXPECT_EQ(station->GetPosition(), (std::vector<double>{1.5, -2}));
  EXPECT_EQ(station->GetOpen(), (std::vector<EDay>{EDay::Mo, EDay::Tu}));
  EXPECT_EQ(station->GetDates()->at(1), Quillon9::CDateTime(2024, 2, 1));
  EXPECT_EQ(station->GetCodes()->GetValue(), (std::vector<std::uint8_t>{7, 255}));
  EXPECT_EQ(station->GetSensor()[0].GetPath()[1].GetValue(), (std::vector<double>{3, 4}));
  EXPECT_EQ(station->GetFlags()->GetValue(), (std::vector<bool>{true, false}));
  EXPECT_EQ(station->GetFlags()->GetNames(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(station->GetEven().size(), 2U);

  station->GetSensor()[0].GetPath().Add().SetValue({5, 6.25});
  station->GetFlags()->SetNames(std::vector<std::string>{"x", "y"});
  station->SetOpen(std::vector<EDay>{EDay::Mo});
  std::string const written = station->ToXml();
  for (char const* part : {":position>1.5 -2<", ":open>Mo<", ":dates>2024-01-31 2024-02-01<", ":codes>7 255<",
                           ":path>5 6.25<", ">true false<", "names=\"x y\""}) {
    EXPECT_NE(written.find(part), written.npos) << part << written;
  }
  EXPECT_EQ(Read(written)->ToXml(), written);
}

// Each fails when a list is set, when it is written, and when it is read where the context asks for that.
TEST(Lists, KeepTheirFacets) {
  struct Row {
    char const* attributes;
    char const* position;
    char const* rest;
    char const* failure;
    bool isAlways;  ///< whatever the context says
  };
  Row const rows[] = {
      {"", "1 2", "", "", false},
      {"", "1 2 3", "", "Invalid Value for position [1 2 3]", false},
      {"", "", "", "Invalid Value for position []", false},
      {"", "1 180.5", "", "Invalid Value for position [180.5", false},
      {"", "1 x", "", "[x]", true},
      {"", "1 2", "<open>Mo Tu We</open>", "Invalid Value for open [Mo Tu We]", false},
      {"", "1 2", "<open>Tu Mo</open>", "Invalid Value for open [Tu Mo]", false},
      {"", "1 2", "<open>Mo Su</open>", "The value [Su] is not one of the enumeration [EDay]", true},
      {"", "1 2", "<codes>1 256</codes>", "[256]", true},
      {"", "1 2", "<codes xsi:nil='true'/>", "", false},
      {"", "1 2", "<level>0</level>", "Invalid Value for level [0]", false},
      {"", "1 2", "<level>5</level><level>unknown</level>", "", false},
      {"", "1 2", "<level>2024-01-31 2024-02-01</level>", "", false},
      {"", "1 2", "<level>2024-01-31 soon</level>", "Invalid Value for level [2024-01-31 soon]", false},
      {" even='2.0 4.00'", "1 2", "", "", false},
      {" even='2'", "1 2", "", "is not the fixed value [2 4]", true},
  };
  for (Row const& row : rows) {
    std::string const document = Document(row.attributes, row.position, row.rest);
    for (bool const checks : {true, false}) {
      std::string failure;
      try {
        Read(document, checks)->ToXml();
      } catch (Quillon9::CQnException const& thrown) {
        failure = thrown.GetFullMessage();
      }
      EXPECT_EQ(failure.empty(), *row.failure == '\0') << document << failure;
      EXPECT_NE(failure.find(row.failure), failure.npos) << document << failure;
    }
    EXPECT_EQ(row.isAlways, [&] {
      try {
        Read(document);
        return false;
      } catch (Quillon9::CQnException const&) {
        return true;
      }
    }()) << document;
  }

  auto const station = Stations::CreateStation();
  EXPECT_THROW(station->SetPosition({1}), Quillon9::CQnException);
  EXPECT_THROW(station->SetEven(std::vector<Quillon9::CDecimal>{Quillon9::CDecimal("2")}),
               Quillon9::CQnInvalidValueException);
  EXPECT_THROW(station->GetSensor().Add().SetLevel("low"), Quillon9::CQnException);
  station->SetPosition({1, 2});
  station->GetSensor().back().SetId("a");
  station->CreateFlags().SetNames(std::vector<std::string>{"a b"});
  EXPECT_THROW(station->ToXml(), Quillon9::CQnException);
}

TEST(Lists, RandomOnesComeBack) {
  std::mt19937 random(4);
  auto const number = [&random](int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  };
  for (int round = 0; round < 200; ++round) {
    auto const station = Stations::CreateStation();
    std::uniform_real_distribution<double> degrees(-180, 180);
    station->SetPosition({degrees(random), degrees(random)});
    std::vector<Quillon9::CDateTime> dates;
    std::vector<std::uint8_t> codes;
    std::vector<std::string> names;
    for (int i = number(0, 5); i > 0; --i) {
      dates.emplace_back(number(1900, 2100), number(1, 12), number(1, 28));
      codes.push_back(static_cast<std::uint8_t>(number(0, 255)));
      names.push_back(std::string(static_cast<std::size_t>(number(1, 4)), static_cast<char>(number('a', 'z'))));
    }
    station->SetDates(dates);
    station->CreateCodes().SetValue(codes);
    station->CreateFlags().SetNames(names);
    station->GetFlags()->SetValue(std::vector<bool>(names.size(), round % 2 == 0));
    auto& sensor = station->GetSensor().Add();
    sensor.SetId("s");
    sensor.SetLevel(round % 3 == 0 ? "unknown" : std::to_string(number(1, 999)));

    auto const back = Read(station->ToXml(), true);
    EXPECT_EQ(back->GetPosition(), station->GetPosition());
    EXPECT_EQ(back->GetDates(), dates);
    EXPECT_EQ(back->GetCodes()->GetValue(), codes);
    EXPECT_EQ(back->GetFlags()->GetNames(), names);
    EXPECT_EQ(back->GetFlags()->GetValue(), station->GetFlags()->GetValue());
    EXPECT_EQ(back->GetSensor()[0].GetLevel(), sensor.GetLevel());
  }
}

// ---- Names with a namespace

Quillon9::CQName Name(char const* ns, char const* local) { return Quillon9::CQName(ns, local); }

/// What the names of the station are, after a read.
void ExpectNames(CStation const& station) {
  EXPECT_EQ(station.GetUnits(), (std::vector<Quillon9::CQName>{Name("urn:u", "m"), Name("urn:station", "s")}));
  EXPECT_EQ(station.GetSensor()[0].GetUnit(), Name("urn:v", "m"));
  EXPECT_EQ(station.GetKind(), Name("urn:u", "fixed"));
  EXPECT_EQ(station.GetAlias()[0].GetValue(), Name("urn:station", "plain"));
  EXPECT_EQ(station.GetAlias()[1].GetValue(), Name("urn:w", "other"));
  EXPECT_EQ(station.GetMaker()->GetValue(), Name("urn:u", "works"));
  EXPECT_EQ(station.GetMaker()->GetOf(), Name("urn:w", "town"));
}

constexpr char kNames[] =
    "<station xmlns='urn:station' xmlns:u='urn:u' units='u:m s'><position>1 2</position>"
    "<sensor id='a' unit='u:m' xmlns:u='urn:v'/><kind> u:fixed </kind><alias>plain</alias>"
    "<alias xmlns:x='urn:w'>x:other</alias><maker xmlns:w='urn:w' of='w:town'>u:works</maker></station>";

TEST(Names, KeepTheirNamespaces) {
  auto const station = Read(kNames);
  ExpectNames(*station);
  std::string const written = station->ToXml();
  ExpectNames(*Read(written));
  EXPECT_NE(written.find("xmlns:u=\"urn:u\""), written.npos) << written;
  std::string shown;
  for (Quillon9::CBoundItem const& item : station->Content()) shown += item.GetName() + item.GetValue() + ' ';
  EXPECT_EQ(shown, "position1 2 sensor kindu:fixed alias alias maker ");
  Quillon9::CBinaryData const bytes = station->ToFastInfosetStream();
  ExpectNames(*Stations::ReadStation(bytes));
  station->SetUnits(std::nullopt);
  EXPECT_EQ(Stations::ReadStation(station->ToFastInfosetStream())->ToXml(), station->ToXml());

  station->SetKind(Quillon9::CQName("urn:u&\"<", "k", "AA"));
  station->GetSensor()[0].SetUnit(Quillon9::CQName("urn:z", "z", "not a prefix"));
  auto const back = Read(station->ToXml());
  EXPECT_EQ(back->GetKind(), Name("urn:u&\"<", "k"));
  EXPECT_EQ(back->GetSensor()[0].GetUnit(), Name("urn:z", "z"));

  EXPECT_THROW(Read(Document("", "1 2", "", "<sensor id='a' unit='n:m'/>")), Quillon9::CQnException);
  EXPECT_THROW(Read(Document("", "1 2", "", "<sensor id='a'/><kind>n:m</kind>")), Quillon9::CQnException);
  station->SetKind(Name("urn:u", "a b"));
  EXPECT_THROW(station->ToXml(), Quillon9::CQnException);
  station->SetKind(Name("", "none"));
  EXPECT_EQ(Read(station->ToXml())->GetKind(), Name("", "none"));
  Quillon9::CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:station");
  EXPECT_THROW(station->ToXml(true, true, Quillon9::EOLType_LF, ctx), Quillon9::CQnException);
}

// What a prefix stood for in generic content, it stands for in what is written.
TEST(Names, KeepTheirMeaningInWildcards) {
  std::string const document = Document(
      " xmlns:a='urn:a' xmlns:o='urn:o' o:ref='a:b'", "1 2", "", "<sensor id='a'/>",
      "<o:x xmlns:a='urn:other' xsi:type='a:T' at='http://x/ 12:30 urn:y'><y xmlns='urn:y' xsi:type='Y'>a:text</y>"
      "<z xmlns='' path='a:b/@c:d | child::a:e'/></o:x>");
  auto const isKept = [](CStation const& station) {
    Quillon9::CXmlDocument written;
    written.LoadXml(station.ToXml().c_str());
    Quillon9::CXmlElement const& root = *written.GetDocumentElement();
    auto const meaning = [&](Quillon9::CXmlElement const& element, std::string value) {
      std::string uri;
      std::size_t const colon = value.find(':');
      written.LookupNamespace(element, colon == value.npos ? "" : value.substr(0, colon), uri);
      return "{" + uri + "}" + value.substr(colon == value.npos ? 0 : colon + 1);
    };
    char const xsi[] = "http://www.w3.org/2001/XMLSchema-instance";
    EXPECT_EQ(meaning(root, root.GetAttribute("ref", "urn:o")), "{urn:a}b");
    Quillon9::CXmlElement const& x = *root.Children("x").First();
    EXPECT_EQ(meaning(x, x.GetAttribute("type", xsi)), "{urn:other}T");
    Quillon9::CXmlElement const& y = *x.Children("y").First();
    EXPECT_EQ(meaning(y, y.GetAttribute("type", xsi)), "{urn:y}Y");
    EXPECT_EQ(x.GetAttribute("at", ""), "http://x/ 12:30 urn:y");
  };
  auto const station = Read(document);
  isKept(*station);
  auto const again = Read(station->ToXml());
  isKept(*again);
  EXPECT_EQ(again->ToXml(), station->ToXml());
}

// The prefixes of names are generated anew in each branch, and names that are repeated are written as numbers.
TEST(Names, KeepTheirMeaningInFastInfoset) {
  Quillon9::CBinaryStream stream;
  Quillon9::CFastInfosetContext const options;
  Quillon9::CFastInfosetWriter writer(options, stream);
  writer.WriteStartDocument(Quillon9::FInfoDecl_None);
  writer.WriteStartElement("r", "");
  std::string const uris[] = {"urn:a", "urn:b", "urn:a", "urn:b", "urn:b"};
  for (std::string const& uri : uris) {
    writer.WriteStartElement("x", uri);
    writer.WriteAttributeType(uri, "T", Quillon9::ItemType_string);
    writer.WriteStartElement("y", uri);
    std::string const prefix = writer.PrefixForValues(uri, "");
    EXPECT_FALSE(writer.DeclarePrefix("p", Quillon9::CXmlWriter::XML_NAMESPACE)) << "has a prefix of its own";
    writer.WriteString(prefix + ":v", Quillon9::ItemType_string);
    writer.WriteEndElement();
    writer.WriteEndElement();
  }
  writer.WriteEndElement();
  writer.WriteEndDocument();
  writer.Close();
  Quillon9::CXmlDocument document;
  document.LoadXmlStream(stream.GetBinaryStream().GetData(), stream.GetBinaryStream().GetLength());
  auto const* expected = uris;
  for (Quillon9::CXmlElement const& x : document.GetDocumentElement()->Children()) {
    Quillon9::CXmlElement const& y = *x.GetFirstElement();
    std::string uri;
    EXPECT_TRUE(document.LookupNamespace(y, y.GetText().substr(0, 2), uri));
    EXPECT_EQ(uri, *expected++);
  }
}

// Where no name has a prefix for the namespace of the type, either.
TEST(Names, TypesAreKeptInFastInfoset) {
  CSmartPtr<Stations::CSensor> const sensor = Stations::CSensor::CreateInstance("s");
  sensor->SetId("a");
  sensor->SetTypeAttribute(true);
  Quillon9::CBinaryData const bytes = sensor->ToFastInfosetStream();
  Quillon9::CXmlDocument document;
  document.LoadXmlStream(bytes.GetData(), bytes.GetLength());
  Quillon9::CXmlElement const& root = *document.GetDocumentElement();
  std::string uri;
  std::string const type = root.GetAttribute("type", "http://www.w3.org/2001/XMLSchema-instance");
  EXPECT_EQ(type.substr(2), ":Sensor");
  EXPECT_TRUE(document.LookupNamespace(root, type.substr(0, 2), uri));
  EXPECT_EQ(uri, "urn:station");
}

TEST(Names, PrefixesAreThoseInScope) {
  struct Row {
    char const* document;
    char const* prefix;
    char const* uri;  ///< at the element "at"
  };
  Row const rows[] = {
      {"<at xmlns:p='urn:p'/>", "p", "urn:p"},
      {"<at/>", "p", ""},
      {"<at/>", "xml", "http://www.w3.org/XML/1998/namespace"},
      {"<a xmlns:p='urn:p'><b xmlns:p='urn:q'/><at/></a>", "p", "urn:p"},
      {"<a xmlns:p='urn:p'><b xmlns:p='urn:q'><at/></b></a>", "p", "urn:q"},
      {"<a><b xmlns='urn:q'/><at/></a>", "", ""},
      {"<a><b xmlns:p='urn:q'/><at/></a>", "p", ""},
      {"<a><b/><at xmlns:p='urn:q'/></a>", "p", "urn:q"},
      {"<a><b/><c/><at xmlns='urn:q'/></a>", "", "urn:q"},
      {"<a xmlns='urn:a'><b xmlns=''><at/></b></a>", "", ""},
      {"<a xmlns:p='urn:p'><b><c xmlns:p='urn:q'/></b><b><at xmlns:p='urn:r'/></b></a>", "p", "urn:r"},
  };
  for (Row const& row : rows) {
    Quillon9::CXmlDocument document;
    document.LoadXml(row.document);
    std::vector<Quillon9::CXmlElement*> open = {document.GetDocumentElement()};
    while (open.back()->GetLocalName() != "at") {
      Quillon9::CXmlElement* const element = open.back();
      open.pop_back();
      for (Quillon9::CXmlElement& child : element->Children()) open.push_back(&child);
    }
    std::string uri = "?";
    EXPECT_EQ(document.LookupNamespace(*open.back(), row.prefix, uri), *row.uri != '\0') << row.document;
    EXPECT_EQ(uri, row.uri) << row.document;
  }
}

TEST(Identifiers, LeadToTheirObjects) {
  auto const station = Read(Document("", "1 2", "", "<sensor id='a' next='b'/><sensor id='b' next='c'/>"));
  auto& first = station->GetSensor()[0];
  // [reference]
  auto* next = dynamic_cast<Stations::CSensor*>(station->FindById(*first.GetNext()));  // null if there is none
  // [reference]
  EXPECT_EQ(next, &station->GetSensor()[1]);
  EXPECT_EQ(station->FindById("c"), nullptr);
  EXPECT_EQ(first.FindById("b"), nullptr);
  Quillon9::CIdIndex const index(*station);
  EXPECT_EQ(index.size(), 2U);
  EXPECT_EQ(index.Find("a"), &first);
  EXPECT_EQ(index.Find(""), nullptr);

  first.GetLabel().Add("x");
  first.GetLabel().Add("y");
  EXPECT_EQ(station->FindById("y"), &first);
  EXPECT_EQ(Quillon9::CIdIndex(*station).Find("x"), &first);
  EXPECT_EQ(Quillon9::CIdIndex(*station).size(), 4U);
}

}  // namespace
}  // namespace Quillon9Generator::Testing
