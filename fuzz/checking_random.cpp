// Random classes with random objects, the same ones in each run: what the check of an object finds is compared with what
// happens when the object is written and read back.
//
//   checking_random [CASES [FIRST]]     2000 cases from number 0 by default

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "dynamic_class.h"
#include "fuzzing.h"
#include "quillon9/base/failures.h"

namespace {

using namespace Quillon9;
using namespace Quillon9Data;
using Quillon9::Testing::Attribute;
using Quillon9::Testing::DynamicClass;
using Quillon9::Testing::Prim;
using Quillon9::Testing::Shape;

std::mt19937 g_random;
int Below(int limit) { return static_cast<int>(g_random() % static_cast<unsigned>(limit)); }
bool OneIn(int times) { return Below(times) == 0; }

// ---- The classes. A class holds objects of later ones only.

enum class Content { kText, kNumber, kEnum, kObject, kObjects, kElement };

struct Member {
  Content content;
  std::string name;
  int index;
  int classId = 0;
  bool isHeld = false;  // a mandatory object, which the holder makes
  int minOccurs = 0;
  int maxOccurs = -1;
};

struct Class {
  std::vector<Member> members;
  std::vector<Member> attributes;
  std::unique_ptr<Shape> shape;
  XmlElementType type = XmlElementType_Element;
  int textProperty = -1;
  bool isHeld = false;  // one without a tag
};

std::vector<Class> g_classes;
int g_names = 0;

char const* TextOf(int number) { return number == 1 ? "one" : nullptr; }
int NumberOf(char const*) { return 1; }
CSmartPtr<CXmlObjectBase> MakeObject(int classId, char const* name);

CPrimitiveRestrictions TwoCharacters() { return CPrimitiveRestrictions("", -1, 2, "", "", "", "", -1); }
CPrimitiveRestrictions OneDigit() { return CPrimitiveRestrictions("", -1, -1, "", "9", "", "", -1); }

template <class Mandatory, class Optional>
CElementInfo* MakeValue(Member const& member, bool isMandatory) {
  ItemType const type = member.content == Content::kText ? ItemType_string : ItemType_i4;
  CPrimitiveRestrictions const facets = member.content == Content::kText ? TwoCharacters() : OneDigit();
  char const* const name = member.name.c_str();
  if (isMandatory) return Prim<Mandatory>(name, member.index, type, facets);
  return Prim<Optional>(name, member.index, type, facets);
}

template <class Mandatory, class Optional>
CElementInfo* MakeEnum(Member const& member, bool isMandatory) {
  char const* const name = member.name.c_str();
  if (isMandatory) return new Mandatory(name, "", member.index, TextOf, NumberOf);
  return new Optional(name, "", member.index, TextOf, NumberOf);
}

XmlElementType TypeOf(Member const& member) { return g_classes[static_cast<std::size_t>(member.classId)].type; }

template <class Mandatory, class Optional>
CElementInfo* MakeHolder(Member& member, bool isMandatory) {
  char const* const name = member.name.c_str();
  XmlElementType const type = TypeOf(member);
  member.isHeld = isMandatory;
  if (isMandatory) return new Mandatory(name, "", member.index, type, MakeObject, member.classId, OneIn(2));
  return new Optional(name, "", member.index, type, MakeObject, member.classId);
}

CElementInfo* MakeSeqMember(Member& member, bool isMandatory) {
  switch (member.content) {
    case Content::kText:
    case Content::kNumber: return MakeValue<CElementInfoSeqPrimMnd, CElementInfoSeqPrimOpt>(member, isMandatory);
    case Content::kEnum: return MakeEnum<CElementInfoSeqEnumMnd, CElementInfoSeqEnumOpt>(member, isMandatory);
    case Content::kObject: return MakeHolder<CElementInfoSeqClsMnd, CElementInfoSeqClsOpt>(member, isMandatory);
    case Content::kObjects:
      return new CElementInfoSeqClsCol(member.name.c_str(), "", member.index, XmlElementType_Element);
    case Content::kElement: break;
  }
  return new CElementInfoSeqUntpdOpt(member.name.c_str(), "", member.index, "##any", "");
}

CElementInfo* MakeAllMember(Member& member, bool isMandatory) {
  switch (member.content) {
    case Content::kText:
    case Content::kNumber: return MakeValue<CElementInfoAllPrimMnd, CElementInfoAllPrimOpt>(member, isMandatory);
    case Content::kEnum: return MakeEnum<CElementInfoAllEnumMnd, CElementInfoAllEnumOpt>(member, isMandatory);
    case Content::kElement: return new CElementInfoAllUntpdOpt(member.name.c_str(), "", member.index, "##any", "");
    default: member.content = Content::kObject; break;
  }
  return MakeHolder<CElementInfoAllClsMnd, CElementInfoAllClsOpt>(member, isMandatory);
}

CElementInfo* MakeChoiceMember(Member& member) {
  char const* const name = member.name.c_str();
  switch (member.content) {
    case Content::kText:
    case Content::kNumber: return MakeValue<CElementInfoChoicePrimOpt, CElementInfoChoicePrimOpt>(member, false);
    case Content::kEnum: return new CElementInfoChoiceEnumOpt(name, "", member.index, TextOf, NumberOf);
    case Content::kObject:
      return new CElementInfoChoiceClsOpt(name, "", member.index, TypeOf(member), MakeObject, member.classId);
    case Content::kObjects: return new CElementInfoChoiceClsCol(name, "", member.index, XmlElementType_Element);
    case Content::kElement: break;
  }
  return new CElementInfoChoiceUntpdOpt(name, "", member.index, "##any", "");
}

std::string NewName() { return "m" + std::to_string(g_names++); }

/// A class without a tag has one holder: the contents of two would follow one another.
int ClassAfter(int id, bool withTag) {
  int const count = static_cast<int>(g_classes.size());
  for (int tries = 0; tries < 8 && id + 1 < count; ++tries) {
    int const other = id + 1 + Below(count - id - 1);
    Class& chosen = g_classes[static_cast<std::size_t>(other)];
    if (chosen.type == XmlElementType_Element) return other;
    if (!withTag && !std::exchange(chosen.isHeld, true)) return other;
  }
  return -1;
}

void MakeClass(int id) {
  Class& made = g_classes[static_cast<std::size_t>(id)];
  auto const group = static_cast<XmlElementGroupType>(Below(3));
  std::vector<CElementInfo*> elements;
  for (int i = 0, count = 1 + Below(3); i < count; ++i) {
    Member member{static_cast<Content>(Below(6)), NewName(), i};
    bool const holds = member.content == Content::kObject || member.content == Content::kObjects;
    bool const isItem = member.content == Content::kObjects && group != XmlElementGroupType_All;
    if (holds) member.classId = ClassAfter(id, isItem);
    if (holds && member.classId < 0) member.content = Content::kText;
    member.minOccurs = Below(3);
    member.maxOccurs = OneIn(3) ? -1 : member.minOccurs + 1;
    bool const isMandatory = OneIn(2);
    elements.push_back(group == XmlElementGroupType_Choice ? MakeChoiceMember(member)
                       : group == XmlElementGroupType_All  ? MakeAllMember(member, isMandatory)
                                                           : MakeSeqMember(member, isMandatory));
    made.members.push_back(member);
  }
  std::vector<CAttributeInfo*> attributes;
  for (int i = 0; made.type == XmlElementType_Element && i < Below(3); ++i) {
    Member const member{static_cast<Content>(Below(3)), NewName(), 10 + i};
    char const* const name = member.name.c_str();
    attributes.push_back(member.content == Content::kEnum
                             ? new CAttributeInfoEnum(name, "", member.index, OneIn(2), TextOf, NumberOf, nullptr)
                             : Attribute(name, member.index, OneIn(2),
                                         member.content == Content::kText ? ItemType_string : ItemType_i4,
                                         member.content == Content::kText ? TwoCharacters() : OneDigit()));
    made.attributes.push_back(member);
  }
  made.textProperty = made.type == XmlElementType_Element && OneIn(4) ? 20 : -1;
  made.shape =
      std::make_unique<Shape>(Shape::Options{group, made.type, made.textProperty, made.type == XmlElementType_Element},
                              std::initializer_list<CElementInfo*>{});
  auto const fill = [](auto**& table, auto const& entries) {
    delete[] table;
    table = new std::decay_t<decltype(*table)>[entries.size() + 1] {};
    std::copy(entries.begin(), entries.end(), table);
  };
  fill(made.shape->m_elements, elements);
  fill(made.shape->m_attributes, attributes);
}

void MakeClasses() {
  g_classes.clear();
  g_names = 0;
  g_classes.resize(static_cast<std::size_t>(1 + Below(4)));
  for (std::size_t i = 1; i < g_classes.size(); ++i) {
    g_classes[i].type = OneIn(3) ? XmlElementType_Pseudo : XmlElementType_Element;
  }
  for (int i = static_cast<int>(g_classes.size()); i-- > 0;) MakeClass(i);
}

// ---- The objects

class Items : public CXmlCollection {
 public:
  explicit Items(Member const& member)
      : CXmlCollection(member.name.c_str(), "", member.minOccurs, member.maxOccurs), m_classId(member.classId) {}
  void Add(CXmlObjectBase* item) { AppendItem(item); }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const override {
    if (m_classId % 2 == 0) ValidateCount(ctx);
    for (CNode* node = GetFirstNode(); node != nullptr; node = node->m_next) {
      CXmlObjectBase::ToXml_Int(node->m_item, writer, false, ns, ctx, false);
    }
  }
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) override {
    for (; cursor != nullptr && cursor->GetLocalName() == GetElementName(); cursor = cursor->GetNextSiblingElement()) {
      CSmartPtr<CXmlObjectBase> const item = MakeObject(m_classId, GetElementName().c_str());
      CXmlObjectBase::FromXml_Int(item.Get(), cursor, cursor->GetFirstElement(), ctx);
      AppendItem(item.Get());
    }
    return cursor;
  }

 private:
  int m_classId;
};

class Object : public DynamicClass {
 public:
  Object(int classId, char const* name)
      : DynamicClass(*g_classes[static_cast<std::size_t>(classId)].shape, name),
        m_class(g_classes[static_cast<std::size_t>(classId)]) {
    Init();
  }
  void Init() override {
    m_properties.clear();
    for (Member const& member : m_class.members) {
      if (member.isHeld) With(member.index, MakeObject(member.classId, member.name.c_str()).Get());
      if (member.content == Content::kObjects) With(member.index, static_cast<CXmlCollectionBase*>(new Items(member)));
    }
  }
  void Fill();

 private:
  void FillMember(Member const& member);

  Class const& m_class;
};

CSmartPtr<CXmlObjectBase> MakeObject(int classId, char const* name) { return new Object(classId, name); }

CSmartPtr<CXmlObjectBase> Filled(int classId, std::string const& name) {
  CSmartPtr<CXmlObjectBase> object = MakeObject(classId, name.c_str());
  static_cast<Object&>(*object).Fill();
  return object;
}

/// Most are good, so that most objects have few faults.
char const* SomeText() {
  if (OneIn(40)) return "long";
  if (OneIn(40)) return "\x01";
  return OneIn(3) ? "" : OneIn(2) ? "ab" : "<";
}

void Object::FillMember(Member const& member) {
  if (OneIn(8)) return;
  switch (member.content) {
    case Content::kText: With(member.index, SomeText()); break;
    case Content::kNumber: With(member.index, OneIn(40) ? 12 : Below(10)); break;
    case Content::kEnum: With(member.index, OneIn(40) ? 2 : 1); break;
    case Content::kObject: With(member.index, Filled(member.classId, member.name).Get()); break;
    case Content::kObjects: {
      auto* const items = static_cast<Items*>(m_properties[member.index].GetXmlCollection().Get());
      int const count = OneIn(10) ? Below(4) : member.minOccurs + Below(2);
      for (int i = 0; i < count; ++i) items->Add(Filled(member.classId, member.name).Get());
      break;
    }
    case Content::kElement: {
      auto* const element = new CElement(member.name.c_str());
      With(member.index, static_cast<CXmlObjectBase*>(element));
      element->SetText(SomeText());
      for (int i = Below(3); i > 0; --i) element->GetElements()->Add("e", "")->SetText(SomeText());
      break;
    }
  }
}

void Object::Fill() {
  bool const isChoice = GetClassInfo()->m_groupType == XmlElementGroupType_Choice;
  std::size_t const chosen = static_cast<std::size_t>(Below(static_cast<int>(m_class.members.size())));
  for (std::size_t i = 0; i < m_class.members.size(); ++i) {
    if (!isChoice || i == chosen || OneIn(30)) FillMember(m_class.members[i]);
  }
  for (Member const& attribute : m_class.attributes) FillMember(attribute);
  if (m_class.textProperty >= 0) With(m_class.textProperty, OneIn(20) ? "\x01" : "text");
}

// ---- The comparison

CXmlSerializationContext SomeOptions() {
  std::string letters;
  for (char const letter : {'M', 'C', 'I'}) {
    if (OneIn(6)) letters += letter;
  }
  return Testing::Ignoring(letters);
}

std::string TextOf(CXmlObjectBase const& object, CXmlSerializationContext const& ctx) {
  return object.ToXml(false, false, EOLType_LF, ctx);
}

/// Whether a write of these classes lets pass what \p report is about.
bool IsOnlyForReaders(std::string const& report) {
  for (char const* const part : {"The required element [", "The control character ", "More than one of the elements [",
                                 "elements allowed in this collection is"}) {
    if (report.find(part) != std::string::npos) return true;
  }
  return false;
}

/// The text of \p object, or nothing if the write fails: with the first of the failures in \p told that a write has.
std::optional<std::string> Written(CXmlObjectBase const& object, CXmlSerializationContext const& ctx,
                                   CFailureList const& told) {
  try {
    return TextOf(object, ctx);
  } catch (CQnException const& failure) {
    std::string expected;
    for (CFailure const& one : told.GetFailures()) {
      expected = one.GetReport();
      if (expected == failure.GetReport() || !IsOnlyForReaders(expected)) break;
    }
    Fuzzing::RequireEqual(failure.GetReport(), expected, "the failure of a write");
    return std::nullopt;
  }
}

std::string FailureOfReading(std::string const& text, CXmlSerializationContext const& ctx) {
  CSmartPtr<CXmlObjectBase> const object = MakeObject(0, "root");
  try {
    object->FromXml(text.c_str(), ctx);
    Fuzzing::RequireEqual(TextOf(*object, ctx), text, "what was read is written differently");
    return "";
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
}

std::string Describe() {
  constexpr char const* kContents[] = {"text", "number", "enum", "object", "objects", "element"};
  constexpr char const* kGroups[] = {"sequence", "choice", "all"};
  std::string text;
  for (std::size_t i = 0; i < g_classes.size(); ++i) {
    Class const& described = g_classes[i];
    text += std::to_string(i) + " " + kGroups[described.shape->m_info->m_groupType];
    if (described.type == XmlElementType_Pseudo) text += " without a tag";
    for (Member const& member : described.members) {
      CElementInfo const& entry = *described.shape->m_elements[member.index];
      text += std::string("; ") + typeid(entry).name() + " " + member.name + " " +
              kContents[static_cast<int>(member.content)] + " " + std::to_string(member.classId);
    }
    text += "\n";
  }
  return text;
}

/// Returns whether there was a failure.
bool RunCase(unsigned long seed) {
  g_random.seed(static_cast<std::mt19937::result_type>(seed));
  MakeClasses();
  CXmlSerializationContext const ctx = SomeOptions();
  CSmartPtr<CXmlObjectBase> const object = Filled(0, "root");
  CFailureList failures;
  bool const isGood = object->Check(ctx, &failures);
  std::string const told = failures.GetReport();
  Fuzzing::Require(isGood == told.empty() && isGood == object->Check(ctx), "the answers of the check differ", told);
  std::optional<std::string> const text = Written(*object, ctx, failures);
  if (!text) return true;
  // A write drops the second member of a choice, so that a reader does not see it.
  bool const hasDropped = told.find("More than one of the elements") != std::string::npos;
  std::string const refused = hasDropped ? "" : FailureOfReading(*text, ctx);
  if (hasDropped) return true;
  Fuzzing::Require(isGood == refused.empty(), ("seed " + std::to_string(seed) + "\n" + Describe() + *text).c_str(),
                   told, refused);
  return !isGood;
}

}  // namespace

int main(int count, char** arguments) {
  unsigned long const cases = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 2000;
  unsigned long const first = count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 0;
  unsigned long failed = 0;
  for (unsigned long seed = first; seed < first + cases; ++seed) failed += RunCase(seed);
  std::printf("%lu cases, %lu with failures\n", cases, failed);
  return 0;
}
