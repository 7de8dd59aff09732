#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "binding/document_places.h"
#include "binding/failure_report.h"
#include "dynamic_class.h"
#include "gmock/gmock.h"
#include "octets.h"
#include "quillon9/xmlio/compression.h"

namespace Quillon9::Testing {

namespace {

using Text = std::u32string;

/// Throws where it finds the text "BAD", or in front of the end tag of an element named "bad-end".
class Probe : public DynamicClass {
 public:
  Probe() : DynamicClass(EmptyShape()) {}

  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement*, CXmlSerializationContext const&, bool) override {
    Search(*parent);
    return nullptr;
  }
  bool HoldsUtf8Text() const override { return true; }

 private:
  static Shape const& EmptyShape() {
    static Shape const& shape = *new Shape({}, {});
    return shape;
  }
  static void Search(CXmlElement const& element) {
    for (CXmlAttribute const& attribute : element.Attributes()) {
      if (attribute.GetValueView() == "BAD") Fail({&element, &attribute});
    }
    if (element.GetTextView() == "BAD") Fail({&element});
    for (CXmlElement const& child : element.Children()) Search(child);
    if (element.GetTextView() == "BAD-END") Fail({&element, nullptr, true});
  }
  [[noreturn]] static void Fail(FailurePoint const& point) {
    CQnInvalidValueException failure("bad");
    FailureReport::Note(failure, point);
    throw CQnValidationException("around it", failure);
  }
};

std::string Show(CFailurePlace const* place) {
  if (place == nullptr) return "nowhere";
  return std::to_string(place->GetLine()) + ':' + std::to_string(place->GetColumn()) + '@' +
         std::to_string(place->GetOffset()) + ' ' + place->GetPath();
}

/// The place of the failure of \p read, which must fail.
std::string PlaceOf(std::function<void(Probe&)> const& read) {
  CSmartPtr<Probe> const probe(new Probe);
  try {
    read(*probe);
  } catch (CQnException const& failure) {
    CQnException const* const inner = failure.GetInnerException();
    EXPECT_EQ(Show(inner != nullptr ? inner->GetPlace() : failure.GetPlace()), Show(failure.GetPlace()));
    return Show(failure.GetPlace());
  }
  return "no failure";
}

std::string PlaceIn(std::string const& document) {
  return PlaceOf([&](Probe& probe) {
    std::string copy = document;
    probe.FromXmlStream(reinterpret_cast<unsigned char*>(copy.data()), copy.size());
  });
}

enum class Encoding { kUtf8, kUtf8WithMark, kLatin1, kWindows1252, kUtf16LE, kUtf16BE };

/// The bytes of \p text.
std::string Encoded(Text const& text, Encoding encoding) {
  std::string bytes;
  auto const unit = [&](std::uint32_t value) {
    char const high = static_cast<char>(value >> 8);
    char const low = static_cast<char>(value & 0xFF);
    bytes += encoding == Encoding::kUtf16LE ? std::string{low, high} : std::string{high, low};
  };
  for (char32_t const c : text) {
    auto const code = static_cast<std::uint32_t>(c);
    if (encoding == Encoding::kUtf16LE || encoding == Encoding::kUtf16BE) {
      if (code >= 0x10000) unit(0xD800 + ((code - 0x10000) >> 10));
      unit(code >= 0x10000 ? 0xDC00 + ((code - 0x10000) & 0x3FF) : code);
    } else if (code < 0x80) {
      bytes += static_cast<char>(code);
    } else if (encoding == Encoding::kLatin1 || encoding == Encoding::kWindows1252) {
      bytes += static_cast<char>(code == 0x20AC ? 0x80 : code);
    } else if (code < 0x800) {
      bytes += static_cast<char>(0xC0 | code >> 6);
      bytes += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      if (code >= 0x10000) bytes += static_cast<char>(0xF0 | code >> 18);
      bytes += static_cast<char>(code >= 0x10000 ? 0x80 | (code >> 12 & 0x3F) : 0xE0 | code >> 12);
      bytes += static_cast<char>(0x80 | (code >> 6 & 0x3F));
      bytes += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return bytes;
}

/// Line and column of the end of \p before, counted literally.
std::pair<int, int> LineAndColumn(Text const& before) {
  int line = 1;
  int column = 1;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == 0xFEFF) continue;
    bool const isFirstOfTwo = before[i] == '\r' && i + 1 < before.size() && before[i + 1] == '\n';
    ++column;
    if (isFirstOfTwo || (before[i] != '\r' && before[i] != '\n')) continue;
    ++line;
    column = 1;
  }
  return {line, column};
}

/// Documents of random layout, with one fault in each.
class RandomDocument {
 public:
  explicit RandomDocument(std::uint32_t seed) : m_random(seed) {
    m_encoding = static_cast<Encoding>(Below(6));
    bool const isMarked = m_encoding == Encoding::kUtf8WithMark || IsWide();
    if (isMarked) m_text += char32_t{0xFEFF};
    if (IsSingleByte()) {
      m_text += m_encoding == Encoding::kLatin1 ? U"<?xml version='1.0' encoding='ISO-8859-1'?>"
                                                : U"<?xml version='1.0' encoding='windows-1252'?>";
    } else if (Below(2) == 0) {
      m_text += U"<?xml version='1.0'?>";
    }
    Misc();
    if (Below(3) == 0) m_text += U"<!DOCTYPE r [\n<!ENTITY e 'x\ny'>\r\n]>";
    Misc();
    m_size = 1 + Below(12);
    m_fault = Below(m_size);
    Element(0);
    Misc();
  }

  std::string Bytes() const { return Encoded(m_text, m_encoding); }
  bool IsWide() const { return m_encoding == Encoding::kUtf16LE || m_encoding == Encoding::kUtf16BE; }
  std::wstring Wide() const {
    std::wstring wide;
    std::string const bytes = Encoded(m_text.substr(1), Encoding::kUtf16BE);
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
      wide +=
          static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) << 8 | static_cast<unsigned char>(bytes[i + 1]));
    }
    return wide;
  }

  std::string Place() const {
    Text const before = m_text.substr(0, m_place);
    return Place(Encoded(before, m_encoding).size());
  }
  std::string WidePlace() const {
    return Place((Encoded(m_text.substr(0, m_place), m_encoding).size() / 2 - 1) * sizeof(wchar_t));
  }

 private:
  struct Node {
    int parent;
    Text name;
  };

  std::uint32_t Below(std::uint32_t bound) {
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(m_random);
  }
  bool IsSingleByte() const { return m_encoding == Encoding::kLatin1 || m_encoding == Encoding::kWindows1252; }

  void Space(bool isNeeded = false) {
    for (std::uint32_t count = Below(4) + isNeeded; count > 0; --count) {
      static Text const kSpaces[] = {U" ", U"\n", U"\r\n", U"\r", U"\t"};
      m_text += kSpaces[Below(5)];
    }
  }
  void Special() {
    if (m_encoding == Encoding::kWindows1252 && Below(2) == 0) m_text += char32_t{0x20AC};
    m_text += IsSingleByte() || Below(2) == 0 ? char32_t{0xE9} : char32_t{0x1F600};
  }
  void Misc() {
    Space();
    if (Below(3) == 0) {
      m_text += U"<!--";
      Space();
      Special();
      m_text += U"<fake a='BAD'>";
      m_text += U"-->";
    }
    if (Below(4) == 0) m_text += U"<?pi x\r\ny ?>";
    Space();
  }

  Text Name() {
    static Text const kNames[] = {U"item", U"p:item", U"q:item", U"\u00E9tat"};
    return kNames[Below(4)];
  }

  void Element(int parent) {
    auto const self = static_cast<int>(m_nodes.size());
    m_nodes.push_back({self == 0 ? -1 : parent, Name()});
    bool const isFaulty = self == static_cast<int>(m_fault);
    std::size_t const start = m_text.size();
    Text const name = m_nodes.back().name;
    m_text += U"<" + name;
    std::uint32_t const kind = isFaulty ? Below(3) : 3;
    Attributes(self == 0, kind == 1);
    if (kind == 0) m_place = start;
    m_text += U">";
    if (kind == 0) m_text += U"B<!--\n-->AD";
    if (kind == 2) m_text += U"BAD<![CDATA[-END]]>";
    bool const isText = kind == 0 || kind == 2;
    while (m_nodes.size() < m_size && (self == 0 || Below(3) != 0)) {
      if (!isText) Content();
      Element(self);
    }
    if (kind == 2) m_place = m_text.size();
    m_text += U"</" + name;
    Space();
    m_text += U">";
  }
  void Content() {
    Misc();
    if (Below(5) == 0) m_text += U"<![CDATA[<x>\r]]>";
    if (Below(5) == 0) Special();
  }
  void Attributes(bool isRoot, bool hasFault) {
    if (isRoot) {
      Space(true);
      m_text += U"xmlns:p='urn:1'";
      Space(true);
      m_text += U"xmlns:q = 'urn:1'";
    }
    std::uint32_t const count = Below(4) + hasFault;
    std::uint32_t const bad = hasFault ? Below(count) : count;
    for (std::uint32_t i = 0; i < count; ++i) {
      Space(true);
      Text const name = (i % 2 == 0 ? U"p:a" : U"\u00E9") + Text(1, static_cast<char32_t>('0' + i));
      if (i == bad) {
        m_place = m_text.size();
        m_attribute = name;
      }
      m_text += name;
      Space();
      m_text += U"=";
      Space();
      char32_t const quote = Below(2) == 0 ? '"' : '\'';
      m_text += quote;
      if (i == bad) {
        m_text += U"BAD";
      } else {
        Space();
        Special();
        m_text += quote == '"' ? U"'/> &lt;>" : U"\"=/>";
      }
      m_text += quote;
    }
    Space();
  }

  Text Path() const {
    Text path;
    for (int node = static_cast<int>(m_fault); node >= 0; node = m_nodes[static_cast<std::size_t>(node)].parent) {
      Node const& self = m_nodes[static_cast<std::size_t>(node)];
      int number = 0;
      int total = 0;
      for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (m_nodes[i].parent != self.parent || m_nodes[i].name != self.name) continue;
        ++total;
        if (static_cast<int>(i) <= node) ++number;
      }
      Text index;
      if (total > 1) {
        for (char const c : '[' + std::to_string(number) + ']') index += static_cast<char32_t>(c);
      }
      path = U"/" + self.name + index + path;
    }
    return m_attribute.empty() ? path : path + U"/@" + m_attribute;
  }
  std::string Place(std::size_t offset) const {
    auto const [line, column] = LineAndColumn(m_text.substr(0, m_place));
    return std::to_string(line) + ':' + std::to_string(column) + '@' + std::to_string(offset) + ' ' +
           Encoded(Path(), Encoding::kUtf8);
  }

  std::mt19937 m_random;
  Encoding m_encoding;
  Text m_text;
  std::vector<Node> m_nodes;
  std::uint32_t m_size = 0;
  std::uint32_t m_fault = 0;
  std::size_t m_place = 0;
  Text m_attribute;
};

}  // namespace

TEST(Places, AreThoseOfRandomDocuments) {
  for (std::uint32_t seed = 0; seed < 10000; ++seed) {
    RandomDocument const document(seed);
    ASSERT_EQ(PlaceIn(document.Bytes()), document.Place()) << seed << '\n' << document.Bytes();
    if (!document.IsWide()) continue;
    std::wstring const wide = document.Wide();
    ASSERT_EQ(PlaceOf([&](Probe& probe) { probe.FromXml(wide.c_str()); }), document.WidePlace()) << seed;
  }
}

// In all tables, ^ stands in front of the place and is not part of the document.
struct MarkedDocument {
  explicit MarkedDocument(std::string text) : document(std::move(text)), offset(document.find('^')) {
    document.erase(offset, 1);
  }
  std::string document;
  std::size_t offset;
};

std::string PlaceAt(MarkedDocument const& marked, std::string const& path) {
  Text const before(marked.document.begin(), marked.document.begin() + static_cast<std::ptrdiff_t>(marked.offset));
  auto const [line, column] = LineAndColumn(before);
  return std::to_string(line) + ':' + std::to_string(column) + '@' + std::to_string(marked.offset) + ' ' + path;
}

TEST(Places, AreThoseOfParseFailuresAndSpecialNodes) {
  struct Case {
    char const* document;
    char const* path;
  };
  for (auto const& [document, path] : std::vector<Case>{
           {"<a>\n <b/>\r\n<b></^c></a>", "/a/b[2]"},
           {"<a xmlns:p='u'>\r<p:b><c/></p:b><p:b>\n<c>^&none;</c></p:b></a>", "/a/p:b[2]/c"},
           {"<a>\n^<x:b/></a>", "/a"},
           {"<a><b>^", "/a/b"},
           {"<a/>\n^<b/>", ""},
           {"^text", ""},
           {"<a>\n<b c='1' ^c='2'/></a>", "/a"},
           {"<a>\n^<b>BAD</b></a>", "/a/b"},
           {"<a><b/>\n^<b>B<![CDATA[AD]]></b><c/></a>", "/a/b[2]"},
           // Attributes and content from the document type have the place of what refers to them.
           {"<!DOCTYPE a [<!ATTLIST b c CDATA 'BAD'>]>\n<a>^<b d=''/></a>", "/a/b/@c"},
           {"<!DOCTYPE a [<!ENTITY e '<b>BAD</b>'>]>\n<a><b/> ^&e;<b/></a>", "/a/b[2]"},
           {"<!DOCTYPE a [<!ENTITY e 'BAD'>]>\n<a b='' ^c=\"&e;\"/>", "/a/@c"},
       }) {
    MarkedDocument const marked(document);
    EXPECT_EQ(PlaceIn(marked.document), PlaceAt(marked, path)) << document;
  }
}

TEST(Places, ComeFromEveryEntryPoint) {
  MarkedDocument const marked("<a>\n  <b/>\n  <b ^c='BAD'/></a>");
  std::string const place = PlaceAt(marked, "/a/b[2]/@c");
  std::string const onlyPath = "0:0@-1 /a/b[2]/@c";
  EXPECT_EQ(PlaceOf([&](Probe& probe) { probe.FromXml(marked.document.c_str()); }), place);

  unsigned long size = marked.document.size();
  auto* zipped = new unsigned char[size + 200];
  std::string const padded = marked.document + std::string(200, ' ');
  std::copy(padded.begin(), padded.end(), zipped);
  size += 200;
  CQnZip::Compress(&zipped, &size, CompressionType_GZip);
  std::string const compressed(zipped, zipped + size);
  delete[] zipped;
  EXPECT_EQ(PlaceIn(compressed), place);

  std::string const file = testing::TempDir() + "quillon9_places.xml";
  for (std::string const& content : {marked.document, compressed, std::string("<a>\n<b>")}) {
    std::ofstream(file, std::ios::binary) << content;
    CSmartPtr<Probe> const probe(new Probe);
    try {
      probe->FromXmlFile(file.c_str());
      ADD_FAILURE() << content;
    } catch (CQnException const& failure) {
      EXPECT_EQ(failure.GetPlace()->GetFile(), file);
      EXPECT_EQ(failure.GetPlace()->GetLine(), content.size() < 10 ? 2U : 3U);
    }
  }
  std::filesystem::remove(file);
  EXPECT_EQ(PlaceOf([&](Probe& probe) { probe.FromXmlFile(file.c_str()); }), "0:0@-1 ");

  CXmlDocument document;
  document.LoadXml(marked.document.c_str());
  EXPECT_EQ(PlaceOf([&](Probe& probe) { probe.FromXmlElement(document.GetDocumentElement()); }), onlyPath);
  EXPECT_EQ(PlaceOf([&](Probe& probe) { probe.FromXmlElement(document.GetDocumentElement()->GetFirstElement()); }),
            "no failure");
  CSmartPtr<CElement> const element(new CElement("a"));
  element->CopyXmlElement(document.GetDocumentElement());
  EXPECT_EQ(PlaceOf([&](Probe& probe) { probe.FromXmlElement(element.Get()); }), onlyPath);
}

TEST(Places, HaveOffsetsInFastInfoset) {
  struct Case {
    char const* octets;
    char const* path;
  };
  for (auto const& [octets, path] : std::vector<Case>{
           {"3C 00'r' 3C 00'i' F0 ^01 82 00'BAD' FF", "/r/i[2]"},
           {"38 CF 00'p' 00'u' F0 3C 00'r' ^7C 00'i' 78 00'y' 00'1' 7B 81 81 00'x' 02'BAD' FF FF", "/r/i/@p:x"},
           {"3C 00'r' 3C 00'e' 82 04'BAD-END' 3C 00'c' F0 ^F0 F0", "/r/e"},
           {"3C 00'r' 3C 00'e' 82 04'BAD-END' 3C 00'c' ^FF FF", "/r/e"},
           {"38 CF 00'p' 00'u' F0 3F 81 81 00'r' ^3F 81 81 00'i' 82 00'BAD' FF", "/p:r/p:i"},
           // Damaged: where the reader stopped.
           {"3C 00'r' 3C 00'i' F0 01 01 EE ^", "/r/i[2]/i"},
           {"3C 00'r' 3C 00'i' ^", "/r/i"},
           {"3C 00'r' 7C 00'i' 78 00'x' 8F ^ F0", "/r/i"},
           {"^", ""},
       }) {
    std::string const notation = octets;
    std::string const header = Octets("E0 00 00 01 00");
    std::size_t const mark = notation.find('^');
    std::string const before = header + Octets(notation.substr(0, mark));
    EXPECT_EQ(PlaceIn(before + Octets(notation.substr(mark + 1))), "0:0@" + std::to_string(before.size()) + ' ' + path)
        << octets;
  }
}

TEST(Places, OfHostileDocumentsAreBounded) {
  constexpr std::size_t kMost = 4096;
  std::string const name(1'000'000, 'n');
  std::string const shown = '/' + name.substr(0, 97) + "...";
  EXPECT_EQ(PlaceIn('<' + name + ">BAD</" + name + '>'), "1:1@0 " + shown);
  std::string const nested = '<' + name + ">\n<" + name + ' ' + name + "='BAD'/></" + name + '>';
  EXPECT_EQ(PlaceIn(nested), "2:1000003@2000005 " + shown + shown + "/@" + shown.substr(1));

  std::string deep;
  for (int i = 0; i < 900; ++i) deep += "<level" + std::to_string(i) + ">\n";
  std::string const place = PlaceIn(deep + "<last>BAD</last>" + "</wrong>");
  EXPECT_EQ(place.compare(0, 26, "901:19@" + std::to_string(deep.size() + 18) + " /level0/level1"), 0) << place;
  EXPECT_LE(place.size(), kMost + 30);
  EXPECT_EQ(place.substr(place.size() - 9), "/level899");
}

// A sink may ask for as many places as there are nodes. If each of them cost as much as the first, this would take hours.
TEST(Places, OfAllNodesAreFoundAtOnce) {
  constexpr std::size_t kCount = 30'000;
  std::string text = "<a ";
  for (std::size_t i = 0; i < kCount; ++i) text += "x" + std::to_string(i) + "='' ";
  text += ">";
  for (std::size_t i = 0; i < kCount; ++i) text += "<b/>";
  CXmlDocument document;
  document.LoadXml((text + "</a>").c_str());
  DocumentPlaces places(document, InputForm::kBytes);
  CXmlElement const& root = *document.GetDocumentElement();
  std::size_t number = 0;
  std::uint64_t before = 0;
  auto const expect = [&](CFailurePlace const& place, std::string const& path) {
    ASSERT_EQ(place.GetPath(), path);
    ASSERT_GT(place.GetColumn(), before);
    before = place.GetColumn();
  };
  for (CXmlAttribute const& attribute : root.Attributes()) {
    expect(places.Find({&root, &attribute}), "/a/@x" + std::to_string(number++));
  }
  number = 0;
  for (CXmlElement const& child : root.Children()) {
    expect(places.Find({&child}), "/a/b[" + std::to_string(++number) + ']');
  }
  EXPECT_EQ(number, kCount);
}

/// Owns the bytes that it is read from, and clears them before it fails.
class Owner : public Probe {
 public:
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override {
    m_bytes.Clear();
    std::string().swap(m_text);
    return Probe::FromXml_Int(parent, cursor, ctx, inChoice);
  }

  CBinaryData m_bytes{"<a>\n<b>BAD</b></a>"};
  std::string m_text = "<a>\n<b>BAD</b><!-- more than a string holds without memory of its own --></a>";
};

TEST(Places, AreFoundInBytesThatTheReadHasCleared) {
  void (*const reads[])(Owner&) = {
      [](Owner& owner) { owner.FromXmlStream(owner.m_bytes); },
      [](Owner& owner) { owner.FromXml(owner.m_text.c_str()); },
      [](Owner& owner) {
        owner.FromXmlStream(reinterpret_cast<unsigned char*>(owner.m_text.data()), owner.m_text.size());
      },
  };
  for (auto const read : reads) {
    CSmartPtr<Owner> const owner(new Owner);
    try {
      read(*owner);
      ADD_FAILURE();
    } catch (CQnException const& failure) {
      EXPECT_EQ("2:1@4 /a/b", Show(failure.GetPlace()));
    }
  }
}

}  // namespace Quillon9::Testing
