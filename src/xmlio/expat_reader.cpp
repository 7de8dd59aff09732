#include "xmlio/expat_reader.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/failure_detail.h"
#include "base/fast_paths.h"
#include "base/text_arguments.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "xmlio/converted_text.h"
#include "xmlio/expat_version.h"

namespace Quillon9 {

namespace {

constexpr char kSeparator = '|';

struct SplitName {
  std::string_view namespaceUri;
  std::string_view localName;
};

SplitName Split(std::string_view name) {
  std::size_t const separator = name.find(kSeparator);
  if (separator == std::string_view::npos) return {{}, name};
  return {name.substr(0, separator), name.substr(separator + 1)};
}

[[noreturn]] void ThrowParserFailure(XML_Parser parser) {
  auto const line = static_cast<unsigned long>(XML_GetCurrentLineNumber(parser));
  throw OfKind(FailureKind_Parse,
               CQnException(FormatString("%s at line %lu", XML_ErrorString(XML_GetErrorCode(parser)), line)));
}

}  // namespace

CExpatReader::CExpatReader(CXmlDocument& document) : m_document(document) {}

CExpatReader::~CExpatReader() = default;

void CExpatReader::CreateParser() {
  RequireExpat(XML_ExpatVersionInfo());
  bool const hasNamespaces = m_document.GetSchemaType() != SchemaType_DTD;
  m_parser.reset(hasNamespaces ? XML_ParserCreateNS(nullptr, kSeparator) : XML_ParserCreate(nullptr));
  if (m_parser == nullptr) throw std::bad_alloc();
  XML_SetUserData(m_parser.get(), this);
  XML_SetElementHandler(m_parser.get(), FnStartElement, FnEndElement);
  XML_SetNamespaceDeclHandler(m_parser.get(), FnStartNamespace, FnEndNamespace);
  XML_SetCharacterDataHandler(m_parser.get(), FnText);
  XML_SetStartDoctypeDeclHandler(m_parser.get(), FnStartDocumentType);
  XML_SetAttlistDeclHandler(m_parser.get(), FnAttributeDeclaration);
  XML_SetUnknownEncodingHandler(m_parser.get(), FnUnknownEncoding, this);
  if (!m_document.StripsCDATA()) {
    XML_SetCdataSectionHandler(m_parser.get(), FnStartCDATA, FnEndCDATA);
  }
  if (XmlNodeAccess::KeepsMarkup(m_document)) {
    XML_SetEndDoctypeDeclHandler(m_parser.get(), FnEndDocumentType);
    XML_SetCommentHandler(m_parser.get(), FnComment);
    XML_SetProcessingInstructionHandler(m_parser.get(), FnInstruction);
  }
}

void CExpatReader::Parse(bool isFinal) {
  XML_Status const status = Input().FeedTo(m_parser.get(), isFinal);
  if (m_failure != nullptr) std::rethrow_exception(std::exchange(m_failure, nullptr));
  if (status != XML_STATUS_OK) ThrowParserFailure(m_parser.get());
  if (isFinal) m_parser.reset();
}

// A stopped parser still makes some calls, for example for the end of an empty element. They see the failure and do
// nothing.
template <class Action>
void CExpatReader::Guarded(void* self, Action action) noexcept {
  auto& reader = *static_cast<CExpatReader*>(self);
  if (reader.m_failure != nullptr) return;
  try {
    action(reader);
  } catch (...) {
    reader.m_failure = std::current_exception();
    XML_StopParser(reader.m_parser.get(), XML_FALSE);
  }
}

void CExpatReader::FnStartElement(void* self, XML_Char const* name, XML_Char const** attributes) {
  Guarded(self, [=](CExpatReader& reader) { reader.StartElement(name, attributes); });
}

void CExpatReader::FnEndElement(void* self, XML_Char const*) {
  Guarded(self, [](CExpatReader& reader) { XmlNodeAccess::EndElement(reader.m_document); });
}

void CExpatReader::FnStartNamespace(void* self, XML_Char const* prefix, XML_Char const* uri) {
  Guarded(self, [=](CExpatReader& reader) {
    reader.m_document.SetNamespaceAlias(reader.m_toLocal(OrEmpty(prefix)), reader.m_toLocal(OrEmpty(uri)));
  });
}

void CExpatReader::FnEndNamespace(void*, XML_Char const*) {}

void CExpatReader::FnText(void* self, XML_Char const* text, int length) {
  if (length <= 0) return;
  Guarded(self, [=](CExpatReader& reader) {
    reader.m_document.CountContent(static_cast<std::size_t>(length));
    CXmlElement& element = *reader.m_document.GetOpenElement();
    // expat reports each line feed separately, and layout has many.
    if (length == 1 && *text == '\n' && XmlNodeAccess::AppendLineFeed(element)) return;
    // The carriage returns come from character references; expat has removed the others.
    AppendConverted(element, reader.m_toLocal, {text, static_cast<std::size_t>(length)});
  });
}

void CExpatReader::FnStartCDATA(void* self) {
  Guarded(self, [](CExpatReader& reader) { reader.AppendMark("<![CDATA["); });
}

void CExpatReader::FnEndCDATA(void* self) {
  Guarded(self, [](CExpatReader& reader) { reader.AppendMark("]]>"); });
}

void CExpatReader::AppendMark(std::string_view mark) {
  m_document.CountContent(mark.size());
  XmlNodeAccess::AppendText(*m_document.GetOpenElement(), mark);
}

void CExpatReader::FnStartDocumentType(void* self, XML_Char const*, XML_Char const*, XML_Char const*, int) {
  Guarded(self, [](CExpatReader& reader) {
    CXmlDocument::CheckDocumentType();
    reader.m_isInDocumentType = true;
  });
}

void CExpatReader::FnEndDocumentType(void* self) {
  Guarded(self, [](CExpatReader& reader) { reader.m_isInDocumentType = false; });
}

void CExpatReader::FnComment(void* self, XML_Char const* text) {
  Guarded(self, [=](CExpatReader& reader) { reader.AddMarkup("", text); });
}

void CExpatReader::FnInstruction(void* self, XML_Char const* target, XML_Char const* text) {
  Guarded(self, [=](CExpatReader& reader) { reader.AddMarkup(target, text); });
}

void CExpatReader::AddMarkup(XML_Char const* target, XML_Char const* text) {
  if (!m_isInDocumentType) XmlNodeAccess::AddMarkup(m_document, m_toLocal(target), m_toLocal(text));
}

void CExpatReader::FnAttributeDeclaration(void* self, XML_Char const* element, XML_Char const*, XML_Char const*,
                                          XML_Char const*, int) {
  Guarded(self, [=](CExpatReader& reader) { reader.CountDeclaredAttribute(element); });
}

// expat has encodings of its own, and asks for the others by name.
int CExpatReader::FnUnknownEncoding(void* self, XML_Char const* name, XML_Encoding* encoding) {
  bool isKnown = false;
  Guarded(self, [&](CExpatReader& reader) { isKnown = reader.Input().FillEncoding(name, *encoding); });
  return isKnown ? XML_STATUS_OK : XML_STATUS_ERROR;
}

// At each start tag of an element, expat goes through all attributes declared for it, repeated ones included.
void CExpatReader::CountDeclaredAttribute(XML_Char const* element) {
  std::uint32_t const limit = CLimits::GetMaxDeclaredAttributes();
  if (++m_declaredAttributes[element] <= limit) return;
  throw OfKind(FailureKind_Limit,
               CQnException(FormatString("The document type declares more than %u attributes for the element [%s]",
                                         limit, m_toLocal(element).c_str())));
}

CXmlName const* CExpatReader::NameOf(XML_Char const* whole) {
  if constexpr (!kParsedNames.IsOn()) return SharedName(whole);
  CXmlName const* const known = m_names.Find(whole);
  if (known == nullptr) return NewName(whole);
  kParsedNames.Verify([&] { return known == SharedName(whole); });
  return known;
}

CXmlName const* CExpatReader::NewName(XML_Char const* whole) { return m_names.Add(whole, SharedName(whole)); }

CXmlName const* CExpatReader::SharedName(XML_Char const* whole) {
  SplitName const parts = Split(whole);
  return m_document.ShareName(m_toLocal(parts.namespaceUri), m_toLocal(parts.localName));
}

void CExpatReader::StartElement(XML_Char const* name, XML_Char const** attributes) {
  CXmlElement* const element = m_document.GetDocumentElement() == nullptr ? m_document.AddDocElement(NameOf(name))
                                                                          : m_document.AddChildElement(NameOf(name));
  if (*attributes != nullptr) AddAttributes(element, attributes);
}

void CExpatReader::AddAttributes(CXmlElement* element, XML_Char const** attributes) {
  for (; *attributes != nullptr; attributes += 2) {
    std::string_view const value = attributes[1];
    CXmlName const* const attribute = NameOf(attributes[0]);
    if (m_toLocal.IsSameExcludingCR(value)) {
      m_document.AddElementAttribute(element, attribute, value);
    } else {
      m_document.AddElementAttribute(element, attribute, m_toLocal(value));
    }
  }
}

}  // namespace Quillon9
