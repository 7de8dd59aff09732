// The code of docs/errors.md.

#include <iostream>
#include <new>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

class CAddress : public CXmlGeneratedClass {
 public:
  enum { City, Zip };
  std::string m_city;
  std::int32_t m_zip = 0;

  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (index == City) read ? value.SetString(m_city) : void(m_city = value.GetString());
    if (index == Zip) read ? value.SetI4(m_zip) : void(m_zip = value.GetI4());
  }
  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Address", "", -1, true,
                                   false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd city("city", "", City, ItemType_string, nullptr, kCollapse, {});
    static CPrimitiveRestrictions const fiveDigits("", -1, -1, "", "99999", "", "", -1);
    static CElementInfoSeqPrimMnd zip("zip", "", Zip, ItemType_i4, nullptr, kCollapse, fiveDigits);
    static CElementInfo* table[] = {&city, &zip, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfo* table[] = {nullptr};
    return table;
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void Init() override {}
};

class COrder : public CXmlGeneratedClass {
 public:
  enum { Number, ShipTo };
  std::int32_t m_number = 0;
  CSmartPtr<CAddress> m_shipTo;

  COrder() { Init(); }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (index == Number) read ? value.SetI4(m_number) : void(m_number = value.GetI4());
    if (index == ShipTo && read) value.SetXmlObject(m_shipTo);
  }
  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Order", "", -1, true, false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd number("number", "", Number, ItemType_i4, nullptr, kCollapse, {});
    static CElementInfoSeqClsMnd shipTo("shipTo", "", ShipTo, XmlElementType_Element, nullptr, 0, true);
    static CElementInfo* table[] = {&number, &shipTo, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfo* table[] = {nullptr};
    return table;
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void Init() override {
    SetElementName("order");
    m_number = 0;
    m_shipTo = new CAddress;
    m_shipTo->SetElementName("shipTo");
  }
};

void ReadNested() {
  std::cout << "[nested]\n";
  // [nested]
  COrder order;
  try {
    order.FromXml("<order><number>7</number><shipTo><city>Mill Valley</city><zip>9o952</zip></shipTo></order>");
  } catch (CQnException const& failure) {
    std::cout << failure.GetFullMessage() << '\n';
  }
  // [nested]
  std::cout << "[state]\n"
            << "number " << order.m_number << ", city " << order.m_shipTo->m_city << ", zip " << order.m_shipTo->m_zip
            << '\n';
}

// [innermost]
CQnException const& Innermost(CQnException const& failure) {
  CQnException const* at = &failure;
  while (at->GetInnerException() != nullptr) at = at->GetInnerException();
  return *at;
}
// [innermost]

// [catch]
bool Read(COrder& order, char const* text) try {
  order.FromXml(text);
  return true;
} catch (CQnValidationException const& failure) {  // well-formed, but not what the classes describe
  CQnException const& cause = Innermost(failure);
  bool const isValue = dynamic_cast<CQnInvalidValueException const*>(&cause) != nullptr;
  std::cout << (isValue ? "a value: " : "the structure: ") << cause.GetMessage() << '\n';
  return false;
} catch (CQnException const& failure) {  // could not be parsed at all, or is too large, or ...
  std::cout << "the input: " << failure.GetMessage() << '\n';
  return false;
} catch (std::bad_alloc const&) {  // not a CQnException
  std::cout << "no memory\n";
  return false;
}
// [catch]

void Sort() {
  std::cout << "[catch]\n";
  COrder order;
  Read(order, "<order><number>x</number></order>");
  Read(order, "<order><number>1</number></order>");
  Read(order, "<order><number>1</nummer></order>");
}

void Write() {
  std::cout << "[write]\n";
  // [write]
  COrder order;
  order.m_shipTo->m_zip = 100000;  // the facet allows at most 99999
  try {
    std::cout << order.ToXml();
  } catch (CQnException const& failure) {
    std::cout << failure.GetFullMessage() << '\n';
  }
  // [write]
}

void Check() {
  std::cout << "[check]\n";
  // [check]
  COrder order;
  order.m_shipTo->m_city = "Mill\x07Valley";
  order.m_shipTo->m_zip = 100000;
  CFailureList failures;
  if (!order.Check(CXmlSerializationContext::m_defaultContext, &failures)) std::cout << failures.GetReport();
  // [check]
}

}  // namespace

int main() {
  ReadNested();
  Sort();
  Write();
  Check();
}
