#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>
#include <string>

#include "quillon9/base/limits.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/compression.h"
#include "quillon9/xmlio/document.h"
#include "support/expect_failure.h"
#include "support/octets.h"

namespace Quillon9 {
namespace {

constexpr CompressionType kTypes[] = {CompressionType_GZip, CompressionType_ZLib};

/// A buffer as the operations require it.
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
    damaged[bytes.size() - 3] ^= 0x10;  // in the checksum of either format
    EXPECT_TRUE(damaged == Decompressed(damaged));
    EXPECT_TRUE("\xFF\xFE" + bytes == Decompressed("\xFF\xFE" + bytes));
  }
}

TEST(Compression, EveryFlippedBitAndEveryCutGivesTheTextOrNothing) {
  std::string const text = Repetitive(500);
  for (CompressionType type : kTypes) {
    std::string const bytes = Compressed(text, type);
    int texts = 0;
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
      std::string damaged = bytes;
      damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
      std::string const result = Decompressed(damaged);
      EXPECT_TRUE(result == damaged || result == text) << bit;
      texts += result == text ? 1 : 0;
    }
    // gzip's header has 7 octets that nothing depends on: a bit that marks text, the time, the effort, the system.
    EXPECT_EQ(type == CompressionType_GZip ? 1 + 6 * 8 : 0, texts);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_EQ(bytes.substr(0, length), Decompressed(bytes.substr(0, length)));
    }
  }
}

TEST(Compression, OtherFormsOfStreams) {
  std::string const gzip = Compressed(Repetitive(500), CompressionType_GZip);
  std::string const zlib = Compressed(Repetitive(500), CompressionType_ZLib);
  EXPECT_EQ(Repetitive(500), Decompressed(gzip + gzip)) << "the first member alone";
  std::string const raw = zlib.substr(2, zlib.size() - 6);
  EXPECT_EQ(raw, Decompressed(raw));
  // Compressed nothing inflates to nothing, which no parser accepts.
  for (char const* empty : {"1F8B0800000000000003 0300 0000000000000000", "7801 0300 00000001"}) {
    std::string const bytes = Testing::Octets(empty);
    EXPECT_EQ("", Decompressed(bytes));
    CXmlDocument document;
    EXPECT_FAILURE(CQnException, "no element found at line 1",
                   document.LoadXmlStream(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size()));
  }
  std::string dictionary =
      Testing::Octets("78BB 11E60398") + zlib.substr(2);  // header and check of a preset dictionary
  EXPECT_EQ(dictionary, Decompressed(dictionary));
}

TEST(Compression, DataOfMoreThan32BitsIsRefusedUnread) {
  unsigned char header[2] = {0x1F, 0x8B};
  unsigned char* data = header;
  unsigned long size = 0x100000000UL;
  EXPECT_FAILURE(CQnException, "The data is too long [4294967296 bytes]", CQnZip::Decompress(&data, &size));
  EXPECT_FAILURE(CQnException, "The data is too long [4294967296 bytes]",
                 CQnZip::Compress(&data, &size, CompressionType_GZip));
}

// The check of the header must agree with zlib itself, whatever the first two bytes are.
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
