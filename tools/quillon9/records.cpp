#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "progress.h"
#include "record_input.h"
#include "record_output.h"

namespace Quillon9Tool {

using namespace Quillon9;

namespace {

CXmlSerializationContext ContextFor(RecordsOptions const& options) {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  ctx.SetKeepUnknown(true);
  for (auto const& [prefix, uri] : options.prefixes) ctx.GetNamespaceAliases()->Add(prefix.c_str(), uri.c_str());
  return ctx;
}

/// A part of a document, on the command line: the place of its first record, and the offset of the first byte of which
/// no record belongs to it.
struct Range {
  std::string start;
  std::uint64_t end;

  std::string ToWord() const { return start + ',' + std::to_string(end); }
};

[[noreturn]] void RefuseRange(std::string const& word) {
  throw UsageError("--range=" + word + " is not a word of --plan");
}

Range RangeOf(std::string const& word) {
  std::size_t const comma = word.rfind(',');
  if (comma == word.npos || word.find_first_not_of("0123456789", comma + 1) != word.npos) RefuseRange(word);
  try {
    return {word.substr(0, comma), std::stoull(word.substr(comma + 1))};
  } catch (std::logic_error const&) {  // no digits, or too many
    RefuseRange(word);
  }
}

void RefuseTerminal(RecordsOptions const& options) {
  bool const isBinary = options.to == DocumentKind::FastInfoset || options.compression != CompressionType_None;
  if (options.output == "-" && isBinary) RefuseBinaryOnTerminal();
}

/// Reads the records of one input, and reports those that cannot be read.
class RecordRun final : private IFailureSink {
 public:
  explicit RecordRun(RecordsOptions const& options)
      : m_options(options),
        m_name(InputName(options.input)),
        m_ctx(ContextFor(options)),
        m_input(Named(m_name, [&] { return std::make_unique<RecordInput>(options.input); })),
        m_progress(options.quiet || PrintsOnTerminal()),
        m_end(m_input->GetSize().value_or(0)) {
    m_progress.SetSpan(0, m_end);
    m_ctx.SetFailureSink(this);
    m_input->SetMonitor([this](std::uint64_t read, bool waits) { Monitor(read, waits); });
    m_reader.emplace(options.range.empty() ? m_input->Source() : CRecordSource(options.input), m_ctx);
    SelectRecords();
    if (!options.range.empty()) SelectRange(RangeOf(options.range));
  }

  std::optional<std::uint64_t> GetInputSize() const { return m_input->GetSize(); }
  std::uint64_t GetCount() const { return m_reader->GetCount(); }

  /// Call \p use for each record, and \p output, if it is not null, for what has to be done while the input is read.
  /// \throws Failure; Reported for a record that cannot be read or used, unless the run goes on then.
  template <class Use>
  void Run(RecordOutput* output, Use use) {
    m_output = output;
    Named(m_name, [&] {
      try {
        RunToEnd(use);
      } catch (CQnException const& failure) {
        if (m_used == 0) throw;
        std::string const count = std::to_string(m_used) + (m_used == 1 ? " record" : " records");
        throw Failure(m_name, failure.GetFullMessage() + " (after " + count + ")", ReportOn(failure, m_name));
      }
    });
    m_progress.Clear();
  }
  /// \throws Reported if there was a record that could not be read or used.
  void ThrowIfBad() const {
    if (m_hasBad) throw Reported();
  }

 private:
  bool PrintsOnTerminal() const {
    bool const prints = !m_options.count && !m_options.plan && (m_options.output.empty() || m_options.output == "-");
    return prints && ::isatty(STDOUT_FILENO) != 0;
  }

  void SelectRecords() {
    try {
      for (std::string const& path : m_options.paths) m_reader->SelectRecords(path);
    } catch (CQnInvalidParamException const& failure) {
      throw UsageError(failure.GetMessage());
    }
  }

  void SelectRange(Range const& range) {
    try {
      m_reader->SetStart(range.start);
    } catch (CQnInvalidParamException const&) {
      RefuseRange(range.ToWord());
    }
    m_reader->SetEnd(range.end);
    m_end = std::min(m_end, range.end);
  }

  template <class Use>
  void RunToEnd(Use use) {
    if (!Next(use)) return;
    if (!m_options.range.empty()) {
      m_progress.SetSpan(static_cast<std::uint64_t>(m_reader->GetPlace().GetOffset()), m_end);
    }
    do m_progress.Update(m_reader->GetInputOffset());
    while (Next(use));
  }

  /// Go to the next record and use it; false at the end.
  template <class Use>
  bool Next(Use use) {
    try {
      if (!m_reader->Advance()) return false;
      use(*m_reader);
      ++m_used;
    } catch (CQnException const& failure) {
      if (m_reader->IsAtEnd()) throw;  // of the document, where nothing follows
      Report(failure);
      if (!m_options.keepGoing) throw Reported();
    }
    return true;
  }

  void Report(CQnException const& failure) {
    m_progress.Clear();
    m_hasBad = true;
    CFailurePlace place = failure.GetPlace() != nullptr ? *failure.GetPlace() : m_reader->GetPlace();
    place.SetFile(m_name);
    CFailure const report(failure.GetKind(), FailureSeverity_Error, place, failure.GetFullMessage());
    std::fprintf(stderr, "quillon9: %s\n", report.GetReport().c_str());
  }

  bool OnFailure(CFailure const& failure) override {
    if (m_options.quiet || m_options.needsRecord || failure.GetSeverity() != FailureSeverity_Remark) return false;
    m_progress.Clear();
    std::fprintf(stderr, "quillon9: %s: remark: %s\n", m_name.c_str(), Escaped(failure.GetText()).c_str());
    return true;
  }

  void Monitor(std::uint64_t read, bool waits) {
    m_progress.Update(read);
    if (m_output == nullptr) return;
    if (waits) m_output->Flush();
    HeldSignals const* const signals = m_output->GetHeldSignals();
    if (signals == nullptr) return;
    waits ? signals->WaitToRead(m_input->GetDescriptor()) : signals->ThrowIfInterrupted();
  }

  RecordsOptions const& m_options;
  std::string m_name;
  CXmlSerializationContext m_ctx;
  std::unique_ptr<RecordInput> m_input;
  Progress m_progress;
  std::uint64_t m_end;  // of what is read; 0 if unknown
  std::optional<CXmlRecordReader> m_reader;
  RecordOutput* m_output = nullptr;
  std::uint64_t m_used = 0;  // records without a failure
  bool m_hasBad = false;
};

/// Print words for ranges of about the same size. Records are found from the start of the file.
void PrintPlan(RecordsOptions const& options, RecordRun& run) {
  if (!run.GetInputSize()) throw Failure(InputName(options.input), "a plan is for a file");
  std::uint64_t const size = *run.GetInputSize();
  std::vector<std::pair<std::string, std::uint64_t>> starts;  // with their offsets
  std::uint64_t const step = size / *options.plan + 1;
  std::uint64_t border = 0;
  run.Run(nullptr, [&](CXmlRecordReader const& reader) {
    auto const offset = static_cast<std::uint64_t>(reader.GetPlace().GetOffset());
    if (offset < border) return;
    starts.emplace_back(reader.GetResumePoint(), offset);
    while (border <= offset) border += step;
  });
  Console console;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    Range const range{starts[i].first, i + 1 < starts.size() ? starts[i + 1].second : size};
    console.Write(range.ToWord() + '\n');
  }
  console.Finish();
}

void PrintCount(RecordRun& run) {
  run.Run(nullptr, [](CXmlRecordReader const&) {});
  Console console;
  console.Write(std::to_string(run.GetCount()) + '\n');
  console.Finish();
}

void WriteRecords(RecordOutput& output, RecordRun& run) {
  try {
    run.Run(&output, [&output](CXmlRecordReader const& reader) { output.Write(reader); });
  } catch (...) {
    output.Flush();  // the records in front of the fault
    throw;
  }
  output.Finish();
}

/// A file is read again where a default namespace turns out to be wrong.
void WriteDocuments(RecordsOptions const& options, RecordRun& run) {
  RecordParts parts(options, true);
  try {
    return WriteRecords(parts, run);
  } catch (Failure const&) {
    if (!parts.MustHavePrefixes() || !run.GetInputSize()) throw;
  }
  RecordRun again(options);
  RecordParts partsWithPrefixes(options, false);
  WriteRecords(partsWithPrefixes, again);
}

}  // namespace

void ReadRecords(RecordsOptions const& options) {
  RefuseTerminal(options);
  RecordRun run(options);
  if (options.plan) {
    PrintPlan(options, run);
  } else if (options.count) {
    PrintCount(run);
  } else if (options.output.empty()) {
    RecordPrinter printer(options.format);
    WriteRecords(printer, run);
  } else {
    WriteDocuments(options, run);
  }
  run.ThrowIfBad();
  if (options.needsRecord && run.GetCount() == 0) {
    throw Failure(InputName(options.input), "the document element has no elements, so it must be converted as a whole");
  }
}

}  // namespace Quillon9Tool
