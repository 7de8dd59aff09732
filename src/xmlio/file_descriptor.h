#pragma once

#include <string_view>

namespace Quillon9 {

/// \throws std::system_error with the value of errno.
[[noreturn]] void ThrowSystemError();

/// Owns the descriptor of an open file.
class CFileDescriptor {
 public:
  /// Take ownership of \p descriptor; -1 stands for none.
  explicit CFileDescriptor(int descriptor) : m_descriptor(descriptor) {}
  CFileDescriptor(CFileDescriptor const&) = delete;
  CFileDescriptor& operator=(CFileDescriptor const&) = delete;
  /// Close the file if it is open. A failure is ignored.
  ~CFileDescriptor();

  int Get() const { return m_descriptor; }
  bool IsOpen() const { return m_descriptor != -1; }

  /// Write all of \p bytes.
  /// \throws std::system_error
  void Write(std::string_view bytes) const;
  /// Wait until the contents are on the disk.
  /// \throws std::system_error
  void Sync() const;
  /// Close the file, which must be open. Network file systems report only here that the disk is full.
  /// \throws std::system_error; the file is closed in that case, too.
  void Close();

 private:
  int m_descriptor;
};

/// Write all of \p bytes to the open file \p descriptor.
/// \throws std::system_error
void WriteAll(int descriptor, std::string_view bytes);

}  // namespace Quillon9
