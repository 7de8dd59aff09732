#include "quillon9/descriptors/element_info.h"

#include <atomic>
#include <cstring>

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "base/text_copy.h"
#include "binding/object_access.h"
#include "descriptors/known_element.h"
#include "descriptors/printed_text.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "values/facet_filter.h"
#include "values/ruled_values.h"
#include "values/schema_facets.h"
#include "values/variant_access.h"
#include "xmlio/node_access.h"

namespace Quillon9Data {

using namespace Quillon9;

namespace {

/// Returns a different number for each member in the process, so that a freed member is never mistaken for a later one.
std::uint64_t NextNumber() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

CElementInfo::CElementInfo(char const* name, char const* ns, int index, ItemType type, char const* format,
                           CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions)
    : m_elementName(name),
      m_namespace(ns),
      m_propertyIndex(index),
      m_restrictions(restrictions),
      m_itemType(type),
      m_format(format),
      m_whitespaceRule(rule),
      m_primitive(true),
      m_filter(CFacetFilter::Make(type, restrictions)),
      m_number(NextNumber()) {}

CElementInfo::CElementInfo(char const* name, char const* ns, int index)
    : m_elementName(name), m_namespace(ns), m_propertyIndex(index), m_primitive(false), m_number(NextNumber()) {}

CElementInfo::~CElementInfo() = default;
CElementInfoSeq::~CElementInfoSeq() = default;
CElementInfoAll::~CElementInfoAll() = default;
CElementInfoChoice::~CElementInfoChoice() = default;

void CElementInfo::PseudoChildAttributeToXml(CXmlSerializationContext const&, CXmlGeneratedClass const*,
                                             CXmlWriter*) const {}

bool CElementInfo::MayBegin(CXmlSerializationContext const&, CXmlElement const*) const { return true; }
bool CElementInfo::IsRepeated() const { return false; }

namespace {

[[noreturn]] void ThrowNeverValidated() { throw CQnException("Not implemented, should never be called"); }

}  // namespace

bool CElementInfoSeq::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const {
  ThrowNeverValidated();
}

bool CElementInfoChoice::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const {
  ThrowNeverValidated();
}

bool CElementInfo::IsThisElement(CXmlSerializationContext const& ctx, CXmlElement const* element) const {
  if (element == nullptr) return false;
  if (IsKnown(element)) return true;
  TreeName const& name = XmlNodeAccess::NameOf(*element);
  if (!IsSameText(name.localName, m_elementName)) return false;
  if (!IsSameText(name.namespaceUri, m_namespace)) return ctx.GetIgnoreNamespaces();
  RememberMember(name, m_number);
  return true;
}

void CElementInfo::CheckRestriction(QnVariant const& value) const {
  CFacetFilter::CheckUnlessPasses(m_filter.get(), value, [&] {
    if (!m_primitive) throw CQnException("Cannot CheckRestriction for type: " + value.GetType());
    CXmlObjectHelper::CheckRestriction(m_elementName.c_str(), value, m_itemType, m_restrictions);
  });
}

std::string CElementInfo::GetAnyDefaultNamespace(char const* restriction, char const* ns, char const* targetNamespace) {
  std::string const text = restriction;
  if (text == "##any") return ns;
  if (text == "##other") return *ns != '\0' ? "" : "DefaultNamespace";
  if (text == "##local") return "";
  if (text == "##targetNamespace") return targetNamespace;
  std::size_t const blank = text.find(' ');
  if (blank == std::string::npos || text.size() <= 2 || !StartsWith(text, "##")) return "";
  return GetAnyDefaultNamespace(text.substr(0, blank).c_str(), ns, targetNamespace);
}

namespace {

// If the value cannot be printed, it fails after the start of its element.
std::string PrintOrFail(CXmlWriter& writer, std::string const& name, std::string const& ns, QnVariant const& value,
                        char const* format) {
  try {
    return RuledValues::ToText(value, format);
  } catch (...) {
    writer.WriteStartElement(name, ns);
    throw;
  }
}

}  // namespace

bool CElementInfo::ElementToXmlPrim(CXmlSerializationContext const&, CXmlGeneratedClass const* holder,
                                    CXmlWriter* writer) const {
  QnVariant value;
  ReadProperty(holder, value);
  if (!value.IsValid()) return false;
  if (RulesInUse::AreSchema()) return WriteBySchema(value, *writer);
  CheckRestriction(value);
  char room[kGeneralRoom];
  std::string_view const text = TextAtHand(value, m_format, room);
  if (text.data() != nullptr) {
    writer->WriteTextElement(m_elementName, m_namespace, text, value.GetItemType(), m_number);
  } else {
    std::string const printed = PrintOrFail(*writer, m_elementName, m_namespace, value, m_format);
    writer->WriteTextElement(m_elementName, m_namespace, printed, value.GetItemType(), m_number);
  }
  return true;
}

bool CElementInfo::WriteBySchema(QnVariant const& value, CXmlWriter& writer) const {
  SchemaFacets const& facets = m_schemaFacets.Get(m_itemType, m_restrictions);
  char room[kGeneralRoom];
  std::string printed;
  std::string_view text;
  if (!facets.UsesText()) text = TextAtHand(value, kShortestFormat, room);
  if (text.data() == nullptr) {
    printed =
        facets.UsesText() ? facets.TextOf(value) : PrintOrFail(writer, m_elementName, m_namespace, value, nullptr);
    text = printed;
  }
  CheckBySchema(value, text);
  writer.WriteTextElement(m_elementName, m_namespace, text, value.GetItemType(), m_number);
  return true;
}

void CElementInfo::CheckBySchema(QnVariant const& value, std::string_view text) const {
  m_schemaFacets.Get(m_itemType, m_restrictions).CheckRead(m_elementName.c_str(), value, text);
}

bool CElementInfo::ElementToXmlPrimOpt(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                       CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, holder, writer);
}

bool CElementInfo::ElementToXmlEnum(CXmlSerializationContext const&, CXmlGeneratedClass const* holder,
                                    CXmlWriter* writer, EnumToText toText) const {
  QnVariant value;
  ReadProperty(holder, value);
  if (!value.IsValid()) return false;
  int const number = value.GetI4();
  char const* const text = toText(number);
  if (text == nullptr) {
    throw OfKind(FailureKind_BadValue, CQnException(FormatString("The number %d of the element [%s] has no text",
                                                                 number, m_elementName.c_str())));
  }
  WriteText(writer, text, ItemType_string);
  return true;
}

void CElementInfo::WriteText(CXmlWriter* writer, std::string_view text, ItemType type) const {
  writer->WriteTextElement(m_elementName, m_namespace, text, type, m_number);
}

bool CElementInfo::ElementToXmlEnumOpt(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                       CXmlWriter* writer, EnumToText toText) const {
  return ElementToXmlEnum(ctx, holder, writer, toText);
}

bool CElementInfo::ElementToXmlCls(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                   CXmlWriter* writer, bool inChoice) const {
  QnVariant value;  // keeps the child alive
  ReadProperty(holder, value);
  CXmlObjectBase const* const child = value.LookAtXmlObject();
  if (child == nullptr) return false;
  CXmlObjectBase::ToXml_Int(child, writer, false, m_namespace.c_str(), ctx, inChoice);
  return true;
}

bool CElementInfo::ElementToXmlCol(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                   CXmlWriter* writer) const {
  QnVariant value;  // keeps the collection alive
  CXmlCollectionBase* const collection = LookAtCollection(holder, value);
  if (collection->GetCount() <= 0) return false;
  CXmlObjectBase::ToXml_Int(collection->GetBase(), writer, false, m_namespace.c_str(), ctx, false);
  return true;
}

void CElementInfo::AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const {
  holder->AccessProperty(m_propertyIndex, read, value);
}

void CElementInfo::ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const {
  holder->ReadProperty(m_propertyIndex, value);
}

CXmlElement* CElementInfo::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                       CXmlSerializationContext const& ctx, bool inChoice) const {
  return ObjectAccess::FromXml(*object, parent, cursor, ctx, inChoice);
}

void CElementInfo::AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                       CXmlSerializationContext const& ctx) const {
  CXmlObjectBase::AttributesToXml_Int(object, writer, ctx);
}

bool CElementInfo::SeekRequiredElement(CXmlSerializationContext const& ctx, CXmlElement** cursor) const {
  while (!IsThisElement(ctx, *cursor)) {
    // This is checked before unknown elements: with this option on, none is ever skipped here.
    if (ctx.GetIgnoreMissingMandatoryElements()) return false;
    if (!ctx.GetIgnoreUnknownElements() || *cursor == nullptr) ThrowRequiredElement();
    *cursor = (*cursor)->GetNextSiblingElement();
  }
  return true;
}

void CElementInfo::ThrowRequiredElement() const {
  throw OfKind(FailureKind_MissingElement,
               CQnValidationException(FormatString("Failed to find a required element [%s]", m_elementName.c_str())));
}

bool CElementInfo::ValidateMandatory(bool found, bool required) const {
  if (found || !required) return found;
  throw OfKind(FailureKind_MissingElement, CQnValidationException(FormatString(
                                               "Failed to find the mandatory element [%s]", m_elementName.c_str())));
}

bool CElementInfo::TakePrimitive(CXmlGeneratedClass* holder, CXmlElement** cursor) const {
  return TakePrimitive(CXmlSerializationContext::m_defaultContext, holder, cursor);
}

bool CElementInfo::TakePrimitive(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                 CXmlElement** cursor) const {
  QnVariant value;
  std::string_view const text = XmlNodeAccess::TextOf(**cursor);
  if (RulesInUse::AreSchema()) {
    SchemaConversions::Convert(value, text, m_itemType, m_whitespaceRule);
    CheckBySchema(value, text);
  } else {
    VariantAccess::FromText(value, text, m_itemType, m_whitespaceRule);
    if (ctx.GetChecksFacetsOnReading()) CheckRestriction(value);
  }
  AccessProperty(holder, false, value);
  *cursor = (*cursor)->GetNextSiblingElement();
  return true;
}

bool CElementInfo::TakeEnum(CXmlGeneratedClass* holder, CXmlElement** cursor, EnumFromText fromText) const {
  QnVariant value;
  try {
    value.SetI4(fromText((*cursor)->GetTextView().data()));
  } catch (CQnException& failure) {
    GiveKind(failure, FailureKind_BadValue);
    throw;
  }
  AccessProperty(holder, false, value);
  *cursor = (*cursor)->GetNextSiblingElement();
  return true;
}

void CElementInfo::ReadChild(CXmlSerializationContext const& ctx, CXmlObjectBase* child, CXmlElement** cursor,
                             bool inChoice) const {
  CXmlElement* const element = *cursor;
  FromXml_Int(child, element, element->GetFirstElement(), ctx, inChoice);
  *cursor = element->GetNextSiblingElement();
}

bool CElementInfo::ReadPseudoChild(CXmlSerializationContext const& ctx, CXmlObjectBase* child, CXmlElement* parent,
                                   CXmlElement** cursor) const {
  CXmlElement* const next = FromXml_Int(child, parent, *cursor, ctx, false);
  if (next == *cursor) return false;
  *cursor = next;
  return true;
}

void CElementInfo::ReadAndStoreChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                     CXmlObjectBase* child, CXmlElement** cursor) const {
  FromXml_Int(child, *cursor, (*cursor)->GetFirstElement(), ctx, false);
  StoreChild(holder, child);
  *cursor = (*cursor)->GetNextSiblingElement();
}

CSmartPtr<CXmlObjectBase> CElementInfo::MakeChild(ClassFactory classFactory, int classId) const {
  CSmartPtr<CXmlObjectBase> child = classFactory(classId, m_elementName.c_str());
  if (!child)
    throw OfKind(FailureKind_Factory, CQnException(FormatString("The class factory made no object for the element [%s]",
                                                                m_elementName.c_str())));
  return child;
}

CSmartPtr<CXmlObjectBase> CElementInfo::FetchChild(CXmlGeneratedClass* holder) const {
  QnVariant value;
  AccessProperty(holder, true, value);
  CSmartPtr<CXmlObjectBase> child = value.GetXmlObject();
  if (!child)
    throw OfKind(FailureKind_Factory,
                 CQnException(FormatString("The class has no object for the element [%s]", m_elementName.c_str())));
  return child;
}

CSmartPtr<CXmlCollectionBase> CElementInfo::FetchCollection(CXmlGeneratedClass* holder) const {
  QnVariant value;
  return LookAtCollection(holder, value);
}

CXmlCollectionBase* CElementInfo::LookAtCollection(CXmlGeneratedClass const* holder, QnVariant& value) const {
  ReadProperty(holder, value);
  CXmlCollectionBase* const collection = value.LookAtXmlCollection();
  if (collection == nullptr) {
    throw OfKind(FailureKind_Factory,
                 CQnException(FormatString("The class has no collection for the element [%s]", m_elementName.c_str())));
  }
  return collection;
}

CSmartPtr<CXmlCollectionBase> CElementInfo::ReadCollection(CXmlGeneratedClass const* holder) const {
  return FetchCollection(const_cast<CXmlGeneratedClass*>(holder));  // reading changes nothing, see ReadProperty
}

void CElementInfo::StoreChild(CXmlGeneratedClass* holder, CXmlObjectBase* child) const {
  QnVariant value;
  value.SetXmlObject(child);
  AccessProperty(holder, false, value);
}

void CElementInfo::PseudoObjectAttributesToXml(XmlElementType childType, CXmlSerializationContext const& ctx,
                                               CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  if (childType != XmlElementType_Pseudo) return;
  QnVariant value;
  ReadProperty(holder, value);
  CSmartPtr<CXmlObjectBase> const child = value.GetXmlObject();
  if (child) AttributesToXml_Int(child.Get(), writer, ctx);
}

void CElementInfo::PseudoItemsAttributesToXml(XmlElementType childType, CXmlSerializationContext const& ctx,
                                              CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  if (childType != XmlElementType_Pseudo) return;
  AttributesToXml_Int(ReadCollection(holder).Get(), writer, ctx);
}

}  // namespace Quillon9Data
