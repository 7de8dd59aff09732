#include "quillon9/records/record_reader.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "base/failure_detail.h"
#include "binding/failure_report.h"
#include "generated/bound_access.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"
#include "records/octet_input.h"
#include "records/parallel_read.h"
#include "records/present_record.h"
#include "records/record_opening.h"
#include "records/record_path.h"
#include "records/record_stream.h"

namespace Quillon9 {

CSmartPtr<CXmlObjectBase> detail::MakeBoundRecord(CClassTables const& tables, CXmlElement const& element) {
  return BoundAccess::MakeFor(tables, element, element.GetLocalName().c_str(), 0);
}

namespace {

[[noreturn]] void ThrowBegun() { throw CQnInvalidStateException("The read has begun"); }

[[noreturn]] void ThrowInHandler() {
  throw CQnInvalidStateException("A handler of the reader cannot go on with the read");
}

[[noreturn]] void ThrowNoRecord() { throw CQnInvalidStateException("There is no record"); }

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

/// Passes failures on, one at a time.
class LockedSink final : public IFailureSink {
 public:
  explicit LockedSink(IFailureSink& sink) : m_sink(sink) {}

  bool OnFailure(CFailure const& failure) override {
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_sink.OnFailure(failure);
  }

 private:
  IFailureSink& m_sink;
  std::mutex m_mutex;
};

/// Knows the file only.
class NoPlaces final : public PlaceFinder {
 public:
  explicit NoPlaces(std::string const& file) : m_file(file) {}

  CFailurePlace Find(FailurePoint const&) override {
    CFailurePlace place;
    place.SetFile(m_file);
    return place;
  }
  bool HasPositionsOf(CXmlElement const*) override { return false; }

 private:
  std::string const& m_file;
};

}  // namespace

class CXmlRecordReader::Work {
 public:
  using Handler = std::function<void(CXmlRecordReader&)>;

  Work(CRecordSource source, CXmlSerializationContext const& ctx) : m_source(std::move(source)), m_ctx(ctx) {
    if (ctx.GetFailureSink() == nullptr) return;
    m_sink.emplace(*ctx.GetFailureSink());
    m_ctx.SetFailureSink(&*m_sink);
  }

  void Select(std::string const& path, Handler handler) {
    RequireStart();
    m_paths.emplace_back(path, *m_ctx.GetNamespaceAliases());
    m_isRecord.push_back(!handler);
    m_selections.push_back(handler ? 0 : m_selectionCount++);
    m_handlers.push_back(std::move(handler));
  }

  void SetMaxRecordSize(std::size_t bytes) {
    RequireStart();
    m_limits.mostRecord = std::min(bytes, kMostRecord);
  }

  void SetStart(std::string const& point) {
    RequireStart();
    m_limits.start = ResumePoint::Of(point);
  }

  void SetEnd(std::uint64_t offset) {
    RequireStart();
    m_limits.end = offset;
  }

  bool Advance(CXmlRecordReader& reader, bool holdsUtf8) {
    if (m_isInHandler) ThrowInHandler();
    if (m_end != nullptr) std::rethrow_exception(m_end);
    Utf8Text::Use const use = UseFor(holdsUtf8);
    do {
      m_present = {};
      if (!NextPlace(use)) return false;
    } while (RunHandler(reader, use));
    Load(use);
    ++m_count;
    return true;
  }

  std::uint64_t ForEach(CXmlRecordReader& reader, unsigned threads, RecordOrder order, bool holdsUtf8,
                        detail::RecordMaker make, detail::RecordTask const& task) {
    if (m_isInHandler) ThrowInHandler();
    if (m_end != nullptr) std::rethrow_exception(m_end);
    std::uint64_t const before = m_count;
    Utf8Text::Use const use = UseFor(holdsUtf8);
    try {
      ParallelRead read({m_ctx, use, order, make, task, m_isRecord}, ThreadsFor(threads));
      AddBatches(reader, use, read.Workers());
    } catch (...) {
      m_end = std::current_exception();
      throw;
    }
    return m_count - before;
  }

  CSmartPtr<CXmlObjectBase> Read(detail::RecordMaker make) {
    RequireRecord();
    return m_present.Read(make, m_ctx);
  }

  void ReadInto(CXmlObjectBase& object) {
    RequireRecord();
    m_present.ReadInto(object, m_ctx);
  }

  PresentRecord const& Present() const { return m_present; }
  std::size_t Selection() const { return m_batch != nullptr ? m_selections[m_batch->Selection(m_record)] : 0; }
  std::string ResumePointHere() const {
    if (m_batch == nullptr) ThrowNoRecord();
    return m_batch->ResumePointOf(m_record);
  }
  bool IsAtEnd() const { return m_isAtEnd || m_end != nullptr; }
  std::uint64_t Count() const { return m_count; }
  CFailurePlace Place() const { return m_batch != nullptr ? m_batch->Place(m_record) : CFailurePlace(); }
  std::uint64_t InputOffset() const { return m_inputOffset; }

 private:
  static constexpr std::size_t kMostRecord = 0xFFFF0000;

  Utf8Text::Use UseFor(bool holdsUtf8) const {
    if (holdsUtf8) return Utf8Text::Use::kCountingCharacters;
    return m_ctx.GetTextEncoding() == TextEncoding_UTF8 ? Utf8Text::Use::kYes : Utf8Text::Use::kNo;
  }

  void RequireStart() const {
    if (m_stream != nullptr || m_end != nullptr) ThrowBegun();
  }

  void RequireRecord() const {
    if (m_present.Element() == nullptr) ThrowNoRecord();
  }

  void Open() {
    if (m_stream != nullptr) return;
    if (m_limits.start) {
      m_inputOffset = m_limits.start->at.offset;
      if (!m_source.m_input->Seek(m_inputOffset)) {
        throw CQnInvalidStateException("The input cannot be read from a place in the middle");
      }
    }
    auto input = std::make_unique<CountedInput>(std::move(m_source.m_input), m_inputOffset);
    m_stream = OpenRecords(std::move(input), m_paths, m_limits, m_ctx, m_source.m_path);
  }

  /// Go to the next element that a path selects; false at the end.
  bool NextPlace(Utf8Text::Use use) {
    if (m_batch != nullptr && m_record + 1 < m_batch->Size()) {
      ++m_record;
      return true;
    }
    if (m_isAtEnd) return false;
    m_record = 0;
    m_batch.reset();
    try {
      Open();
      m_batch = m_stream->Next(use);
    } catch (...) {
      m_end = std::current_exception();
      throw;
    }
    m_isAtEnd = m_batch == nullptr;
    if (m_isAtEnd) RemarkOnNothing();
    return !m_isAtEnd;
  }

  void Load(Utf8Text::Use use) {
    try {
      m_present = PresentRecord(*m_batch, m_record, use);
    } catch (...) {
      if (m_batch->IsAtEnd()) {
        m_end = std::current_exception();
      } else if (m_isRecord[m_batch->Selection(m_record)]) {
        ++m_count;
      }
      throw;
    }
  }

  /// False if the present element is a record.
  bool RunHandler(CXmlRecordReader& reader, Utf8Text::Use use) {
    std::size_t const path = m_batch->Selection(m_record);
    if (m_isRecord[path]) return false;
    Load(use);
    m_isInHandler = true;
    try {
      m_handlers[path](reader);
    } catch (...) {
      m_isInHandler = false;
      throw;
    }
    m_isInHandler = false;
    return true;
  }

  /// If not even one record was there, that is worth a remark.
  void RemarkOnNothing() const {
    if (m_count != 0) return;
    NoPlaces places(m_source.m_path);
    FailureReport const report(m_ctx, places);
    for (std::size_t i = 0; i < m_paths.size(); ++i) {
      if (!m_isRecord[i]) continue;
      FailureReport::Remark(m_ctx, FailureKind_NoRecord, {nullptr},
                            FormatString("No element matches the path [%s]", m_paths[i].Text().c_str()));
    }
  }

  static unsigned ThreadsFor(unsigned threads) {
    return threads != 0 ? threads : std::max(std::thread::hardware_concurrency(), 1U);
  }

  // A failure of the document comes after those of the records in front of it.
  void AddBatches(CXmlRecordReader& reader, Utf8Text::Use use, RecordWorkers& workers) {
    std::exception_ptr end;
    try {
      while (NextPlace(use) && AddBatch(reader, use, workers)) {
      }
    } catch (...) {
      end = std::current_exception();
    }
    workers.Finish();
    if (end != nullptr) std::rethrow_exception(end);
  }

  // One thread at a time uses a batch, so that the elements between the records are read first.
  bool AddBatch(CXmlRecordReader& reader, Utf8Text::Use use, RecordWorkers& workers) {
    std::size_t const first = m_record;
    std::exception_ptr failure;
    try {
      for (; m_record < m_batch->Size(); ++m_record) {
        if (!RunHandler(reader, use)) ++m_count;
      }
    } catch (...) {
      failure = std::current_exception();  // of an element that comes after other records of the batch
    }
    m_present = {};
    bool const goesOn = workers.Add(std::move(m_batch), first, m_record);
    if (failure != nullptr) std::rethrow_exception(failure);
    return goesOn;
  }

  CRecordSource m_source;
  CXmlSerializationContext m_ctx;
  std::optional<LockedSink> m_sink;
  RecordLimits m_limits;
  std::vector<RecordPath> m_paths;
  std::vector<Handler> m_handlers;        // one for each path; empty for records
  std::vector<bool> m_isRecord;           // one for each path
  std::vector<std::size_t> m_selections;  // the numbers of the paths of records
  std::size_t m_selectionCount = 0;
  std::unique_ptr<RecordStream> m_stream;
  std::unique_ptr<RecordBatch> m_batch;
  std::size_t m_record = 0;  // of the batch
  PresentRecord m_present;
  bool m_isAtEnd = false;
  bool m_isInHandler = false;
  std::exception_ptr m_end;  // the failure that every call throws
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

void CXmlRecordReader::SetStart(std::string const& point) { m_work->SetStart(point); }

void CXmlRecordReader::SetEnd(std::uint64_t offset) { m_work->SetEnd(offset); }

std::string CXmlRecordReader::GetResumePoint() const { return m_work->ResumePointHere(); }

bool CXmlRecordReader::Advance(bool holdsUtf8) { return m_work->Advance(*this, holdsUtf8); }

CSmartPtr<CXmlObjectBase> CXmlRecordReader::ReadPresent(detail::RecordMaker make) { return m_work->Read(make); }

std::uint64_t CXmlRecordReader::ForEach(unsigned threads, RecordOrder order, bool holdsUtf8, detail::RecordMaker make,
                                        detail::RecordTask const& task) {
  return m_work->ForEach(*this, threads, order, holdsUtf8, make, task);
}

void CXmlRecordReader::ReadInto(CXmlObjectBase& object) { m_work->ReadInto(object); }

CXmlElement const* CXmlRecordReader::GetElement() const { return m_work->Present().Element(); }

std::vector<CXmlElement const*> CXmlRecordReader::GetAncestors() const { return m_work->Present().Ancestors(); }

std::size_t CXmlRecordReader::GetSelection() const { return m_work->Selection(); }

bool CXmlRecordReader::IsAtEnd() const { return m_work->IsAtEnd(); }

std::uint64_t CXmlRecordReader::GetCount() const { return m_work->Count(); }

CFailurePlace CXmlRecordReader::GetPlace() const { return m_work->Place(); }

std::uint64_t CXmlRecordReader::GetInputOffset() const { return m_work->InputOffset(); }

}  // namespace Quillon9
