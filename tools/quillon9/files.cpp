#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "failure.h"

namespace Quillon9Tool {

using Quillon9::CBinaryData;

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlock = 0x10000;
constexpr std::string_view kGzipMagic = "\x1F\x8B";

[[noreturn]] void ThrowSystemFailure(std::string const& name, int error) {
  throw Failure(name, std::generic_category().message(error));
}

/// An open file. What is not closed by Close() is closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
  Descriptor(Descriptor const&) = delete;
  Descriptor& operator=(Descriptor const&) = delete;
  ~Descriptor() { Close(); }

  int Get() const { return m_descriptor; }
  /// Whether all that was written has arrived, as far as the system tells.
  bool Close() {
    if (m_descriptor == -1) return true;
    int const descriptor = m_descriptor;
    m_descriptor = -1;
    return ::close(descriptor) == 0;
  }

 private:
  int m_descriptor;
};

void WriteAll(int descriptor, std::string_view bytes, std::string const& name) {
  while (!bytes.empty()) {
    ssize_t const count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) ThrowSystemFailure(name, errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

CBinaryData ReadAll(int descriptor, std::string const& name) {
  CBinaryData data;
  auto const block = std::make_unique<unsigned char[]>(kBlock);
  for (;;) {
    ssize_t const count = ::read(descriptor, block.get(), kBlock);
    if (count == 0) return data;
    if (count > 0) {
      data.Append(block.get(), static_cast<unsigned long>(count));
    } else if (errno != EINTR) {
      ThrowSystemFailure(name, errno);
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

/// The file that a temporary one can replace: behind symbolic links; nothing for what is no regular file.
std::string Replaceable(std::string const& path) {
  std::error_code error;
  fs::path const target = fs::canonical(path, error);
  if (error) return fs::is_symlink(fs::symlink_status(path, error)) ? "" : path;
  return fs::is_regular_file(target, error) ? target.string() : "";
}

/// The access rights of the file \p target or, if there is none, those of a new file.
mode_t ModeFor(std::string const& target) {
  struct stat status {};
  if (::stat(target.c_str(), &status) == 0) return status.st_mode & 0777;
  mode_t const mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

/// A new file beside \p target, which is gone at the end unless it has taken the place of \p target.
class TemporaryFile {
 public:
  TemporaryFile(std::string const& target, std::string const& name)
      : m_target(target), m_name(name), m_path(target + ".XXXXXX"), m_descriptor(::mkstemp(m_path.data())) {
    if (m_descriptor.Get() == -1) ThrowSystemFailure(name, errno);
  }
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  ~TemporaryFile() {
    if (!m_path.empty()) ::unlink(m_path.c_str());
  }

  void Write(std::string_view bytes) {
    WriteAll(m_descriptor.Get(), bytes, m_name);
    if (::fchmod(m_descriptor.Get(), ModeFor(m_target)) != 0) ThrowSystemFailure(m_name, errno);
    if (::fsync(m_descriptor.Get()) != 0) ThrowSystemFailure(m_name, errno);
    if (!m_descriptor.Close()) ThrowSystemFailure(m_name, errno);
    if (::rename(m_path.c_str(), m_target.c_str()) != 0) ThrowSystemFailure(m_name, errno);
    m_path.clear();
  }

 private:
  std::string m_target;
  std::string m_name;
  std::string m_path;
  Descriptor m_descriptor;
};

}  // namespace

CBinaryData ReadInput(std::string const& path) {
  std::string const name = InputName(path);
  return Named(name, [&] {
    if (path == "-") return Decompressed(ReadAll(STDIN_FILENO, name));
    Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Get() == -1) ThrowSystemFailure(name, errno);
    return Decompressed(ReadAll(file.Get(), name));
  });
}

void WriteOutput(std::string const& path, std::string_view bytes) {
  std::string const name = OutputName(path);
  if (path == "-") return WriteAll(STDOUT_FILENO, bytes, name);
  std::string const target = Replaceable(path);
  if (!target.empty()) {
    if (::access(target.c_str(), W_OK) != 0 && errno != ENOENT) ThrowSystemFailure(name, errno);
    return TemporaryFile(target, name).Write(bytes);
  }
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (file.Get() == -1) ThrowSystemFailure(name, errno);
  WriteAll(file.Get(), bytes, name);
  if (!file.Close()) ThrowSystemFailure(name, errno);
}

std::string_view View(CBinaryData const& data) {
  return {reinterpret_cast<char const*>(data.GetData()), data.GetLength()};
}

void Console::Write(std::string_view text) {
  m_buffer += text;
  if (m_buffer.size() >= kBlock) Finish();
}

void Console::Finish() {
  WriteAll(STDOUT_FILENO, m_buffer, OutputName("-"));
  m_buffer.clear();
}

}  // namespace Quillon9Tool
