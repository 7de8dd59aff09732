#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "files.h"
#include "options.h"
#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// Where records go to.
class RecordOutput {
 public:
  virtual ~RecordOutput() = default;
  /// Write the present record of \p reader.
  /// \throws CQnException for a record that cannot be written, of which nothing is written then; Failure.
  virtual void Write(Quillon9::CXmlRecordReader const& reader) = 0;
  /// Write what has been held back, because more records may come late.
  /// \throws Failure
  virtual void Flush() {}
  /// \throws Failure
  virtual void Finish() = 0;
  /// The signals that are held back because of a temporary file; null if there is none.
  virtual HeldSignals const* GetHeldSignals() const { return nullptr; }
};

/// Standard output, where each record is a fragment that declares the namespaces that it needs.
class RecordPrinter final : public RecordOutput {
 public:
  explicit RecordPrinter(bool format);
  void Write(Quillon9::CXmlRecordReader const& reader) override;
  void Flush() override { m_console.Finish(); }
  void Finish() override { m_console.Finish(); }

 private:
  bool m_format;
  Quillon9::CXmlSerializationContext m_ctx;
  Console m_console;
};

/// Files, which have the elements around the records, too.
class RecordParts final : public RecordOutput {
 public:
  /// \p options are borrowed. Without \p mayUseDefaultNamespace, all namespaces have prefixes.
  RecordParts(RecordsOptions const& options, bool mayUseDefaultNamespace);
  ~RecordParts() override;
  void Write(Quillon9::CXmlRecordReader const& reader) override;
  void Finish() override;
  /// Whether Write() has failed because an element without a namespace stands where there is a default namespace, which
  /// XML text in one document would have to be written without.
  bool MustHavePrefixes() const { return m_mustHavePrefixes; }
  HeldSignals const* GetHeldSignals() const override { return m_file != nullptr ? m_file->GetHeldSignals() : nullptr; }

 private:
  void Begin(std::vector<Quillon9::CXmlElement const*> const& around);
  void Open(std::vector<Quillon9::CXmlElement const*> const& around, std::vector<std::string> const& steps);
  void SetForm();
  void EndAtNameWithoutNamespace();
  std::string NextPath();

  RecordsOptions const& m_options;
  Quillon9::CXmlSerializationContext m_ctx;
  std::unique_ptr<OutputFile> m_file;
  std::unique_ptr<Quillon9::CXmlRecordWriter> m_writer;  // null between two files
  std::vector<std::string> m_open;                       // the open elements
  bool m_hasDefaultNamespace = false;                    // of the present file
  bool m_needsPrefixes;                                  // there are names without a namespace
  bool m_mustHavePrefixes = false;
  std::uint64_t m_parts = 0;
};

}  // namespace Quillon9Tool
