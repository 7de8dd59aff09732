#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "quillon9/quillon9.h"

/// The classes of orders.xsd, written as a code generator writes them: one for each complex type, one for each repeated
/// element.
///
/// Texts are in the code page of the process locale, or in UTF-8 under ASCIIOnly(true). Setters and getters check no
/// facets: the library checks them when it writes. Objects live in CSmartPtr; one graph belongs to one thread at a
/// time.
namespace Orders {

static_assert(QUILLON9_VERSION_MAJOR == 1, "these classes were written for another major version of the library");

/// The namespace of the schema.
inline constexpr char kNamespace[] = "urn:example:orders";

enum StatusType {
  StatusType_new,
  StatusType_confirmed,
  StatusType_packed,
  StatusType_shipped,
  StatusType_returned,
  StatusType_cancelled
};
/// Convert between a status and its text.
/// \throws Quillon9::CQnInvalidValueException for a value that is not a StatusType.
char const* StatusTypeToText(int value);
int StatusTypeFromText(char const* text);

class CAddress : public Quillon9::CXmlGeneratedClass {
 public:
  /// The numbers that the tables of the class use for its properties.
  enum Property { Property_street, Property_city, Property_postalCode, Property_country };

  static CSmartPtr<CAddress> CreateInstance(char const* elementName = "address");

  std::string const& GetStreet() const { return m_street; }
  void SetStreet(std::string value) { m_street = std::move(value); }
  std::string const& GetCity() const { return m_city; }
  void SetCity(std::string value) { m_city = std::move(value); }
  std::string const& GetPostalCode() const { return m_postalCode; }
  void SetPostalCode(std::string value) { m_postalCode = std::move(value); }
  std::string const& GetCountry() const { return m_country; }
  void SetCountry(std::string value) { m_country = std::move(value); }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CAddress(char const* elementName);
  ~CAddress() override;

 private:
  std::string m_street;
  std::string m_city;
  std::string m_postalCode;
  std::string m_country;
};

class CCustomer : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property { Property_name, Property_email, Property_address };

  static CSmartPtr<CCustomer> CreateInstance(char const* elementName = "customer");

  std::string const& GetName() const { return m_name; }
  void SetName(std::string value) { m_name = std::move(value); }
  std::optional<std::string> const& GetEmail() const { return m_email; }
  void SetEmail(std::optional<std::string> value) { m_email = std::move(value); }
  /// Never null.
  CAddress* GetAddress() const { return m_address; }
  /// Share \p value with the caller.
  /// \throws Quillon9::CQnInvalidParamException when it is null or was made for another element.
  void SetAddress(CAddress* value);

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CCustomer(char const* elementName);
  ~CCustomer() override;

 private:
  std::string m_name;
  std::optional<std::string> m_email;
  CSmartPtr<CAddress> m_address;
};

class CItem : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property {
    Property_sku,
    Property_quantity,
    Property_price,
    Property_weight,
    Property_comment,
    Property_gift,
    Property_label
  };

  static CSmartPtr<CItem> CreateInstance(char const* elementName = "item");

  std::string const& GetSku() const { return m_sku; }
  void SetSku(std::string value) { m_sku = std::move(value); }
  std::int32_t GetQuantity() const { return m_quantity; }
  void SetQuantity(std::int32_t value) { m_quantity = value; }
  Quillon9::CDecimal const& GetPrice() const { return m_price; }
  void SetPrice(Quillon9::CDecimal const& value) { m_price = value; }
  double GetWeight() const { return m_weight; }
  void SetWeight(double value) { m_weight = value; }
  std::optional<std::string> const& GetComment() const { return m_comment; }
  void SetComment(std::optional<std::string> value) { m_comment = std::move(value); }
  bool GetGift() const { return m_gift; }
  void SetGift(bool value) { m_gift = value; }
  std::optional<Quillon9::CBinaryData> const& GetLabel() const { return m_label; }
  void SetLabel(std::optional<Quillon9::CBinaryData> value) { m_label = std::move(value); }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CItem(char const* elementName);
  ~CItem() override;

 private:
  std::string m_sku;
  std::int32_t m_quantity = 0;
  Quillon9::CDecimal m_price;
  double m_weight = 0;
  std::optional<std::string> m_comment;
  bool m_gift = false;
  std::optional<Quillon9::CBinaryData> m_label;
};

/// The common base of the collections of this schema: typed items, and how their run of elements is read and written.
template <class T>
class CObjectCol : public Quillon9::CXmlCollection {
 public:
  /// Iterates over the items. Items may be added meanwhile; the current item must not be removed.
  class Iterator {
   public:
    explicit Iterator(Quillon9::CNode* node) : m_node(node) {}
    T& operator*() const { return static_cast<T&>(*m_node->m_item); }
    Iterator& operator++() {
      m_node = m_node->m_next;
      return *this;
    }
    bool operator!=(Iterator const& other) const { return m_node != other.m_node; }

   private:
    Quillon9::CNode* m_node;
  };

  Iterator begin() const { return Iterator(GetCount() > 0 ? GetNodeAtIndex(0) : nullptr); }
  Iterator end() const { return Iterator(nullptr); }
  /// \throws Quillon9::CQnInvalidParamException for an \p index outside 0 to GetCount() - 1.
  CSmartPtr<T> Item(int index) const { return static_cast<T*>(GetNodeAtIndex(index)->m_item.Get()); }

  /// Append a new item and return it.
  CSmartPtr<T> Add();
  /// Append \p item, which becomes shared with the caller.
  /// \throws Quillon9::CQnInvalidParamException when it is null or was made for another element.
  void Add(T* item);

 protected:
  using CXmlCollection::CXmlCollection;

  void ToXml_Int(Quillon9::CXmlWriter* writer, bool isRoot, char const* ns,
                 Quillon9::CXmlSerializationContext const& ctx, bool inChoice) const override;
  Quillon9::CXmlElement* FromXml_Int(Quillon9::CXmlElement* parent, Quillon9::CXmlElement* cursor,
                                     Quillon9::CXmlSerializationContext const& ctx, bool inChoice) override;
};

extern template class CObjectCol<CItem>;

class CItemCol : public CObjectCol<CItem> {
 public:
  /// \p maxOccurs -1 means no upper limit.
  static CSmartPtr<CItemCol> CreateInstance(char const* elementName, char const* ns, int minOccurs, int maxOccurs);

 protected:
  using CObjectCol::CObjectCol;
  ~CItemCol() override;
};

class COrder : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property {
    Property_date,
    Property_placed,
    Property_customer,
    Property_item,
    Property_id,
    Property_status,
    Property_currency
  };

  static CSmartPtr<COrder> CreateInstance(char const* elementName = "order");

  Quillon9::CDateTime const& GetDate() const { return m_date; }
  void SetDate(Quillon9::CDateTime const& value) { m_date = value; }
  Quillon9::CDateTime const& GetPlaced() const { return m_placed; }
  void SetPlaced(Quillon9::CDateTime const& value) { m_placed = value; }
  /// Never null.
  CCustomer* GetCustomer() const { return m_customer; }
  /// Share \p value with the caller.
  /// \throws Quillon9::CQnInvalidParamException when it is null or was made for another element.
  void SetCustomer(CCustomer* value);
  /// The collection belongs to this object for life: reading empties and fills it.
  CItemCol* GetItem() const { return m_item; }
  std::int32_t GetId() const { return m_id; }
  void SetId(std::int32_t value) { m_id = value; }
  StatusType GetStatus() const { return m_status; }
  void SetStatus(StatusType value) { m_status = value; }
  std::string const& GetCurrency() const { return m_currency; }
  void SetCurrency(std::string value) { m_currency = std::move(value); }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit COrder(char const* elementName);
  ~COrder() override;

 private:
  Quillon9::CDateTime m_date;
  Quillon9::CDateTime m_placed;
  CSmartPtr<CCustomer> m_customer;
  CSmartPtr<CItemCol> const m_item;
  std::int32_t m_id = 0;
  StatusType m_status = StatusType_new;
  std::string m_currency;
};

extern template class CObjectCol<COrder>;

class COrderCol : public CObjectCol<COrder> {
 public:
  /// \p maxOccurs -1 means no upper limit.
  static CSmartPtr<COrderCol> CreateInstance(char const* elementName, char const* ns, int minOccurs, int maxOccurs);

 protected:
  using CObjectCol::CObjectCol;
  ~COrderCol() override;
};

/// The type of the document element.
class COrders : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property { Property_order };

  static CSmartPtr<COrders> CreateInstance(char const* elementName = "orders");

  /// The collection belongs to this object for life: reading empties and fills it.
  COrderCol* GetOrder() const { return m_order; }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit COrders(char const* elementName);
  ~COrders() override;

 private:
  CSmartPtr<COrderCol> const m_order;
};

/// Creates the objects that the tables refer to by number.
class CClassFactory : public Quillon9::CClassfactoryBase {
 public:
  enum ClassId { ClassId_OrdersType, ClassId_OrderType, ClassId_CustomerType, ClassId_AddressType, ClassId_ItemType };

  /// A new object of class \p classId for an element of this name.
  /// \throws Quillon9::CQnInvalidParamException for an unknown number.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateObject(int classId, char const* elementName);
};

}  // namespace Orders
