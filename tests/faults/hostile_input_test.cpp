// Input designed to be expensive: each piece below is either read and written, at a cost that its length bounds, or
// refused clearly. Costs are counted in allocations. Where other work could become quadratic, the sizes are such that
// it would take minutes.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <functional>
#include <new>
#include <string>

#include "dynamic_class.h"
#include "failing_allocations.h"
#include "octets.h"
#include "quillon9/quillon9.h"
#include "scoped_locale.h"
#include "stack.h"
#include "xmlio/fast_reader_mode.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;

std::string Repeated(std::string const& text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string Numbered(std::string const& before, std::string const& behind, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += before + std::to_string(i) + behind;
  return result;
}

/// Runs \p work and expects at most this many allocations.
template <class Work>
void ExpectAllocationsWithin(std::size_t bound, Work work) {
#ifdef QN_THREAD_SANITIZER
  static_cast<void>(bound);
  work();
#else
  try {
    FailingAllocations const beyond(bound, Shortage::Lasts);
    work();
  } catch (std::bad_alloc const&) {
  }
  EXPECT_FALSE(FailingAllocations::HasFailed()) << "more than " << bound << " allocations";
#endif
}

/// How many readers read a text: both in the mode that compares them.
std::size_t ReadersOfText() { return CurrentFastReaderMode() == FastReaderMode::kCompared ? 2 : 1; }

TEST(HostileInput, MuchOfAnythingCostsWhatItsLengthIs) {
  std::string const name(10'000'000, 'n');
  struct {
    char const* what;
    std::string document;
    std::size_t pieces;
  } const rows[] = {
      {"siblings", "<r>" + Repeated("<a/>", 50'000) + "</r>", 50'000},
      {"siblings of many names", "<r>" + Numbered("<a", "/>", 50'000) + "</r>", 50'000},
      {"siblings of many namespaces", "<r>" + Numbered("<a xmlns='u", "'/>", 20'000) + "</r>", 20'000},
      {"attributes", "<r" + Numbered(" a", "='1'", 200'000) + "/>", 200'000},
      {"lines", "<r>" + Repeated("x\n", 2'000'000) + "</r>", 0},
      {"text between elements", "<r>" + Repeated("x<a/>", 50'000) + "</r>", 50'000},
      {"carriage returns", "<r>" + Repeated("&#13;", 500'000) + "</r>", 0},
      {"sections", "<r>" + Repeated("<![CDATA[x]]>", 300'000) + "</r>", 0},
      {"a long name", "<r><" + name + " xmlns='" + name + "' " + name + "='1'/></r>", 2},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.what);
    CXmlDocument document;
    CSmartPtr<CElement> const element(new CElement("r", ""));
    std::string text;
    std::size_t const bound = 1000 + row.document.size() / 500;
    ExpectAllocationsWithin(ReadersOfText() * (bound + 12 * row.pieces),
                            [&] { document.LoadXml(row.document.c_str()); });
    ExpectAllocationsWithin(bound + 40 * row.pieces, [&] { element->CopyXmlElement(document.GetDocumentElement()); });
    ExpectAllocationsWithin(bound + 20 * row.pieces, [&] { text = element->ToXml(); });
    if (document.GetDocumentElement()->GetFirstElement() != nullptr && !element->GetText().empty()) continue;
    CBinaryData const infoset = element->ToFastInfosetStream();  // which has no place for text after children
    document.LoadXmlStream(infoset.GetData(), infoset.GetLength());
    CSmartPtr<CElement> const back(new CElement("r", ""));
    back->CopyXmlElement(document.GetDocumentElement());
    EXPECT_TRUE(text == back->ToXml());
  }
}

TEST(HostileInput, AMillionSiblingsAreReadIntoACollection) {
  Shape const shape({}, {new CElementInfoSeqPrimCol("a", "", 0)});
  DynamicClass object(shape, "r");
  auto* const texts = new CstringCol("a", "", 0, -1, "", -1, -1, "", "", "", "", -1,
                                     CWhitespaceUtils::WhitespaceRule_Preserve, nullptr);
  object.With(0, texts);
  std::string const document = "<r>" + Repeated("<a/>", 1'000'000) + "</r>";
  ExpectAllocationsWithin(10'000'000, [&] { object.FromXml(document.c_str()); });
  EXPECT_EQ(1'000'000, texts->GetCount());
}

// ---- Short declarations with a large effect

TEST(HostileInput, BombsAreRefused) {
  std::string laughs = "<!DOCTYPE r [<!ENTITY l0 'lol'>";
  std::string chain = "<!DOCTYPE r [<!ENTITY l0 'lol'>";
  for (int i = 1; i < 20; ++i) {
    std::string const before = "&l" + std::to_string(i - 1) + ";";
    laughs += "<!ENTITY l" + std::to_string(i) + " '" + Repeated(before, 10) + "'>";
  }
  for (int i = 1; i < 50'000; ++i) {
    chain += "<!ENTITY l" + std::to_string(i) + " '&l" + std::to_string(i - 1) + ";'>";
  }
  std::string const large = "<!DOCTYPE r [<!ENTITY e '" + std::string(100'000, 'x') + "'>";
  std::string const defaults = "<!DOCTYPE r [<!ATTLIST a" + Numbered(" a", " CDATA '1'", 1000) + ">]><r>";
  std::string const parser = "limit on input amplification factor (from DTD and entities) breached at line 1";
  std::string const content = "The content of the document exceeds the limit of 268435456 bytes";
  struct {
    char const* what;
    std::string document;
    std::string failure;
  } const rows[] = {
      {"entities of entities", laughs + "]><r>&l19;</r>", parser},
      {"the same in an attribute", laughs + "]><r a='&l19;'/>", parser},
      {"a large entity", large + "]><r>" + Repeated("&e;", 20'000) + "</r>", parser},
      {"default attributes", defaults + Repeated("<a/>", 20'000) + "</r>", content},
      {"a long namespace", "<r xmlns:p='" + std::string(1'000'000, 'u') + "'>" + Repeated("<p:a/>", 10'000) + "</r>",
       content},
      {"declared attributes",
       "<!DOCTYPE r [<!ATTLIST a" + Numbered(" a", " CDATA #IMPLIED", 50'000) + ">]><r>" + Repeated("<a/>", 200'000) +
           "</r>",
       "The document type declares more than 1000 attributes for the element [a]"},
      {"as many as may be",
       "<!DOCTYPE r [<!ATTLIST a" + Numbered(" a", " CDATA #IMPLIED", 1000) + ">]><r>" + Repeated("<a/>", 200'000) +
           "</r>",
       ""},
      {"declared namespaces",
       "<!DOCTYPE r [<!ATTLIST a" + Numbered(" xmlns:p", " CDATA 'u'", 1000) + ">]><r>" + Repeated("<a/>", 20'000) +
           "</r>",
       content},
      {"a chain of entities", chain + "]><r>&l49999;</r>", ""},
      {"an entity of itself", "<!DOCTYPE r [<!ENTITY e '&e;'>]><r>&e;</r>", "recursive entity reference at line 1"},
  };
  for (auto const& row : rows) {
    CXmlDocument document;
    std::string failure;
    try {
      document.LoadXml(row.document.c_str());
    } catch (CQnException const& caught) {
      failure = caught.GetFullMessage();
    }
    EXPECT_EQ(row.failure, failure) << row.what;
  }
}

// Tree and objects together: half of the memory that they take is too low a limit, twice as much is high enough.
TEST(HostileInput, ContentCountsAboutWhatItTakes) {
  if (!AreCLibrariesIncluded()) GTEST_SKIP() << "other allocators take other sizes";
  std::uint64_t const size = CLimits::GetMaxContentSize();
  std::uint32_t const growth = CLimits::GetMaxContentGrowth();
  CLimits::SetMaxContentGrowth(0);
  std::string const uri = "urn:oasis:names:specification:ubl:schema:xsd:CommonAggregateComponents-2";
  struct {
    char const* what;
    std::string document;
  } const rows[] = {
      {"empty elements", "<r>" + Repeated("<a/>", 100'000) + "</r>"},
      {"elements in elements", "<r>" + Repeated("<a><b><c/></b></a>", 30'000) + "</r>"},
      {"attributes", "<r>" + Repeated("<a b='1' c='2' d='3'/>", 30'000) + "</r>"},
      {"long names", "<c:r xmlns:c='" + uri + "'>" + Repeated("<c:TaxSubtotalCategory/>", 50'000) + "</c:r>"},
      {"many names", "<r>" + Numbered("<a", "/>", 50'000) + "</r>"},
      {"texts", "<r>" + Repeated("<a>A text that is too long for a small string</a>", 50'000) + "</r>"},
      {"a long text", "<r>" + std::string(20'000'000, 'x') + "</r>"},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.what);
    long taken = 0;
    auto const read = [&] {
      long const before = CountLiveOctets();
      CXmlDocument document;
      CSmartPtr<CElement> const element(new CElement("r"));
      try {
        document.LoadXml(row.document.c_str());
        element->CopyXmlElement(document.GetDocumentElement());
      } catch (CQnException const&) {
        return false;
      }
      taken = CountLiveOctets() - before - static_cast<long>(row.document.size());
      return true;
    };
    CLimits::SetMaxContentSize(size);
    EXPECT_TRUE(read());
    auto const enough = static_cast<std::uint64_t>(taken);
    CLimits::SetMaxContentSize(2 * enough);
    EXPECT_TRUE(read());
    CLimits::SetMaxContentSize(enough / 2);
    EXPECT_FALSE(read());
  }
  CLimits::SetMaxContentSize(size);
  CLimits::SetMaxContentGrowth(growth);
}

TEST(HostileInput, NothingOutsideTheDocumentIsOpened) {
  std::string const path = testing::TempDir() + "quillon9_outside.dtd";
  std::ofstream(path) << "<!ENTITY e 'secret'><!ATTLIST r a CDATA 'secret'>";
  std::string const system = "SYSTEM '" + path + "'";
  for (std::string const& document :
       {"<!DOCTYPE r " + system + "><r>x</r>", "<!DOCTYPE r [<!ENTITY e " + system + ">]><r>x&e;</r>",
        "<!DOCTYPE r [<!ENTITY % e " + system + "> %e;]><r>x&e;</r>"}) {
    CXmlDocument tree;
    tree.LoadXml(document.c_str());
    EXPECT_EQ("x", tree.GetDocumentElement()->GetText()) << document;
    EXPECT_TRUE(tree.GetDocumentElement()->GetAttributes().empty()) << document;
  }
  std::remove(path.c_str());
}

// ---- Depth

/// Nested classes as deep as the document, each containing one of the same kind.
CSmartPtr<CXmlObjectBase> MakeNested(int, char const* name);
Shape const& NestedShape() {
  static Shape const shape({}, {new CElementInfoSeqClsOpt("n", "", 0, XmlElementType_Element, MakeNested, 0)},
                           {Attribute("id", 1, true, ItemType_i4)});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakeNested(int, char const* name) { return new DynamicClass(NestedShape(), name); }

TEST(HostileInput, AFaultBelowManyElementsNamesEachOfThemOnce) {
  constexpr std::size_t kDepth = 20'000;
  std::uint32_t const limit = CLimits::GetMaxElementDepth();
  CLimits::SetMaxElementDepth(kDepth);
  std::string const document = Repeated("<n>", kDepth - 1) + "<n id='x'/>" + Repeated("</n>", kDepth - 1);
  RunWithStack(std::size_t{256} << 20, [&] {
    CSmartPtr<DynamicClass> const object(new DynamicClass(NestedShape(), "n"));
    std::string message;
    ExpectAllocationsWithin(60 * kDepth, [&] {
      try {
        object->FromXml(document.c_str());
      } catch (CQnValidationException const& failure) {
        message = failure.GetFullMessage();
      }
    });
    EXPECT_TRUE(message ==
                Repeated("Failed to process the element [n]\n", kDepth) + "The value [x] can not be converted to a i4");
  });
  CLimits::SetMaxElementDepth(limit);
}

TEST(HostileInput, DepthNeverOverrunsTheStackOfAThread) {
  std::string const document = Repeated("<n>", 1000) + Repeated("</n>", 1000);
  std::string const refusal = "The element nesting exceeds the stack of the thread";
  CSmartPtr<DynamicClass> const object(new DynamicClass(NestedShape(), "n"));
  CSmartPtr<CElement> const element(new CElement("n", ""));
  RunWithStack(std::size_t{64} << 20, [&] {
    object->FromXml(document.c_str());
    element->FromXml(document.c_str());
  });
  std::function<void()> const acts[] = {
      [&] { DynamicClass(NestedShape(), "n").FromXml(document.c_str()); },
      [&] { object->Text(); },
      [&] { object->ToFastInfosetStream(); },
      [&] { CSmartPtr<CElement>(new CElement("n", ""))->FromXml(document.c_str()); },
      [&] { element->ToXml(); },
  };
  for (auto const& act : acts) {
    for (std::size_t const kibibytes : {128U, 256U, 8192U}) {
      std::string cause;
      RunWithStack(kibibytes << 10, [&] {
        try {
          act();
        } catch (CQnException const& failure) {
          CQnException const* inner = &failure;
          while (inner->GetInnerException() != nullptr) inner = inner->GetInnerException();
          cause = inner->GetMessage();
        }
      });
      EXPECT_TRUE(cause == refusal || (cause.empty() && kibibytes > 128)) << kibibytes << " KiB: " << cause;
      EXPECT_TRUE(kibibytes < 8192 || cause.empty()) << cause;
    }
  }
}

// ---- Callers whose functions throw

enum class Place { Nowhere, Init, Store, Fetch, MakeChild, ChildInit, EnumFromText, EnumToText, Nil, Listener };
Place g_place = Place::Nowhere;
std::function<void()> g_throw;

void At(Place place) {
  if (g_place == place) g_throw();
}

class ThrowingClass : public DynamicClass, public INillable {
 public:
  explicit ThrowingClass(Shape const& shape, char const* name = "r", Place init = Place::Init)
      : DynamicClass(shape, name), m_initPlace(init) {}
  void Init() override {
    At(m_initPlace);
    DynamicClass::Init();
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    At(read ? Place::Fetch : Place::Store);
    DynamicClass::AccessProperty(index, read, value);
  }
  bool IsNil() const override {
    At(Place::Nil);
    return false;
  }
  void SetNil(bool) override {}
  void OnEvent(CXmlObjectBase*, MsgType, void*) override { At(Place::Listener); }

 private:
  Place const m_initPlace;
};

CSmartPtr<CXmlObjectBase> MakeChild(int, char const* name) {
  static Shape const shape({}, {});
  At(Place::MakeChild);
  return new ThrowingClass(shape, name, Place::ChildInit);
}

char const* EnumToText(int) {
  At(Place::EnumToText);
  return "one";
}

int EnumFromText(char const*) {
  At(Place::EnumFromText);
  return 1;
}

struct Foreign {};

/// The result of \p action: the message of a failure of the library, or a description of any other exception.
std::string Outcome(std::function<void()> const& action) {
  try {
    action();
    return "";
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  } catch (std::bad_alloc const&) {
    return "out of memory";
  } catch (Foreign const&) {
    return "foreign";
  }
}

TEST(HostileInput, WhatACallersFunctionThrowsReachesTheCaller) {
  Shape const shape(
      {}, {Prim<CElementInfoSeqPrimMnd>("v", 0), new CElementInfoSeqEnumOpt("e", "", 1, EnumToText, EnumFromText),
           new CElementInfoSeqPrimCol("c", "", 2),
           new CElementInfoSeqClsOpt("n", "", 3, XmlElementType_Element, MakeChild, 0)});
  char const document[] = "<r><v>1</v><e>one</e><c>t</c><n/></r>";
  ThrowingClass object(shape);
  auto* const texts = new CstringCol("c", "", 0, -1, "", -1, -1, "", "", "", "", -1,
                                     CWhitespaceUtils::WhitespaceRule_Preserve, nullptr);
  texts->AddEventListener(&object);
  object.With(2, texts);
  std::string const reading = "Failed to process the element [r]\n";
  std::string const writing = "Failed to convert the element [r] to XML\n";
  struct {
    Place place;
    std::string wrappedIn;
  } const rows[] = {
      {Place::Init, reading},         {Place::Store, reading},
      {Place::MakeChild, reading},    {Place::ChildInit, reading + "Failed to process the element [n]\n"},
      {Place::EnumFromText, reading}, {Place::Listener, reading},
      {Place::Fetch, writing},        {Place::EnumToText, writing},
      {Place::Nil, writing},
  };
  object.FromXml(document);
  for (auto const& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.place));
    auto const act = [&] { row.wrappedIn == writing ? void(object.Text()) : object.FromXml(document); };
    long const live = CountLiveAllocations();
    for (int round = 0; round < 2; ++round) {
      g_place = row.place;
      g_throw = [] { throw CQnInvalidValueException("no"); };
      EXPECT_EQ(row.wrappedIn + "no", Outcome(act));
      g_throw = [] { throw Foreign(); };
      EXPECT_EQ("foreign", Outcome(act));
      g_throw = [] { throw std::bad_alloc(); };
      EXPECT_EQ("out of memory", Outcome(act));
      g_place = Place::Nowhere;
      EXPECT_EQ("", Outcome([&] { object.FromXml(document); }));
      EXPECT_EQ(document, object.Text());
    }
    EXPECT_EQ(live, CountLiveAllocations());
  }
  texts->RemoveEventListener(&object);
}

// ---- Code pages

// A name is separated from its namespace only at a real mark, never at a byte within a character, in all formats.
TEST(HostileInput, CharactersThatHoldTheBytesOfMarksGoRound) {
  for (char const* name : {"zh_CN.GB18030", "ja_JP.SJIS", "de_DE.ISO-8859-1", "C.UTF-8"}) {
    ScopedLocale const locale(name);
    if (!locale.IsThere()) continue;
    std::string const character = name[0] == 'd' ? "\u00E4" : "\u4E85";
    std::string const c = name[0] == 'j' ? "\u30DD" : character;
    std::string const document = "<AA:" + c + " xmlns:AA=\"u" + c + "\" AA:" + c + "=\"" + c + "&quot;\"><AA:" + c +
                                 ">" + c + "&lt;</AA:" + c + "></AA:" + c + ">";
    CSmartPtr<CElement> const element(new CElement("r", ""));
    CXmlDocument tree;
    tree.LoadXml(document.c_str());
    element->CopyXmlElement(tree.GetDocumentElement());
    EXPECT_EQ(document, Bytes(element->ToXmlStream(false, false))) << name;
    CBinaryData const infoset = element->ToFastInfosetStream();
    tree.LoadXmlStream(infoset.GetData(), infoset.GetLength());
    element->CopyXmlElement(tree.GetDocumentElement());
    EXPECT_EQ(document, Bytes(element->ToXmlStream(false, false))) << name;
  }
}

}  // namespace
}  // namespace Quillon9
