#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "quillon9/export.h"
#include "quillon9/text/string_buffer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/output_options.h"

namespace Quillon9 {

/// The switch that AsyncToXmlFile(bool) stores; false at start. A plain value: set it before threads run.
QUILLON9_API extern bool ASYNC_TOXMLFILE;

/// Let CXmlObjectBase::ToXmlFile write uncompressed text through a CFileTextStream while it is produced (true), or
/// make the whole document in memory first (false, the default). For the whole process. A CFileTextStream cannot
/// write any text yet, so true makes ToXmlFile fail for every document.
QUILLON9_API void AsyncToXmlFile(bool async);

namespace detail {

/// Closes a file that nobody closed.
struct CFileCloser {
  /// Close \p file, which is open; its failure is dropped.
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace detail

/// Collects text in the local code page, in memory. Belongs to one thread, as all streams do.
class QUILLON9_API CTextStream {
 public:
  /// A stream with XmlEncoding_Default: text may be taken from it, encoded bytes may not.
  CTextStream();
  /// A stream whose text can be taken in \p encoding.
  explicit CTextStream(XmlEncoding encoding);
  CTextStream(CTextStream const&) = delete;
  CTextStream& operator=(CTextStream const&) = delete;
  virtual ~CTextStream();

  /// Discard what is held.
  virtual void Open();
  /// Does nothing: the text stays.
  virtual void Close();
  /// Does nothing: the text stays.
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
  /// Room for \p count bytes behind the text, and taking up those that were filled, as CStringBuffer has them.
  ///@{
  char* Reserve(unsigned long count) { return m_buffer.Reserve(count); }
  void Commit(unsigned long count) { m_buffer.Commit(count); }
  ///@}

  /// The text held, NUL-terminated. The stream owns it; it is valid until the next change of the stream.
  char const* GetText() const { return m_buffer.GetText(); }
  /// The text held, as a string.
  std::string CopyText() const;
  /// The bytes held.
  unsigned long GetLength() const { return m_buffer.GetLength(); }
  /// The encoding that the constructor was given.
  XmlEncoding GetEncoding() const { return m_encoding; }
  /// The text held, as CEncoder makes it: UTF-8, or wide characters for XmlEncoding_UTF16 and XmlEncoding_Unicode.
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

/// Meant to send text to a file while it is produced. What it sends is its block of encoded data, which nothing
/// fills so far: a flush with text pending fails.
class QUILLON9_API CFileTextStream : public CTextStream {
 public:
  /// A stream to the file \p path (copied), which Open() creates.
  CFileTextStream(char const* path, XmlEncoding encoding);
  /// Close the file if it is open, without a flush.
  ~CFileTextStream() override;

  /// Discard what is held and create the file, with the bytes FF FE for XmlEncoding_UTF16 and XmlEncoding_Unicode.
  /// \throws CQnException "Failed to write data to the file [%s]" with the path; the file is closed then.
  void Open() override;
  /// Flush, close the file and discard what is held. Does nothing to a file that is not open.
  /// \throws CQnException as Flush(), or "Failed to write data to the file [%s]" when the system reports data lost
  ///         on closing. The file is closed in either case.
  void Close() override;
  /// Send the block to the file if there is text, then discard the text.
  /// \throws CQnException "Failed to write data to the file"; the file is closed then.
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
  /// Start with the bytes of \p data, which are shared, not copied, until one of both changes.
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

  /// The bytes held, shared with this stream.
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
  /// Without bytes. \p path is copied; null is an empty one. \p encoding decides on the byte order mark alone.
  CFileBinaryStream(char const* path, XmlEncoding encoding);
  /// Start with the bytes of \p data, shared as in CBinaryStream.
  CFileBinaryStream(char const* path, XmlEncoding encoding, CBinaryData const& data);
  ~CFileBinaryStream() override;

  /// Write the file with all bytes held; in front of them FF FE for XmlEncoding_UTF16 and XmlEncoding_Unicode,
  /// whatever the bytes are. The bytes go to a temporary file in the same folder, which then replaces the file and gets
  /// its owner, group and rights. Symbolic links are followed. Pipes, devices, and files that the system does not allow
  /// to be replaced are written directly. Other threads and processes may write the same file: it then has the contents
  /// of the last one.
  /// \throws CQnException "Failed to write data to the file [%s]" with the path, when the file cannot be created or may
  ///         not be written, when no bytes are held, and when not all bytes reached it. A file that existed is as
  ///         before, unless it was written directly.
  void ToFile();

 private:
  std::string m_path;
  XmlEncoding m_encoding;
};

}  // namespace Quillon9
