#include "records/octet_output.h"

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <climits>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

#include "quillon9/base/exceptions.h"
#include "xmlio/deflate.h"
#include "xmlio/file_descriptor.h"
#include "xmlio/file_replacement.h"

namespace Quillon9 {

OctetOutput::~OctetOutput() = default;

void OctetOutput::Flush() {}

void OctetOutput::Finish() {}

namespace {

/// Do \p action for the file \p path.
/// \throws CQnException where the system refuses it.
template <class Action>
auto OnFile(std::string const& path, Action action) {
  try {
    return action();
  } catch (std::system_error const&) {
    throw CQnException(FormatString("Failed to write data to the file [%s]", path.c_str()));
  }
}

class FileOutput final : public OctetOutput {
 public:
  explicit FileOutput(std::string path) : m_path(std::move(path)) {
    OnFile(m_path, [this] {
      m_file = std::make_unique<CFileReplacement>(m_path);
      m_file->Begin();
    });
  }

  void Write(std::string_view octets) override {
    OnFile(m_path, [&] { m_file->Add(octets); });
  }
  void Finish() override {
    OnFile(m_path, [this] { m_file->Finish(CFileReplacement::Sync::No); });
  }

 private:
  std::string m_path;
  std::unique_ptr<CFileReplacement> m_file;
};

int OpenEnd(std::string const& path) {
  int const descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666);
  if (descriptor == -1) ThrowSystemError();
  return descriptor;
}

class EndOfFileOutput final : public OctetOutput {
 public:
  explicit EndOfFileOutput(std::string path)
      : m_path(std::move(path)), m_file(OnFile(m_path, [this] { return OpenEnd(m_path); })) {}

  void Write(std::string_view octets) override {
    OnFile(m_path, [&] { m_file.Write(octets); });
  }
  void Finish() override {
    OnFile(m_path, [this] { m_file.Close(); });
  }

 private:
  std::string m_path;
  CFileDescriptor m_file;
};

class DescriptorOutput final : public OctetOutput {
 public:
  explicit DescriptorOutput(int descriptor) : m_descriptor(descriptor) {}

  void Write(std::string_view octets) override {
    OnFile("descriptor " + std::to_string(m_descriptor), [&] { WriteAll(m_descriptor, octets); });
  }

 private:
  int m_descriptor;
};

class TextOutput final : public OctetOutput {
 public:
  explicit TextOutput(std::string& target) : m_target(target) {}

  void Write(std::string_view octets) override { m_octets += octets; }
  void Finish() override { m_target = std::move(m_octets); }

 private:
  std::string& m_target;
  std::string m_octets;
};

class BinaryOutput final : public OctetOutput {
 public:
  explicit BinaryOutput(CBinaryData& target) : m_target(target) {}

  void Write(std::string_view octets) override {
    m_octets.Append(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
  }
  void Finish() override { m_target = std::move(m_octets); }

 private:
  CBinaryData& m_target;
  CBinaryData m_octets;
};

class FunctionOutput final : public OctetOutput {
 public:
  explicit FunctionOutput(std::function<void(char const*, std::size_t)> function) : m_function(std::move(function)) {}

  void Write(std::string_view octets) override { m_function(octets.data(), octets.size()); }

 private:
  std::function<void(char const*, std::size_t)> m_function;
};

class DeflatingOutput final : public OctetOutput {
 public:
  DeflatingOutput(std::unique_ptr<OctetOutput> output, CompressionType type)
      : m_output(std::move(output)), m_block(kBlock) {
    if (InitDeflate(&m_stream, type) != Z_OK) throw std::bad_alloc();
  }
  DeflatingOutput(DeflatingOutput const&) = delete;
  DeflatingOutput& operator=(DeflatingOutput const&) = delete;
  ~DeflatingOutput() override { deflateEnd(&m_stream); }

  void Write(std::string_view octets) override {
    while (!octets.empty()) {
      std::string_view const piece = octets.substr(0, UINT_MAX);
      m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
      m_stream.avail_in = static_cast<uInt>(piece.size());
      Deflate(Z_NO_FLUSH);
      octets.remove_prefix(piece.size());
    }
  }
  void Flush() override {
    Deflate(Z_SYNC_FLUSH);
    m_output->Flush();
  }
  void Finish() override {
    Deflate(Z_FINISH);
    m_output->Finish();
  }

 private:
  static constexpr std::size_t kBlock = 0x10000;

  /// Let the stream take all its input, and pass on what it gives in full blocks, or completely unless \p flush is
  /// Z_NO_FLUSH.
  void Deflate(int flush) {
    for (bool hasMore = true; hasMore;) {
      m_stream.next_out = reinterpret_cast<Bytef*>(m_block.data() + m_held);
      m_stream.avail_out = static_cast<uInt>(kBlock - m_held);
      deflate(&m_stream, flush);  // cannot fail: the stream is valid, and there is room
      m_held = kBlock - m_stream.avail_out;
      hasMore = m_stream.avail_out == 0;
      if (hasMore || flush != Z_NO_FLUSH) Send();
    }
  }
  void Send() {
    if (m_held != 0) m_output->Write({m_block.data(), std::exchange(m_held, 0)});
  }

  std::unique_ptr<OctetOutput> m_output;
  std::vector<char> m_block;
  std::size_t m_held = 0;  // octets in the block
  z_stream m_stream{};
};

}  // namespace

std::unique_ptr<OctetOutput> OutputToFile(std::string const& path) { return std::make_unique<FileOutput>(path); }

std::unique_ptr<OctetOutput> OutputToEndOfFile(std::string const& path) {
  return std::make_unique<EndOfFileOutput>(path);
}

std::unique_ptr<OctetOutput> OutputToDescriptor(int descriptor) {
  return std::make_unique<DescriptorOutput>(descriptor);
}

std::unique_ptr<OctetOutput> OutputToMemory(std::string& target) { return std::make_unique<TextOutput>(target); }

std::unique_ptr<OctetOutput> OutputToMemory(CBinaryData& target) { return std::make_unique<BinaryOutput>(target); }

std::unique_ptr<OctetOutput> OutputToFunction(std::function<void(char const*, std::size_t)> function) {
  return std::make_unique<FunctionOutput>(std::move(function));
}

std::unique_ptr<OctetOutput> Compressed(std::unique_ptr<OctetOutput> output, CompressionType type) {
  if (type != CompressionType_GZip && type != CompressionType_ZLib) return output;
  return std::make_unique<DeflatingOutput>(std::move(output), type);
}

}  // namespace Quillon9
