#include "quillon9/generated/xml_source.h"

#include <algorithm>
#include <istream>
#include <iterator>

#include "base/failure_detail.h"
#include "binding/name_match.h"
#include "binding/reported_read.h"
#include "descriptors/generic_reading.h"
#include "generated/bound_access.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/document.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

CXmlSource::CXmlSource(CBinaryData const& bytes)
    : m_kind(Kind::Bytes), m_data(bytes.GetData()), m_size(bytes.GetLength()) {}

namespace {

unsigned char const* Octets(void const* data) { return static_cast<unsigned char const*>(data); }

std::string ReadToEnd(std::istream& stream) {
  std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (stream.bad()) throw OfKind(FailureKind_Input, CQnException("Failed to read the stream"));
  return bytes;
}

}  // namespace

/// Loads documents that live no longer than what the source is made from.
struct XmlSourceAccess {
  static std::string ReadStream(CXmlSource const& source) {
    return ReadToEnd(*static_cast<std::istream*>(const_cast<void*>(source.m_data)));
  }
  /// Load() without a copy of the input. \p bytes gets those of a stream and must outlive \p document.
  static void Lend(CXmlSource const& source, std::string& bytes, CXmlDocument& document) {
    switch (source.m_kind) {
      case CXmlSource::Kind::File: return source.Load(document);
      case CXmlSource::Kind::Bytes:
        return XmlNodeAccess::LoadLentStream(document, Octets(source.m_data), source.m_size);
      case CXmlSource::Kind::Stream: bytes = ReadStream(source);
    }
    XmlNodeAccess::LoadLentStream(document, Octets(bytes.data()), bytes.size());
  }
};

void CXmlSource::Load(CXmlDocument& document) const {
  switch (m_kind) {
    case Kind::File: return document.Load(static_cast<char const*>(m_data));
    case Kind::Bytes: return document.LoadXmlStream(Octets(m_data), m_size);
    case Kind::Stream: break;
  }
  std::string const bytes = XmlSourceAccess::ReadStream(*this);
  document.LoadXmlStream(Octets(bytes.data()), bytes.size());
}

namespace {

std::string NameOf(std::string const& ns, std::string const& name) { return ns.empty() ? name : "{" + ns + "}" + name; }

[[noreturn]] void ThrowWrongRoot(CXmlElement const& root, CRootRow const* roots, int count) {
  constexpr int kShown = 8;
  std::string expected;
  for (int i = 0; i < count && i < kShown; ++i) {
    expected += (i == 0 ? "" : "] or [") + NameOf(roots[i].ns, roots[i].name);
  }
  if (count > kShown) expected += "] or [...";
  throw OfKind(FailureKind_UnexpectedElement,
               CQnValidationException(FormatString("The document element is [%s] instead of [%s]",
                                                   NameOf(root.GetNamespaceURI(), root.GetLocalName()).c_str(),
                                                   expected.c_str())));
}

CRootRow const& FindRoot(CXmlElement const& root, CRootRow const* roots, int count,
                         CXmlSerializationContext const& ctx) {
  for (int i = 0; i < count; ++i) {
    if (IsElementNamed(ctx, &root, roots[i].name, roots[i].ns)) return roots[i];
  }
  ThrowWrongRoot(root, roots, count);
}

CSmartPtr<CXmlObjectBase> ReadRootElement(CXmlElement const& root, CRootRow const* roots, int count,
                                          CXmlSerializationContext const& ctx) try {
  CRootRow const& row = FindRoot(root, roots, count, ctx);
  if (row.type == nullptr) return CopyGeneric(root);
  CSmartPtr<CXmlObjectBase> const object = BoundAccess::MakeFor(*row.type, root, row.name, row.block);
  BoundAccess::SetElementNamespace(*object, row.ns);
  object->FromXmlElement(&root, ctx);
  return object;
} catch (CQnException& failure) {
  FailureReport::Note(failure, {&root});
  throw;
}

// Parsing depends on them, and which class is read is known only after it. All classes of a schema have the same rules.
ValueRules RulesOf(CRootRow const* roots, int count, CXmlSerializationContext const& ctx) {
  CRootRow const* const typed =
      std::find_if(roots, roots + count, [](CRootRow const& root) { return root.type != nullptr; });
  if (ctx.HasValueRules() || typed == roots + count) return ctx.GetValueRules();
  return typed->type->GetRow().valueRules;
}

}  // namespace

CSmartPtr<CXmlObjectBase> ReadAnyRoot(CXmlSource const& source, CRootRow const* roots, int count,
                                      CXmlSerializationContext const& ctx) {
  Utf8Text::Scope const scope(Utf8Text::Use::kCountingCharacters);
  RulesInUse::Scope const rules(RulesOf(roots, count, ctx));
  std::string bytes;
  CXmlDocument document(ctx);
  DocumentPlaces places(document, InputForm::kBytes, source.GetPath());
  return ReadWithReport(ctx, places, [&] {
    XmlSourceAccess::Lend(source, bytes, document);
    return ReadRootElement(*document.GetDocumentElement(), roots, count, ctx);
  });
}

CSmartPtr<CXmlObjectBase> CreateAnyRoot(CRootRow const& root) {
  if (root.type == nullptr) return new CElement(root.name, root.ns, "##any", "");
  CSmartPtr<CXmlObjectBase> object = root.type->CreateObject(root.name);
  BoundAccess::SetElementNamespace(*object, root.ns);
  return object;
}

}  // namespace Quillon9
