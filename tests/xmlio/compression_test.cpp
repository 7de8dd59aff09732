#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>
#include <string>

#include "quillon9/binding/limits.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/compression.h"
#include "support/expect_failure.h"

namespace Quillon9 {
namespace {

constexpr CompressionType kTypes[] = {CompressionType_GZip, CompressionType_ZLib};

/// A buffer as the operations want it.
class Buffer {
 public:
  explicit Buffer(std::string const& text) : m_data(new unsigned char[text.size()]), m_size(text.size()) {
    std::memcpy(m_data, text.data(), text.size());
  }
  Buffer(Buffer const&) = delete;
  Buffer& operator=(Buffer const&) = delete;
  ~Buffer() { delete[] m_data; }

  std::string Text() const { return std::string(m_data, m_data + m_size); }
  void Compress(CompressionType type) { CQnZip::Compress(&m_data, &m_size, type); }
  void Decompress() { CQnZip::Decompress(&m_data, &m_size); }

 private:
  unsigned char* m_data;
  unsigned long m_size;
};

std::string Repetitive(std::size_t size) {
  std::string text;
  for (int i = 0; text.size() < size; ++i) text += "<item number=\"" + std::to_string(i) + "\">text</item>\n";
  text.resize(size);
  return text;
}

std::string Compressed(std::string const& text, CompressionType type) {
  Buffer buffer(text);
  buffer.Compress(type);
  return buffer.Text();
}

std::string Decompressed(std::string const& bytes) {
  Buffer buffer(bytes);
  buffer.Decompress();
  return buffer.Text();
}

TEST(Compression, RoundTripsAroundTheBlockSize) {
  for (std::size_t size : {200UL, 0xFFFFUL, 0x10000UL, 0x10001UL, 0x20000UL, 1000000UL}) {
    for (CompressionType type : kTypes) {
      std::string const text = Repetitive(size);
      std::string const bytes = Compressed(text, type);
      EXPECT_LT(bytes.size(), size);
      EXPECT_EQ(type == CompressionType_GZip ? "\x1F\x8B" : "\x78\x01", bytes.substr(0, 2));
      EXPECT_TRUE(text == Decompressed(bytes)) << size;
      EXPECT_TRUE(text == Decompressed(bytes + "what follows is dropped")) << size;
    }
  }
}

TEST(Compression, EmptyDataAndNoTypeChangeNothing) {
  CBinaryData data;
  for (CompressionType type : kTypes) CQnZip::CompressData(data, type);
  EXPECT_EQ(CBinaryData(), data);
  data = "<a/>";
  CQnZip::CompressData(data, CompressionType_None);
  EXPECT_EQ(CBinaryData("<a/>"), data);
  EXPECT_EQ("<a/>", Compressed("<a/>", static_cast<CompressionType>(3)));
}

TEST(Compression, WhatDoesNotShrinkFailsAndStaysInPlace) {
  std::string noise;
  for (unsigned value = 1; noise.size() < 5000; value = value * 1664525 + 1013904223) {
    noise += static_cast<char>(value >> 24);
  }
  for (CompressionType type : kTypes) {
    for (std::string const& text : {std::string(), std::string("<a/>"), noise}) {
      Buffer buffer(text);
      try {
        buffer.Compress(type);
        ADD_FAILURE() << "no failure for " << text.size() << " bytes";
      } catch (CQnException const& failure) {
        // 0 when zlib filled the buffer in its last call, -5 when the buffer was full before that.
        std::string const message = failure.GetFullMessage();
        EXPECT_EQ("Failed to compress data. [Error Code: ", message.substr(0, 38));
        EXPECT_TRUE(message.substr(38) == "0]" || message.substr(38) == "-5]") << message;
      }
      EXPECT_TRUE(text == buffer.Text());
    }
  }
}

TEST(Compression, CompressDataReplacesTheBytesOfOneValueOrLeavesNone) {
  CBinaryData data(Repetitive(5000).c_str());
  CBinaryData const shared = data;
  CQnZip::CompressData(data, CompressionType_GZip);
  EXPECT_EQ(Repetitive(5000), Decompressed(std::string(data.GetData(), data.GetData() + data.GetLength())));
  EXPECT_EQ(CBinaryData(Repetitive(5000).c_str()), shared);
  data = "<a/>";
  EXPECT_THROW(CQnZip::CompressData(data, CompressionType_GZip), CQnException);
  EXPECT_EQ(CBinaryData(), data);
}

TEST(Compression, WhatIsNoWholeStreamStaysAsItIs) {
  for (CompressionType type : kTypes) {
    std::string const bytes = Compressed(Repetitive(100000), type);
    for (std::size_t length = 0; length < bytes.size(); length += 1 + length / 8) {
      std::string const start = bytes.substr(0, length);
      EXPECT_TRUE(start == Decompressed(start)) << length;
    }
    std::string damaged = bytes;
    damaged[bytes.size() - 3] ^= 0x10;  // in the check of either kind
    EXPECT_TRUE(damaged == Decompressed(damaged));
    EXPECT_TRUE("\xFF\xFE" + bytes == Decompressed("\xFF\xFE" + bytes));
  }
}

// The look at the header must agree with zlib itself, whatever the first two bytes are.
TEST(Compression, StreamIsTakenWhenItsHeaderIsOneOfZlib) {
  std::string const bytes = Compressed(std::string(200, 'x'), CompressionType_ZLib);
  for (int header = 0; header < 0x10000; ++header) {
    std::string input = bytes;
    input[0] = static_cast<char>(header >> 8);
    input[1] = static_cast<char>(header);
    char output[200];
    uLongf size = sizeof output;
    auto const* source = reinterpret_cast<Bytef const*>(input.data());
    bool const isStream = uncompress(reinterpret_cast<Bytef*>(output), &size, source, input.size()) == Z_OK;
    ASSERT_EQ(isStream, Decompressed(input) != input) << header;
  }
}

TEST(Compression, OutputIsLimited) {
  std::uint32_t const before = CLimits::GetMaxDecompressedSize();
  std::string const bytes = Compressed(Repetitive(100000), CompressionType_GZip);
  CLimits::SetMaxDecompressedSize(100000);
  EXPECT_EQ(100000U, Decompressed(bytes).size());
  CLimits::SetMaxDecompressedSize(99999);
  Buffer buffer(bytes);
  EXPECT_FAILURE(CQnException, "The decompressed data exceeds the limit of 99999 bytes", buffer.Decompress());
  EXPECT_EQ(bytes, buffer.Text());
  CLimits::SetMaxDecompressedSize(before);
}

}  // namespace
}  // namespace Quillon9
