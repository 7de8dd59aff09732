#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/xmlio/compression.h"

namespace {

using namespace Quillon9;
using Fuzzing::Require;

constexpr std::uint32_t kLimits[] = {0, 1, 1000, 1u << 20};
enum Options : unsigned { kLimitMask = 3, kCompressFirst = 4, kZlib = 8 };

/// A buffer in the form that CQnZip takes.
struct Buffer {
  explicit Buffer(std::string const& bytes) : data(new unsigned char[bytes.size() + 1]), size(bytes.size()) {
    std::memcpy(data, bytes.data(), bytes.size());
  }
  ~Buffer() { delete[] data; }
  Buffer(Buffer const&) = delete;
  Buffer& operator=(Buffer const&) = delete;
  std::string Bytes() const { return std::string(reinterpret_cast<char const*>(data), size); }

  unsigned char* data;
  unsigned long size;
};

/// The result of zlib for \p bytes: whether they begin with a whole stream, and its first \p limit bytes and one more.
bool Inflated(std::string& bytes, std::size_t limit, std::string& result) {
  z_stream stream = {};
  if (inflateInit2(&stream, 15 + 32) != Z_OK) return false;
  result.assign(limit + 1, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(&bytes[0]);
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(&result[0]);
  stream.avail_out = static_cast<uInt>(result.size());
  int const code = inflate(&stream, Z_FINISH);
  result.resize(stream.total_out);
  inflateEnd(&stream);
  return code == Z_STREAM_END;
}

void Decompress(std::string bytes, std::uint32_t limit) {
  CLimits::SetMaxDecompressedSize(limit);
  Buffer buffer(bytes);
  std::string expected;
  bool const isWhole = Inflated(bytes, limit, expected);
  bool const isTooLong = expected.size() > limit;
  try {
    CQnZip::Decompress(&buffer.data, &buffer.size);
  } catch (CQnException const&) {
    Require(isTooLong, "no failure but that of the limit");
    Require(buffer.Bytes() == bytes, "a failure leaves the buffer");
    return;
  }
  if (isWhole && !isTooLong) {
    Require(buffer.Bytes() == expected, "a whole stream is inflated");
  } else {
    Require(buffer.Bytes() == bytes, "a failure leaves the buffer unchanged");
  }
}

void CompressAndBack(std::string const& bytes, CompressionType type) {
  CLimits::SetMaxDecompressedSize(1u << 24);
  Buffer buffer(bytes);
  try {
    CQnZip::Compress(&buffer.data, &buffer.size, type);
  } catch (CQnException const&) {
    Require(buffer.Bytes() == bytes, "a failure leaves the buffer");
    return;
  }
  Require(buffer.size <= bytes.size(), "compressing makes nothing longer");
  if (bytes.empty()) return;
  CQnZip::Decompress(&buffer.data, &buffer.size);
  Require(buffer.Bytes() == bytes, "what was compressed comes back");
}

}  // namespace

/// Inflating agrees with zlib, up to the limit and no further; compressed bytes are restored.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  unsigned const options = input.Options();
  if ((options & kCompressFirst) != 0) {
    CompressAndBack(input.Rest(), (options & kZlib) != 0 ? CompressionType_ZLib : CompressionType_GZip);
  } else {
    Decompress(input.Rest(), kLimits[options & kLimitMask]);
  }
  return 0;
}
