#include "quillon9/generated/object_col.h"

#include "binding/failure_report.h"
#include "binding/name_match.h"
#include "generated/bound_access.h"
#include "generated/built_class.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

using namespace Quillon9Data;

CObjectCollection::CObjectCollection(char const* name, char const* ns, int minOccurs, int maxOccurs,
                                     CClassTables const* tables, Create create, XmlElementType itemType)
    : CXmlCollection(name, ns, minOccurs, maxOccurs),
      m_itemNamespace(CXmlCollection::GetNamespace()),
      m_tables(tables),
      m_create(create),
      m_hasRounds(tables != nullptr ? tables->GetRow().round : itemType != XmlElementType_Element) {}

CObjectCollection::CObjectCollection(CElementRow const& row)
    : CXmlCollection(row.name, row.ns, MayBeAbsent(row) ? 0 : row.minOccurs, row.maxOccurs),
      m_itemNamespace(row.ns),
      m_tables(row.type),
      m_create(nullptr),
      m_hasRounds(row.kind == RowKind::Rounds) {}

CObjectCollection::~CObjectCollection() = default;

void CObjectCollection::ValidateCount(CXmlSerializationContext const& ctx) const {
  if (!m_hasRounds || m_tables == nullptr || IsValidCount(ctx)) return CXmlCollection::ValidateCount(ctx);
  std::string names;  // rounds have none of their own
  m_tables->Built().Round().AppendNames(names);
  RequireValidCount(ctx, names.c_str());
}

CSmartPtr<CXmlObjectBase> CObjectCollection::NewItem() const {
  if (m_tables != nullptr) return m_tables->CreateObject(GetElementName().c_str());
  return m_create(GetElementName().c_str());
}

CSmartPtr<CXmlObjectBase> CObjectCollection::ItemFor(CXmlSerializationContext const& ctx, CXmlElement* element) {
  if (!IsElementNamed(ctx, element, GetElementName(), m_itemNamespace)) return nullptr;
  if (m_tables == nullptr) return NewItem();
  return BoundAccess::MakeFor(*m_tables, *element, GetElementName().c_str());
}

void CObjectCollection::Prepare(CXmlObjectBase* item) {
  Throw_IfPropertyIsNull(item, GetElementName().c_str());
  if (m_tables != nullptr) {
    BoundAccess::Adopt(static_cast<CBoundObject&>(*item), GetElementName().c_str(), *m_tables);
  } else if (!m_hasRounds) {
    Throw_IfElementNameDiffers(item, GetElementName().c_str());
  }
}

void CObjectCollection::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                                  bool) const {
  ValidateCount(ctx);
  for (CNode const* node = GetFirstNode(); node != nullptr; node = node->m_next) {
    CXmlObjectBase::ToXml_Int(node->m_item.Get(), writer, false, ns, ctx, false);
  }
}

CXmlElement* CObjectCollection::FromXml_Int(CXmlElement* parent, CXmlElement* cursor,
                                            CXmlSerializationContext const& ctx, bool) {
  return m_hasRounds ? ReadRounds(parent, cursor, ctx) : ReadItems(parent, cursor, ctx);
}

CXmlElement* CObjectCollection::ReadItems(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx) {
  for (; cursor != nullptr; cursor = cursor->GetNextSiblingElement()) {
    try {
      CSmartPtr<CXmlObjectBase> const item = ItemFor(ctx, cursor);
      if (!item) break;
      CXmlObjectBase::FromXml_Int(item.Get(), cursor, cursor->GetFirstElement(), ctx);
      AppendItem(item.Get());
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {cursor})) throw;
    }
  }
  return cursor;
}

CXmlElement* CObjectCollection::ReadRounds(CXmlElement* parent, CXmlElement* cursor,
                                           CXmlSerializationContext const& ctx) {
  while (cursor != nullptr) {
    if (m_tables != nullptr && !m_tables->Built().Round().Begins(ctx, cursor)) break;
    CSmartPtr<CXmlObjectBase> const item = NewItem();
    if (m_tables != nullptr) BoundAccess::MarkNew(*item);
    CXmlElement* const next = CXmlObjectBase::FromXml_Int(item.Get(), parent, cursor, ctx);
    if (next == cursor) break;
    AppendItem(item.Get());
    cursor = next;
  }
  return cursor;
}

}  // namespace Quillon9
