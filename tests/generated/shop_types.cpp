#include "generated/shop_types.h"

// The schema, in short. Its namespace is urn:shop; elements are qualified.
//
//   order:  @status Colour = red, @version fixed 1.0, any attribute ##other
//           party Party; (pickup | (street, city?) | slot[1..3] int); (card | amount Amount nillable)?;
//           (from date since 2020-02-02, until date)?; (text | mark Colour)*; line Line[1..5]; weight double? nillable; colour Colour*;
//           extra (any content)?; any{0..2} of urn:a, urn:b or no namespace
//   Party:  abstract: name (1 to 20), @id \d{3};  Firm: founded date?;  Person: nothing more
//   Amount: decimal of 2 fraction digits, @currency = EUR
//   Line:   all: quantity (1 up to 100, exclusive), price (6 digits, 2 of them of the fraction), unit? = kg
//   roots:  order, party, colour, anything

namespace Shop {

namespace {

using namespace Quillon9::Rows;
using namespace Quillon9;

constexpr char kNs[] = "urn:shop";
constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

constexpr char const* kColourTexts[] = {"red", "light green", "blue"};
constexpr CEnumTexts kColours{"EColour", kColourTexts};

constexpr CFacets kNameFacets{nullptr, -1, 1, 20};
constexpr CFacets kIdFacets{"\\d{3}"};
constexpr CFacets kQuantityFacets{nullptr, -1, -1, -1, "1", nullptr, nullptr, "100"};
constexpr CFacets kPriceFacets{nullptr, -1, -1, -1, nullptr, nullptr, nullptr, nullptr, 6, 2};
constexpr CFacets kAmountFacets{nullptr, -1, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, 2};
constexpr CFacets kStartDateFacets{nullptr, -1, -1, -1, "2020-02-02"};

constexpr CValueType kString{ItemType_string, kPreserve};
constexpr CValueType kToken{ItemType_string, kCollapse};
constexpr CValueType kInt{ItemType_i4};
constexpr CValueType kDate{ItemType_date};
constexpr CValueType kStartDate{ItemType_date, kCollapse, &kStartDateFacets};
constexpr CValueType kDouble{ItemType_r8};
constexpr CValueType kColour{ItemType_i4, kCollapse, nullptr, &kColours};
constexpr CValueType kName{ItemType_string, kPreserve, &kNameFacets};
constexpr CValueType kId{ItemType_string, kCollapse, &kIdFacets};
constexpr CValueType kQuantity{ItemType_i4, kCollapse, &kQuantityFacets};
constexpr CValueType kPrice{ItemType_decimal, kCollapse, &kPriceFacets};
constexpr CValueType kAmount{ItemType_decimal, kCollapse, &kAmountFacets};

}  // namespace

char const* ToText(EColour value) { return kColours.ToText(static_cast<int>(value)); }
EColour ColourFromText(std::string_view text) { return static_cast<EColour>(kColours.FromText(text)); }

// ---- Party
namespace {
constexpr CElementRow kPartyElements[] = {Value("name", kNs, 0, kOnce, kName)};
constexpr CAttributeRow kPartyAttributes[] = {Attribute("id", "", 1, kOnce, kId)};
constexpr CClassTables* kPartyDerived[] = {&CFirm::s_class, &CPerson::s_class};
constexpr CClassRow kPartyRow{"Party", kNs, kNs, nullptr, kPartyElements, 1,    kPartyAttributes, 1,
                              0,       2,   -1,  nullptr, false,          true, kPartyDerived,    2};
}  // namespace
Quillon9::CClassTables CParty::s_class{kPartyRow};
CParty::~CParty() = default;
Quillon9::CPropertyRef CParty::Property(int index) {
  switch (index) {
    case 0: return m_name;
    case 1: return m_id;
  }
  return {};
}

// ---- Firm
namespace {
constexpr CElementRow kFirmElements[] = {Value("founded", kNs, 2, kOptional, kDate)};
constexpr CClassRow kFirmRow{"Firm", kNs, kNs, &CParty::s_class, kFirmElements, 1, nullptr, 0, 2, 1};
}  // namespace
Quillon9::CClassTables CFirm::s_class{kFirmRow, &Quillon9::MakeObject<CFirm>};
CFirm::~CFirm() = default;
Quillon9::CPropertyRef CFirm::Property(int index) {
  switch (index) {
    case 2: return {m_founded, Quillon9::ItemType_date};
  }
  return CParty::Property(index);
}

// ---- Person
namespace {
constexpr CClassRow kPersonRow{"Person", kNs, kNs, &CParty::s_class, nullptr, 0, nullptr, 0, 2, 0};
}  // namespace
Quillon9::CClassTables CPerson::s_class{kPersonRow, &Quillon9::MakeObject<CPerson>};
CPerson::~CPerson() = default;

// ---- Amount
namespace {
constexpr CAttributeRow kAmountAttributes[] = {Attribute("currency", "", 1, kOptional, kToken, "EUR")};
constexpr CClassRow kAmountRow{"Amount", kNs, kNs, nullptr, nullptr, 0, kAmountAttributes, 1, 0, 2, 0, &kAmount};
}  // namespace
Quillon9::CClassTables CAmount::s_class{kAmountRow, &Quillon9::MakeObject<CAmount>};
CAmount::~CAmount() = default;
Quillon9::CPropertyRef CAmount::Property(int index) {
  switch (index) {
    case 0: return m_value;
    case 1: return m_currency;
  }
  return {};
}

// ---- Line
namespace {
constexpr CElementRow kLineElements[] = {BeginAll(kOnce), Value("quantity", kNs, 0, kOnce, kQuantity),
                                         Value("price", kNs, 1, kOnce, kPrice),
                                         Value("unit", kNs, 2, kOptional, kToken, "kg"), EndGroup()};
constexpr CClassRow kLineRow{"Line", kNs, kNs, nullptr, kLineElements, 5, nullptr, 0, 0, 3};
}  // namespace
Quillon9::CClassTables CLine::s_class{kLineRow, &Quillon9::MakeObject<CLine>};
CLine::~CLine() = default;
Quillon9::CPropertyRef CLine::Property(int index) {
  switch (index) {
    case 0: return m_quantity;
    case 1: return m_price;
    case 2: return m_unit;
  }
  return {};
}

// ---- Order, its rounds
namespace {
constexpr CElementRow kRoundElements[] = {BeginChoice(kOnce), Value("text", kNs, 0, kOnce, kString),
                                          Value("mark", kNs, 1, kOnce, kColour), EndGroup()};
constexpr CClassRow kRoundRow{"", kNs, kNs, nullptr, kRoundElements, 4, nullptr, 0, 0, 2, -1, nullptr, true, false};
}  // namespace
Quillon9::CClassTables COrder::CChoice::s_class{kRoundRow, &Quillon9::MakeObject<COrder::CChoice>};
COrder::CChoice::~CChoice() = default;
Quillon9::CPropertyRef COrder::CChoice::Property(int index) {
  switch (index) {
    case 0: return m_text;
    case 1: return m_mark;
  }
  return {};
}

// ---- Order
namespace {
constexpr CClassRow kWeightRow = ValueElementRow(kDouble, kNs);
CClassTables g_weight{kWeightRow, &CValueElement<double>::Make};
constexpr CNamespaceRule kAnyRule{"urn:a urn:b ##local", kNs};
constexpr CNamespaceRule kOtherRule{"##other", kNs};
constexpr CElementRow kOrderElements[] = {
    Object("party", kNs, 0, kOnce, CParty::s_class),
    BeginChoice(kOnce),
    Value("pickup", kNs, 1, kOnce, kString),
    BeginSequence(kOnce),
    Value("street", kNs, 2, kOnce, kString),
    Value("city", kNs, 3, kOptional, kString),
    EndGroup(),
    Values("slot", kNs, 4, 1, 3, kInt),
    EndGroup(),
    BeginChoice(kOptional),
    Value("card", kNs, 5, kOnce, kToken),
    Object("amount", kNs, 6, kOnce, CAmount::s_class),
    EndGroup(),
    BeginSequence(kOptional),
    Value("from", kNs, 7, kOnce, kStartDate),
    Value("until", kNs, 8, kOnce, kDate),
    EndGroup(),
    Rounds("choice", 9, 0, -1, COrder::CChoice::s_class),
    Objects("line", kNs, 10, 1, 5, CLine::s_class),
    Object("weight", kNs, 11, kOptional, g_weight),
    Values("colour", kNs, 12, 0, -1, kColour),
    AnyType("extra", kNs, 13, kOptional),
    Anys(14, 0, 2, kAnyRule),
};
constexpr CAttributeRow kOrderAttributes[] = {AnyAttributes(17, kOtherRule),
                                              Attribute("status", "", 15, kOptional, kColour, "red"),
                                              Attribute("version", "", 16, kOptional, kToken, nullptr, "1.0")};
constexpr CClassTables* kOrderDerived[] = {&CHomeOrder::s_class};
constexpr CClassRow kOrderRow{"Order", kNs, kNs, nullptr, kOrderElements, 23,   kOrderAttributes, 3,
                              0,       18,  -1,  nullptr, false,          true, kOrderDerived,    1};
static_assert(sizeof kOrderElements / sizeof *kOrderElements == 23);
}  // namespace
Quillon9::CClassTables COrder::s_class{kOrderRow, &Quillon9::MakeObject<COrder>};
COrder::~COrder() = default;
Quillon9::CPropertyRef COrder::Property(int index) {
  switch (index) {
    case 0: return m_party;
    case 1: return m_pickup;
    case 2: return m_street;
    case 3: return m_city;
    case 4: return m_slot;
    case 5: return m_card;
    case 6: return m_amount;
    case 7: return {m_from, Quillon9::ItemType_date};
    case 8: return {m_until, Quillon9::ItemType_date};
    case 9: return m_rounds;
    case 10: return m_line;
    case 11: return m_weight;
    case 12: return m_colour;
    case 13: return m_extra;
    case 14: return m_any;
    case 15: return m_status;
    case 16: return m_version;
    case 17: return m_anyAttributes;
  }
  return {};
}

// ---- HomeOrder
namespace {
constexpr CElementRow kHomeOrderElements[] = {Object("party", kNs, 0, kOnce, CPerson::s_class),
                                              Value("street", kNs, 2, kOnce, kName),
                                              Objects("line", kNs, 10, 1, 1, CLine::s_class)};
constexpr CAttributeRow kHomeOrderAttributes[] = {Attribute("status", "", 15, kOnce, kColour)};
constexpr CClassRow kHomeOrderRow{"HomeOrder",
                                  kNs,
                                  kNs,
                                  &COrder::s_class,
                                  kHomeOrderElements,
                                  3,
                                  kHomeOrderAttributes,
                                  1,
                                  18,
                                  0,
                                  -1,
                                  nullptr,
                                  false,
                                  true,
                                  nullptr,
                                  0,
                                  true,
                                  true};
}  // namespace
Quillon9::CClassTables CHomeOrder::s_class{kHomeOrderRow, &Quillon9::MakeObject<CHomeOrder>};
CHomeOrder::~CHomeOrder() = default;

// ---- Roots
namespace {
constexpr CClassRow kColourRow = ValueElementRow(kColour, kNs);
CClassTables g_colour{kColourRow, &CValueElement<EColour>::Make};
constexpr CRootRow kRoots[] = {{"order", kNs, &COrder::s_class},
                               {"party", kNs, &CParty::s_class},
                               {"colour", kNs, &g_colour},
                               {"anything", "", nullptr}};
}  // namespace

CSmartPtr<COrder> ReadOrder(CXmlSource const& source, CXmlSerializationContext const& ctx) {
  return Quillon9::ReadRoot<COrder>(source, kRoots[0], ctx);
}
CSmartPtr<COrder> CreateOrder() { return CreateRoot<COrder>(kRoots[0]); }
CSmartPtr<CXmlObjectBase> ReadRoot(CXmlSource const& source, CXmlSerializationContext const& ctx) {
  return ReadAnyRoot(source, kRoots, ctx);
}

}  // namespace Shop
