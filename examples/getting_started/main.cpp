// Handwritten classes for getting_started.xsd, and a program that reads a weather report, changes it and writes it.
// docs/getting-started.md explains it step by step.

// [head]
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <variant>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

constexpr char kNamespace[] = "urn:example:weather";
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// The common base of all classes of the schema.
class CWeatherObject : public CXmlGeneratedClass {
 public:
  using CXmlGeneratedClass::GetBase;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
};
// [head]

// [reading]
class CReading : public CWeatherObject {
 public:
  static CSmartPtr<CReading> CreateInstance(char const* elementName) { return new CReading(elementName); }

  std::uint8_t m_hour = 0;
  CDecimal m_temperature;

  // The numbers that identify the properties in the tables.
  enum { Property_hour, Property_temperature };

  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Reading", kNamespace, -1,
                                   true, false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    // pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive, length
    static CPrimitiveRestrictions const facets("", -1, -1, "-90", "60", "", "", -1);
    static CElementInfoSeqPrimMnd temperature("temperature", kNamespace, Property_temperature, ItemType_decimal,
                                              nullptr, kCollapse, facets);
    static CElementInfo* table[] = {&temperature, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfoPrimitive hour("hour", "", Property_hour, false, ItemType_ui1, nullptr, kCollapse, {},
                                        nullptr);
    static CAttributeInfo* table[] = {&hour, nullptr};
    return table;
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    switch (index) {
      case Property_hour: return read ? value.SetUI1(m_hour) : void(m_hour = value.GetUI1());
      case Property_temperature:
        return read ? value.SetDecimal(m_temperature) : void(m_temperature = value.GetDecimal());
    }
  }
  void Init() override {}  // both members are mandatory: a read sets them

 protected:
  explicit CReading(char const* elementName) { SetElementName(elementName); }
};
// [reading]

// [collection]
class CReadingCol : public CXmlCollection {
 public:
  CReadingCol() : CXmlCollection("reading", kNamespace, 1, 24) {}

  // Append a new reading.
  CSmartPtr<CReading> Add() {
    CSmartPtr<CReading> const item = CReading::CreateInstance(GetElementName().c_str());
    AppendItem(item);
    return item;
  }
  CReading& Item(int index) const { return static_cast<CReading&>(*GetNodeAtIndex(index)->m_item); }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const override {
    ValidateCount(ctx);
    for (CNode* node = GetFirstNode(); node != nullptr; node = node->m_next) {
      CXmlObjectBase::ToXml_Int(node->m_item, writer, false, ns, ctx, false);
    }
  }
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) override {
    while (DoesElementNameMatch(ctx, cursor, GetElementName().c_str(), GetNamespace().c_str())) {
      CSmartPtr<CReading> const item = CReading::CreateInstance(GetElementName().c_str());
      CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), ctx);
      AppendItem(item);
      cursor = cursor->GetNextSiblingElement();
    }
    return cursor;  // the first element that was not taken
  }
};
// [collection]

// [choice]
class CPlace : public CWeatherObject {
 public:
  static CSmartPtr<CPlace> CreateInstance() { return new CPlace; }

  std::variant<std::monostate, std::int32_t, std::string> m_value;  // nothing, the number of a station, a town

  enum { Property_station, Property_town };

  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Choice, XmlElementType_Pseudo, "", "", -1, false, false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoChoicePrimOpt station("station", kNamespace, Property_station, ItemType_i4, nullptr, kCollapse,
                                             {});
    static CElementInfoChoicePrimOpt town("town", kNamespace, Property_town, ItemType_string, nullptr, kCollapse, {});
    static CElementInfo* table[] = {&station, &town, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfo* table[] = {nullptr};
    return table;
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (!read && index == Property_station) m_value = value.GetI4();
    if (!read && index == Property_town) m_value = value.GetString();
    auto const* const station = std::get_if<std::int32_t>(&m_value);
    auto const* const town = std::get_if<std::string>(&m_value);
    if (read && index == Property_station && station != nullptr) value.SetI4(*station);
    if (read && index == Property_town && town != nullptr) value.SetString(*town);
  }
  void Init() override { m_value = std::monostate(); }

 protected:
  CPlace() = default;
};
// [choice]

// [enumeration]
enum Sky : int { Sky_clear, Sky_clouds, Sky_rain };
char const* const kSkyTexts[] = {"clear", "clouds", "rain"};

char const* SkyText(int number) { return kSkyTexts[number]; }
int SkyOf(char const* raw) {  // gets the text exactly as in the document
  std::string const text = CWhitespaceUtils::Collapse(raw);
  for (int number : {Sky_clear, Sky_clouds, Sky_rain}) {
    if (text == kSkyTexts[number]) return number;
  }
  throw CQnInvalidValueException("Unknown sky [" + text + "]");
}
// [enumeration]

// [report]
class CReport : public CWeatherObject {
 public:
  static CSmartPtr<CReport> CreateInstance(char const* elementName = "report") { return new CReport(elementName); }

  std::string m_unit;
  CDateTime m_date;
  CSmartPtr<CPlace> m_place;
  std::int32_t m_sky = Sky_clear;
  std::optional<std::string> m_remark;
  CSmartPtr<CReadingCol> const m_readings = new CReadingCol;

  enum { Property_unit, Property_date, Property_place, Property_sky, Property_remark, Property_reading };

  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Report", kNamespace, -1, true,
                                   false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd date("date", kNamespace, Property_date, ItemType_date, nullptr, kCollapse, {});
    static CElementInfoSeqClsMnd place("place", "", Property_place, XmlElementType_Pseudo, nullptr, 0, true);
    static CElementInfoSeqEnumMnd sky("sky", kNamespace, Property_sky, &SkyText, &SkyOf);
    static CElementInfoSeqPrimOpt remark("remark", kNamespace, Property_remark, ItemType_string, nullptr, kCollapse,
                                         {});
    static CElementInfoSeqClsCol reading("reading", kNamespace, Property_reading, XmlElementType_Element);
    static CElementInfo* table[] = {&date, &place, &sky, &remark, &reading, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfoPrimitive unit("unit", "", Property_unit, true, ItemType_string, nullptr, kCollapse, {}, "C");
    static CAttributeInfo* table[] = {&unit, nullptr};
    return table;
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    switch (index) {
      case Property_unit: return read ? value.SetString(m_unit) : void(m_unit = value.GetString());
      case Property_date: return read ? value.SetDate(m_date) : void(m_date = value.GetDate());
      case Property_place: return value.SetXmlObject(m_place);  // never stored: the object is filled
      case Property_sky: return read ? value.SetI4(m_sky) : void(m_sky = value.GetI4());
      case Property_remark:
        if (!read) m_remark = value.GetString();
        if (read && m_remark) value.SetString(*m_remark);  // not set: the variant stays invalid, nothing is written
        return;
      case Property_reading: return value.SetXmlCollection(m_readings);  // never stored: the collection is filled
    }
  }
  void Init() override {  // nothing from an earlier document remains
    m_unit = "C";
    m_date.Clear();
    m_place = CPlace::CreateInstance();
    m_sky = Sky_clear;
    m_remark.reset();
    m_readings->Clear();
  }

 protected:
  explicit CReport(char const* elementName) {
    SetElementName(elementName);
    CReport::Init();
  }
};
// [report]

int main() try {
  // [read]
  CSmartPtr<CReport> const report = CReport::CreateInstance();
  report->FromXmlFile(GETTING_STARTED_DOCUMENT);

  std::cout << report->m_date.ToString() << ", " << SkyText(report->m_sky);
  if (auto const* town = std::get_if<std::string>(&report->m_place->m_value)) std::cout << " in " << *town;
  std::cout << '\n';
  for (int i = 0; i < report->m_readings->GetCount(); ++i) {
    CReading const& reading = report->m_readings->Item(i);
    std::cout << int{reading.m_hour} << " h: " << reading.m_temperature.ToString() << ' ' << report->m_unit << '\n';
  }
  // [read]

  // [write]
  report->m_place->m_value = 3724;
  report->m_remark = "gale warning";
  CSmartPtr<CReading> const evening = report->m_readings->Add();
  evening->m_hour = 18;
  evening->m_temperature = CDecimal("5.25");

  CXmlSerializationContext context;
  context.SetDefaultNamespaceURI(kNamespace);  // otherwise the elements get a prefix
  report->ToXmlFile("report.xml", true, true, XmlEncoding_UTF8, EOLType_LF, context);
  std::cout << '\n' << report->ToXml(false, true, EOLType_LF, context);  // without the XML declaration
  // [write]

  // [facet]
  try {
    evening->m_temperature = 75;
    report->ToXml();
  } catch (CQnException const& failure) {
    std::cout << '\n' << failure.GetFullMessage() << '\n';
  }
  // [facet]

  // [wrong]
  try {
    report->FromXml("<report xmlns='urn:example:weather'><date>2026-03-15</date><sky>rain</sky></report>");
  } catch (CQnException const& failure) {
    std::cout << '\n' << failure.GetFullMessage() << '\n';
  }
  // [wrong]
} catch (CQnException const& failure) {
  std::cerr << failure.GetFullMessage() << '\n';
  return 1;
}
