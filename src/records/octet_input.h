#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace Quillon9 {

/// Delivers octets in order, any number of them.
class OctetInput {
 public:
  virtual ~OctetInput();
  /// Put one to \p size octets at \p to and return their number; 0 at the end. \p size is not 0.
  /// \throws CQnException where they come from a file that cannot be read; what a function of the caller throws.
  virtual std::size_t Read(char* to, std::size_t size) = 0;
  /// Go to \p offset, counted from where the input began; false if it cannot. Nothing has been read.
  virtual bool Seek(std::uint64_t offset);
};

/// The octets of an open file, from its present position on. Owns \p descriptor if \p owns is true. \p path names it in
/// failures.
std::unique_ptr<OctetInput> InputOfDescriptor(int descriptor, bool owns, std::string path);
/// The octets of the file \p path.
/// \throws CQnException "Failed to open the file [%s]".
std::unique_ptr<OctetInput> InputOfFile(std::string const& path);
/// Octets in memory, which are borrowed.
std::unique_ptr<OctetInput> InputOfMemory(void const* data, std::size_t size);
/// Octets that \p function puts at its first argument, up to its second one, until it returns 0.
std::unique_ptr<OctetInput> InputOfFunction(std::function<std::size_t(char*, std::size_t)> function);

/// An input without compression.
struct PlainInput {
  std::unique_ptr<OctetInput> input;  ///< after decompression
  bool isCompressed = false;
};

/// What \p input delivers, after decompression if it begins as gzip or zlib data. Members of gzip data may follow one
/// another.
PlainInput Decompressed(std::unique_ptr<OctetInput> input);

/// An input that can be looked at before it is read.
class PeekedInput final : public OctetInput {
 public:
  explicit PeekedInput(std::unique_ptr<OctetInput> input) : m_input(std::move(input)) {}

  std::size_t Read(char* to, std::size_t size) override;
  /// The first octets, up to \p size of them, which stay to be read. Fewer only where the input has no more.
  std::string const& Peek(std::size_t size);

 private:
  std::unique_ptr<OctetInput> m_input;
  std::string m_start;
  std::size_t m_read = 0;  // of these
};

}  // namespace Quillon9
