// Tests the record writer beside writes of whole documents.

#include "quillon9/records/record_writer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "dump.h"
#include "expect_failure.h"
#include "log.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {
namespace {

using Testing::Dump;
namespace fs = std::filesystem;

constexpr char kNs[] = "urn:example:log";

CSmartPtr<Log::CEntry> MakeEntry(int number) {
  auto entry = Log::CreateEntry();
  entry->SetId("e" + std::to_string(number));
  entry->SetLevel(number % 2 == 0 ? "info" : "warning");
  entry->SetMessage("message " + std::to_string(number) + " <&> \xC3\xA9");
  if (number % 3 == 0) entry->SetSize(number);
  if (number % 4 == 1) {
    CSmartPtr<CElement> const any(new CElement("detail", "urn:other"));
    any->GetAttributes()->Add("kind", "x", "urn:kinds");
    any->SetText("d");
    entry->SetAny(any);
  }
  entry->GetPlace().SetText("in ");
  entry->GetPlace().GetLine().Add(number);
  return entry;
}

/// An entry whose write fails after some of its elements, whose names and values no other has.
CSmartPtr<Log::CEntry> MakeBadEntry(int number) {
  auto entry = Log::CreateEntry();
  entry->SetId("bad" + std::to_string(number));
  entry->SetLevel("bad" + std::to_string(number));
  CSmartPtr<CElement> const any(new CElement(("n" + std::to_string(number)).c_str(), "urn:bad"));
  any->SetText("t" + std::to_string(number));
  entry->SetAny(any);
  return entry;
}

constexpr char kBadEntry[] = "Failed to convert the element [entry] to XML\nThe required element [place] is not set";

struct Form {
  bool isInfoset = false;
  bool hasHeader = true;
  bool isFormatted = true;
  EOLType eol = EOLType_LF;
  CompressionType compression = CompressionType_None;
  bool suggested = false;
};

constexpr Form kForms[] = {
    {},
    {false, false, false},
    {false, true, true, EOLType_CRLF, CompressionType_GZip},
    {true},
    {true, true, true, EOLType_LF, CompressionType_ZLib},
    {true, true, true, EOLType_LF, CompressionType_None, true},
};

void SetForm(CXmlRecordWriter& writer, Form const& form) {
  if (form.isInfoset) {
    writer.SetFastInfoset(FInfoDecl_Version10);
  } else {
    writer.SetText(form.hasHeader, form.isFormatted, form.eol);
  }
  writer.SetCompression(form.compression);
}

std::string Octets(CBinaryData const& data) {
  return {reinterpret_cast<char const*>(data.GetData()), data.GetLength()};
}

std::string Whole(Log::CLog const& log, Form const& form, CXmlSerializationContext const& ctx) {
  if (form.isInfoset) return Octets(log.ToFastInfosetStream(FInfoDecl_Version10, ctx));
  return Octets(log.ToXmlStream(form.hasHeader, form.isFormatted, XmlEncoding_UTF8, form.eol, ctx));
}

/// What \p octets are before compression.
std::string Plain(std::string const& octets, Form const& form) {
  unsigned long size = octets.size();
  auto* data = new unsigned char[size];
  octets.copy(reinterpret_cast<char*>(data), size);
  if (form.compression != CompressionType_None) CQnZip::Decompress(&data, &size);
  CBinaryData const plain(data, size, true);
  EXPECT_EQ(form.compression == CompressionType_None, octets == Octets(plain));
  return Octets(plain);
}

CSmartPtr<Log::CLog> MakeLog(int count) {
  auto log = Log::CreateLog();
  log->SetHost("h\t\"1\"");
  for (int i = 0; i < count; ++i) log->GetEntry().Add(MakeEntry(i));
  return log;
}

/// Contexts that say different things about the document element.
std::vector<CXmlSerializationContext> Contexts() {
  std::vector<CXmlSerializationContext> contexts(4);
  contexts[1].GetNamespaceAliases()->Add("l", kNs);
  contexts[1].GetNamespaceAliases()->Add("k", "urn:kinds");
  contexts[1].GetProcessingInstructions().emplace_back("<?style a?>");
  contexts[2].SetDefaultNamespaceURI(kNs);
  contexts[2].SetInLineSchema("xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'");
  contexts[3].GetAdditionalRootAttributes()->Add("more", "m", "urn:kinds");
  return contexts;
}

TEST(RecordWriter, WritesWhatAWholeDocumentHas) {
  auto const contexts = Contexts();
  for (std::size_t c = 0; c < contexts.size(); ++c) {
    for (Form const& form : kForms) {
      CXmlSerializationContext ctx = contexts[c];
      if (form.suggested) ctx.GetFIContext()->SetSuggestedValues();
      for (int const count : {0, 9, 400}) {
        auto const log = MakeLog(count);
        std::string const whole = Whole(*log, form, ctx);
        for (bool const isNamed : {false, true}) {
          std::string records = "before";
          CXmlRecordWriter writer(CRecordTarget::Memory(records), ctx);
          SetForm(writer, form);
          if (isNamed) {
            writer.OpenElement("log", kNs);
            writer.WriteAttribute("host", "h\t\"1\"");
          } else {
            writer.OpenElement(*log);
          }
          for (Log::CEntry const& entry : log->GetEntry()) writer.Write(entry);
          EXPECT_EQ("before", records);
          writer.Finish();
          writer.Finish();
          EXPECT_TRUE(whole == Plain(records, form)) << c << ' ' << (&form - kForms) << ' ' << count << isNamed << '\n'
                                                     << whole.substr(0, 500) << '\n'
                                                     << records.substr(0, 500);
          EXPECT_EQ(static_cast<std::uint64_t>(count), writer.GetCount());
        }
      }
    }
  }
}

TEST(RecordWriter, RecordsThatFailLeaveNothing) {
  auto const log = MakeLog(30);
  CXmlDocument wrong;
  wrong.LoadXml("<entry><a>x</a></entry>");
  wrong.GetDocumentElement()->CreateNewChildElement()->SetElementName("not a name");
  for (Form const& form : kForms) {
    std::string records;
    CXmlRecordWriter writer(CRecordTarget::Memory(records));
    SetForm(writer, form);
    writer.OpenElement(*log);
    int number = 0;
    auto const fail = [&] {
      auto const bad = MakeBadEntry(++number);
      EXPECT_FAILURE(CQnValidationException, kBadEntry, writer.Write(*bad));
      EXPECT_FAILURE(CQnInvalidParamException, "The name [not a name] is not a name in XML",
                     writer.Write(*wrong.GetDocumentElement()));
      bad->SetPlace(Log::CPlace::CreateInstance());
      bad->SetMessage("\xFF");
      EXPECT_THROW(writer.Write(*bad), CQnException);
    };
    fail();
    for (Log::CEntry const& entry : log->GetEntry()) {
      writer.Write(entry);
      fail();
    }
    EXPECT_EQ(30U, writer.GetCount());
    writer.Finish();
    EXPECT_TRUE(Whole(*log, form, CXmlSerializationContext::m_defaultContext) == Plain(records, form))
        << (&form - kForms);
  }
}

TEST(RecordWriter, FailuresKnowThePathInTheRecord) {
  std::string records;
  for (bool const isInfoset : {false, true}) {
    CXmlRecordWriter writer(CRecordTarget::Memory(records));
    if (isInfoset) writer.SetFastInfoset();
    try {
      writer.Write(*MakeBadEntry(1));
      ADD_FAILURE();
    } catch (CQnException const& failure) {
      ASSERT_NE(nullptr, failure.GetPlace());
      EXPECT_EQ("/entry", failure.GetPlace()->GetPath());
    }
    EXPECT_FAILURE(CQnInvalidStateException, "A document needs an element", writer.Finish());
    writer.Write(*MakeEntry(1), "first", "");  // a record as the document element
    writer.Finish();
    CXmlDocument document;
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(records.data()), records.size());
    EXPECT_EQ("first", document.GetDocumentElement()->GetLocalName());
    EXPECT_EQ("", document.GetDocumentElement()->GetNamespaceURI());
  }
}

TEST(RecordWriter, KeepsDocumentsWellFormed) {
  using Action = std::function<void(CXmlRecordWriter&)>;
  auto const open = [](CXmlRecordWriter& writer) { writer.OpenElement("a"); };
  auto const attribute = [](CXmlRecordWriter& writer) { writer.WriteAttribute("x", "1"); };
  auto const record = [](CXmlRecordWriter& writer) { writer.Write(*MakeEntry(2)); };
  auto const close = [](CXmlRecordWriter& writer) { writer.CloseElement(); };
  auto const finish = [](CXmlRecordWriter& writer) { writer.Finish(); };
  auto const text = [](std::string const& value) { return [=](CXmlRecordWriter& writer) { writer.WriteText(value); }; };
  auto const declare = [](std::string const& prefix, std::string const& uri) {
    return [=](CXmlRecordWriter& writer) { writer.DeclareNamespace(prefix, uri); };
  };
  auto const named = [](std::string const& name) {
    return [=](CXmlRecordWriter& writer) { writer.OpenElement(name); };
  };
  auto const value = [](std::string const& name, std::string const& of) {
    return [=](CXmlRecordWriter& writer) { writer.WriteAttribute(name, of); };
  };
  struct {
    std::vector<Action> before;
    Action action;
    char const* failure;
  } const rows[] = {
      {{}, attribute, "There is no open element"},
      {{}, text("t"), "There is no open element"},
      {{}, close, "There is no open element"},
      {{}, finish, "A document needs an element"},
      {{open, close}, open, "A document has only one element"},
      {{open, close}, record, "A document has only one element"},
      {{record}, record, "A document has only one element"},
      {{record}, open, "A document has only one element"},
      {{open, close}, text("t"), "There is no open element"},
      {{open, record}, attribute, "The attribute [x] comes after the content of its element"},
      {{open, text("t")}, attribute, "The attribute [x] comes after the content of its element"},
      {{open, open, close}, attribute, "The attribute [x] comes after the content of its element"},
      {{open, attribute}, attribute, "The element has two attributes [x]"},
      {{open, attribute},
       declare("p", "u"),
       "Namespaces are declared before the attributes and the content of the document element"},
      {{declare("p", "u")}, declare("p", "v"), "The prefix [p] cannot stand for [v]"},
      {{}, declare("Xml", "u"), "The prefix [Xml] cannot stand for [u]"},
      {{}, declare("p", ""), "The prefix [p] cannot stand for []"},
      {{}, declare("p:q", "u"), "The name [p:q] is not a name in XML"},
      {{}, named("1"), "The name [1] is not a name in XML"},
      {{}, named("\xC3\x97"), "The name [\xC3\x97] is not a name in XML"},
      {{declare("", "u")},
       open,
       "The element [a] has no namespace, which cannot be written where there is a default namespace"},
      {{open}, value("xmlns", "u"), "The attribute [xmlns] would declare a namespace"},
      {{open},
       declare("", "u"),
       "The element [a] has no namespace, which cannot be written where there is a default namespace"},
      {{open}, value("x y", ""), "The name [x y] is not a name in XML"},
      {{open}, value("x", std::string("a\0", 2)), "The character U+0000 cannot stand in an XML document"},
      {{open}, value("x", "a\xFF"), "The text is not well-formed UTF-8 after [a]"},
      {{open}, text("a\xEF\xBF\xBE"), "The character U+FFFE cannot stand in an XML document"},
      {{open},
       [](CXmlRecordWriter& writer) { writer.OpenElement("a", "http://www.w3.org/2000/xmlns/"); },
       "The element [a] is in the namespace of declarations"},
      {{open},
       [](CXmlRecordWriter& writer) { writer.Write(*MakeEntry(1), "a", "http://www.w3.org/2000/xmlns/"); },
       "The element [a] is in the namespace of declarations"},
      {{open}, text("a\x01"), "The character U+0001 cannot stand in an XML document"},
      {{open, finish}, record, "The document is finished"},
      {{open}, [](CXmlRecordWriter& writer) { writer.SetText(); }, "The write has begun"},
  };
  for (bool const isInfoset : {false, true}) {
    for (auto const& row : rows) {
      std::string output;
      CXmlRecordWriter writer(CRecordTarget::Memory(output));
      if (isInfoset) writer.SetFastInfoset();
      for (Action const& action : row.before) action(writer);
      std::string failure;
      try {
        row.action(writer);
      } catch (CQnException const& thrown) {
        failure = thrown.GetFullMessage();
      }
      bool const isForText = std::string(row.failure).find("default namespace") != std::string::npos;
      EXPECT_EQ(isInfoset && isForText ? "" : row.failure, failure);
    }
  }
}

/// Loads octets and dumps the document.
std::string DumpOf(std::string octets) {
  CXmlDocument document;
  document.LoadXmlStream(reinterpret_cast<unsigned char*>(octets.data()), octets.size());
  return Dump(*document.GetDocumentElement());
}

TEST(RecordWriter, WritesElementsAroundRecordsAndTrees) {
  CXmlSerializationContext ctx;
  ctx.SetKeepUnknown(true);
  ctx.SetKeepPrefixes(true);
  CXmlDocument tree(ctx);
  tree.LoadXml(
      "<r xmlns:p='urn:p' xmlns:q='urn:l&amp;' p:a='tab&#9;&#13;'><!--c--><mixed>a<b/>c &lt;![CDATA[</mixed>\n <empty/>"
      "<o xmlns='urn:&lt;&amp;&quot;'><i>]]&gt;</i></o><q x='p:n'/><?pi d?></r>");
  std::string const expected =
      "<l:list xmlns:l=\"urn:l&amp;\" xmlns:m2=\"urn:m\" xmlns:m=\"urn:m\" m2:n=\"m2:x\"><l:head>h</l:head>"
      "<r xmlns:p=\"urn:p\" xmlns:q=\"urn:l&amp;\" p:a=\"tab&#x9;&#xD;\"><!--c--><mixed>a<b/>c "
      "&lt;![CDATA[</mixed><empty/>"
      "<AA:o xmlns:AA=\"urn:&lt;&amp;&quot;\"><AA:i>]]&gt;</AA:i></AA:o><q x=\"p:n\"/><?pi d?></r>t<tail/></l:list>";
  for (bool const isInfoset : {false, true}) {
    std::string output;
    CXmlRecordWriter writer(CRecordTarget::Memory(output), ctx);
    writer.SetText(false, false);
    if (isInfoset) writer.SetFastInfoset();
    writer.OpenElement("list", "urn:l&");
    writer.DeclareNamespace("l", "urn:l&");
    writer.DeclareNamespace("m", "urn:m");
    writer.DeclareNamespace("m2", "urn:m");
    writer.WriteAttribute("n", "m2:x", "urn:m");
    writer.OpenElement("head", "urn:l&");
    writer.WriteText("h");
    writer.CloseElement();
    writer.Write(*tree.GetDocumentElement());
    writer.WriteText("t");
    writer.OpenElement("tail");
    writer.Finish();
    EXPECT_EQ(DumpOf(expected), DumpOf(output));
    EXPECT_EQ(isInfoset, expected != output);
  }
}

TEST(RecordWriter, NamespacesOfObjectsAreEscapedByAnyRules) {
  CXmlSerializationContext ctx;
  ctx.SetValueRules(ValueRules_Classic);
  CElement element("a", "urn:&\t");
  element.SetDefaultNamespace("urn:&\t");
  std::string records;
  CXmlRecordWriter writer(CRecordTarget::Memory(records), ctx);
  writer.SetText(false, false);
  writer.OpenElement("list");
  writer.Write(static_cast<CXmlObjectBase const&>(element));
  writer.Finish();
  EXPECT_EQ(records, "<list><a xmlns=\"urn:&amp;&#x9;\"/></list>");
}

TEST(RecordWriter, NamesAreUtf8InAnyLocale) {
  std::string records;
  CXmlRecordWriter writer(CRecordTarget::Memory(records));
  writer.SetText(false, false);
  writer.OpenElement("\xC3\x84", "urn:a");
  writer.DeclareNamespace("", "urn:a");
  writer.WriteAttribute("\xC3\xA4", "1");
  writer.Finish();
  EXPECT_EQ(records, "<\xC3\x84 xmlns=\"urn:a\" \xC3\xA4=\"1\"/>");
}

TEST(RecordWriter, DocumentElementsThatFailLeaveNoPrefixes) {
  CXmlSerializationContext ctx;
  ctx.SetKeepPrefixes(true);
  auto const bad = Log::CreateEntry();
  bad->FromXml("<b:entry xmlns:b='urn:example:log'><b:level/><b:message/><b:place/></b:entry>", ctx);
  bad->SetMessage("\xFF");
  auto const good = MakeEntry(2);
  for (bool const isOpened : {false, true}) {
    std::string records;
    CXmlRecordWriter writer(CRecordTarget::Memory(records), ctx);
    if (isOpened) bad->SetId("\xFF");
    EXPECT_THROW(isOpened ? writer.OpenElement(*bad) : writer.Write(*bad), CQnException);
    writer.Write(*good);
    writer.Finish();
    EXPECT_EQ(Octets(good->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx)), records);
  }
}

TEST(RecordWriter, WritesWhatSurroundsADocumentElement) {
  CXmlSerializationContext ctx;
  ctx.SetKeepUnknown(true);
  ctx.GetProcessingInstructions().emplace_back("<?style a?>");
  ctx.GetAdditionalRootAttributes()->Add("more", "m", "urn:kinds");
  auto const log = Log::CreateLog();
  log->FromXml("<?style a?><!--f--><log xmlns='urn:example:log' host='h'/><!--b-->", ctx);
  for (Form const& form : kForms) {
    for (bool const isRecord : {false, true}) {
      std::string records;
      CXmlRecordWriter writer(CRecordTarget::Memory(records), ctx);
      SetForm(writer, form);
      EXPECT_THROW(writer.Write(*MakeBadEntry(1)), CQnException);
      isRecord ? writer.Write(*log) : writer.OpenElement(*log);
      writer.Finish();
      EXPECT_EQ(Whole(*log, form, ctx), Plain(records, form)) << (&form - kForms) << isRecord;
    }
  }
  std::string records;
  CXmlRecordWriter writer(CRecordTarget::Memory(records));
  writer.SetText(false, false);
  writer.DeclareNamespace("m", "urn:m");
  writer.DeclareNamespace("m2", "urn:m");
  writer.OpenElement(*Log::CreateLog());
  writer.Finish();
  EXPECT_EQ("<AA:log xmlns:AA=\"urn:example:log\" xmlns:m2=\"urn:m\" xmlns:m=\"urn:m\"/>", records);
}

int Count(std::string const& text, std::string const& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(RecordWriter, TablesOfValuesStaySmall) {
  std::vector<std::string> values;
  for (int i = 10000; i < 80000; ++i) values.push_back(std::to_string(i));
  values.insert(values.end(), 3, "79999");
  values.insert(values.end(), 3, "70001");
  std::string output;
  CXmlRecordWriter writer(CRecordTarget::Memory(output));
  writer.SetFastInfoset();
  writer.OpenElement("list");
  CXmlDocument const document;
  std::string expected = "list";
  for (std::string const& value : values) {
    CXmlElement item(&document);
    item.SetElementName("v");
    item.AppendText(value);
    item.AddAttribute("a", value, "");
    writer.Write(item);
    expected += " (v @a=" + value + " '" + value + "')";
  }
  writer.Finish();
  EXPECT_TRUE(expected == DumpOf(output));
  EXPECT_EQ(2, Count(output, "70001"));  // has numbers
  EXPECT_EQ(8, Count(output, "79999"));  // came too late
}

/// A file in a folder of its own.
class RecordFiles : public testing::Test {
 protected:
  void SetUp() override {
    std::string path = testing::TempDir() + "quillon9-records.XXXXXX";
    ASSERT_NE(nullptr, ::mkdtemp(path.data()));
    m_folder = path;
    m_path = m_folder + "/log.xml";
  }
  void TearDown() override { fs::remove_all(m_folder); }

  std::string Read() const {
    std::ifstream file(m_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::size_t CountFiles() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
  }

  std::string m_folder;
  std::string m_path;
};

TEST_F(RecordFiles, AreCompleteOrNotThere) {
  auto const log = MakeLog(2000);
  auto const write = [&](bool finish) {
    CXmlRecordWriter writer(m_path);
    writer.OpenElement(*log);
    for (Log::CEntry const& entry : log->GetEntry()) writer.Write(entry);
    if (finish) writer.Finish();
  };
  write(false);
  EXPECT_EQ(0U, CountFiles());
  write(true);
  std::string const whole = Octets(log->ToXmlStream());
  EXPECT_TRUE(whole == Read());
  std::ofstream(m_path) << "old";
  write(false);
  EXPECT_EQ("old", Read());
  write(true);
  EXPECT_TRUE(whole == Read());
  EXPECT_EQ(1U, CountFiles());
}

TEST_F(RecordFiles, AreAppendedTo) {
  CXmlSerializationContext ctx;
  ctx.GetNamespaceAliases()->Add("l", kNs);
  CSmartPtr<Log::CEntry> const entries[] = {MakeEntry(0), MakeEntry(1)};
  std::string log;
  for (auto const& entry : entries) log += entry->ToXml(false, true, EOLType_LF, ctx);
  std::string expected;
  for (int run = 0; run < 3; ++run) {
    CXmlRecordWriter writer(CRecordTarget::EndOfFile(m_path), ctx);
    EXPECT_FAILURE(CQnInvalidParamException, "Records in Fast Infoset cannot be appended to a file",
                   writer.SetFastInfoset());
    EXPECT_FAILURE(CQnInvalidStateException, "Records that are appended have no elements around them",
                   writer.OpenElement("log"));
    for (auto const& entry : entries) writer.Write(*entry);
    EXPECT_EQ(expected, Read());
    expected += log;
    if (run == 1) writer.Flush();
    if (run == 2) writer.Finish();
    EXPECT_EQ(run == 0, expected != Read());
  }
  EXPECT_EQ(expected, Read());
}

TEST_F(RecordFiles, TargetsThatFailEndTheWriter) {
  auto const entry = MakeEntry(1);
  std::vector<CRecordTarget> targets;
  targets.emplace_back("/dev/full");
  targets.push_back(CRecordTarget::EndOfFile("/dev/full"));
  for (CRecordTarget& target : targets) {
    CXmlRecordWriter writer(std::move(target));
    writer.Write(*entry);
    for (int i = 0; i < 2; ++i) {
      EXPECT_FAILURE(CQnException, "Failed to write data to the file [/dev/full]", writer.Flush());
      EXPECT_FAILURE(CQnException, "Failed to write data to the file [/dev/full]", writer.Finish());
    }
  }
  EXPECT_FAILURE(CQnException, "Failed to write data to the file [" + m_folder + "/no/f]",
                 CRecordTarget(m_folder + "/no/f"));
  int calls = 0;
  CXmlRecordWriter writer(CRecordTarget([&](char const*, std::size_t) {
    if (++calls == 2) throw std::runtime_error("gone");
  }));
  writer.OpenElement("list");
  int written = 0;
  EXPECT_THROW(for (;; ++written) writer.Write(*entry), std::runtime_error);
  EXPECT_GT(written, 300);
  EXPECT_THROW(writer.Write(*entry), std::runtime_error);
  EXPECT_THROW(writer.CloseElement(), std::runtime_error);
  EXPECT_THROW(writer.Finish(), std::runtime_error);
  EXPECT_EQ(2, calls);
}

}  // namespace
}  // namespace Quillon9
