#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "quillon9/export.h"
#include "quillon9/values/binary_data.h"

namespace Quillon9 {

class OctetOutput;

/// Where a document of any length goes to. It is written once, from its start to its end, in pieces of about 64 KiB.
class QUILLON9_API CRecordTarget {
 public:
  /// Takes as many bytes as its second argument says, at its first one. What it throws ends the writer and reaches its
  /// caller.
  using Function = std::function<void(char const*, std::size_t)>;

  /// The file \p path. It appears or changes only when the document is complete; until then the bytes are in a
  /// temporary file in the same folder, which is removed if they do not become complete. The new file gets the owner,
  /// group and rights of the old one. Pipes, devices, and files that the system does not allow to be replaced are
  /// written directly.
  /// \throws CQnException "Failed to write data to the file [%s]" if the file cannot be created or may not be written.
  ///@{
  CRecordTarget(char const* path);
  CRecordTarget(std::string const& path) : CRecordTarget(path.c_str()) {}
  ///@}
  /// A function that sends the bytes on: to a socket, for example.
  CRecordTarget(Function function);
  /// Take over what \p other is; it can only be destroyed or assigned to after that.
  CRecordTarget(CRecordTarget&& other) noexcept;
  /// As the constructor.
  CRecordTarget& operator=(CRecordTarget&& other) noexcept;
  ~CRecordTarget();

  /// The end of the file \p path, which is created where it is missing, for a log of records. See CXmlRecordWriter for
  /// what is written. Where a write fails, as on a full disk, the file may end inside of a record.
  /// \throws CQnException as for a file.
  static CRecordTarget EndOfFile(std::string const& path);
  /// An open file or pipe, such as descriptor 1 for the standard output. The descriptor stays open. A pipe whose reader
  /// has gone raises the signal SIGPIPE; where the program ignores that, it is a failure.
  static CRecordTarget Descriptor(int descriptor);
  /// \p bytes, which is borrowed, and replaced when the document is complete.
  ///@{
  static CRecordTarget Memory(std::string& bytes);
  static CRecordTarget Memory(CBinaryData& bytes);
  ///@}

 private:
  friend class CXmlRecordWriter;
  explicit CRecordTarget(std::unique_ptr<OctetOutput> output);

  std::unique_ptr<OctetOutput> m_output;
  bool m_isAppended = false;
};

}  // namespace Quillon9
