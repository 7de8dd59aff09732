#include "record_output.h"

#include <algorithm>
#include <utility>

#include "failure.h"
#include "record_namespaces.h"

namespace Quillon9Tool {

using namespace Quillon9;

namespace {

/// Records are written as they have been read, with their comments.
CXmlSerializationContext ContextOfRecords() {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  ctx.SetKeepUnknown(true);
  return ctx;
}

void Declare(CXmlRecordWriter& writer, std::map<std::string, std::string> const& namespaces) {
  for (auto const& [prefix, uri] : namespaces) writer.DeclareNamespace(prefix, uri);
}

/// The elements around the present record, each in a form in which no two of them are equal in a document.
std::vector<std::string> StepsAround(CXmlRecordReader const& reader, std::vector<CXmlElement const*> const& around) {
  std::string const path = reader.GetPlace().GetPath();
  std::vector<std::string> steps;
  std::size_t at = 0;
  for (CXmlElement const* const element : around) {
    at = std::min(path.find('/', at + 1), path.size());
    steps.push_back(path.substr(0, at) + ' ' + element->GetNamespaceURI());
  }
  return steps;
}

}  // namespace

// ---- RecordPrinter

RecordPrinter::RecordPrinter(bool format) : m_format(format), m_ctx(ContextOfRecords()) {}

void RecordPrinter::Write(CXmlRecordReader const& reader) {
  std::string text;
  CXmlRecordWriter writer(CRecordTarget::Memory(text), m_ctx);
  writer.SetText(false, m_format);
  Declare(writer, NeededNamespaces(*reader.GetElement()));
  writer.Write(*reader.GetElement());
  writer.Finish();
  if (text.empty() || text.back() != '\n') text += '\n';
  m_console.Write(text);
}

// ---- RecordParts

RecordParts::RecordParts(RecordsOptions const& options, bool mayUseDefaultNamespace)
    : m_options(options), m_ctx(ContextOfRecords()), m_needsPrefixes(!mayUseDefaultNamespace) {
  m_ctx.SetKeepPrefixes(true);
}

RecordParts::~RecordParts() = default;

void RecordParts::Write(CXmlRecordReader const& reader) {
  CXmlElement const& record = *reader.GetElement();
  std::vector<CXmlElement const*> const around = reader.GetAncestors();
  m_needsPrefixes = m_needsPrefixes || HasNameWithoutNamespace(record);
  if (m_hasDefaultNamespace && m_needsPrefixes) EndAtNameWithoutNamespace();
  if (m_writer == nullptr) Begin(around);
  Open(around, StepsAround(reader, around));
  m_writer->Write(record);
  if (m_options.each && m_writer->GetCount() == *m_options.each) Finish();
}

void RecordParts::EndAtNameWithoutNamespace() {
  if (m_options.each) return Finish();
  m_mustHavePrefixes = true;
  throw Failure(OutputName(m_options.output), "an element without a namespace is within a default namespace");
}

void RecordParts::Begin(std::vector<CXmlElement const*> const& around) {
  std::map<std::string, std::string> const namespaces = NamespacesAround(around, m_needsPrefixes);
  m_hasDefaultNamespace = namespaces.count("") != 0 && m_options.to != DocumentKind::FastInfoset;
  auto const sync = m_options.each ? CFileReplacement::Sync::No : CFileReplacement::Sync::Yes;
  m_file = std::make_unique<OutputFile>(NextPath(), sync);
  m_writer = std::make_unique<CXmlRecordWriter>(CRecordTarget([this](char const* bytes, std::size_t size) {
                                                  m_file->Write({bytes, size});
                                                }),
                                                m_ctx);
  SetForm();
  Declare(*m_writer, namespaces);
}

void RecordParts::SetForm() {
  if (m_options.to == DocumentKind::FastInfoset) {
    m_writer->SetFastInfoset(m_options.declaration.value_or(false) ? FInfoDecl_Version10 : FInfoDecl_None);
  } else {
    m_writer->SetText(m_options.declaration.value_or(true), m_options.format);
  }
  m_writer->SetCompression(m_options.compression);
}

/// Close and open elements until those are open that are around the record.
void RecordParts::Open(std::vector<CXmlElement const*> const& around, std::vector<std::string> const& steps) {
  std::size_t const size = std::min(m_open.size(), steps.size());
  auto const end = static_cast<std::ptrdiff_t>(size);
  auto const same = std::mismatch(steps.begin(), steps.begin() + end, m_open.begin()).first - steps.begin();
  for (; m_open.size() > static_cast<std::size_t>(same); m_open.pop_back()) m_writer->CloseElement();
  for (std::size_t depth = m_open.size(); depth < steps.size(); ++depth) {
    CXmlElement const& element = *around[depth];
    m_writer->OpenElement(element.GetLocalName(), element.GetNamespaceURI());
    m_open.push_back(steps[depth]);
    for (CXmlAttribute const& attribute : element.Attributes()) {
      m_writer->WriteAttribute(attribute.GetLocalName(), std::string(attribute.GetValueView()),
                               attribute.GetNamespaceURI());
    }
  }
}

void RecordParts::Finish() {
  if (m_writer == nullptr) return;
  m_writer->Finish();
  m_file->Finish();
  m_writer.reset();
  m_file.reset();
  m_open.clear();
  m_hasDefaultNamespace = false;
}

std::string RecordParts::NextPath() {
  ++m_parts;
  if (!m_options.each) return m_options.output;
  return FormatString(m_options.output.c_str(), static_cast<unsigned long long>(m_parts));
}

}  // namespace Quillon9Tool
