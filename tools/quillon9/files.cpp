#include "files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <memory>
#include <utility>

#include "failure.h"

namespace Quillon9Tool {

using Quillon9::CBinaryData;
using Quillon9::CFileDescriptor;
using Quillon9::CFileReplacement;

namespace {

constexpr std::size_t kBlock = 0x10000;
constexpr std::string_view kGzipMagic = "\x1F\x8B";

CBinaryData ReadAll(int descriptor, Progress* progress) {
  CBinaryData data;
  auto const block = std::make_unique<unsigned char[]>(kBlock);
  for (;;) {
    ssize_t const count = ::read(descriptor, block.get(), kBlock);
    if (count == 0) return data;
    if (count > 0) {
      data.Append(block.get(), static_cast<unsigned long>(count));
      if (progress != nullptr) progress->Update(data.GetLength());
    } else if (errno != EINTR) {
      Quillon9::ThrowSystemError();
    }
  }
}

CBinaryData Decompressed(CBinaryData data) {
  if (data.GetLength() == 0) throw Quillon9::CQnException("the input is empty");
  unsigned long size = data.GetLength();
  std::unique_ptr<unsigned char[]> bytes(data.ReleaseData());
  unsigned char* buffer = bytes.get();
  Quillon9::CQnZip::Decompress(&buffer, &size);
  if (buffer != bytes.get()) {
    static_cast<void>(bytes.release());  // Decompress() has deleted it
    bytes.reset(buffer);
  }
  CBinaryData result(bytes.release(), size, true);
  if (View(result).substr(0, kGzipMagic.size()) == kGzipMagic) {
    throw Quillon9::CQnException("its gzip data are damaged or incomplete");
  }
  return result;
}

void WriteFile(std::string const& path, std::string_view bytes, CFileReplacement::Sync sync) {
  Named(OutputName(path), [&] {
    if (path == "-") return Quillon9::WriteAll(STDOUT_FILENO, bytes);
    CFileReplacement file(path);
    // Writing to a pipe or a device may take any time, and there is nothing to clean up.
    std::optional<HeldSignals> signals;
    if (file.NeedsTemporaryFile()) signals.emplace();
    file.Write({bytes}, sync, [&signals] { signals->ThrowIfInterrupted(); });
  });
}

}  // namespace

CBinaryData ReadInput(std::string const& path, Progress* progress) {
  return Named(InputName(path), [&] {
    if (path == "-") return Decompressed(ReadAll(STDIN_FILENO, progress));
    CFileDescriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) Quillon9::ThrowSystemError();
    return Decompressed(ReadAll(file.Get(), progress));
  });
}

void WriteOutput(std::string const& path, std::string_view bytes) {
  WriteFile(path, bytes, CFileReplacement::Sync::Yes);
}

void WriteDerivedOutput(std::string const& path, std::string_view bytes) {
  WriteFile(path, bytes, CFileReplacement::Sync::No);
}

OutputFile::OutputFile(std::string path, CFileReplacement::Sync sync) : m_path(std::move(path)), m_sync(sync) {
  if (m_path == "-") return;
  Named(OutputName(m_path), [this] {
    m_file.emplace(m_path);
    if (m_file->NeedsTemporaryFile()) m_signals.emplace();
    m_file->Begin();
  });
}

void OutputFile::Write(std::string_view bytes) {
  Named(OutputName(m_path), [&] {
    if (!m_file) return Quillon9::WriteAll(STDOUT_FILENO, bytes);
    if (m_signals) m_signals->ThrowIfInterrupted();
    m_file->Add(bytes);
  });
}

void OutputFile::Finish() {
  Named(OutputName(m_path), [this] {
    if (!m_file) return;
    if (m_signals) m_signals->ThrowIfInterrupted();
    m_file->Finish(m_sync);
  });
}

void RefuseBinaryOnTerminal() {
  if (::isatty(STDOUT_FILENO) == 0) return;
  throw UsageError("the result is binary and not for a terminal: name an output file");
}

void CloseStandardOutput() {
  Named(OutputName("-"), [] {
    if (::close(STDOUT_FILENO) != 0 && errno != EBADF) Quillon9::ThrowSystemError();
  });
}

std::string_view View(CBinaryData const& data) {
  return {reinterpret_cast<char const*>(data.GetData()), data.GetLength()};
}

void Console::Write(std::string_view text) {
  m_buffer += text;
  if (m_buffer.size() >= kBlock) Finish();
}

void Console::Finish() {
  Named(OutputName("-"), [this] { Quillon9::WriteAll(STDOUT_FILENO, m_buffer); });
  m_buffer.clear();
}

}  // namespace Quillon9Tool
