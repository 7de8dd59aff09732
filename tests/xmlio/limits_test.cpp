// Tests for each limit the last value that is accepted, and the next one with the failure that names the limit. After
// each failure the same document reads a good input.

#include "quillon9/base/limits.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dynamic_class.h"
#include "octets.h"
#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;

std::string Repeated(std::string const& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

/// Restores what a test changes.
struct Limits {
  std::uint32_t const depth = CLimits::GetMaxElementDepth();
  std::uint64_t const size = CLimits::GetMaxContentSize();
  std::uint32_t const growth = CLimits::GetMaxContentGrowth();
  std::uint64_t const total = CLimits::GetMaxContentTotal();
  std::uint32_t const decompressed = CLimits::GetMaxDecompressedSize();
  std::uint32_t const declared = CLimits::GetMaxDeclaredAttributes();
  ~Limits() {
    CLimits::SetMaxElementDepth(depth);
    CLimits::SetMaxContentSize(size);
    CLimits::SetMaxContentGrowth(growth);
    CLimits::SetMaxContentTotal(total);
    CLimits::SetMaxDecompressedSize(decompressed);
    CLimits::SetMaxDeclaredAttributes(declared);
    CLimits::SetAllowDocumentType(true);
  }
};

void Load(CXmlDocument& document, std::string input) {
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(input.data()), input.size());
}

std::string Outcome(std::function<void()> const& action) {
  try {
    action();
    return "";
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
}

std::string Infoset(std::string const& octets) { return std::string("\xE0\0\0\1\0", 5) + octets; }
std::string Packed(std::string const& octets, CompressionType type = CompressionType_GZip) {
  unsigned long length = octets.size();
  auto* data = new unsigned char[length];
  std::copy(octets.begin(), octets.end(), data);
  CQnZip::Compress(&data, &length, type);
  std::string const packed(reinterpret_cast<char*>(data), length);
  delete[] data;
  return packed;
}
std::string Gzip(std::size_t size) { return Packed("<a>" + std::string(size - 7, 'x') + "</a>"); }

TEST(Limits, TheLastGoodInputPassesAndTheNextOneNamesTheLimit) {
  Limits const restored;
  CLimits::SetMaxElementDepth(5);
  CLimits::SetMaxContentSize(1000);
  CLimits::SetMaxContentGrowth(0);
  CLimits::SetMaxDecompressedSize(500);
  CLimits::SetMaxDeclaredAttributes(3);
  std::string const depth = "The element nesting exceeds the limit of 5 levels";
  std::string const content = "The content of the document exceeds the limit of 1000 bytes";
  std::string const element = std::string("\x3C\0a", 3);
  std::string const nested = element + std::string(3, '\0');
  std::string const declarations = "The document type declares more than 3 attributes for the element [b]";
  // An element or attribute with a new name of one letter counts 322, or 64 if the name is known.
  auto const text = [](int size) { return "<a>" + std::string(static_cast<std::size_t>(size), 'x') + "</a>"; };
  struct {
    char const* what;
    std::string good;
    std::string bad;
    std::string failure;
  } const rows[] = {
      {"depth, text", Repeated("<a>", 5) + Repeated("</a>", 5), Repeated("<a>", 6), depth},
      {"depth, Fast Infoset", Infoset(nested + std::string(1, '\0') + "\xFF\xFF\xFF"),
       Infoset(nested + std::string(2, '\0')), "Failed to parse FastInfoset. " + depth},
      {"content, text", text(678), text(679), content},
      {"content, attributes", "<a b='" + std::string(356, 'x') + "'/>", "<a b='" + std::string(357, 'x') + "'/>",
       content},
      {"content, names", "<a>" + Repeated("<bb/>", 6) + "</a>", "<a>" + Repeated("<bb/>", 7) + "</a>", content},
      {"content, namespaces", "<a xmlns='" + std::string(204, 'u') + "'/>",
       "<a xmlns='" + std::string(205, 'u') + "'/>", content},
      {"content, entities", "<!DOCTYPE a [<!ENTITY e '0123456789'>]><a>" + Repeated("&e;", 67) + "</a>",
       "<!DOCTYPE a [<!ENTITY e '0123456789'>]><a>" + Repeated("&e;", 68) + "</a>", content},
      {"content, sections", "<a>" + Repeated("<![CDATA[]]>", 56) + "</a>",
       "<a>" + Repeated("<![CDATA[]]>", 57) + "</a>", content},
      // 4 bits, and 8 for each octet after the first, all "true" except two of them, and spaces between octets.
      {"content, booleans", Infoset(element + "\x8C\x16\x12\x0F\xFC" + std::string(19, '\xFF') + "\xFF"),
       Infoset(element + "\x8C\x16\xF7\x0F" + std::string(249, '\xFF') + "\xFF"), content},
      {"declared attributes",
       "<!DOCTYPE a [<!ATTLIST a p ID #IMPLIED q CDATA ''><!ATTLIST b p CDATA ''><!ATTLIST a p CDATA ''>]><a/>",
       "<!DOCTYPE a [<!ATTLIST b p ID #IMPLIED q CDATA ''><!ATTLIST a p CDATA ''>"
       "<!ATTLIST b p CDATA #IMPLIED p CDATA ''>]><a/>",
       declarations},
      {"decompressed", Gzip(500), Gzip(501), "The decompressed data exceeds the limit of 500 bytes"},
  };
  CXmlSerializationContext context;
  context.SetStripCDATA(false);
  CXmlDocument document(context);
  for (auto const& row : rows) {
    EXPECT_EQ("", Outcome([&] { Load(document, row.good); })) << row.what;
    EXPECT_EQ(row.failure, Outcome([&] { Load(document, row.bad); })) << row.what;
    EXPECT_EQ("", Outcome([&] { Load(document, "<good/>"); })) << row.what;
    EXPECT_EQ("good", document.GetDocumentElement()->GetLocalName());
  }
}

TEST(Limits, ContentGrowsWithTheInput) {
  Limits const restored;
  CLimits::SetMaxContentSize(0);
  CLimits::SetMaxContentGrowth(100);
  CXmlDocument document;
  EXPECT_EQ("", Outcome([&] { Load(document, "<a>" + Repeated("<b/>", 1000) + "</a>"); }));
  CLimits::SetMaxContentGrowth(10);
  EXPECT_EQ("The content of the document exceeds the limit of 40070 bytes",
            Outcome([&] { Load(document, "<a>" + Repeated("<b/>", 1000) + "</a>"); }));
}

// Compressed octets count as they arrive, and no growth exceeds the total.
TEST(Limits, ContentGrowsWithWhatCameFromOutside) {
  Limits const restored;
  CLimits::SetMaxContentSize(0);
  std::string const text = "<a>" + Repeated("<b/>", 1000) + "</a>";
  CXmlDocument document;
  for (CompressionType const type : {CompressionType_GZip, CompressionType_ZLib}) {
    std::string const packed = Packed(text, type);
    EXPECT_EQ("The content of the document exceeds the limit of " + std::to_string(100 * packed.size()) + " bytes",
              Outcome([&] { Load(document, packed); }));
    CLimits::SetMaxContentSize(70'000);
    EXPECT_EQ("", Outcome([&] { Load(document, packed); }));
    CLimits::SetMaxContentTotal(60'000);
    for (std::string const& input : {text, packed}) {
      EXPECT_EQ("The content of the document exceeds the limit of 60000 bytes",
                Outcome([&] { Load(document, input); }));
    }
    CLimits::SetMaxContentTotal(~std::uint64_t{0});
    CLimits::SetMaxContentSize(0);
  }
}

/// Documents whose cost lies in different places.
std::vector<std::string> Documents() {
  std::string const uri = "urn:oasis:names:specification:ubl:schema:xsd:CommonAggregateComponents-2";
  std::string names;
  for (int i = 0; i < 100; ++i) names += "<name" + std::to_string(i) + " attribute" + std::to_string(i) + "='1'/>";
  std::string const longUri = "urn:" + std::string(5000, 'u');
  return {
      "<cac:r xmlns:cac='" + uri + "'>" +
          Repeated("<cac:TaxSubtotalCategory><cac:TaxExemptionReason/></cac:TaxSubtotalCategory>", 500) + "</cac:r>",
      "<r>" + Repeated("<item number='17' colour='green'>A text of usual length</item>", 200) + "</r>",
      "<r>" + names + "</r>",
      "<p:r xmlns:p='" + longUri + "'>" + Repeated("<p:a p:b='1'/>", 100) + "</p:r>",
      "<r>" + std::string(100'000, 'x') + "</r>",
  };
}

std::string ReadIntoTree(std::string const& input) {
  CXmlDocument document;
  return Outcome([&] { Load(document, input); });
}

std::string ReadIntoContent(std::string const& input) {
  CXmlDocument document;
  CSmartPtr<CElement> const element(new CElement("r"));
  return Outcome([&] {
    Load(document, input);
    element->CopyXmlElement(document.GetDocumentElement());
  });
}

/// Return the smallest CLimits::GetMaxContentSize() with which \p read succeeds, found by bisection.
std::uint64_t LeastSize(std::string const& input, std::string (*read)(std::string const&)) {
  std::uint64_t failing = 0;
  for (std::uint64_t step = std::uint64_t{1} << 21; step > 0; step /= 2) {
    CLimits::SetMaxContentSize(failing + step);
    if (!read(input).empty()) failing += step;
  }
  return failing + 1;
}

// A limit that admits a document as text also admits it in each form that the library writes, into the tree and into
// objects. A form costs the same with and without compression; Fast Infoset saves the declarations of namespaces, which
// it writes as parts of names.
TEST(Limits, AreTheSameForAllForms) {
  Limits const restored;
  CLimits::SetMaxContentGrowth(0);
  for (std::string const& source : Documents()) {
    SCOPED_TRACE(source.substr(0, 60));
    CXmlDocument document;
    Load(document, source);
    std::uint64_t declared = 0;
    for (auto const& [prefix, uri] : document.GetNamespaceAliases()) declared += 64 + 2 + uri.size();
    CSmartPtr<CElement> const element(new CElement("r"));
    element->CopyXmlElement(document.GetDocumentElement());
    std::string const text = element->ToXml(false, false);
    std::string const infoset = Bytes(element->ToFastInfosetStream());
    for (auto* const read : {ReadIntoTree, ReadIntoContent}) {
      std::uint64_t const cost = LeastSize(text, read);
      EXPECT_EQ(cost, LeastSize(Packed(text), read));
      EXPECT_EQ(cost, LeastSize(infoset, read) + declared);
      EXPECT_EQ(cost, LeastSize(Packed(infoset, CompressionType_ZLib), read) + declared);
    }
    CLimits::SetMaxContentSize(restored.size);
  }
}

TEST(Limits, HoldForTheObjectsThatAreMadeFromATree) {
  Limits const restored;
  CLimits::SetMaxContentGrowth(0);
  CLimits::SetMaxContentSize(100'000);
  Shape const itemShape({}, {});
  Shape const ofObjects({}, {new CElementInfoSeqClsCol("a", "", 0, XmlElementType_Element)});
  Shape const ofValues({}, {new CElementInfoSeqPrimCol("a", "", 0)});
  Shape const ofContent({}, {new CElementInfoSeqUntpdCol("AnyElement", "", 0)});
  DynamicClass objects(ofObjects, "r");
  DynamicClass values(ofValues, "r");
  DynamicClass content(ofContent, "r");
  objects.With(0, new DynamicCollection(itemShape, "a", 0, -1));
  values.With(0, new CstringCol("a", "", 0, -1, "", -1, -1, "", "", "", "", -1,
                                CWhitespaceUtils::WhitespaceRule_Preserve, nullptr));
  content.With(0, new CElementCol("", "##any", "", 0, -1));
  struct {
    char const* what;
    CXmlObjectBase& object;
    std::size_t size;  // charged for what an <a/> becomes
    std::size_t once;  // charged for its name
  } const rows[] = {
      {"objects", objects, 256, 0},
      {"values", values, 96, 0},
      {"generic content", content, 16 + sizeof(CElement) + sizeof(CNode), 16 + sizeof(detail::GenericNames) + 1}};
  for (auto const& row : rows) {
    auto const good = static_cast<int>((100'000 - 836 - row.once) / (64 + row.size));  // r and both names count 836
    CXmlDocument document;
    Load(document, "<r>" + Repeated("<a/>", good) + "</r>");
    // What one read made may be destroyed when the next one begins.
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ("", Outcome([&] { row.object.FromXmlElement(document.GetDocumentElement()); })) << row.what;
    }
    Load(document, "<r>" + Repeated("<a/>", good + 1) + "</r>");
    std::string const failure = Outcome([&] { row.object.FromXmlElement(document.GetDocumentElement()); });
    EXPECT_EQ(0U, failure.find("Failed to process the element [r]\n")) << row.what;
    EXPECT_NE(std::string::npos, failure.find("\nThe content of the document exceeds the limit of 100000 bytes"))
        << row.what;
  }
}

// An element that a program detached from a tree can be read after the end of the document, which counts.
TEST(Limits, DoNotOutliveTheDocument) {
  Limits const restored;
  auto document = std::make_unique<CXmlDocument>();
  Load(*document, "<r><a><b/></a></r>");
  std::unique_ptr<CXmlElement> const detached(document->GetDocumentElement()->RemoveLastChildElement());
  document.reset();
  CLimits::SetMaxContentSize(0);
  CSmartPtr<CElement> const copy(new CElement("r"));
  copy->CopyXmlElement(detached.get());
  EXPECT_EQ("<a><b/></a>", copy->ToXml(false, false));
}

TEST(Limits, RefuseDocumentTypes) {
  Limits const restored;
  std::string const text = "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>";
  std::string const infoset = Infoset(std::string("\xC4\xF0\x3C\0a\xFF", 6));
  CXmlDocument document;
  for (std::string const& input : {text, infoset}) {
    CLimits::SetAllowDocumentType(true);
    EXPECT_EQ("", Outcome([&] { Load(document, input); }));
    CLimits::SetAllowDocumentType(false);
    EXPECT_EQ("The document has a document type declaration, which is not allowed",
              Outcome([&] { Load(document, input); }));
    EXPECT_EQ("", Outcome([&] { Load(document, "<a/>"); }));
  }
}

// Each reference of a few octets repeats a long text of a table.
TEST(Limits, BoundWhatFastInfosetReferencesRepeat) {
  Limits const restored;
  CLimits::SetMaxContentSize(100000);
  CLimits::SetMaxContentGrowth(1);
  std::string const first = std::string("\x3C\0a\x93\0\0\x02\xE5", 8) + std::string(1000, 'x');
  CXmlDocument document;
  EXPECT_EQ("", Outcome([&] { Load(document, Infoset(first + Repeated("\xA0", 98) + "\xFF")); }));
  EXPECT_EQ("The content of the document exceeds the limit of 100000 bytes",
            Outcome([&] { Load(document, Infoset(first + Repeated("\xA0", 99) + "\xFF")); }));
}

TEST(Limits, OfValuesAreFixed) {
  EXPECT_EQ("", Outcome([] { CDecimal("1e100000"); }));
  EXPECT_EQ("The exponent of a Decimal exceeds the limit of 100000 [1e100001]", Outcome([] { CDecimal("1e100001"); }));
}

}  // namespace
}  // namespace Quillon9
