#pragma once

#include "quillon9/generated.h"

/// The classes of the schema shop.xsd in the comment of shop_types.cpp, in the shape that the generator writes.
namespace Shop {

class CLine;
class CParty;

enum class EColour : int { Red, LightGreen, Blue };
char const* ToText(EColour value);
EColour ColourFromText(std::string_view text);

/// Abstract.
class CParty : public Quillon9::CBoundObject {
 public:
  static Quillon9::CClassTables s_class;

  std::string const& GetName() const { return m_name; }
  void SetName(std::string value) { Assign(0, m_name, std::move(value)); }
  std::string const& GetId() const { return m_id; }
  void SetId(std::string value) { Assign(1, m_id, std::move(value)); }

 protected:
  CParty(Quillon9::CClassTables const& tables, char const* elementName) : CBoundObject(tables, elementName) {}
  ~CParty() override;
  Quillon9::CPropertyRef Property(int index) override;

 private:
  std::string m_name;
  std::string m_id;
};

class CFirm : public CParty {
 public:
  static Quillon9::CClassTables s_class;
  static CSmartPtr<CFirm> CreateInstance(char const* elementName = "") { return new CFirm(s_class, elementName); }

  std::optional<Quillon9::CDateTime> const& GetFounded() const { return m_founded; }
  void SetFounded(std::optional<Quillon9::CDateTime> value) { m_founded = std::move(value); }

 protected:
  CFirm(Quillon9::CClassTables const& tables, char const* elementName) : CParty(tables, elementName) {}
  ~CFirm() override;
  Quillon9::CPropertyRef Property(int index) override;

 private:
  std::optional<Quillon9::CDateTime> m_founded;
};

class CPerson : public CParty {
 public:
  static Quillon9::CClassTables s_class;
  static CSmartPtr<CPerson> CreateInstance(char const* elementName = "") { return new CPerson(s_class, elementName); }

 protected:
  CPerson(Quillon9::CClassTables const& tables, char const* elementName) : CParty(tables, elementName) {}
  ~CPerson() override;
};

/// Simple content, nillable.
class CAmount : public Quillon9::CNillable<Quillon9::CBoundObject> {
 public:
  static Quillon9::CClassTables s_class;
  static CSmartPtr<CAmount> CreateInstance(char const* elementName = "") { return new CAmount(s_class, elementName); }

  Quillon9::CDecimal const& GetValue() const { return m_value; }
  void SetValue(Quillon9::CDecimal value) { Assign(0, m_value, std::move(value)); }
  std::string GetCurrency() const { return m_currency.value_or("EUR"); }
  bool HasCurrency() const { return m_currency.has_value(); }
  void SetCurrency(std::optional<std::string> value) { m_currency = std::move(value); }

 protected:
  CAmount(Quillon9::CClassTables const& tables, char const* elementName) : CNillable(tables, elementName) {}
  ~CAmount() override;
  Quillon9::CPropertyRef Property(int index) override;

 private:
  Quillon9::CDecimal m_value;
  std::optional<std::string> m_currency;
};

/// An all group.
class CLine : public Quillon9::CBoundObject {
 public:
  static Quillon9::CClassTables s_class;
  static CSmartPtr<CLine> CreateInstance(char const* elementName = "line") { return new CLine(s_class, elementName); }

  std::int32_t GetQuantity() const { return m_quantity; }
  void SetQuantity(std::int32_t value) { Assign(0, m_quantity, value); }
  Quillon9::CDecimal const& GetPrice() const { return m_price; }
  void SetPrice(Quillon9::CDecimal value) { Assign(1, m_price, std::move(value)); }
  std::string GetUnit() const { return m_unit.value_or("kg"); }
  bool HasUnit() const { return m_unit.has_value(); }
  void SetUnit(std::optional<std::string> value) { Assign(2, m_unit, std::move(value)); }

 protected:
  CLine(Quillon9::CClassTables const& tables, char const* elementName) : CBoundObject(tables, elementName) {}
  ~CLine() override;
  Quillon9::CPropertyRef Property(int index) override;

 private:
  std::int32_t m_quantity{};
  Quillon9::CDecimal m_price;
  std::optional<std::string> m_unit;
};

class COrder : public Quillon9::CBoundObject {
 public:
  static Quillon9::CClassTables s_class;
  static CSmartPtr<COrder> CreateInstance(char const* elementName = "order") {
    return new COrder(s_class, elementName);
  }

  enum class EChoice { None, Pickup, Street, Slot };
  enum class EChoice2 { None, Card, Amount };
  /// A round of a repeated choice.
  class CChoice : public Quillon9::CBoundObject {
   public:
    static Quillon9::CClassTables s_class;
    static CSmartPtr<CChoice> CreateInstance(char const* elementName = "") { return new CChoice(s_class, elementName); }

    std::optional<std::string> const& GetText() const { return m_text; }
    void SetText(std::optional<std::string> value) { Assign(0, m_text, std::move(value)); }
    std::optional<EColour> const& GetMark() const { return m_mark; }
    void SetMark(std::optional<EColour> value) { Assign(1, m_mark, std::move(value)); }

   protected:
    CChoice(Quillon9::CClassTables const& tables, char const* elementName) : CBoundObject(tables, elementName) {}
    ~CChoice() override;
    Quillon9::CPropertyRef Property(int index) override;

   private:
    std::optional<std::string> m_text;
    std::optional<EColour> m_mark;
  };

  CParty& GetParty() { return Object(0, m_party); }
  CParty const& GetParty() const { return Object(0, m_party); }
  void SetParty(CSmartPtr<CParty> value) { Hold(0, m_party, std::move(value)); }
  EChoice GetChoice() const { return static_cast<EChoice>(Alternative(s_class, 1)); }
  std::optional<std::string> const& GetPickup() const { return m_pickup; }
  void SetPickup(std::optional<std::string> value) { Assign(1, m_pickup, std::move(value)); }
  std::optional<std::string> const& GetStreet() const { return m_street; }
  void SetStreet(std::optional<std::string> value) { Assign(2, m_street, std::move(value)); }
  std::optional<std::string> const& GetCity() const { return m_city; }
  void SetCity(std::optional<std::string> value) { Assign(3, m_city, std::move(value)); }
  Quillon9::Ci4Col& GetSlot() { return Collection(4, m_slot); }
  Quillon9::Ci4Col const& GetSlot() const { return Collection(4, m_slot); }
  EChoice2 GetChoice2() const { return static_cast<EChoice2>(Alternative(s_class, 9)); }
  std::optional<std::string> const& GetCard() const { return m_card; }
  void SetCard(std::optional<std::string> value) { Assign(5, m_card, std::move(value)); }
  CAmount* GetAmount() { return m_amount; }
  CAmount const* GetAmount() const { return m_amount; }
  CAmount& CreateAmount() { return Create(6, m_amount); }
  void SetAmount(CSmartPtr<CAmount> value) { Hold(6, m_amount, std::move(value)); }
  std::optional<Quillon9::CDateTime> const& GetFrom() const { return m_from; }
  void SetFrom(std::optional<Quillon9::CDateTime> value) { Assign(7, m_from, std::move(value)); }
  std::optional<Quillon9::CDateTime> const& GetUntil() const { return m_until; }
  void SetUntil(std::optional<Quillon9::CDateTime> value) { Assign(8, m_until, std::move(value)); }
  Quillon9::CObjectCol<CChoice>& GetRounds() { return Collection(9, m_rounds); }
  Quillon9::CObjectCol<CChoice> const& GetRounds() const { return Collection(9, m_rounds); }
  Quillon9::CObjectCol<CLine>& GetLine() { return Collection(10, m_line); }
  Quillon9::CObjectCol<CLine> const& GetLine() const { return Collection(10, m_line); }
  Quillon9::CValueElement<double>* GetWeight() { return m_weight; }
  Quillon9::CValueElement<double>& CreateWeight() { return Create(11, m_weight); }
  Quillon9::CEnumCol<EColour>& GetColour() { return Collection(12, m_colour); }
  Quillon9::CEnumCol<EColour> const& GetColour() const { return Collection(12, m_colour); }
  Quillon9::CElement* GetExtra() { return m_extra; }
  void SetExtra(CSmartPtr<Quillon9::CElement> value) { Hold(13, m_extra, std::move(value)); }
  Quillon9::CAnyElementCol& GetAny() { return Collection(14, m_any); }
  Quillon9::CAnyElementCol const& GetAny() const { return Collection(14, m_any); }
  EColour GetStatus() const { return m_status.value_or(EColour::Red); }
  bool HasStatus() const { return m_status.has_value(); }
  void SetStatus(std::optional<EColour> value) { m_status = value; }
  std::optional<std::string> const& GetVersion() const { return m_version; }
  void SetVersion(std::optional<std::string> value) { Assign(16, m_version, std::move(value)); }
  Quillon9::CAttributeCol& GetAnyAttributes() { return Collection(17, m_anyAttributes); }

 protected:
  COrder(Quillon9::CClassTables const& tables, char const* elementName) : CBoundObject(tables, elementName) {}
  ~COrder() override;
  Quillon9::CPropertyRef Property(int index) override;

 private:
  CSmartPtr<CParty> m_party;
  std::optional<std::string> m_pickup;
  std::optional<std::string> m_street;
  std::optional<std::string> m_city;
  CSmartPtr<Quillon9::Ci4Col> m_slot;
  std::optional<std::string> m_card;
  CSmartPtr<CAmount> m_amount;
  std::optional<Quillon9::CDateTime> m_from;
  std::optional<Quillon9::CDateTime> m_until;
  CSmartPtr<Quillon9::CObjectCol<CChoice>> m_rounds;
  CSmartPtr<Quillon9::CObjectCol<CLine>> m_line;
  CSmartPtr<Quillon9::CValueElement<double>> m_weight;
  CSmartPtr<Quillon9::CEnumCol<EColour>> m_colour;
  CSmartPtr<Quillon9::CElement> m_extra;
  CSmartPtr<Quillon9::CAnyElementCol> m_any;
  std::optional<EColour> m_status;
  std::optional<std::string> m_version;
  CSmartPtr<Quillon9::CAttributeCol> m_anyAttributes;
};

/// Restricts COrder: the party is a person, the choice is its street, and there are no attributes but the status.
class CHomeOrder : public COrder {
 public:
  static Quillon9::CClassTables s_class;
  static CSmartPtr<CHomeOrder> CreateInstance(char const* elementName = "order") {
    return new CHomeOrder(s_class, elementName);
  }

 protected:
  CHomeOrder(Quillon9::CClassTables const& tables, char const* elementName) : COrder(tables, elementName) {}
  ~CHomeOrder() override;
};

CSmartPtr<COrder> ReadOrder(
    Quillon9::CXmlSource const& source,
    Quillon9::CXmlSerializationContext const& ctx = Quillon9::CXmlSerializationContext::m_defaultContext);
CSmartPtr<COrder> CreateOrder();
CSmartPtr<Quillon9::CXmlObjectBase> ReadRoot(
    Quillon9::CXmlSource const& source,
    Quillon9::CXmlSerializationContext const& ctx = Quillon9::CXmlSerializationContext::m_defaultContext);

}  // namespace Shop
