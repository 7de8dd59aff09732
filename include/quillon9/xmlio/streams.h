#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "quillon9/export.h"
#include "quillon9/text/string_buffer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/output_options.h"

namespace Quillon9 {

/// The switch that AsyncToXmlFile(bool) sets; initially false. It is a plain variable: set it before other threads run.
QUILLON9_API extern bool ASYNC_TOXMLFILE;

/// Let CXmlObjectBase::ToXmlFile write uncompressed text through a CFileTextStream while it is produced (true), or
/// build the whole document in memory first (false, the default). This applies to the whole process. A CFileTextStream
/// cannot write any text yet, so true makes ToXmlFile fail for every document.
QUILLON9_API void AsyncToXmlFile(bool async);

namespace detail {

/// Closes a file that is still open.
struct CFileCloser {
  /// Close \p file, which must be open, and ignore a failure.
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace detail

/// Collects text in the local code page, in memory. Like all streams, it belongs to one thread.
class QUILLON9_API CTextStream {
 public:
  /// Create a stream with XmlEncoding_Default: its text can be taken, but not as encoded bytes.
  CTextStream();
  /// Create a stream whose text can be taken in \p encoding.
  explicit CTextStream(XmlEncoding encoding);
  CTextStream(CTextStream const&) = delete;
  CTextStream& operator=(CTextStream const&) = delete;
  virtual ~CTextStream();

  /// Discard the text.
  virtual void Open();
  /// Do nothing: the text stays.
  virtual void Close();
  /// Do nothing: the text stays.
  virtual void Flush();

  /// Add \p text up to the first NUL byte.
  ///@{
  void Append(std::string const& text) { m_buffer.Append(text); }
  void Append(char const* text) { m_buffer.Append(text); }
  ///@}
  /// Add \p length bytes of \p text.
  void Append(char const* text, unsigned long length) { m_buffer.Append(text, length); }
  /// Add one byte.
  void Append(char character) { m_buffer.Append(character); }
  /// Reserve room for \p count bytes after the text, and accept the bytes that were filled, as CStringBuffer does.
  ///@{
  char* Reserve(unsigned long count) { return m_buffer.Reserve(count); }
  void Commit(unsigned long count) { m_buffer.Commit(count); }
  ///@}

  /// Return the text, NUL-terminated. The stream owns it; it is valid until the next change of the stream.
  char const* GetText() const { return m_buffer.GetText(); }
  /// Return a copy of the text.
  std::string CopyText() const;
  /// Return the length of the text in bytes.
  unsigned long GetLength() const { return m_buffer.GetLength(); }
  /// Return the encoding that was passed to the constructor.
  XmlEncoding GetEncoding() const { return m_encoding; }
  /// Return the text as CEncoder encodes it: UTF-8, or wide characters for XmlEncoding_UTF16 and XmlEncoding_Unicode.
  /// There is no byte order mark.
  /// \throws CQnException "Unknown Encoding, select UTF-8 [For help write to the maintainers of Quillon9]" for any
  ///         other encoding; those of CEncoder.
  CBinaryData GetEncodedStream() const;

 protected:
  /// For derived classes. \p className is not kept.
  CTextStream(char const* className, XmlEncoding encoding);

 private:
  mutable CStringBuffer m_buffer;  // taking the text joins its blocks
  XmlEncoding m_encoding;
};

/// Meant to send text to a file while it is produced. It sends its block of encoded data, which nothing fills so far,
/// so a flush with text pending fails.
class QUILLON9_API CFileTextStream : public CTextStream {
 public:
  /// Create a stream to the file \p path (copied), which Open() creates.
  CFileTextStream(char const* path, XmlEncoding encoding);
  /// Close the file if it is open, without flushing it.
  ~CFileTextStream() override;

  /// Discard the text and create the file, with the bytes FF FE for XmlEncoding_UTF16 and XmlEncoding_Unicode.
  /// \throws CQnException "Failed to write data to the file [%s]" with the path; the file is closed afterwards.
  void Open() override;
  /// Flush and close the file and discard the text. Does nothing if the file is not open.
  /// \throws CQnException as Flush(), or "Failed to write data to the file [%s]" when the system reports data lost
  ///         on closing. The file is closed in either case.
  void Close() override;
  /// If there is text, send the block to the file, then discard the text.
  /// \throws CQnException "Failed to write data to the file"; the file is closed afterwards.
  void Flush() override;

 private:
  std::string m_path;
  CBinaryData m_block;
  std::unique_ptr<std::FILE, detail::CFileCloser> m_file;  // null while closed
};

/// Collects bytes in memory.
class QUILLON9_API CBinaryStream {
 public:
  CBinaryStream();
  /// Start with the bytes of \p data, which are shared, not copied, until either of the two changes.
  explicit CBinaryStream(CBinaryData const& data);
  CBinaryStream(CBinaryStream const&) = delete;
  CBinaryStream& operator=(CBinaryStream const&) = delete;
  virtual ~CBinaryStream();

  /// Add bytes, as CBinaryData::Append does.
  ///@{
  void Append(unsigned char const* data, unsigned long length) { m_data.Append(data, length); }
  void Append(CBinaryData const& data) { m_data.Append(data); }
  void Append(unsigned char byte) { m_data.Append(byte); }
  ///@}

  /// Return the collected bytes, shared with this stream.
  CBinaryData GetBinaryStream() const { return m_data; }

 protected:
  /// For derived classes. \p className is not kept.
  ///@{
  explicit CBinaryStream(char const* className);
  CBinaryStream(char const* className, CBinaryData const& data);
  ///@}

  CBinaryData m_data;  ///< what was added so far
};

/// Collects bytes and writes them to a file in one go.
class QUILLON9_API CFileBinaryStream : public CBinaryStream {
 public:
  /// Start without bytes. \p path is copied; null counts as empty. \p encoding decides only on the byte order mark.
  CFileBinaryStream(char const* path, XmlEncoding encoding);
  /// Start with the bytes of \p data, shared as in CBinaryStream.
  CFileBinaryStream(char const* path, XmlEncoding encoding, CBinaryData const& data);
  ~CFileBinaryStream() override;

  /// Write the file with all collected bytes, preceded by FF FE for XmlEncoding_UTF16 and XmlEncoding_Unicode whatever
  /// the bytes are. The bytes go to a temporary file in the same folder, which then replaces the file and gets its
  /// owner, group and rights. Symbolic links are followed. Pipes, devices, and files that the system does not allow to
  /// be replaced are written directly. Other threads and processes may write the same file at the same time: it then
  /// has the contents of the last one.
  /// \throws CQnException "Failed to write data to the file [%s]" with the path if the file cannot be created or may
  ///         not be written, if there are no bytes, or if not all bytes reached the file. An existing file is unchanged
  ///         then, unless it was written directly.
  void ToFile();

 private:
  std::string m_path;
  XmlEncoding m_encoding;
};

}  // namespace Quillon9
