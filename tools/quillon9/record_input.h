#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "quillon9/quillon9.h"
#include "xmlio/file_descriptor.h"

namespace Quillon9Tool {

/// A file, or standard input, that is read from its start to its end in pieces.
class RecordInput {
 public:
  /// Open the file \p path (`-` is standard input).
  /// \throws std::system_error
  explicit RecordInput(std::string const& path);

  /// The size of a regular file.
  std::optional<std::uint64_t> GetSize() const { return m_size; }
  /// Call \p function with the number of bytes so far before each piece is read, and with whether that may have to wait
  /// for the bytes.
  void SetMonitor(std::function<void(std::uint64_t read, bool waits)> function) { m_monitor = std::move(function); }
  int GetDescriptor() const { return m_descriptor; }
  /// The bytes, for one reader. This object is borrowed.
  Quillon9::CRecordSource Source();

 private:
  std::size_t Read(char* to, std::size_t size);
  bool HasBytes() const;

  Quillon9::CFileDescriptor m_file;
  int m_descriptor;
  std::optional<std::uint64_t> m_size;
  std::uint64_t m_read = 0;
  std::function<void(std::uint64_t, bool)> m_monitor;
};

}  // namespace Quillon9Tool
