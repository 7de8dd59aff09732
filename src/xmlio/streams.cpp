#include "quillon9/xmlio/streams.h"

#include <cstddef>
#include <string_view>
#include <system_error>

#include "base/text_arguments.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "values/local_to_utf8.h"
#include "xmlio/file_replacement.h"

namespace Quillon9 {

bool ASYNC_TOXMLFILE = false;

void AsyncToXmlFile(bool async) { ASYNC_TOXMLFILE = async; }

namespace {

using FileHandle = std::unique_ptr<std::FILE, detail::CFileCloser>;

[[noreturn]] void ThrowNotWritten(std::string const& path) {
  throw CQnException(FormatString("Failed to write data to the file [%s]", path.c_str()));
}

bool IsWide(XmlEncoding encoding) { return encoding == XmlEncoding_UTF16 || encoding == XmlEncoding_Unicode; }

constexpr std::string_view kByteOrderMark = "\xFF\xFE";

/// Having nothing to write counts as a failure.
bool WriteAll(std::FILE* file, std::string_view bytes) {
  return !bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

std::string_view View(CBinaryData const& data) {
  return {reinterpret_cast<char const*>(data.GetData()), data.GetLength()};
}

FileHandle Create(std::string const& path, XmlEncoding encoding) {
  FileHandle file(std::fopen(path.c_str(), "wt"));
  if (file == nullptr) ThrowNotWritten(path);
  if (IsWide(encoding) && !WriteAll(file.get(), kByteOrderMark)) ThrowNotWritten(path);
  return file;
}

/// Closing writes what libc still buffers, so this is where a full disk shows up.
void CloseChecked(FileHandle& file, std::string const& path) {
  if (std::fclose(file.release()) != 0) ThrowNotWritten(path);
}

}  // namespace

CTextStream::CTextStream() : m_encoding(XmlEncoding_Default) {}

CTextStream::CTextStream(XmlEncoding encoding) : m_encoding(encoding) {}

CTextStream::CTextStream(char const* /*className*/, XmlEncoding encoding) : m_encoding(encoding) {}

CTextStream::~CTextStream() = default;

void CTextStream::Open() { m_buffer.Empty(); }

void CTextStream::Close() {}

void CTextStream::Flush() {}

std::string CTextStream::CopyText() const {
  std::string text;
  text.reserve(m_buffer.GetLength());
  for (std::string_view const block : m_buffer.GetBlocks()) text += block;
  return text;
}

CBinaryData CTextStream::GetEncodedStream() const {
  switch (m_encoding) {
    case XmlEncoding_UTF8: return LocalCodePageToUtf8Binary(m_buffer.GetBlocks());
    case XmlEncoding_UTF16:
    case XmlEncoding_Unicode: return CEncoder::LocalCodePageToUnicodeBinary(GetText());
    case XmlEncoding_Default: break;
  }
  throw CQnException("Unknown Encoding, select UTF-8 [For help write to the maintainers of Quillon9]");
}

CFileTextStream::CFileTextStream(char const* path, XmlEncoding encoding)
    : CTextStream("CFileTextStream", encoding), m_path(OrEmpty(path)) {}

CFileTextStream::~CFileTextStream() = default;

void CFileTextStream::Open() {
  CTextStream::Open();
  m_file.reset();
  m_file = Create(m_path, GetEncoding());
}

void CFileTextStream::Close() {
  Flush();
  if (m_file != nullptr) CloseChecked(m_file, m_path);
  CTextStream::Close();
}

void CFileTextStream::Flush() {
  if (GetLength() == 0) return;
  if (m_file == nullptr || !WriteAll(m_file.get(), View(m_block))) {
    m_file.reset();
    throw CQnException("Failed to write data to the file");
  }
  CTextStream::Open();
}

CBinaryStream::CBinaryStream() = default;

CBinaryStream::CBinaryStream(CBinaryData const& data) : m_data(data) {}

CBinaryStream::CBinaryStream(char const* /*className*/) {}

CBinaryStream::CBinaryStream(char const* /*className*/, CBinaryData const& data) : m_data(data) {}

CBinaryStream::~CBinaryStream() = default;

CFileBinaryStream::CFileBinaryStream(char const* path, XmlEncoding encoding)
    : CBinaryStream("CFileBinaryStream"), m_path(OrEmpty(path)), m_encoding(encoding) {}

CFileBinaryStream::CFileBinaryStream(char const* path, XmlEncoding encoding, CBinaryData const& data)
    : CBinaryStream("CFileBinaryStream", data), m_path(OrEmpty(path)), m_encoding(encoding) {}

CFileBinaryStream::~CFileBinaryStream() = default;

void CFileBinaryStream::ToFile() {
  std::string_view const bytes = View(m_data);
  if (bytes.empty()) ThrowNotWritten(m_path);
  try {
    CFileReplacement(m_path).Write({IsWide(m_encoding) ? kByteOrderMark : "", bytes}, CFileReplacement::Sync::No);
  } catch (std::system_error const&) {
    ThrowNotWritten(m_path);
  }
}

}  // namespace Quillon9
