// The classes that a generator writes for the type Parcel of a schema, and a program that uses them:
//
//   sequence: speed (enumeration: slow, fast), note (token, optional), gram (int above 0, one to nine times),
//             choice, optional: address (token), box (int)
//   attribute: id (token, required)
//
// The classes omit accessors, since the library does not need them: the properties are public members.

#include <atomic>
#include <iostream>
#include <optional>
#include <variant>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

/// The common part of the classes. The schema has no namespace. The first caller builds the record and the tables of a
/// class, and they are destroyed at the end of the process, when no object is left.
template <class Class>
class CBound : public CXmlGeneratedClass {
 public:
  using CXmlGeneratedClass::GetBase;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  CParentElementInfo* GetClassInfo() const override { return Built().info; }
  CElementInfo** GetClassElementInfo() const override { return Built().elements; }
  CAttributeInfo** GetClassAttributeInfo() const override { return Built().attributes; }

 protected:
  struct CMetaData {
    ~CMetaData() { Clean(); }
    void Clean() { CleanMetaData(info, elements, attributes); }
    std::atomic<bool> complete{false};
    CParentElementInfo* info = nullptr;
    CElementInfo** elements = nullptr;
    CAttributeInfo** attributes = nullptr;
  };

 private:
  static CMetaData const& Built() {
    if (s_metaData.complete.load(std::memory_order_acquire)) return s_metaData;
    CQNCriticalSectionLock const lock(m_csInit);
    if (s_metaData.complete.load(std::memory_order_relaxed)) return s_metaData;  // another thread was faster
    s_metaData.Clean();  // remains of an attempt that ran out of memory
    Class::Build(s_metaData);
    s_metaData.complete.store(true, std::memory_order_release);
    return s_metaData;
  }
  static inline CMetaData s_metaData;
};

/// The choice, a class without a tag: one of its members is set, or none.
class CDestination : public CBound<CDestination> {
 public:
  static CSmartPtr<CXmlObjectBase> CreateObject(int, char const*) { return new CDestination; }  // a class factory
  std::variant<std::monostate, std::string, std::int32_t> m_addressOrBox;

  enum { Property_address, Property_box };
  static void Build(CMetaData& data) {  // it sees the attributes of the parcel, so it rejects none
    data.info = new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_Pseudo, "", "", -1, false, false);
    data.elements = new CElementInfo* [3] {};
    data.elements[0] =
        new CElementInfoChoicePrimOpt("address", "", Property_address, ItemType_string, nullptr, kCollapse, {});
    data.elements[1] = new CElementInfoChoicePrimOpt("box", "", Property_box, ItemType_i4, nullptr, kCollapse, {});
    data.attributes = new CAttributeInfo* [1] {};
  }
  void Init() override { m_addressOrBox = std::monostate(); }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    auto const* const address = std::get_if<std::string>(&m_addressOrBox);
    auto const* const box = std::get_if<std::int32_t>(&m_addressOrBox);
    if (read && index == Property_address && address != nullptr) value.SetString(*address);
    if (read && index == Property_box && box != nullptr) value.SetI4(*box);
    if (!read && index == Property_address) m_addressOrBox = value.GetString();
    if (!read && index == Property_box) m_addressOrBox = value.GetI4();
  }
};

enum Speed : int { Speed_slow, Speed_fast };
char const* SpeedText(int number) { return number == Speed_fast ? "fast" : "slow"; }
int SpeedOf(char const* raw) {
  std::string const text = CWhitespaceUtils::Collapse(raw);
  if (text != "fast" && text != "slow") throw CQnInvalidValueException("Unknown speed [" + text + "]");
  return text == "fast" ? Speed_fast : Speed_slow;
}

class CParcel : public CBound<CParcel> {
 public:
  static CSmartPtr<CParcel> CreateInstance(char const* elementName) { return new CParcel(elementName); }
  std::string m_id;
  std::int32_t m_speed = Speed_slow;
  std::optional<std::string> m_note;
  CSmartPtr<Ci4Col> const m_gram = new Ci4Col("gram", "", 1, 9, "", -1, -1, "", "", "0", "", -1, kCollapse, nullptr);
  CSmartPtr<CDestination> m_destination;

  enum { Property_id, Property_speed, Property_note, Property_gram, Property_destination };
  static void Build(CMetaData& data) {
    data.info =
        new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "Parcel", "", -1, true, false);
    data.elements = new CElementInfo* [5] {};
    data.elements[0] = new CElementInfoSeqEnumMnd("speed", "", Property_speed, &SpeedText, &SpeedOf);
    data.elements[1] = new CElementInfoSeqPrimOpt("note", "", Property_note, ItemType_string, nullptr, kCollapse, {});
    data.elements[2] = new CElementInfoSeqPrimCol("gram", "", Property_gram);
    data.elements[3] = new CElementInfoSeqClsOpt("destination", "", Property_destination, XmlElementType_Pseudo,
                                                 &CDestination::CreateObject, 0);
    data.attributes = new CAttributeInfo* [2] {};
    data.attributes[0] =
        new CAttributeInfoPrimitive("id", "", Property_id, false, ItemType_string, nullptr, kCollapse, {}, nullptr);
  }
  void Init() override {  // nothing from an earlier document remains
    m_id.clear();
    m_speed = Speed_slow;
    m_note.reset();
    m_gram->Clear();
    m_destination = nullptr;
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    switch (index) {
      case Property_id: return read ? value.SetString(m_id) : void(m_id = value.GetString());
      case Property_speed: return read ? value.SetI4(m_speed) : void(m_speed = value.GetI4());
      case Property_note:
        if (!read) m_note = value.GetString();
        if (read && m_note) value.SetString(*m_note);  // an absent value leaves the variant invalid
        return;
      case Property_gram: return value.SetXmlCollection(m_gram);  // never stored: the collection is filled
      case Property_destination:
        if (!read) m_destination = dynamic_cast<CDestination*>(value.GetXmlObject().Get());
        return value.SetXmlObject(m_destination);
    }
  }

 private:
  explicit CParcel(char const* elementName) { SetElementName(elementName); }
};

int main() try {
  CSmartPtr<CParcel> const parcel = CParcel::CreateInstance("parcel");
  parcel->FromXml("<parcel id='p7'><speed> fast </speed><gram>120</gram><gram>80</gram><box>7</box></parcel>");
  std::cout << parcel->m_id << ": " << SpeedText(parcel->m_speed) << ", " << parcel->m_note.value_or("no note");
  for (std::int32_t gram : *parcel->m_gram) std::cout << ", " << gram << " g";
  std::cout << ", box " << std::get<std::int32_t>(parcel->m_destination->m_addressOrBox) << "\n\n";

  parcel->m_note = "fragile";
  parcel->m_gram->Add(40);
  parcel->m_destination->m_addressOrBox = "1 Main Street";
  std::cout << parcel->ToXml(false) << '\n';

  parcel->FromXml("<parcel id='p8'><speed>slow</speed><box>7</box></parcel>");
} catch (CQnException const& failure) {
  std::cout << failure.GetFullMessage() << '\n';
}
