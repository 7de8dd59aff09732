#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "quillon9/quillon9.h"

/// The classes of purchase_order.xsd, as a code generator writes them: one for each complex type, one for the repeated
/// element. They hold the values and describe their form; the library reads and writes them.
///
/// Texts are in the code page of the process locale. Values that may be absent are optional. Setters and getters do not
/// check facets: the library does so when it writes. Objects live in CSmartPtr and are created by CreateInstance();
/// only one thread at a time may use a graph of them.
namespace Orders {

static_assert(QUILLON9_VERSION_MAJOR == 1, "these classes were written for another major version of the library");

/// An address in the United States.
class CUSAddress : public Quillon9::CXmlGeneratedClass {
 public:
  /// The numbers that identify the properties in the tables of the class.
  enum Property { Property_country, Property_name, Property_street, Property_city, Property_state, Property_zip };

  /// Create an empty object for an element of this name.
  static CSmartPtr<CUSAddress> CreateInstance(char const* elementName);

  /// Absent means US.
  std::optional<std::string> const& GetCountry() const { return m_country; }
  void SetCountry(std::optional<std::string> value) { m_country = std::move(value); }
  std::string const& GetName() const { return m_name; }
  void SetName(std::string value) { m_name = std::move(value); }
  std::string const& GetStreet() const { return m_street; }
  void SetStreet(std::string value) { m_street = std::move(value); }
  std::string const& GetCity() const { return m_city; }
  void SetCity(std::string value) { m_city = std::move(value); }
  std::string const& GetState() const { return m_state; }
  void SetState(std::string value) { m_state = std::move(value); }
  std::string const& GetZip() const { return m_zip; }
  void SetZip(std::string value) { m_zip = std::move(value); }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CUSAddress(char const* elementName);
  ~CUSAddress() override;

 private:
  std::optional<std::string> m_country;
  std::string m_name;
  std::string m_street;
  std::string m_city;
  std::string m_state;
  std::string m_zip;
};

/// One line of an order.
class CItem : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property {
    Property_partNum,
    Property_productName,
    Property_quantity,
    Property_USPrice,
    Property_comment,
    Property_shipDate,
    Property_serial
  };

  static CSmartPtr<CItem> CreateInstance(char const* elementName = "item");

  /// Three digits, a hyphen, two capital letters.
  std::string const& GetPartNum() const { return m_partNum; }
  void SetPartNum(std::string value) { m_partNum = std::move(value); }
  std::string const& GetProductName() const { return m_productName; }
  void SetProductName(std::string value) { m_productName = std::move(value); }
  /// 1 to 99.
  std::int32_t GetQuantity() const { return m_quantity; }
  void SetQuantity(std::int32_t value) { m_quantity = value; }
  Quillon9::CDecimal const& GetUSPrice() const { return m_USPrice; }
  void SetUSPrice(Quillon9::CDecimal const& value) { m_USPrice = value; }
  std::optional<std::string> const& GetComment() const { return m_comment; }
  void SetComment(std::optional<std::string> value) { m_comment = std::move(value); }
  std::optional<Quillon9::CDateTime> const& GetShipDate() const { return m_shipDate; }
  void SetShipDate(std::optional<Quillon9::CDateTime> const& value) { m_shipDate = value; }
  /// Return the serial numbers of those pieces that have one. The collection belongs to this object.
  Quillon9::CstringCol* GetSerial() const { return m_serial; }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CItem(char const* elementName);
  ~CItem() override;

 private:
  std::string m_partNum;
  std::string m_productName;
  std::int32_t m_quantity = 0;
  Quillon9::CDecimal m_USPrice;
  std::optional<std::string> m_comment;
  std::optional<Quillon9::CDateTime> m_shipDate;
  CSmartPtr<Quillon9::CstringCol> const m_serial;
};

/// The items of an order, in document order.
class CItemCol : public Quillon9::CXmlCollection {
 public:
  /// Iterates over the items. During the iteration items may be added, but the current item must not be removed.
  class Iterator {
   public:
    explicit Iterator(Quillon9::CNode* node) : m_node(node) {}
    CItem& operator*() const { return static_cast<CItem&>(*m_node->m_item); }
    Iterator& operator++() {
      m_node = m_node->m_next;
      return *this;
    }
    bool operator!=(Iterator const& other) const { return m_node != other.m_node; }

   private:
    Quillon9::CNode* m_node;
  };

  /// \p maxOccurs -1 means no upper limit.
  static CSmartPtr<CItemCol> CreateInstance(char const* elementName, char const* ns, int minOccurs, int maxOccurs);

  Iterator begin() const { return Iterator(GetCount() > 0 ? GetNodeAtIndex(0) : nullptr); }
  Iterator end() const { return Iterator(nullptr); }
  /// \throws Quillon9::CQnInvalidParamException for an \p index outside 0 to GetCount() - 1.
  CSmartPtr<CItem> Item(int index) const;

  /// Append a new item and return it.
  CSmartPtr<CItem> Add();
  /// Append \p item, which becomes shared with the caller.
  /// \throws Quillon9::CQnInvalidParamException if it is null or was created for another element.
  void Add(CItem* item);

 protected:
  CItemCol(char const* elementName, char const* ns, int minOccurs, int maxOccurs);
  ~CItemCol() override;

  void ToXml_Int(Quillon9::CXmlWriter* writer, bool isRoot, char const* ns,
                 Quillon9::CXmlSerializationContext const& ctx, bool inChoice) const override;
  Quillon9::CXmlElement* FromXml_Int(Quillon9::CXmlElement* parent, Quillon9::CXmlElement* cursor,
                                     Quillon9::CXmlSerializationContext const& ctx, bool inChoice) override;
};

/// The ordered items.
class CItems : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property { Property_item };

  static CSmartPtr<CItems> CreateInstance(char const* elementName);

  /// The collection belongs to this object for its whole life: reading empties and fills it.
  CItemCol* GetItem() const { return m_item; }

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CItems(char const* elementName);
  ~CItems() override;

 private:
  CSmartPtr<CItemCol> const m_item;
};

/// A whole order, the type of the document element.
class CPurchaseOrderType : public Quillon9::CXmlGeneratedClass {
 public:
  enum Property { Property_orderDate, Property_shipTo, Property_billTo, Property_comment, Property_items };

  static CSmartPtr<CPurchaseOrderType> CreateInstance(char const* elementName = "purchaseOrder");

  std::optional<Quillon9::CDateTime> const& GetOrderDate() const { return m_orderDate; }
  void SetOrderDate(std::optional<Quillon9::CDateTime> const& value) { m_orderDate = value; }
  std::optional<std::string> const& GetComment() const { return m_comment; }
  void SetComment(std::optional<std::string> value) { m_comment = std::move(value); }

  /// The children belong to this object; a read creates new ones. The mandatory ones, shipTo and items, are never null.
  /// Setters share \p value with the caller.
  /// \throws Quillon9::CQnInvalidParamException if \p value was created for an element of another name, or is null
  ///         where the element is mandatory.
  CUSAddress* GetShipTo() const { return m_shipTo; }
  void SetShipTo(CUSAddress* value);
  CUSAddress* GetBillTo() const { return m_billTo; }
  void SetBillTo(CUSAddress* value);
  CItems* GetItems() const { return m_items; }
  void SetItems(CItems* value);

  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;

 protected:
  explicit CPurchaseOrderType(char const* elementName);
  ~CPurchaseOrderType() override;

 private:
  std::optional<Quillon9::CDateTime> m_orderDate;
  CSmartPtr<CUSAddress> m_shipTo;
  CSmartPtr<CUSAddress> m_billTo;
  std::optional<std::string> m_comment;
  CSmartPtr<CItems> m_items;
};

/// Creates the objects that the tables identify by number.
class CClassFactory : public Quillon9::CClassfactoryBase {
 public:
  enum ClassId { ClassId_PurchaseOrderType, ClassId_USAddress, ClassId_Items, ClassId_Item };

  /// Create an object of class \p classId for an element of this name.
  /// \throws Quillon9::CQnInvalidParamException for an unknown number.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateObject(int classId, char const* elementName);
};

}  // namespace Orders
