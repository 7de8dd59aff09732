#include "records/record_encoder.h"

#include "binding/write_failure.h"
#include "fastinfoset/writer_access.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

RecordEncoder::~RecordEncoder() = default;

namespace {

class TextEncoder final : public RecordEncoder {
 public:
  explicit TextEncoder(RecordLayout const& layout)
      : m_hasHeader(layout.hasHeader), m_stream(XmlEncoding_UTF8), m_writer(m_stream) {
    m_writer.SetFormat(layout.isFormatted);
    m_writer.SetEOLType(layout.eol);
    m_writer.SetEscapesNamespaces(true);
    m_stream.Reserve(kBlock);
  }

  CXmlWriter& Writer() override { return m_writer; }
  void Begin() override {
    if (m_hasHeader) m_writer.WriteStartDocument();
  }
  void End() override { m_writer.Close(); }
  void MoveTo(std::string& octets) override {
    char const* const text = m_stream.GetText();
    std::size_t const size = m_stream.GetLength();
    if (CEncoder::IsUtf8SameInLocalCodePage(text, size)) {
      octets.append(text, size);
    } else {
      CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(text);
      octets.append(reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength());
    }
    Drop();
  }
  void SetMark(std::string& octets) override {
    m_mark = XmlWriterAccess::GetMark(m_writer);
    MoveTo(octets);
  }
  void ReturnToMark() override {
    XmlWriterAccess::ReturnTo(m_writer, m_mark);
    Drop();
  }
  void AddPlace(CQnException& failure, CXmlObjectBase const& object,
                CXmlSerializationContext const& ctx) const noexcept override {
    WriteFailure::AddPlace(failure, object, ctx);
  }

 private:
  /// Empty the stream, and give it a block that most records fit in.
  void Drop() {
    m_stream.Open();
    m_stream.Reserve(kBlock);
  }

  bool m_hasHeader;
  CTextStream m_stream;
  CXmlTextWriter m_writer;
  XmlWriterAccess::TextMark m_mark;
};

class InfosetEncoder final : public RecordEncoder {
 public:
  InfosetEncoder(FInfoDecl decl, CXmlSerializationContext const& ctx)
      : m_decl(decl), m_writer(*ctx.GetFIContext(), m_stream) {
    InfosetWriterAccess::HoldOctets(m_writer);
    InfosetWriterAccess::LimitValues(m_writer, {kMostValues, kMostValueOctets});
  }

  CXmlWriter& Writer() override { return m_writer; }
  void Begin() override { m_writer.WriteStartDocument(m_decl); }
  void End() override {
    m_writer.WriteEndDocument();
    m_writer.Close();
  }
  void MoveTo(std::string& octets) override {
    octets.append(InfosetWriterAccess::HeldOctets(m_writer));
    InfosetWriterAccess::DropOctets(m_writer);
  }
  void SetMark(std::string& octets) override {
    m_mark = InfosetWriterAccess::GetMark(m_writer);
    MoveTo(octets);
  }
  void ReturnToMark() override {
    InfosetWriterAccess::DropOctets(m_writer);
    InfosetWriterAccess::ReturnTo(m_writer, m_mark);
  }
  void AddPlace(CQnException& failure, CXmlObjectBase const& object,
                CXmlSerializationContext const& ctx) const noexcept override {
    WriteFailure::AddPlaceInInfoset(failure, object, m_decl, ctx);
  }

 private:
  // Few enough for caches; documents with more different short values gain little from a table.
  static constexpr std::size_t kMostValues = 0x10000;
  static constexpr std::size_t kMostValueOctets = 0x200000;

  FInfoDecl m_decl;
  CBinaryStream m_stream;  // gets nothing
  CFastInfosetWriter m_writer;
  InfosetWriterAccess::Mark m_mark{};
};

}  // namespace

std::unique_ptr<RecordEncoder> EncoderOfText(RecordLayout const& layout) {
  return std::make_unique<TextEncoder>(layout);
}

std::unique_ptr<RecordEncoder> EncoderOfInfoset(FInfoDecl decl, CXmlSerializationContext const& ctx) {
  return std::make_unique<InfosetEncoder>(decl, ctx);
}

}  // namespace Quillon9
