#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <memory>
#include <system_error>
#include <utility>

#include "base/failure_detail.h"
#include "binding/document_places.h"
#include "fastinfoset/reader.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/compression.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/streams.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"
#include "xmlio/compressed_header.h"
#include "xmlio/expat_reader.h"
#include "xmlio/expat_version.h"
#include "xmlio/fast_reader.h"
#include "xmlio/fast_reader_mode.h"
#include "xmlio/node_access.h"
#include "xmlio/tree_comparison.h"

namespace Quillon9 {

bool ASYNC_FROMXMLFILE = false;

void AsyncFromXmlFile(bool async) { ASYNC_FROMXMLFILE = async; }

long _filelength(std::FILE* file) {
  long const position = std::ftell(file);
  if (position == -1) return -1;
  if (std::fseek(file, 0, SEEK_END) != 0) return -1;
  long const length = std::ftell(file);
  if (length == -1) return -1;
  return std::fseek(file, position, SEEK_SET) == 0 ? length : -1;
}

namespace {

constexpr unsigned long kLargestInput = 0xFFFFFFFFUL;

using FilePtr = std::unique_ptr<std::FILE, detail::CFileCloser>;

/// Opens without blocking, since opening a pipe without a writer would never return; this does not affect a file.
FilePtr OpenFile(char const* path) {
  int const descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor == -1) return nullptr;
  FilePtr file(::fdopen(descriptor, "r"));
  if (file == nullptr) ::close(descriptor);
  return file;
}

/// The length of \p file; -1 with errno set if it has none. On some file systems a directory can be opened and
/// positioned, but its length is meaningless.
long GetFileSize(std::FILE* file) {
  struct stat status {};
  if (::fstat(::fileno(file), &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    return -1;
  }
  return _filelength(file);
}

[[noreturn]] void ThrowEmptyText() { throw OfKind(FailureKind_Input, CQnException("XML String is empty!")); }

std::size_t LengthOrThrow(char const* text) {
  std::size_t const length = text != nullptr ? std::strlen(text) : 0;
  if (length == 0) ThrowEmptyText();
  return length;
}

void ThrowIfNoStream(unsigned char const* data, unsigned long size) {
  if (size == 0 || data == nullptr) throw OfKind(FailureKind_Input, CQnException("XML Stream is empty!"));
}

void ThrowIfTooLarge(unsigned long size) {
  if (size > kLargestInput) {
    throw OfKind(FailureKind_Limit,
                 CQnException(FormatString("The document exceeds the limit of %lu bytes", kLargestInput)));
  }
}

/// The message for an errno.
std::string ErrorText(int error) { return std::generic_category().message(error); }

/// A filter of the program may have read something else, and know a place in that.
void SetPlace(CQnException& failure, CFailurePlace place) {
  if (failure.GetPlace() != nullptr) return;
  CFailureDetail detail;
  detail.kind = failure.GetKind();
  detail.place = std::move(place);
  detail.hasPlace = true;
  FailureAccess::SetDetail(failure, FailureAccess::NewDetail(detail));
}

/// How a tree holds its text: as the read of an object around it does, unless its own context asks for UTF-8.
Utf8Text::Use TextUse(CXmlSerializationContext const& context) {
  bool const mustBeUtf8 = context.GetTextEncoding() == TextEncoding_UTF8 && !Utf8Text::IsInUse();
  return mustBeUtf8 ? Utf8Text::Use::kYes : Utf8Text::Current();
}

/// The rules by which a tree is parsed: those of its context, or else of the read of an object around it.
ValueRules RulesOf(CXmlSerializationContext const& context) {
  if (context.HasValueRules()) return context.GetValueRules();
  return RulesInUse::AreSchema() ? ValueRules_XmlSchema : ValueRules_Classic;
}

/// Read \p document without the parser, and return whether that was possible.
/// \throws CQnException as RequireExpat() does; std::bad_alloc.
bool ReadPlainText(CXmlDocument& document) {
  FastReaderMode const mode = CurrentFastReaderMode();
  RequireExpat(XML_ExpatVersionInfo());  // so that it depends on no document whether a program notices
  if (mode == FastReaderMode::kOff || !FastReader::Read(document)) return false;
  if (mode == FastReaderMode::kCompared) CompareWithParser(document);
  return true;
}

}  // namespace

void CXmlDocument::LoadXml(char const* text) {
  Cleanup();
  CopyInput(text, LengthOrThrow(text));
  ParseText();
}

void CXmlDocument::LoadXml(wchar_t const* text) {
  Cleanup();
  std::size_t const length = text != nullptr ? std::wcslen(text) : 0;
  if (length == 0) ThrowEmptyText();
  unsigned char* out = AllocateInput(2 * length + 2);
  *out++ = 0xFF;  // the byte order mark, little-endian
  *out++ = 0xFE;
  for (std::size_t i = 0; i < length; ++i) {
    auto const character = static_cast<unsigned long>(text[i]);
    *out++ = static_cast<unsigned char>(character & 0xFF);
    *out++ = static_cast<unsigned char>(character >> 8 & 0xFF);
  }
  ParseText(true);
}

void CXmlDocument::LoadXmlStream(unsigned char const* data, unsigned long size) {
  Cleanup();
  ThrowIfNoStream(data, size);
  CopyInput(data, size);
  Parse();
}

void XmlNodeAccess::LoadLentText(CXmlDocument& document, char const* text) {
  document.Cleanup();
  std::size_t const size = LengthOrThrow(text);
  ThrowIfTooLarge(size);
  LendInput(document, reinterpret_cast<unsigned char const*>(text), size);
  document.ParseText();
}

void XmlNodeAccess::LoadLentStream(CXmlDocument& document, unsigned char const* data, unsigned long size) {
  document.Cleanup();
  ThrowIfNoStream(data, size);
  ThrowIfTooLarge(size);
  LendInput(document, data, size);
  document.Parse();
}

void CXmlDocument::Load(char const* path) {
  Cleanup();
  if (path == nullptr) path = "";
  try {
    ReadFile(path);
    Parse(path);
  } catch (CQnException& failure) {
    CFailurePlace place;
    place.SetFile(path);
    SetPlace(failure, std::move(place));
    throw;
  }
}

void CXmlDocument::ReadFile(char const* path) {
  FilePtr file = OpenFile(path);
  if (file == nullptr)
    throw OfKind(FailureKind_Input, CQnException(FormatString("Failed to open the file [%s]", path)));
  long const size = GetFileSize(file.get());
  if (size < 0) {
    throw OfKind(FailureKind_Input, CQnException(FormatString("Failed to get the size of the file [%s] Error [%s]",
                                                              path, ErrorText(errno).c_str())));
  }
  if (static_cast<unsigned long>(size) > kLargestInput) {
    throw OfKind(FailureKind_Limit,
                 CQnException(FormatString("The file [%s] exceeds the limit of %lu bytes", path, kLargestInput)));
  }
  unsigned char* const input = AllocateInput(static_cast<unsigned long>(size));
  errno = 0;
  std::size_t const count = std::fread(input, 1, m_inputSize, file.get());
  if (count == 0 || count != m_inputSize) {
    int const error = errno != 0 ? errno : ENODATA;  // the file is empty, or has become shorter
    throw OfKind(FailureKind_Input, CQnException(FormatString("Failed to read the contents of the file [%s] Error [%s]",
                                                              path, ErrorText(error).c_str())));
  }
}

unsigned char* CXmlDocument::AllocateInput(unsigned long size) {
  ThrowIfTooLarge(size);
  m_ownedInput.reset(new unsigned char[size]);
  m_inputData = m_ownedInput.get();
  m_inputSize = size;
  StartCounting();
  return m_ownedInput.get();
}

void CXmlDocument::CopyInput(void const* data, unsigned long size) { std::memcpy(AllocateInput(size), data, size); }

void CXmlDocument::Parse(char const* file) {
  DecompressInput();
  Utf8Text::Scope const scope(TextUse(m_context));
  RulesInUse::Scope const rules(RulesOf(m_context));
  if (!ParseInfoset(file)) ParseText(false, file);
}

void CXmlDocument::DecompressInput() {
  if (!HasCompressedHeader(m_inputData, m_inputSize)) return;
  if (m_ownedInput == nullptr) CopyInput(m_inputData, m_inputSize);  // it was lent
  unsigned char* data = m_ownedInput.get();
  CQnZip::Decompress(&data, &m_inputSize);
  if (data == m_inputData) return;
  static_cast<void>(m_ownedInput.release());  // Decompress() has deleted it
  m_ownedInput.reset(data);
  m_inputData = data;
}

bool CXmlDocument::ParseInfoset(char const* file) {
  CFastInfosetReader reader(*m_context.GetFIContext(), *this);
  try {
    return reader.Parse();
  } catch (CQnException& failure) {
    FailureKind& kind = FailureAccess::DetailOf(failure).kind;
    if (kind == FailureKind_Other) kind = FailureKind_Parse;  // of encoded values
    SetPlace(failure, PlaceInInfoset(*this, reader.GetOffset(), file));
    throw;
  }
}

void CXmlDocument::ParseText(bool isWide, char const* file) {
  Utf8Text::Scope const scope(TextUse(m_context));
  RulesInUse::Scope const rules(RulesOf(m_context));
  if (!isWide && ReadPlainText(*this)) return;
  CExpatReader reader(*this);
  reader.CreateParser();
  try {
    reader.Parse(true);
  } catch (CQnException& failure) {
    InputForm const form = isWide ? InputForm::kWideText : InputForm::kBytes;
    SetPlace(failure, PlaceInText(*this, reader.GetPosition(), form, file));
    throw;
  }
}

}  // namespace Quillon9
