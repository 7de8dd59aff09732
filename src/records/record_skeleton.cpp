#include "records/record_skeleton.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/xmlio/document.h"
#include "records/record_place.h"
#include "text/utf8_to_local.h"
#include "xmlio/expat_input.h"
#include "xmlio/expat_version.h"

namespace Quillon9 {

namespace {

constexpr char kSeparator = '|';

}  // namespace

RecordSkeleton::RecordSkeleton() {
  RequireExpat(XML_ExpatVersionInfo());
  m_parser.reset(XML_ParserCreateNS("UTF-8", kSeparator));
  if (m_parser == nullptr) throw std::bad_alloc();
  XML_SetUserData(m_parser.get(), this);
  XML_SetElementHandler(m_parser.get(), FnStartElement, FnEndElement);
  XML_SetXmlDeclHandler(m_parser.get(), FnXmlDeclaration);
  XML_SetStartDoctypeDeclHandler(m_parser.get(), FnStartDocumentType);
  XML_SetAttlistDeclHandler(m_parser.get(), FnDeclareAttribute);
}

RecordSkeleton::~RecordSkeleton() = default;

void RecordSkeleton::Parse(std::string_view text, TextPosition const& at, std::size_t tags, bool isFinal) {
  m_started = 0;
  ExpatInput const input{reinterpret_cast<unsigned char const*>(text.data()), text.size()};
  XML_Status const status = input.FeedTo(m_parser.get(), isFinal);
  if (m_failure != nullptr) std::rethrow_exception(std::exchange(m_failure, nullptr));
  if (status != XML_STATUS_OK) ThrowFailure(text, at);
  m_fed += static_cast<std::int64_t>(text.size());
  if (m_started == tags) return;
  throw OfKind(FailureKind_Parse,
               CQnException("The document has elements in an entity, which cannot be read as records"));
}

void RecordSkeleton::ThrowFailure(std::string_view text, TextPosition const& at) const {
  std::int64_t const index = XML_GetCurrentByteIndex(m_parser.get()) - m_fed;
  TextPosition place = at;
  place.Pass(text.substr(0, static_cast<std::size_t>(std::max<std::int64_t>(index, 0))));
  // A token that began in an earlier text is a reference or a part of a character, so it is on this line.
  auto const before = static_cast<std::uint64_t>(std::max<std::int64_t>(-index, 0));
  place.offset -= std::min(before, place.offset);
  place.column -= std::min(before, place.column - 1);
  throw RecordPlace::Noted(
      RecordPlace::At(place, {}),
      OfKind(FailureKind_Parse,
             CQnException(FormatString("%s at line %lu", XML_ErrorString(XML_GetErrorCode(m_parser.get())),
                                       static_cast<unsigned long>(place.line)))));
}

template <class Action>
void RecordSkeleton::Guarded(void* self, Action action) noexcept {
  auto& skeleton = *static_cast<RecordSkeleton*>(self);
  if (skeleton.m_failure != nullptr) return;
  try {
    action(skeleton);
  } catch (...) {
    skeleton.m_failure = std::current_exception();
    XML_StopParser(skeleton.m_parser.get(), XML_FALSE);
  }
}

void RecordSkeleton::FnStartElement(void* self, XML_Char const* name, XML_Char const**) {
  Guarded(self, [=](RecordSkeleton& skeleton) { skeleton.StartElement(name); });
}

void RecordSkeleton::FnEndElement(void* self, XML_Char const*) {
  Guarded(self, [](RecordSkeleton& skeleton) { --skeleton.m_depth; });
}

void RecordSkeleton::FnXmlDeclaration(void* self, XML_Char const*, XML_Char const*, int standalone) {
  static_cast<RecordSkeleton*>(self)->m_isStandalone = standalone == 1;
}

void RecordSkeleton::FnStartDocumentType(void* self, XML_Char const*, XML_Char const*, XML_Char const*, int) {
  Guarded(self, [](RecordSkeleton&) { CXmlDocument::CheckDocumentType(); });
}

void RecordSkeleton::FnDeclareAttribute(void* self, XML_Char const* element, XML_Char const*, XML_Char const*,
                                        XML_Char const*, int) {
  Guarded(self, [=](RecordSkeleton& skeleton) { skeleton.DeclareAttribute(element); });
}

// The parser goes through all of them at each start tag of the element.
void RecordSkeleton::DeclareAttribute(std::string const& element) {
  std::uint32_t const limit = CLimits::GetMaxDeclaredAttributes();
  if (++m_declaredAttributes[element] <= limit) return;
  throw OfKind(FailureKind_Limit,
               CQnException(FormatString("The document type declares more than %u attributes for the element [%s]",
                                         limit, CUtf8ToLocal()(element).c_str())));
}

void RecordSkeleton::StartElement(std::string_view name) {
  std::uint32_t const limit = CLimits::GetMaxElementDepth();
  if (m_depth >= limit) {
    throw OfKind(FailureKind_Limit,
                 CQnException(FormatString("The element nesting exceeds the limit of %u levels", limit)));
  }
  std::size_t const separator = name.find(kSeparator);
  bool const hasUri = separator != std::string_view::npos;
  m_opened.uri = hasUri ? name.substr(0, separator) : std::string_view();
  m_opened.local = hasUri ? name.substr(separator + 1) : name;
  ++m_depth;
  ++m_started;
}

}  // namespace Quillon9
