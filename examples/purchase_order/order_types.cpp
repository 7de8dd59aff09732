#include "order_types.h"

#include "../support/meta_data.h"

using namespace Quillon9;
using namespace Quillon9Data;
using Support::CMetaData;

namespace Orders {
namespace {

// Reading a property copies it into the variant, storing takes it from the variant. An absent property leaves the
// variant invalid.
void AccessText(std::string& property, bool read, QnVariant& value) {
  if (read) {
    value.SetString(property);
  } else {
    property = value.GetString();
  }
}

void AccessText(std::optional<std::string>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetString();
  } else if (property) {
    value.SetString(*property);
  }
}

void AccessI4(std::int32_t& property, bool read, QnVariant& value) {
  if (read) {
    value.SetI4(property);
  } else {
    property = value.GetI4();
  }
}

void AccessDecimal(CDecimal& property, bool read, QnVariant& value) {
  if (read) {
    value.SetDecimal(property);
  } else {
    property = value.GetDecimal();
  }
}

void AccessDate(std::optional<CDateTime>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetDate();
  } else if (property) {
    value.SetDate(*property);
  }
}

template <class T>
CSmartPtr<T> ObjectOf(QnVariant const& value) {
  return dynamic_cast<T*>(value.GetXmlObject().Get());
}

}  // namespace

// ---- USAddress

namespace {

void BuildUSAddress(CMetaData& data) {
  data.m_classInfo =
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "USAddress", "", -1, true, false);
  data.m_elements = new CElementInfo* [6] {};
  data.m_elements[0] = new CElementInfoSeqPrimMnd("name", "", CUSAddress::Property_name, ItemType_string, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[1] = new CElementInfoSeqPrimMnd("street", "", CUSAddress::Property_street, ItemType_string, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[2] = new CElementInfoSeqPrimMnd("city", "", CUSAddress::Property_city, ItemType_string, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[3] = new CElementInfoSeqPrimMnd("state", "", CUSAddress::Property_state, ItemType_string, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[4] = new CElementInfoSeqPrimMnd("zip", "", CUSAddress::Property_zip, ItemType_string, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions());
  data.m_attributes = new CAttributeInfo* [2] {};
  data.m_attributes[0] =
      new CAttributeInfoPrimitive("country", "", CUSAddress::Property_country, true, ItemType_string, nullptr,
                                  CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), "US");
}

CMetaData s_usAddress(&BuildUSAddress);

}  // namespace

CUSAddress::CUSAddress(char const* elementName) { SetElementName(elementName); }

CUSAddress::~CUSAddress() = default;

CSmartPtr<CUSAddress> CUSAddress::CreateInstance(char const* elementName) { return new CUSAddress(elementName); }

void CUSAddress::Init() {
  m_country.reset();
  m_name.clear();
  m_street.clear();
  m_city.clear();
  m_state.clear();
  m_zip.clear();
}

void CUSAddress::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_country: return AccessText(m_country, read, value);
    case Property_name: return AccessText(m_name, read, value);
    case Property_street: return AccessText(m_street, read, value);
    case Property_city: return AccessText(m_city, read, value);
    case Property_state: return AccessText(m_state, read, value);
    case Property_zip: return AccessText(m_zip, read, value);
  }
}

CParentElementInfo* CUSAddress::GetClassInfo() const { return s_usAddress.Get().m_classInfo; }
CElementInfo** CUSAddress::GetClassElementInfo() const { return s_usAddress.Get().m_elements; }
CAttributeInfo** CUSAddress::GetClassAttributeInfo() const { return s_usAddress.Get().m_attributes; }

// ---- The type of item, which has no name in the schema

namespace {

void BuildItem(CMetaData& data) {
  data.m_classInfo =
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "item", "", -1, true, false);
  data.m_elements = new CElementInfo* [7] {};
  data.m_elements[0] =
      new CElementInfoSeqPrimMnd("productName", "", CItem::Property_productName, ItemType_string, nullptr,
                                 CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[1] = new CElementInfoSeqPrimMnd("quantity", "", CItem::Property_quantity, ItemType_i4, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Collapse,
                                                  CPrimitiveRestrictions("", -1, -1, "1", "", "", "100", -1));
  data.m_elements[2] = new CElementInfoSeqPrimMnd("USPrice", "", CItem::Property_USPrice, ItemType_decimal, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions());
  data.m_elements[3] = new CElementInfoSeqPrimOpt("comment", "", CItem::Property_comment, ItemType_string, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[4] = new CElementInfoSeqPrimOpt("shipDate", "", CItem::Property_shipDate, ItemType_date, nullptr,
                                                  CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions());
  data.m_elements[5] = new CElementInfoSeqPrimCol("serial", "", CItem::Property_serial);
  data.m_attributes = new CAttributeInfo* [2] {};
  data.m_attributes[0] =
      new CAttributeInfoPrimitive("partNum", "", CItem::Property_partNum, false, ItemType_string, nullptr,
                                  CWhitespaceUtils::WhitespaceRule_Preserve,
                                  CPrimitiveRestrictions("\\d{3}-[A-Z]{2}", -1, -1, "", "", "", "", -1), nullptr);
}

CMetaData s_item(&BuildItem);

}  // namespace

CItem::CItem(char const* elementName)
    : m_serial(new CstringCol("serial", "", 0, -1, "", 1, 20, "", "", "", "", -1,
                              CWhitespaceUtils::WhitespaceRule_Collapse, nullptr)) {
  SetElementName(elementName);
}

CItem::~CItem() = default;

CSmartPtr<CItem> CItem::CreateInstance(char const* elementName) { return new CItem(elementName); }

void CItem::Init() {
  m_partNum.clear();
  m_productName.clear();
  m_quantity = 0;
  m_USPrice = CDecimal();
  m_comment.reset();
  m_shipDate.reset();
  m_serial->Clear();
}

void CItem::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_partNum: return AccessText(m_partNum, read, value);
    case Property_productName: return AccessText(m_productName, read, value);
    case Property_quantity: return AccessI4(m_quantity, read, value);
    case Property_USPrice: return AccessDecimal(m_USPrice, read, value);
    case Property_comment: return AccessText(m_comment, read, value);
    case Property_shipDate: return AccessDate(m_shipDate, read, value);
    case Property_serial:  // the collection object stays; reading fills it
      if (read) value.SetXmlCollection(m_serial);
      return;
  }
}

CParentElementInfo* CItem::GetClassInfo() const { return s_item.Get().m_classInfo; }
CElementInfo** CItem::GetClassElementInfo() const { return s_item.Get().m_elements; }
CAttributeInfo** CItem::GetClassAttributeInfo() const { return s_item.Get().m_attributes; }

// ---- The collection of items

CItemCol::CItemCol(char const* elementName, char const* ns, int minOccurs, int maxOccurs)
    : CXmlCollection(elementName, ns, minOccurs, maxOccurs) {}

CItemCol::~CItemCol() = default;

CSmartPtr<CItemCol> CItemCol::CreateInstance(char const* elementName, char const* ns, int minOccurs, int maxOccurs) {
  return new CItemCol(elementName, ns, minOccurs, maxOccurs);
}

CSmartPtr<CItem> CItemCol::Item(int index) const { return static_cast<CItem*>(GetNodeAtIndex(index)->m_item.Get()); }

CSmartPtr<CItem> CItemCol::Add() {
  CSmartPtr<CItem> item = CItem::CreateInstance(GetElementName().c_str());
  AppendItem(item);
  return item;
}

void CItemCol::Add(CItem* item) {
  Throw_IfPropertyIsNull(item, GetElementName().c_str());
  Throw_IfElementNameDiffers(item, GetElementName().c_str());
  AppendItem(item);
}

void CItemCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const {
  ValidateCount(ctx);
  for (CItem const& item : *this) CXmlObjectBase::ToXml_Int(&item, writer, false, ns, ctx, false);
}

// [read-items]
// Reads the run of siblings that are items, and returns the first sibling that is not an item.
CXmlElement* CItemCol::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) {
  std::string const ns = GetNamespace();
  while (DoesElementNameMatch(ctx, cursor, GetElementName().c_str(), ns.c_str())) {
    CSmartPtr<CItem> const item = CItem::CreateInstance(GetElementName().c_str());
    CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), ctx);
    AppendItem(item);
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}
// [read-items]

// ---- Items

namespace {

void BuildItems(CMetaData& data) {
  data.m_classInfo =
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "Items", "", -1, true, false);
  data.m_elements = new CElementInfo* [2] {};
  data.m_elements[0] = new CElementInfoSeqClsCol("item", "", CItems::Property_item, XmlElementType_Element);
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_items(&BuildItems);

}  // namespace

CItems::CItems(char const* elementName) : m_item(CItemCol::CreateInstance("item", "", 0, -1)) {
  SetElementName(elementName);
}

CItems::~CItems() = default;

CSmartPtr<CItems> CItems::CreateInstance(char const* elementName) { return new CItems(elementName); }

void CItems::Init() { m_item->Clear(); }

void CItems::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_item:
      if (read) value.SetXmlCollection(m_item);
      return;
  }
}

CParentElementInfo* CItems::GetClassInfo() const { return s_items.Get().m_classInfo; }
CElementInfo** CItems::GetClassElementInfo() const { return s_items.Get().m_elements; }
CAttributeInfo** CItems::GetClassAttributeInfo() const { return s_items.Get().m_attributes; }

// ---- PurchaseOrderType

namespace {

void BuildPurchaseOrderType(CMetaData& data) {
  data.m_classInfo = new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "PurchaseOrderType",
                                            "", -1, true, false);
  data.m_elements = new CElementInfo* [5] {};
  data.m_elements[0] =
      new CElementInfoSeqClsMnd("shipTo", "", CPurchaseOrderType::Property_shipTo, XmlElementType_Element,
                                &CClassFactory::CreateObject, CClassFactory::ClassId_USAddress, true);
  data.m_elements[1] =
      new CElementInfoSeqClsOpt("billTo", "", CPurchaseOrderType::Property_billTo, XmlElementType_Element,
                                &CClassFactory::CreateObject, CClassFactory::ClassId_USAddress);
  data.m_elements[2] =
      new CElementInfoSeqPrimOpt("comment", "", CPurchaseOrderType::Property_comment, ItemType_string, nullptr,
                                 CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions());
  data.m_elements[3] =
      new CElementInfoSeqClsMnd("items", "", CPurchaseOrderType::Property_items, XmlElementType_Element,
                                &CClassFactory::CreateObject, CClassFactory::ClassId_Items, true);
  data.m_attributes = new CAttributeInfo* [2] {};
  data.m_attributes[0] =
      new CAttributeInfoPrimitive("orderDate", "", CPurchaseOrderType::Property_orderDate, true, ItemType_date, nullptr,
                                  CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), nullptr);
}

CMetaData s_purchaseOrderType(&BuildPurchaseOrderType);

}  // namespace

CPurchaseOrderType::CPurchaseOrderType(char const* elementName) {
  SetElementName(elementName);
  CPurchaseOrderType::Init();
}

CPurchaseOrderType::~CPurchaseOrderType() = default;

CSmartPtr<CPurchaseOrderType> CPurchaseOrderType::CreateInstance(char const* elementName) {
  return new CPurchaseOrderType(elementName);
}

void CPurchaseOrderType::SetShipTo(CUSAddress* value) {
  Throw_IfPropertyIsNull(value, "shipTo");
  Throw_IfElementNameDiffers(value, "shipTo");
  m_shipTo = value;
}

void CPurchaseOrderType::SetBillTo(CUSAddress* value) {
  Throw_IfElementNameDiffers(value, "billTo");
  m_billTo = value;
}

void CPurchaseOrderType::SetItems(CItems* value) {
  Throw_IfPropertyIsNull(value, "items");
  Throw_IfElementNameDiffers(value, "items");
  m_items = value;
}

void CPurchaseOrderType::Init() {
  m_orderDate.reset();
  m_shipTo = CUSAddress::CreateInstance("shipTo");
  m_billTo = nullptr;
  m_comment.reset();
  m_items = CItems::CreateInstance("items");
}

void CPurchaseOrderType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_orderDate: return AccessDate(m_orderDate, read, value);
    case Property_shipTo: return read ? value.SetXmlObject(m_shipTo) : SetShipTo(ObjectOf<CUSAddress>(value));
    case Property_billTo: return read ? value.SetXmlObject(m_billTo) : SetBillTo(ObjectOf<CUSAddress>(value));
    case Property_comment: return AccessText(m_comment, read, value);
    case Property_items: return read ? value.SetXmlObject(m_items) : SetItems(ObjectOf<CItems>(value));
  }
}

CParentElementInfo* CPurchaseOrderType::GetClassInfo() const { return s_purchaseOrderType.Get().m_classInfo; }
CElementInfo** CPurchaseOrderType::GetClassElementInfo() const { return s_purchaseOrderType.Get().m_elements; }
CAttributeInfo** CPurchaseOrderType::GetClassAttributeInfo() const { return s_purchaseOrderType.Get().m_attributes; }

// ---- The factory

CSmartPtr<CXmlObjectBase> CClassFactory::CreateObject(int classId, char const* elementName) {
  switch (classId) {
    case ClassId_PurchaseOrderType: return CPurchaseOrderType::CreateInstance(elementName);
    case ClassId_USAddress: return CUSAddress::CreateInstance(elementName);
    case ClassId_Items: return CItems::CreateInstance(elementName);
    case ClassId_Item: return CItem::CreateInstance(elementName);
  }
  throw CQnInvalidParamException(FormatString("Unknown class [%d]", classId));
}

}  // namespace Orders
