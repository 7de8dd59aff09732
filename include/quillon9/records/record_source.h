#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "quillon9/binding/object_base.h"
#include "quillon9/export.h"
#include "quillon9/values/binary_data.h"

namespace Quillon9 {

class OctetInput;

/// Where a document of any length comes from. It is read once, from its start to its end, in pieces. It may be
/// compressed with gzip or zlib.
class QUILLON9_API CRecordSource {
 public:
  /// Puts at most as many bytes as its second argument says at its first one, and returns their number; 0 at the end.
  /// What it throws ends the read and reaches the caller of the reader.
  using Function = std::function<std::size_t(char*, std::size_t)>;

  /// The file \p path; also a pipe or a device.
  /// \throws CQnException "Failed to open the file [%s]".
  ///@{
  CRecordSource(char const* path);
  CRecordSource(std::string const& path) : CRecordSource(path.c_str()) {}
  ///@}
  /// The bytes that \p function delivers: from a socket, for example.
  CRecordSource(Function function);
  /// Bytes in memory.
  CRecordSource(CBinaryData const& bytes);
  /// Take over what \p other is; it can only be destroyed or assigned to after that.
  CRecordSource(CRecordSource&& other) noexcept;
  /// As the constructor.
  CRecordSource& operator=(CRecordSource&& other) noexcept;
  ~CRecordSource();

  /// \p size bytes in memory, which are borrowed until the read has ended.
  static CRecordSource Memory(void const* data, std::size_t size);
  /// What an open file or pipe has from its present position on, such as descriptor 0 for the standard input. The
  /// descriptor stays open.
  static CRecordSource Descriptor(int descriptor);

  /// The path of the file; empty if it is something else.
  std::string const& GetPath() const { return m_path; }

 private:
  friend class CXmlRecordReader;
  explicit CRecordSource(std::unique_ptr<OctetInput> input);

  std::string m_path;
  CBinaryData m_bytes;
  std::unique_ptr<OctetInput> m_input;
};

}  // namespace Quillon9
