#include "quillon9/descriptors/generated_class.h"

#include <typeinfo>

#include "base/fast_paths.h"
#include "base/plain_classes.h"
#include "descriptors/object_form.h"
#include "quillon9/binding/collection.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {

CParentElementInfo::CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType, char const* typeName,
                                       char const* typeNamespace, int textPropertyIndex, bool rejectUnknownAttributes,
                                       bool typeAttributeWanted)
    : m_groupType(groupType),
      m_elementType(elementType),
      m_typeName(typeName),
      m_typeNamespace(typeNamespace),
      m_textPropertyIndex(textPropertyIndex),
      m_rejectUnknownAttributes(rejectUnknownAttributes),
      m_typeAttributeWanted(typeAttributeWanted) {}

CParentElementInfo::~CParentElementInfo() = default;

}  // namespace Quillon9Data

namespace Quillon9 {

using namespace Quillon9Data;

[[gnu::init_priority(101)]] CQNCriticalSection CXmlGeneratedClass::m_csInit;

CXmlGeneratedClass::CXmlGeneratedClass() = default;
CXmlGeneratedClass::~CXmlGeneratedClass() = default;

[[gnu::noinline]] void CXmlGeneratedClass::FormDeleter::operator()(ObjectForm* form) const noexcept { delete form; }

void CXmlGeneratedClass::ReadProperty(int index, QnVariant& value) const {
  const_cast<CXmlGeneratedClass*>(this)->AccessProperty(index, true, value);
}

INillable const* CXmlGeneratedClass::AsNillable(PlainClasses* plainClasses) const {
  std::type_info const& type = typeid(*this);
  if (kPlainClasses.IsOn() && plainClasses != nullptr && plainClasses->Has(type)) {
    kPlainClasses.Verify([this] { return dynamic_cast<INillable const*>(this) == nullptr; });
    return nullptr;
  }
  auto const* const nillable = dynamic_cast<INillable const*>(this);
  if (nillable == nullptr && plainClasses != nullptr) plainClasses->Add(type);
  return nillable;
}

int CXmlGeneratedClass::GetClassElementInfoCount() const {
  int count = 0;
  for (CElementInfo** entry = GetClassElementInfo(); *entry != nullptr; ++entry) ++count;
  return count;
}

bool CXmlGeneratedClass::IsElementInList(CXmlSerializationContext const& ctx, CXmlElement* element) const {
  for (CElementInfo** entry = GetClassElementInfo(); *entry != nullptr; ++entry) {
    if ((*entry)->IsThisElement(ctx, element)) return true;
  }
  return false;
}

namespace {

/// Whether the class of \p entry is exactly one of these; a class derived from them does not count.
template <class... Members>
bool IsOneOf(CElementInfo const& entry) {
  return ((typeid(entry) == typeid(Members)) || ...);
}

bool MayStayEmpty(CElementInfo const& entry, CXmlGeneratedClass const* holder) {
  if (!IsOneOf<CElementInfoChoicePrimCol, CElementInfoChoiceClsCol, CElementInfoChoiceAbsClsCol,
               CElementInfoChoiceEnumCol, CElementInfoChoiceUntpdCol>(entry)) {
    return IsOneOf<CElementInfoChoicePrimOpt, CElementInfoChoiceClsOpt, CElementInfoChoiceAbsClsOpt,
                   CElementInfoChoiceEnumOpt, CElementInfoChoiceUntpdOpt>(entry);
  }
  QnVariant value;
  entry.ReadProperty(holder, value);
  CSmartPtr<CXmlCollectionBase> const collection = value.GetXmlCollection();
  return collection && collection->GetMinOccurs() == 0;
}

template <class Entry>
void DeleteTable(Entry**& table) {
  if (table == nullptr) return;
  for (Entry** entry = table; *entry != nullptr; ++entry) {
    delete *entry;
    *entry = nullptr;
  }
  delete[] table;
  table = nullptr;
}

}  // namespace

bool CXmlGeneratedClass::DoesElementContainOptionalElements() const {
  for (CElementInfo** entry = GetClassElementInfo(); *entry != nullptr; ++entry) {
    if (MayStayEmpty(**entry, this)) return true;
  }
  return false;
}

void CXmlGeneratedClass::CleanMetaData(CParentElementInfo*& classInfo, CElementInfo**& elements,
                                       CAttributeInfo**& attributes) {
  delete classInfo;
  classInfo = nullptr;
  DeleteTable(elements);
  DeleteTable(attributes);
}

}  // namespace Quillon9
