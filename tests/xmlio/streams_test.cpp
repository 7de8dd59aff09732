#include "quillon9/xmlio/streams.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <string>

#include "expect_failure.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {
namespace {

/// The path of a file that is removed at the end if it was created.
class TemporaryFile {
 public:
  explicit TemporaryFile(char const* name) : m_path(testing::TempDir() + "quillon9_streams_" + name) {}
  ~TemporaryFile() { std::remove(m_path.c_str()); }
  char const* Path() const { return m_path.c_str(); }
  bool Exists() const { return std::ifstream(m_path).is_open(); }
  std::string Read() const {
    std::ifstream file(m_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string m_path;
};

std::string Bytes(CBinaryData const& data) {
  return data.GetLength() == 0 ? "" : std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength());
}

std::string Wide(wchar_t const* text) {
  return std::string(reinterpret_cast<char const*>(text), std::wcslen(text) * sizeof(wchar_t));
}

struct AsyncScope {
  AsyncScope() { AsyncToXmlFile(true); }
  ~AsyncScope() { AsyncToXmlFile(false); }
};

constexpr char kUnknownEncoding[] = "Unknown Encoding, select UTF-8 [For help write to the maintainers of Quillon9]";
constexpr char kNoDirectory[] = "/no/such/directory/a.xml";
constexpr char kNotWritten[] = "Failed to write data to the file";

std::string NotWritten(std::string const& path) { return std::string(kNotWritten) + " [" + path + "]"; }

TEST(TextStream, GivesTextAndEncodedBytes) {
  static struct {
    XmlEncoding encoding;
    std::string bytes;
  } const kRows[] = {{XmlEncoding_UTF8, "ab<"}, {XmlEncoding_UTF16, Wide(L"ab<")}, {XmlEncoding_Unicode, Wide(L"ab<")}};
  for (auto const& row : kRows) {
    CTextStream stream(row.encoding);
    stream.Append("dropped");
    stream.Open();
    stream.Append(std::string("a\0z", 3));
    stream.Append("bx", 1);
    stream.Append('<');
    stream.Flush();
    stream.Close();
    EXPECT_STREQ("ab<", stream.GetText());
    EXPECT_EQ(3U, stream.GetLength());
    EXPECT_EQ(row.bytes, Bytes(stream.GetEncodedStream())) << row.encoding;
  }
  CTextStream plain;
  plain.Append("a");
  EXPECT_STREQ("a", plain.GetText());
  EXPECT_FAILURE(CQnException, kUnknownEncoding, plain.GetEncodedStream());
  EXPECT_FAILURE(CQnException, kUnknownEncoding, CTextStream(static_cast<XmlEncoding>(4)).GetEncodedStream());
}

TEST(FileTextStream, WritesMarksOnlyAndFailsWithTextPending) {
  static struct {
    XmlEncoding encoding;
    char const* mark;
  } const kRows[] = {{XmlEncoding_UTF8, ""}, {XmlEncoding_UTF16, "\xFF\xFE"}, {XmlEncoding_Unicode, "\xFF\xFE"}};
  TemporaryFile const file("text");
  for (auto const& row : kRows) {
    CFileTextStream stream(file.Path(), row.encoding);
    stream.Open();
    stream.Close();
    stream.Close();
    EXPECT_EQ(row.mark, file.Read());

    stream.Open();
    stream.Append("a");
    EXPECT_FAILURE(CQnException, kNotWritten, stream.Flush());
    EXPECT_FAILURE(CQnException, kNotWritten, stream.Close());
  }
}

TEST(FileStreams, ReportDataThatDidNotReachTheFile) {
  CBinaryData const data("data");
  CBinaryData large(std::string(100000, 'x').c_str());
  for (char const* path : {kNoDirectory, "/dev/full", ""}) {
    EXPECT_FAILURE(CQnException, NotWritten(path), CFileBinaryStream(path, XmlEncoding_Default, data).ToFile());
    EXPECT_FAILURE(CQnException, NotWritten(path), CFileBinaryStream(path, XmlEncoding_UTF16, large).ToFile());
  }
  CFileTextStream missing(kNoDirectory, XmlEncoding_UTF8);
  EXPECT_FAILURE(CQnException, NotWritten(kNoDirectory), missing.Open());
  CFileTextStream full("/dev/full", XmlEncoding_UTF16);
  full.Open();
  EXPECT_FAILURE(CQnException, NotWritten("/dev/full"), full.Close());

  TemporaryFile const file("empty");
  EXPECT_FAILURE(CQnException, NotWritten(file.Path()), CFileBinaryStream(file.Path(), XmlEncoding_UTF8).ToFile());
}

TEST(FileBinaryStream, WritesMarkAndBytes) {
  TemporaryFile const file("binary");
  CBinaryData start("a\r\n");
  for (XmlEncoding const encoding : {XmlEncoding_UTF16, XmlEncoding_Default}) {
    CFileBinaryStream stream(file.Path(), encoding, start);
    stream.Append(static_cast<unsigned char>(0));
    stream.Append(CBinaryData("b"));
    unsigned char const more[] = {0xFF, 'c'};
    stream.Append(more, 2);
    std::string const bytes(
        "a\r\n\0b\xFF"
        "c",
        7);
    EXPECT_EQ(bytes, Bytes(stream.GetBinaryStream()));
    stream.ToFile();
    EXPECT_EQ((encoding == XmlEncoding_UTF16 ? "\xFF\xFE" : "") + bytes, file.Read());
  }
  EXPECT_EQ("a\r\n", Bytes(start));
}

/// Writes <root>, with a text, in its target namespace.
class Note : public CXmlObjectBase {
 public:
  using CXmlObjectBase::GetBase;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return "urn:n"; }
  std::string GetNamespace() const override { return ""; }

  std::string m_text = "x\ny";
  bool m_leaveOpen = false;

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const&,
                 bool inChoice) const override {
    writer->WriteStartElement(isRoot && !inChoice ? "root" : "wrong", ns);
    writer->WriteString(m_text, ItemType_string);
    if (!m_leaveOpen) writer->WriteEndElement();
  }
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const&, bool) override {
    return cursor;
  }
};

CXmlSerializationContext const kContext;

TEST(ObjectTextOutput, ToText) {
  Note note;
  EXPECT_EQ("<?xml version=\"1.0\"?>\n<AA:root xmlns:AA=\"urn:n\">x\ny</AA:root>\n", note.ToXml());
  EXPECT_EQ("<AA:root xmlns:AA=\"urn:n\">x\r\ny</AA:root>", note.ToXml(false, false, EOLType_CRLF, kContext));
  note.m_text.assign(20000, 'z');
  EXPECT_EQ("<AA:root xmlns:AA=\"urn:n\">" + note.m_text + "</AA:root>", note.ToXml(false, false));
  note.m_leaveOpen = true;
  EXPECT_FAILURE(CQnException, "An Element has not been closed.", note.ToXml());
}

TEST(ObjectTextOutput, ToBytes) {
  Note note;
  std::string const text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AA:root xmlns:AA=\"urn:n\">x\ny</AA:root>\n";
  EXPECT_EQ(text, Bytes(note.ToXmlStream()));
  EXPECT_FAILURE(CQnException, kUnknownEncoding, note.ToXmlStream(true, true, XmlEncoding_Default));
  note.m_text.assign(20000, 'z');
  std::string const plain = Bytes(note.ToXmlStream());
  for (CompressionType const type : {CompressionType_GZip, CompressionType_ZLib}) {
    CBinaryData data = note.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, kContext, type);
    unsigned long size = data.GetLength();
    EXPECT_LT(size, 2000U);
    unsigned char* bytes = data.ReleaseData();
    CQnZip::Decompress(&bytes, &size);
    EXPECT_EQ(plain, Bytes(CBinaryData(bytes, size, true))) << type;
  }
}

TEST(ObjectTextOutput, ToFile) {
  TemporaryFile const file("object.xml");
  Note note;
  note.m_text.assign(20000, 'z');
  EXPECT_FAILURE(CQnException, "ZLIB Compression only available for To Stream methods.",
                 note.ToXmlFile(file.Path(), true, true, XmlEncoding_UTF8, EOLType_LF, kContext, CompressionType_ZLib));
  EXPECT_FAILURE(CQnException, kUnknownEncoding, note.ToXmlFile(file.Path(), true, true, XmlEncoding_Default));
  EXPECT_FALSE(file.Exists());

  note.ToXmlFile(file.Path());
  EXPECT_EQ(Bytes(note.ToXmlStream()), file.Read());
  note.ToXmlFile(file.Path(), false, false, XmlEncoding_Unicode);
  EXPECT_EQ("\xFF\xFE" + Bytes(note.ToXmlStream(false, false, XmlEncoding_Unicode)), file.Read());
  EXPECT_FAILURE(CQnException, NotWritten(kNoDirectory), note.ToXmlFile(kNoDirectory));
}

TEST(ObjectTextOutput, TheDirectRouteIsForUncompressedFilesAndCannotComplete) {
  TemporaryFile const file("direct.xml");
  AsyncScope const async;
  Note note;
  note.m_text.assign(20000, 'z');
  note.ToXmlFile(file.Path(), true, true, XmlEncoding_UTF16, EOLType_LF, kContext, CompressionType_GZip);
  EXPECT_EQ("\xFF\xFE\x1F\x8B", file.Read().substr(0, 4));
  EXPECT_FAILURE(CQnException, kNotWritten, note.ToXmlFile(file.Path()));
  EXPECT_EQ("", file.Read());
}

}  // namespace
}  // namespace Quillon9
