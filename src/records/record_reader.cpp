#include "quillon9/records/record_reader.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "base/failure_detail.h"
#include "binding/reported_read.h"
#include "binding/text_scope.h"
#include "descriptors/object_reading.h"
#include "generated/bound_access.h"
#include "quillon9/base/exceptions.h"
#include "records/octet_input.h"
#include "records/record_opening.h"
#include "records/record_path.h"
#include "records/record_stream.h"

namespace Quillon9 {

CSmartPtr<CXmlObjectBase> detail::MakeBoundRecord(CClassTables const& tables, CXmlElement const& element) {
  return BoundAccess::MakeFor(tables, element, element.GetLocalName().c_str(), 0);
}

namespace {

[[noreturn]] void ThrowBegun() { throw CQnInvalidStateException("The read has begun"); }

/// Counts what passes.
class CountedInput final : public OctetInput {
 public:
  CountedInput(std::unique_ptr<OctetInput> input, std::uint64_t& count) : m_input(std::move(input)), m_count(count) {}

  std::size_t Read(char* to, std::size_t size) override {
    std::size_t const count = m_input->Read(to, size);
    m_count += count;
    return count;
  }

 private:
  std::unique_ptr<OctetInput> m_input;
  std::uint64_t& m_count;
};

}  // namespace

class CXmlRecordReader::Work {
 public:
  using Handler = std::function<void(CXmlRecordReader&)>;

  Work(CRecordSource source, CXmlSerializationContext const& ctx) : m_source(std::move(source)), m_ctx(ctx) {}

  void Select(std::string const& path, Handler handler) {
    if (m_stream != nullptr) ThrowBegun();
    m_paths.emplace_back(path, *m_ctx.GetNamespaceAliases());
    m_selections.push_back(handler ? 0 : m_selectionCount++);
    m_handlers.push_back(std::move(handler));
  }

  void SetMaxRecordSize(std::size_t bytes) {
    if (m_stream != nullptr) ThrowBegun();
    m_limits.mostRecord = std::min(bytes, kMostRecord);
  }

  bool Advance(CXmlRecordReader& reader, bool holdsUtf8) {
    if (m_end != nullptr) std::rethrow_exception(m_end);
    m_use = UseFor(holdsUtf8);
    Open();
    for (;;) {
      m_element = nullptr;
      if (!NextPlace()) return false;
      Handler const& handler = m_handlers[m_batch->Selection(m_record)];
      if (!handler) ++m_count;
      Load();
      if (!handler) return true;
      handler(reader);
    }
  }

  CSmartPtr<CXmlObjectBase> Read(detail::RecordMaker make) {
    RequireRecord();
    return ReadWithReport(m_ctx, m_batch->Places(), [&] {
      CSmartPtr<CXmlObjectBase> object = make(*m_element);
      ReadPresent(*object);
      return object;
    });
  }

  void ReadInto(CXmlObjectBase& object) {
    RequireRecord();
    ReadWithReport(m_ctx, m_batch->Places(), [&] { ReadPresent(object); });
  }

  CXmlElement const* Element() const { return m_element; }
  std::size_t Selection() const { return m_batch != nullptr ? m_selections[m_batch->Selection(m_record)] : 0; }
  std::uint64_t Count() const { return m_count; }
  CFailurePlace Place() const { return m_batch != nullptr ? m_batch->Place(m_record) : CFailurePlace(); }
  std::uint64_t InputOffset() const { return m_inputOffset; }

 private:
  static constexpr std::size_t kMostRecord = 0xFFFF0000;

  Utf8Text::Use UseFor(bool holdsUtf8) const {
    if (holdsUtf8) return Utf8Text::Use::kCountingCharacters;
    return m_ctx.GetTextEncoding() == TextEncoding_UTF8 ? Utf8Text::Use::kYes : Utf8Text::Use::kNo;
  }

  void RequireRecord() const {
    if (m_element == nullptr) throw CQnInvalidStateException("There is no record");
  }

  void Open() {
    if (m_stream != nullptr) return;
    auto input = std::make_unique<CountedInput>(std::move(m_source.m_input), m_inputOffset);
    m_stream = OpenRecords(std::move(input), m_paths, m_limits, m_ctx, m_source.m_path);
  }

  bool NextPlace() {
    if (m_batch != nullptr && m_record + 1 < m_batch->Size()) {
      ++m_record;
      return true;
    }
    m_record = 0;
    m_batch.reset();
    try {
      m_batch = m_stream->Next(m_use);
    } catch (...) {
      m_end = std::current_exception();
      throw;
    }
    return m_batch != nullptr;
  }

  void Load() {
    try {
      m_element = m_batch->Load(m_record, m_use);
    } catch (...) {
      if (m_batch->IsAtEnd()) m_end = std::current_exception();
      throw;
    }
  }

  void ReadPresent(CXmlObjectBase& object) {
    TextScope const scope(object, m_ctx);
    Utf8Text::Use const use = TextUse(object, m_ctx);
    if (use != m_use) m_element = m_batch->Load(m_record, m_use = use);
    try {
      ReadObject(*m_element, object, m_ctx);
    } catch (CQnException& failure) {
      FailureReport::Note(failure, {m_element});
      throw;
    }
  }

  CRecordSource m_source;
  CXmlSerializationContext const& m_ctx;
  RecordLimits m_limits;
  std::vector<RecordPath> m_paths;
  std::vector<Handler> m_handlers;        // one for each path; empty for records
  std::vector<std::size_t> m_selections;  // the numbers of those that select records
  std::size_t m_selectionCount = 0;
  std::unique_ptr<RecordStream> m_stream;
  std::unique_ptr<RecordBatch> m_batch;
  std::size_t m_record = 0;                // of the batch
  CXmlElement const* m_element = nullptr;  // the tree of that record
  Utf8Text::Use m_use = Utf8Text::Use::kNo;
  std::exception_ptr m_end;  // why there are no more records
  std::uint64_t m_count = 0;
  std::uint64_t m_inputOffset = 0;
};

CXmlRecordReader::CXmlRecordReader(CRecordSource source, CXmlSerializationContext const& ctx)
    : m_work(std::make_unique<Work>(std::move(source), ctx)) {}

CXmlRecordReader::~CXmlRecordReader() = default;

void CXmlRecordReader::SelectRecords(std::string const& path) { m_work->Select(path, nullptr); }

void CXmlRecordReader::OnElement(std::string const& path, std::function<void(CXmlRecordReader&)> handler) {
  if (!handler) throw CQnInvalidParamException("The handler of an element may not be NULL");
  m_work->Select(path, std::move(handler));
}

void CXmlRecordReader::SetMaxRecordSize(std::size_t bytes) { m_work->SetMaxRecordSize(bytes); }

bool CXmlRecordReader::Advance(bool holdsUtf8) { return m_work->Advance(*this, holdsUtf8); }

CSmartPtr<CXmlObjectBase> CXmlRecordReader::ReadPresent(detail::RecordMaker make) { return m_work->Read(make); }

void CXmlRecordReader::ReadInto(CXmlObjectBase& object) { m_work->ReadInto(object); }

CXmlElement const* CXmlRecordReader::GetElement() const { return m_work->Element(); }

std::size_t CXmlRecordReader::GetSelection() const { return m_work->Selection(); }

std::uint64_t CXmlRecordReader::GetCount() const { return m_work->Count(); }

CFailurePlace CXmlRecordReader::GetPlace() const { return m_work->Place(); }

std::uint64_t CXmlRecordReader::GetInputOffset() const { return m_work->InputOffset(); }

}  // namespace Quillon9
