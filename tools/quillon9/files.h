#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "held_signals.h"
#include "progress.h"
#include "quillon9/quillon9.h"
#include "xmlio/file_replacement.h"

namespace Quillon9Tool {

/// Return all bytes of the file \p path (`-` is standard input), decompressed if they are gzip or zlib. \p progress, if
/// it is not null, shows how many have been read.
/// \throws Failure
Quillon9::CBinaryData ReadInput(std::string const& path, Progress* progress = nullptr);

/// Write \p bytes to the file \p path (`-` is standard output). A regular file appears, or changes, only when all of
/// them are on the disk, except where Quillon9::CFileReplacement has to write it directly.
/// \throws Failure
void WriteOutput(std::string const& path, std::string_view bytes);

/// The same for a file that can be made again: it does not wait for the disk, so a power failure may leave it empty.
/// \throws Failure
void WriteDerivedOutput(std::string const& path, std::string_view bytes);

/// A file that is written in pieces, as WriteOutput() does it: without Finish(), a regular file stays as it was.
class OutputFile {
 public:
  /// The file \p path; `-` is standard output.
  /// \throws Failure, as the other functions do.
  OutputFile(std::string path, Quillon9::CFileReplacement::Sync sync);
  void Write(std::string_view bytes);
  void Finish();
  /// The signals that are held back because of a temporary file; null if there is none.
  HeldSignals const* GetHeldSignals() const { return m_signals ? &*m_signals : nullptr; }

 private:
  std::string m_path;
  Quillon9::CFileReplacement::Sync m_sync;
  std::optional<HeldSignals> m_signals;  // until the temporary file is gone
  std::optional<Quillon9::CFileReplacement> m_file;
};

/// \throws UsageError if standard output is a terminal, which cannot take a binary result.
void RefuseBinaryOnTerminal();

/// Close standard output at the end of the program: network file systems report only then that the disk is full.
/// \throws Failure
void CloseStandardOutput();

/// Return the bytes of \p data, which are valid until it changes.
std::string_view View(Quillon9::CBinaryData const& data);

/// Standard output for text that is produced piece by piece.
class Console {
 public:
  /// \throws Failure, as Finish() does, if the output fails.
  void Write(std::string_view text);
  void Finish();

 private:
  std::string m_buffer;
};

}  // namespace Quillon9Tool
