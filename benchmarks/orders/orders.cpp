#include "orders/orders.h"

#include <cstring>

#include "../../examples/support/meta_data.h"

using namespace Quillon9;
using namespace Quillon9Data;
using Support::CMetaData;

namespace Orders {
namespace {

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// The simple types of the schema that have facets.

CPrimitiveRestrictions IdType() { return {"", -1, -1, "1", "", "", "", -1}; }
CPrimitiveRestrictions CurrencyType() { return {"[A-Z]{3}", -1, -1, "", "", "", "", -1}; }
CPrimitiveRestrictions NameType() { return {"", 1, 120, "", "", "", "", -1}; }
CPrimitiveRestrictions PostalCodeType() { return {"", -1, 12, "", "", "", "", -1}; }
CPrimitiveRestrictions CountryType() { return {"", -1, -1, "", "", "", "", 2}; }
CPrimitiveRestrictions SkuType() { return {"\\d{3}-[A-Z]{2}", -1, -1, "", "", "", "", -1}; }
CPrimitiveRestrictions QuantityType() { return {"", -1, -1, "1", "10000", "", "", -1}; }
CPrimitiveRestrictions PriceType() { return {"", -1, -1, "0", "", "", "", -1}; }
CPrimitiveRestrictions WeightType() { return {"", -1, -1, "", "", "0", "", -1}; }
CPrimitiveRestrictions CommentType() { return {"", -1, 400, "", "", "", "", -1}; }
CPrimitiveRestrictions LabelType() { return {"", -1, 2048, "", "", "", "", -1}; }

CParentElementInfo* Sequence(char const* typeName) {
  return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, typeName, kNamespace, -1, true,
                                false);
}

CElementInfo* Mandatory(char const* name, int index, ItemType type, CWhitespaceUtils::WhitespaceRule rule,
                        CPrimitiveRestrictions const& restrictions) {
  return new CElementInfoSeqPrimMnd(name, kNamespace, index, type, nullptr, rule, restrictions);
}

CElementInfo* Optional(char const* name, int index, ItemType type, CWhitespaceUtils::WhitespaceRule rule,
                       CPrimitiveRestrictions const& restrictions) {
  return new CElementInfoSeqPrimOpt(name, kNamespace, index, type, nullptr, rule, restrictions);
}

// Reading a property copies it to the variant, and storing copies it back; an absent one leaves the variant invalid.

void Access(std::string& property, bool read, QnVariant& value) {
  if (read) {
    value.SetString(property);
  } else {
    property = value.GetString();
  }
}

void Access(std::optional<std::string>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetString();
  } else if (property) {
    value.SetString(*property);
  }
}

void Access(std::optional<CBinaryData>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetBase64Binary();
  } else if (property) {
    value.SetBase64Binary(*property);
  }
}

void Access(std::int32_t& property, bool read, QnVariant& value) {
  if (read) {
    value.SetI4(property);
  } else {
    property = value.GetI4();
  }
}

void Access(double& property, bool read, QnVariant& value) {
  if (read) {
    value.SetR8(property);
  } else {
    property = value.GetR8();
  }
}

void Access(CDecimal& property, bool read, QnVariant& value) {
  if (read) {
    value.SetDecimal(property);
  } else {
    property = value.GetDecimal();
  }
}

void AccessDate(CDateTime& property, bool read, QnVariant& value) {
  if (read) {
    value.SetDate(property);
  } else {
    property = value.GetDate();
  }
}

void AccessDateTime(CDateTime& property, bool read, QnVariant& value) {
  if (read) {
    value.SetDateTime(property);
  } else {
    property = value.GetDateTime();
  }
}

void Access(bool& property, bool read, QnVariant& value) {
  if (read) {
    value.SetBoolean(property);
  } else {
    property = value.GetBoolean();
  }
}

void Access(StatusType& property, bool read, QnVariant& value) {
  if (read) {
    value.SetI4(property);
  } else {
    property = static_cast<StatusType>(value.GetI4());
  }
}

template <class T>
CSmartPtr<T> ObjectOf(QnVariant const& value) {
  return dynamic_cast<T*>(value.GetXmlObject().Get());
}

}  // namespace

// ---- StatusType

namespace {

constexpr char const* kStatusTexts[] = {"new", "confirmed", "packed", "shipped", "returned", "cancelled"};

}  // namespace

char const* StatusTypeToText(int value) {
  if (value < StatusType_new || value > StatusType_cancelled) {
    throw CQnInvalidValueException(FormatString("The value [%d] is no StatusType", value));
  }
  return kStatusTexts[value];
}

int StatusTypeFromText(char const* text) {
  for (int value = StatusType_new; value <= StatusType_cancelled; ++value) {
    if (std::strcmp(kStatusTexts[value], text) == 0) return value;
  }
  throw CQnInvalidValueException(FormatString("The value [%s] is no StatusType", text));
}

// ---- AddressType

namespace {

void BuildAddress(CMetaData& data) {
  data.m_classInfo = Sequence("AddressType");
  data.m_elements = new CElementInfo* [5] {};
  data.m_elements[0] = Mandatory("street", CAddress::Property_street, ItemType_string, kPreserve, NameType());
  data.m_elements[1] = Mandatory("city", CAddress::Property_city, ItemType_string, kPreserve, NameType());
  data.m_elements[2] =
      Mandatory("postalCode", CAddress::Property_postalCode, ItemType_string, kPreserve, PostalCodeType());
  data.m_elements[3] = Mandatory("country", CAddress::Property_country, ItemType_string, kPreserve, CountryType());
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_address(&BuildAddress);

}  // namespace

CAddress::CAddress(char const* elementName) { SetElementName(elementName); }

CAddress::~CAddress() = default;

CSmartPtr<CAddress> CAddress::CreateInstance(char const* elementName) { return new CAddress(elementName); }

void CAddress::Init() {
  m_street.clear();
  m_city.clear();
  m_postalCode.clear();
  m_country.clear();
}

void CAddress::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_street: return Access(m_street, read, value);
    case Property_city: return Access(m_city, read, value);
    case Property_postalCode: return Access(m_postalCode, read, value);
    case Property_country: return Access(m_country, read, value);
  }
}

CParentElementInfo* CAddress::GetClassInfo() const { return s_address.Get().m_classInfo; }
CElementInfo** CAddress::GetClassElementInfo() const { return s_address.Get().m_elements; }
CAttributeInfo** CAddress::GetClassAttributeInfo() const { return s_address.Get().m_attributes; }

// ---- CustomerType

namespace {

void BuildCustomer(CMetaData& data) {
  data.m_classInfo = Sequence("CustomerType");
  data.m_elements = new CElementInfo* [4] {};
  data.m_elements[0] = Mandatory("name", CCustomer::Property_name, ItemType_string, kPreserve, NameType());
  data.m_elements[1] =
      Optional("email", CCustomer::Property_email, ItemType_string, kPreserve, CPrimitiveRestrictions());
  data.m_elements[2] =
      new CElementInfoSeqClsMnd("address", kNamespace, CCustomer::Property_address, XmlElementType_Element,
                                &CClassFactory::CreateObject, CClassFactory::ClassId_AddressType, true);
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_customer(&BuildCustomer);

}  // namespace

CCustomer::CCustomer(char const* elementName) : m_address(CAddress::CreateInstance()) { SetElementName(elementName); }

CCustomer::~CCustomer() = default;

CSmartPtr<CCustomer> CCustomer::CreateInstance(char const* elementName) { return new CCustomer(elementName); }

void CCustomer::SetAddress(CAddress* value) {
  Throw_IfPropertyIsNull(value, "address");
  Throw_IfElementNameDiffers(value, "address");
  m_address = value;
}

void CCustomer::Init() {
  m_name.clear();
  m_email.reset();
  m_address->Init();
}

void CCustomer::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_name: return Access(m_name, read, value);
    case Property_email: return Access(m_email, read, value);
    case Property_address: return read ? value.SetXmlObject(m_address) : SetAddress(ObjectOf<CAddress>(value));
  }
}

CParentElementInfo* CCustomer::GetClassInfo() const { return s_customer.Get().m_classInfo; }
CElementInfo** CCustomer::GetClassElementInfo() const { return s_customer.Get().m_elements; }
CAttributeInfo** CCustomer::GetClassAttributeInfo() const { return s_customer.Get().m_attributes; }

// ---- ItemType

namespace {

void BuildItem(CMetaData& data) {
  data.m_classInfo = Sequence("ItemType");
  data.m_elements = new CElementInfo* [8] {};
  data.m_elements[0] = Mandatory("sku", CItem::Property_sku, ItemType_string, kPreserve, SkuType());
  data.m_elements[1] = Mandatory("quantity", CItem::Property_quantity, ItemType_i4, kCollapse, QuantityType());
  data.m_elements[2] = Mandatory("price", CItem::Property_price, ItemType_decimal, kCollapse, PriceType());
  data.m_elements[3] = Mandatory("weight", CItem::Property_weight, ItemType_r8, kCollapse, WeightType());
  data.m_elements[4] = Optional("comment", CItem::Property_comment, ItemType_string, kPreserve, CommentType());
  data.m_elements[5] = Mandatory("gift", CItem::Property_gift, ItemType_boolean, kCollapse, CPrimitiveRestrictions());
  data.m_elements[6] = Optional("label", CItem::Property_label, ItemType_base64Binary, kCollapse, LabelType());
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_item(&BuildItem);

}  // namespace

CItem::CItem(char const* elementName) { SetElementName(elementName); }

CItem::~CItem() = default;

CSmartPtr<CItem> CItem::CreateInstance(char const* elementName) { return new CItem(elementName); }

void CItem::Init() {
  m_sku.clear();
  m_quantity = 0;
  m_price = CDecimal();
  m_weight = 0;
  m_comment.reset();
  m_gift = false;
  m_label.reset();
}

void CItem::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_sku: return Access(m_sku, read, value);
    case Property_quantity: return Access(m_quantity, read, value);
    case Property_price: return Access(m_price, read, value);
    case Property_weight: return Access(m_weight, read, value);
    case Property_comment: return Access(m_comment, read, value);
    case Property_gift: return Access(m_gift, read, value);
    case Property_label: return Access(m_label, read, value);
  }
}

CParentElementInfo* CItem::GetClassInfo() const { return s_item.Get().m_classInfo; }
CElementInfo** CItem::GetClassElementInfo() const { return s_item.Get().m_elements; }
CAttributeInfo** CItem::GetClassAttributeInfo() const { return s_item.Get().m_attributes; }

// ---- The collections

template <class T>
CSmartPtr<T> CObjectCol<T>::Add() {
  CSmartPtr<T> item = T::CreateInstance(GetElementName().c_str());
  AppendItem(item);
  return item;
}

template <class T>
void CObjectCol<T>::Add(T* item) {
  Throw_IfPropertyIsNull(item, GetElementName().c_str());
  Throw_IfElementNameDiffers(item, GetElementName().c_str());
  AppendItem(item);
}

template <class T>
void CObjectCol<T>::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                              bool) const {
  ValidateCount(ctx);
  for (T const& item : *this) CXmlObjectBase::ToXml_Int(&item, writer, false, ns, ctx, false);
}

// Takes the run of siblings that are items, and returns the first sibling that is not.
template <class T>
CXmlElement* CObjectCol<T>::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) {
  std::string const ns = GetNamespace();
  while (DoesElementNameMatch(ctx, cursor, GetElementName().c_str(), ns.c_str())) {
    CSmartPtr<T> const item = T::CreateInstance(GetElementName().c_str());
    CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), ctx);
    AppendItem(item);
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}

template class CObjectCol<CItem>;
template class CObjectCol<COrder>;

CItemCol::~CItemCol() = default;

CSmartPtr<CItemCol> CItemCol::CreateInstance(char const* elementName, char const* ns, int minOccurs, int maxOccurs) {
  return new CItemCol(elementName, ns, minOccurs, maxOccurs);
}

COrderCol::~COrderCol() = default;

CSmartPtr<COrderCol> COrderCol::CreateInstance(char const* elementName, char const* ns, int minOccurs, int maxOccurs) {
  return new COrderCol(elementName, ns, minOccurs, maxOccurs);
}

// ---- OrderType

namespace {

void BuildOrder(CMetaData& data) {
  data.m_classInfo = Sequence("OrderType");
  data.m_elements = new CElementInfo* [5] {};
  data.m_elements[0] = Mandatory("date", COrder::Property_date, ItemType_date, kCollapse, CPrimitiveRestrictions());
  data.m_elements[1] =
      Mandatory("placed", COrder::Property_placed, ItemType_datetime, kCollapse, CPrimitiveRestrictions());
  data.m_elements[2] =
      new CElementInfoSeqClsMnd("customer", kNamespace, COrder::Property_customer, XmlElementType_Element,
                                &CClassFactory::CreateObject, CClassFactory::ClassId_CustomerType, true);
  data.m_elements[3] = new CElementInfoSeqClsCol("item", kNamespace, COrder::Property_item, XmlElementType_Element);
  data.m_attributes = new CAttributeInfo* [4] {};
  data.m_attributes[0] = new CAttributeInfoPrimitive("id", "", COrder::Property_id, false, ItemType_i4, nullptr,
                                                     kCollapse, IdType(), nullptr);
  data.m_attributes[1] = new CAttributeInfoEnum("status", "", COrder::Property_status, false, &StatusTypeToText,
                                                &StatusTypeFromText, nullptr);
  data.m_attributes[2] = new CAttributeInfoPrimitive("currency", "", COrder::Property_currency, false, ItemType_string,
                                                     nullptr, kPreserve, CurrencyType(), nullptr);
}

CMetaData s_order(&BuildOrder);

}  // namespace

COrder::COrder(char const* elementName)
    : m_customer(CCustomer::CreateInstance()), m_item(CItemCol::CreateInstance("item", kNamespace, 1, 12)) {
  SetElementName(elementName);
}

COrder::~COrder() = default;

CSmartPtr<COrder> COrder::CreateInstance(char const* elementName) { return new COrder(elementName); }

void COrder::SetCustomer(CCustomer* value) {
  Throw_IfPropertyIsNull(value, "customer");
  Throw_IfElementNameDiffers(value, "customer");
  m_customer = value;
}

void COrder::Init() {
  m_date.Clear();
  m_placed.Clear();
  m_customer->Init();
  m_item->Clear();
  m_id = 0;
  m_status = StatusType_new;
  m_currency.clear();
}

void COrder::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_date: return AccessDate(m_date, read, value);
    case Property_placed: return AccessDateTime(m_placed, read, value);
    case Property_customer: return read ? value.SetXmlObject(m_customer) : SetCustomer(ObjectOf<CCustomer>(value));
    case Property_item:
      if (read) value.SetXmlCollection(m_item);
      return;
    case Property_id: return Access(m_id, read, value);
    case Property_status: return Access(m_status, read, value);
    case Property_currency: return Access(m_currency, read, value);
  }
}

CParentElementInfo* COrder::GetClassInfo() const { return s_order.Get().m_classInfo; }
CElementInfo** COrder::GetClassElementInfo() const { return s_order.Get().m_elements; }
CAttributeInfo** COrder::GetClassAttributeInfo() const { return s_order.Get().m_attributes; }

// ---- OrdersType

namespace {

void BuildOrders(CMetaData& data) {
  data.m_classInfo = Sequence("OrdersType");
  data.m_elements = new CElementInfo* [2] {};
  data.m_elements[0] = new CElementInfoSeqClsCol("order", kNamespace, COrders::Property_order, XmlElementType_Element);
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_orders(&BuildOrders);

}  // namespace

COrders::COrders(char const* elementName) : m_order(COrderCol::CreateInstance("order", kNamespace, 0, -1)) {
  SetElementName(elementName);
}

COrders::~COrders() = default;

CSmartPtr<COrders> COrders::CreateInstance(char const* elementName) { return new COrders(elementName); }

void COrders::Init() { m_order->Clear(); }

void COrders::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_order:
      if (read) value.SetXmlCollection(m_order);
      return;
  }
}

CParentElementInfo* COrders::GetClassInfo() const { return s_orders.Get().m_classInfo; }
CElementInfo** COrders::GetClassElementInfo() const { return s_orders.Get().m_elements; }
CAttributeInfo** COrders::GetClassAttributeInfo() const { return s_orders.Get().m_attributes; }

// ---- The factory

CSmartPtr<CXmlObjectBase> CClassFactory::CreateObject(int classId, char const* elementName) {
  switch (classId) {
    case ClassId_OrdersType: return COrders::CreateInstance(elementName);
    case ClassId_OrderType: return COrder::CreateInstance(elementName);
    case ClassId_CustomerType: return CCustomer::CreateInstance(elementName);
    case ClassId_AddressType: return CAddress::CreateInstance(elementName);
    case ClassId_ItemType: return CItem::CreateInstance(elementName);
  }
  throw CQnInvalidParamException(FormatString("Unknown class [%d]", classId));
}

}  // namespace Orders
