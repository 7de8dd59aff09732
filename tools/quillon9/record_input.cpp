#include "record_input.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Quillon9Tool {

namespace {

int OpenToRead(std::string const& path) {
  if (path == "-") return -1;
  int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor == -1) Quillon9::ThrowSystemError();
  return descriptor;
}

std::optional<std::uint64_t> SizeOf(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace

RecordInput::RecordInput(std::string const& path)
    : m_file(OpenToRead(path)),
      m_descriptor(m_file.IsOpen() ? m_file.Get() : STDIN_FILENO),
      m_size(SizeOf(m_descriptor)) {}

Quillon9::CRecordSource RecordInput::Source() {
  return Quillon9::CRecordSource([this](char* to, std::size_t size) { return Read(to, size); });
}

std::size_t RecordInput::Read(char* to, std::size_t size) {
  if (m_monitor) m_monitor(m_read, !m_size && !HasBytes());
  for (;;) {
    ssize_t const count = ::read(m_descriptor, to, size);
    if (count >= 0) {
      m_read += static_cast<std::uint64_t>(count);
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR) Quillon9::ThrowSystemError();
  }
}

bool RecordInput::HasBytes() const {
  pollfd at{m_descriptor, POLLIN, 0};
  return ::poll(&at, 1, 0) != 0;
}

}  // namespace Quillon9Tool
