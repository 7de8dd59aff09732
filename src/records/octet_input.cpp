#include "records/octet_input.h"

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "xmlio/compressed_header.h"

namespace Quillon9 {

OctetInput::~OctetInput() = default;

bool OctetInput::Seek(std::uint64_t) { return false; }

namespace {

[[noreturn]] void ThrowUnreadable(std::string const& path, int error) {
  throw OfKind(FailureKind_Input, CQnException(FormatString("Failed to read the contents of the file [%s] Error [%s]",
                                                            path.c_str(), std::strerror(error))));
}

class DescriptorInput final : public OctetInput {
 public:
  DescriptorInput(int descriptor, bool owns, std::string path)
      : m_descriptor(descriptor), m_owns(owns), m_path(std::move(path)) {}
  DescriptorInput(DescriptorInput const&) = delete;
  DescriptorInput& operator=(DescriptorInput const&) = delete;
  ~DescriptorInput() override {
    if (m_owns) close(m_descriptor);
  }

  std::size_t Read(char* to, std::size_t size) override {
    for (;;) {
      ssize_t const count = read(m_descriptor, to, size);
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) ThrowUnreadable(m_path, errno);
    }
  }
  bool Seek(std::uint64_t offset) override {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) return false;
    return lseek(m_descriptor, static_cast<off_t>(offset), SEEK_CUR) != -1;
  }

 private:
  int m_descriptor;
  bool m_owns;
  std::string m_path;
};

class MemoryInput final : public OctetInput {
 public:
  MemoryInput(void const* data, std::size_t size) : m_at(static_cast<char const*>(data)), m_left(size) {}

  std::size_t Read(char* to, std::size_t size) override {
    std::size_t const count = std::min(size, m_left);
    std::copy_n(m_at, count, to);
    m_at += count;
    m_left -= count;
    return count;
  }
  bool Seek(std::uint64_t offset) override {
    if (offset > m_left) return false;
    m_at += offset;
    m_left -= static_cast<std::size_t>(offset);
    return true;
  }

 private:
  char const* m_at;
  std::size_t m_left;
};

class FunctionInput final : public OctetInput {
 public:
  explicit FunctionInput(std::function<std::size_t(char*, std::size_t)> function) : m_function(std::move(function)) {}

  std::size_t Read(char* to, std::size_t size) override {
    std::size_t const count = m_function(to, size);
    if (count > size) throw CQnInvalidParamException("The function has delivered more bytes than it was asked for");
    return count;
  }

 private:
  std::function<std::size_t(char*, std::size_t)> m_function;
};

[[noreturn]] void ThrowBadCompression() {
  throw OfKind(FailureKind_Input, CQnException("The compressed data is damaged or incomplete"));
}

class InflatingInput final : public OctetInput {
 public:
  explicit InflatingInput(std::unique_ptr<OctetInput> input) : m_input(std::move(input)), m_block(kBlock) {
    constexpr int kDetectWindowBits = MAX_WBITS + 32;  // gzip or zlib, whichever the header says
    if (inflateInit2(&m_stream, kDetectWindowBits) != Z_OK) throw std::bad_alloc();
  }
  InflatingInput(InflatingInput const&) = delete;
  InflatingInput& operator=(InflatingInput const&) = delete;
  ~InflatingInput() override { inflateEnd(&m_stream); }

  std::size_t Read(char* to, std::size_t size) override {
    std::size_t const wanted = std::min(size, kBlock * 16);
    m_stream.next_out = reinterpret_cast<Bytef*>(to);
    m_stream.avail_out = static_cast<uInt>(wanted);
    while (m_stream.avail_out == wanted) {
      if (m_stream.avail_in == 0 && !Fill()) {
        if (m_isInside) ThrowBadCompression();
        return 0;
      }
      if (!Inflate()) return 0;
    }
    return wanted - m_stream.avail_out;
  }

 private:
  static constexpr std::size_t kBlock = 0x10000;

  bool Fill() {
    m_stream.avail_in = static_cast<uInt>(m_input->Read(m_block.data(), m_block.size()));
    m_stream.next_in = reinterpret_cast<Bytef*>(m_block.data());
    return m_stream.avail_in != 0;
  }

  /// False at the end: octets that follow compressed data and are none themselves are ignored.
  bool Inflate() {
    m_isInside = true;
    int const result = inflate(&m_stream, Z_NO_FLUSH);
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    if (result == Z_STREAM_END) {
      m_isInside = false;
      m_hasEnded = true;
      inflateReset(&m_stream);
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      if (!m_hasEnded || m_stream.total_out != 0) ThrowBadCompression();
      m_isInside = false;
      return false;
    }
    return true;
  }

  std::unique_ptr<OctetInput> m_input;
  std::vector<char> m_block;
  z_stream m_stream{};
  bool m_isInside = true;   // of a stream that has not ended
  bool m_hasEnded = false;  // a first one has
};

}  // namespace

std::unique_ptr<OctetInput> InputOfDescriptor(int descriptor, bool owns, std::string path) {
  return std::make_unique<DescriptorInput>(descriptor, owns, std::move(path));
}

std::unique_ptr<OctetInput> InputOfFile(std::string const& path) {
  int const descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor == -1) {
    throw OfKind(FailureKind_Input, CQnException(FormatString("Failed to open the file [%s]", path.c_str())));
  }
  return std::make_unique<DescriptorInput>(descriptor, true, path);
}

std::unique_ptr<OctetInput> InputOfMemory(void const* data, std::size_t size) {
  return std::make_unique<MemoryInput>(data, size);
}

std::unique_ptr<OctetInput> InputOfFunction(std::function<std::size_t(char*, std::size_t)> function) {
  return std::make_unique<FunctionInput>(std::move(function));
}

PlainInput Decompressed(std::unique_ptr<OctetInput> input) {
  auto peeked = std::make_unique<PeekedInput>(std::move(input));
  std::string const& start = peeked->Peek(2);
  if (!HasCompressedHeader(reinterpret_cast<unsigned char const*>(start.data()), start.size()))
    return {std::move(peeked), false};
  return {std::make_unique<InflatingInput>(std::move(peeked)), true};
}

std::string const& PeekedInput::Peek(std::size_t size) {
  while (m_start.size() < size) {
    std::size_t const before = m_start.size();
    m_start.resize(size);
    std::size_t const count = m_input->Read(m_start.data() + before, size - before);
    m_start.resize(before + count);
    if (count == 0) break;
  }
  return m_start;
}

std::size_t PeekedInput::Read(char* to, std::size_t size) {
  if (m_read == m_start.size()) return m_input->Read(to, size);
  std::size_t const count = std::min(size, m_start.size() - m_read);
  std::copy_n(m_start.data() + m_read, count, to);
  m_read += count;
  return count;
}

}  // namespace Quillon9
