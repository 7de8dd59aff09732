#include "quillon9/generated/object_col.h"

#include "binding/failure_report.h"
#include "binding/name_match.h"
#include "generated/bound_access.h"
#include "generated/built_class.h"
#include "generated/element_group.h"
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
      m_row(&row),
      m_tables(row.type),
      m_create(nullptr),
      m_hasRounds(row.kind == RowKind::Rounds) {}

CObjectCollection::~CObjectCollection() = default;

ValueRules CObjectCollection::GetDefaultValueRules() const {
  CClassTables const* tables = m_tables;
  for (int i = 0; tables == nullptr && HasGroup() && i < m_row->group->count; ++i) {
    tables = m_row->group->elements[i].type;
  }
  return tables != nullptr ? tables->GetRow().valueRules : CXmlCollection::GetDefaultValueRules();
}

void CObjectCollection::ValidateCount(CXmlSerializationContext const& ctx) const {
  if (!m_hasRounds || m_tables == nullptr || IsValidCount(ctx)) return CXmlCollection::ValidateCount(ctx);
  std::string names;  // rounds have none of their own
  m_tables->Built().Round().AppendNames(names);
  RequireValidCount(ctx, names.c_str());
}

bool CObjectCollection::HasGroup() const { return m_row != nullptr && m_row->group != nullptr; }
unsigned CObjectCollection::Block() const { return m_row != nullptr ? m_row->block : 0; }

CSmartPtr<CXmlObjectBase> CObjectCollection::NewItem() const {
  if (HasGroup()) return NewHead(*m_row);
  if (m_tables != nullptr) return m_tables->CreateObject(GetElementName().c_str());
  return m_create(GetElementName().c_str());
}

CSmartPtr<CXmlObjectBase> CObjectCollection::ItemFor(CXmlSerializationContext const& ctx, CXmlElement* element) {
  if (!IsElementNamed(ctx, element, GetElementName(), m_itemNamespace)) return nullptr;
  if (m_tables == nullptr) return NewItem();
  return BoundAccess::MakeFor(*m_tables, *element, GetElementName().c_str(), Block());
}

void CObjectCollection::Prepare(CXmlObjectBase* item) {
  Throw_IfPropertyIsNull(item, GetElementName().c_str());
  if (HasGroup()) {
    AdoptStandIn(*item, *m_row);
  } else if (m_tables != nullptr) {
    BoundAccess::Adopt(static_cast<CBoundObject&>(*item), GetElementName().c_str(), *m_tables, Block());
  } else if (!m_hasRounds) {
    Throw_IfElementNameDiffers(item, GetElementName().c_str());
  }
}

void CObjectCollection::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                                  bool) const {
  ValidateCount(ctx);
  bool const hasGroup = HasGroup();
  for (CNode const* node = GetFirstNode(); node != nullptr; node = node->m_next) {
    CXmlObjectBase const* const item = node->m_item.Get();
    char const* const itemNamespace = hasGroup ? NamespaceOfStandIn(*item, *m_row) : ns;
    CXmlObjectBase::ToXml_Int(item, writer, false, itemNamespace, ctx, false);
  }
}

CXmlElement* CObjectCollection::FromXml_Int(CXmlElement* parent, CXmlElement* cursor,
                                            CXmlSerializationContext const& ctx, bool) {
  return m_hasRounds ? ReadRounds(parent, cursor, ctx) : ReadItems(parent, cursor, ctx);
}

/// The item that \p cursor is, read; null where it is none.
CSmartPtr<CXmlObjectBase> CObjectCollection::ReadItem(CXmlElement* parent, CXmlElement* cursor,
                                                      CXmlSerializationContext const& ctx) {
  if (HasGroup()) return ReadStandIn(*m_row, parent, &cursor, ctx);
  CSmartPtr<CXmlObjectBase> item = ItemFor(ctx, cursor);
  if (item) CXmlObjectBase::FromXml_Int(item.Get(), cursor, cursor->GetFirstElement(), ctx);
  return item;
}

CXmlElement* CObjectCollection::ReadItems(CXmlElement* parent, CXmlElement* cursor,
                                          CXmlSerializationContext const& ctx) {
  for (; cursor != nullptr && !IsFull(); cursor = cursor->GetNextSiblingElement()) {
    try {
      CSmartPtr<CXmlObjectBase> const item = ReadItem(parent, cursor, ctx);
      if (!item) break;
      AppendItem(item.Get());
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {cursor})) throw;
    }
  }
  return cursor;
}

CXmlElement* CObjectCollection::ReadRounds(CXmlElement* parent, CXmlElement* cursor,
                                           CXmlSerializationContext const& ctx) {
  while (cursor != nullptr && !IsFull()) {
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
