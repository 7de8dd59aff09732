#include "xmlio/file_descriptor.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

namespace Quillon9 {

void ThrowSystemError() { throw std::system_error(errno, std::generic_category()); }

CFileDescriptor::~CFileDescriptor() {
  if (IsOpen()) ::close(m_descriptor);
}

void CFileDescriptor::Write(std::string_view bytes) const { WriteAll(m_descriptor, bytes); }

void CFileDescriptor::Sync() const {
  if (::fsync(m_descriptor) != 0) ThrowSystemError();
}

void CFileDescriptor::Close() {
  if (::close(std::exchange(m_descriptor, -1)) != 0) ThrowSystemError();
}

void WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t const count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) errno = EIO;  // a device that accepts nothing would keep the loop running forever
    if (count <= 0) ThrowSystemError();
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace Quillon9
