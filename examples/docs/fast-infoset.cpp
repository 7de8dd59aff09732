// The code of docs/fast-infoset.md.

#include <iostream>
#include <string>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

constexpr char kNamespace[] = "urn:example:readings";
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

class CReading : public CXmlGeneratedClass {
 public:
  enum { Sensor, Taken, Value, Count };
  std::string m_sensor;
  CDateTime m_taken;
  CDecimal m_value;
  std::int32_t m_count = 0;

  CReading() { SetElementName("reading"); }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (index == Sensor) read ? value.SetString(m_sensor) : void(m_sensor = value.GetString());
    if (index == Taken) read ? value.SetDateTime(m_taken) : void(m_taken = value.GetDateTime());
    if (index == Value) read ? value.SetDecimal(m_value) : void(m_value = value.GetDecimal());
    if (index == Count) read ? value.SetI4(m_count) : void(m_count = value.GetI4());
  }
  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Reading", kNamespace, -1,
                                   true, false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd sensor("sensor", kNamespace, Sensor, ItemType_string, nullptr, kCollapse, {});
    static CElementInfoSeqPrimMnd taken("taken", kNamespace, Taken, ItemType_datetime, nullptr, kCollapse, {});
    static CElementInfoSeqPrimMnd value("value", kNamespace, Value, ItemType_decimal, nullptr, kCollapse, {});
    static CElementInfoSeqPrimMnd count("count", kNamespace, Count, ItemType_i4, nullptr, kCollapse, {});
    static CElementInfo* table[] = {&sensor, &taken, &value, &count, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfo* table[] = {nullptr};
    return table;
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void Init() override {}
};

void Fill(CReading& reading) {
  reading.FromXml(
      "<reading xmlns='urn:example:readings'><sensor>roof</sensor><taken>2024-05-06T07:08:09Z</taken>"
      "<value>-12.625</value><count>100000</count></reading>");
}

void Sizes() {
  std::cout << "[sizes]\n";
  CReading reading;
  Fill(reading);
  std::cout << "text " << reading.ToXmlStream(false, false).GetLength() << '\n';
  // [sizes]
  CXmlSerializationContext ctx;
  std::cout << "Fast Infoset " << reading.ToFastInfosetStream(FInfoDecl_None, ctx).GetLength() << '\n';
  ctx.GetFIContext()->SetSuggestedValues();
  std::cout << "suggested encodings " << reading.ToFastInfosetStream(FInfoDecl_None, ctx).GetLength() << '\n';
  // [sizes]
}

// [vocabulary]
void FillVocabulary(CFastInfosetContext& options) {  // the same at both ends
  CFIVocabulary& vocabulary = options.GetVocabulary();
  for (char const* const name : {"reading", "sensor", "taken", "value", "count"}) {
    vocabulary.AddElement("AA", "urn:example:readings", name);
  }
  vocabulary.AddElementValue("roof");
  options.SetUseGeneratedVocabulary(true);
  options.SetExternalVocabularyURI("urn:v1");
}
// [vocabulary]

void Vocabulary() {
  std::cout << "[agreed]\n";
  CReading reading;
  Fill(reading);
  // [agreed]
  CXmlSerializationContext ctx;
  FillVocabulary(*ctx.GetFIContext());
  CBinaryData const octets = reading.ToFastInfosetStream(FInfoDecl_None, ctx);
  std::cout << "agreed vocabulary " << octets.GetLength() << '\n';
  CReading again;
  again.FromXmlStream(octets, ctx);
  std::cout << again.m_sensor << ' ' << again.m_value.ToString() << '\n';
  try {
    again.FromXmlStream(octets);  // read without the vocabulary
  } catch (CQnException const& failure) {
    std::cout << failure.GetMessage() << '\n';
  }
  // [agreed]
}

void Refused() {
  std::cout << "[refused]\n";
  CReading reading;
  Fill(reading);
  // [refused]
  reading.m_taken.ParseXSDDateTime("2024-05-06T07:08:09.5Z");  // the date alphabet lacks the decimal point
  CXmlSerializationContext ctx;
  ctx.GetFIContext()->SetSuggestedValues();
  try {
    reading.ToFastInfosetStream(FInfoDecl_None, ctx);
  } catch (CQnException const& failure) {
    std::cout << failure.GetFullMessage() << '\n';
  }
  ctx.GetFIContext()->SetEncoding(ItemType_datetime, {});  // as text
  std::cout << reading.ToFastInfosetStream(FInfoDecl_None, ctx).GetLength() << '\n';
  // [refused]
}

}  // namespace

int main() {
  Sizes();
  Vocabulary();
  Refused();
}
