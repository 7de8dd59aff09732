#include "generated/qualified_name_text.h"

#include <algorithm>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

namespace {

// A URI may have what ends it or separates items. In its place stand characters that no document has.
constexpr std::pair<char, char> kHidden[] = {{' ', '\1'}, {'\t', '\2'}, {'\n', '\3'}, {'\r', '\4'}, {'}', '\5'}};

std::string Hidden(std::string uri) {
  for (auto const& [plain, hidden] : kHidden) std::replace(uri.begin(), uri.end(), plain, hidden);
  return uri;
}

std::string Shown(std::string uri) {
  for (auto const& [plain, hidden] : kHidden) std::replace(uri.begin(), uri.end(), hidden, plain);
  return uri;
}

}  // namespace

std::string QualifiedNameText::From(CQName const& name) {
  auto const isOne = [](std::string const& part) { return part.find_first_of(" \t\n\r:{}") == std::string::npos; };
  if (!isOne(name.GetLocalName())) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString("[%s] is not a local name", name.GetLocalName().c_str())));
  }
  std::string text;
  if (!name.GetNamespace().empty()) text = '{' + Hidden(name.GetNamespace()) + '}';
  if (!name.GetPrefix().empty() && isOne(name.GetPrefix())) text += name.GetPrefix() + ':';
  return text + name.GetLocalName();
}

CQName QualifiedNameText::Parse(std::string_view text) {
  std::string uri;
  if (!text.empty() && text.front() == '{') {
    std::size_t const end = std::min(text.find('}'), text.size());
    uri = Shown(std::string(text.substr(1, end - 1)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  std::size_t const colon = text.find(':');
  if (colon == std::string_view::npos) return CQName(uri, std::string(text));
  return CQName(uri, std::string(text.substr(colon + 1)), std::string(text.substr(0, colon)));
}

std::string QualifiedNameText::Resolved(std::string_view text, CXmlElement const& element) {
  std::size_t const colon = text.find(':');
  std::string_view const prefix = colon != std::string_view::npos ? text.substr(0, colon) : std::string_view();
  std::string uri;
  bool const isKnown = element.GetDocument() != nullptr && element.GetDocument()->LookupNamespace(element, prefix, uri);
  if (!isKnown && !prefix.empty()) {
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                           "The prefix of the name [%s] is not declared", std::string(text).c_str())));
  }
  return isKnown ? '{' + Hidden(std::move(uri)) + '}' + std::string(text) : std::string(text);
}

std::string QualifiedNameText::Declared(std::string_view text, CXmlWriter& writer) {
  CQName const name = Parse(text);
  if (!name.GetNamespace().empty()) {
    return writer.PrefixForValues(name.GetNamespace(), name.GetPrefix()) + ':' + name.GetLocalName();
  }
  XmlWriterAccess::Context const* const open = XmlWriterAccess::StartedElement(writer);
  if (open == nullptr || open->GetDefaultNamespace().empty() || name.GetLocalName().empty()) return name.GetLocalName();
  throw CQnValidationException(
      FormatString("The name [%s] has no namespace, which cannot be written where there is a default namespace",
                   name.GetLocalName().c_str()));
}

}  // namespace Quillon9
