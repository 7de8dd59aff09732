#include "quillon9/xmlio/compression.h"

#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/values/binary_data.h"
#include "xmlio/compressed_header.h"
#include "xmlio/deflate.h"

namespace Quillon9 {

namespace {

using Buffer = std::unique_ptr<unsigned char[]>;

constexpr int kDetectWindowBits = MAX_WBITS + 32;  // gzip or zlib, whichever the header says
constexpr std::size_t kBlockSize = 0x10000;

bool Compresses(CompressionType type) { return type == CompressionType_GZip || type == CompressionType_ZLib; }

uInt CheckedSize(unsigned long size) {
  if (size > 0xFFFFFFFFUL) throw CQnException(FormatString("The data is too long [%lu bytes]", size));
  return static_cast<uInt>(size);
}

[[noreturn]] void ThrowCompressFailure(int code) {
  throw CQnException(FormatString("Failed to compress data. [Error Code: %d]", code));
}

/// A zlib stream. The two kinds differ in the function that ends them.
template <int (*End)(z_streamp)>
class ZStream {
 public:
  ZStream() = default;
  ZStream(ZStream const&) = delete;
  ZStream& operator=(ZStream const&) = delete;
  ~ZStream() { End(&m_stream); }  // harmless for a stream that was not initialised

  z_stream* Get() { return &m_stream; }
  z_stream* operator->() { return &m_stream; }

 private:
  z_stream m_stream{};
};

/// Collects inflated bytes block by block, so that the output is copied once, when its size is known.
class Collector {
 public:
  /// Return room for the next bytes, at most kBlockSize of them.
  unsigned char* OpenBlock() {
    if (m_length == m_blocks.size() * kBlockSize) m_blocks.push_back(Buffer(new unsigned char[kBlockSize]));
    return m_blocks.back().get() + m_length % kBlockSize;
  }
  std::size_t RoomInBlock() const { return kBlockSize - m_length % kBlockSize; }

  void Add(std::size_t length) {
    m_length += length;
    std::uint32_t const limit = CLimits::GetMaxDecompressedSize();
    if (m_length > limit) {
      throw OfKind(FailureKind_Limit,
                   CQnException(FormatString("The decompressed data exceeds the limit of %u bytes", limit)));
    }
  }

  std::size_t GetLength() const { return m_length; }

  /// Return all bytes in one array. Each block is freed as soon as it has been copied.
  Buffer Join() {
    Buffer joined(new unsigned char[m_length]);
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
      std::size_t const begin = i * kBlockSize;
      std::memcpy(joined.get() + begin, m_blocks[i].get(), std::min(kBlockSize, m_length - begin));
      m_blocks[i].reset();
    }
    return joined;
  }

 private:
  std::vector<Buffer> m_blocks;
  std::size_t m_length = 0;
};

/// Inflate \p data and return whether it was a complete stream.
bool Inflate(unsigned char* data, unsigned long size, Collector& collector) {
  ZStream<inflateEnd> stream;
  stream->next_in = data;
  stream->avail_in = CheckedSize(size);
  int result = inflateInit2(stream.Get(), kDetectWindowBits);
  while (result == Z_OK) {
    std::size_t const room = collector.RoomInBlock();
    stream->next_out = collector.OpenBlock();
    stream->avail_out = static_cast<uInt>(room);
    result = inflate(stream.Get(), Z_NO_FLUSH);
    if (result == Z_OK || result == Z_STREAM_END) collector.Add(room - stream->avail_out);
  }
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  return result == Z_STREAM_END;
}

}  // namespace

CQnZip::~CQnZip() = default;

void CQnZip::CompressData(CBinaryData& data, CompressionType type) {
  if (data.GetLength() == 0 || !Compresses(type)) return;
  unsigned long size = data.GetLength();
  Buffer buffer(data.ReleaseData());
  unsigned char* compressed = buffer.get();
  Compress(&compressed, &size, type);
  static_cast<void>(buffer.release());  // Compress() has deleted it
  data = CBinaryData(compressed, size, true);
}

void CQnZip::Compress(unsigned char** data, unsigned long* size, CompressionType type) {
  if (!Compresses(type)) return;
  ZStream<deflateEnd> stream;
  stream->next_in = *data;
  stream->avail_in = stream->avail_out = CheckedSize(*size);
  Buffer output(new unsigned char[*size]);
  stream->next_out = output.get();
  int result = InitDeflate(stream.Get(), type);
  if (result != Z_OK) ThrowCompressFailure(result);
  deflate(stream.Get(), Z_NO_FLUSH);
  result = deflate(stream.Get(), Z_FINISH);
  if (result != Z_STREAM_END) ThrowCompressFailure(result);
  delete[] * data;
  *data = output.release();
  *size = stream->total_out;
}

void CQnZip::Decompress(unsigned char** data, unsigned long* size) {
  if (!HasCompressedHeader(*data, *size)) return;
  Collector collector;
  if (!Inflate(*data, *size, collector)) return;
  Buffer inflated = collector.Join();
  delete[] * data;
  *data = inflated.release();
  *size = collector.GetLength();
}

}  // namespace Quillon9
