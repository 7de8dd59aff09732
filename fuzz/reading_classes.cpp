#include "reading_classes.h"

namespace Reading {

using namespace Quillon9;
using namespace Quillon9Data;

std::string Item(char const* what, int object) { return FormatString("%s %d", what, object); }
std::string Item(char const* what, int object, int index) { return FormatString("%s %d.%d", what, object, index); }

namespace {

void Tell(std::string item) { World::Current().m_log.push_back(std::move(item)); }

// ---- Objects

/// Logs the events of one collection.
class Listener final : public IEventSink {
 public:
  Listener(int object, int index, CXmlCollectionBase* collection)
      : m_object(object), m_index(index), m_collection(collection) {
    m_collection->AddEventListener(this);
  }
  // Reading does not depend on whether a collection is cleared during its destruction.
  ~Listener() { m_collection->RemoveEventListener(this); }
  Listener(Listener const&) = delete;
  Listener& operator=(Listener const&) = delete;
  void OnEvent(CXmlObjectBase*, MsgType type, void*) override {
    Tell(Item("event", m_object, m_index) + FormatString(" %d", static_cast<int>(type)));
  }

 private:
  int m_object;
  int m_index;
  CSmartPtr<CXmlCollectionBase> m_collection;
};

class BoundClass : public CXmlGeneratedClass {
 public:
  BoundClass(Class const& described, char const* name)
      : m_class(described),
        m_tables(World::Current().m_tables[static_cast<std::size_t>(described.id)]),
        m_number(World::Current().m_objects++) {
    SetElementName(name);
    for (Member const& member : m_class.members) MakeHeld(member, true);
    for (Attribute const& attribute : m_class.attributes) {
      if (attribute.kind != AttributeKind::kAny) continue;
      Hold(attribute.index, new CAttributeCol("", attribute.restriction.c_str(), ""));
    }
  }

  using CXmlGeneratedClass::GetBase;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return m_class.ns; }
  std::string GetNamespace() const override {
    Tell(Item("namespace", m_number));
    return m_class.ns;
  }
  CParentElementInfo* GetClassInfo() const override { return m_tables.info.get(); }
  CElementInfo** GetClassElementInfo() const override { return const_cast<CElementInfo**>(m_tables.elements.data()); }
  CAttributeInfo** GetClassAttributeInfo() const override {
    int const owner = m_class.sharesAttributes ? m_class.base : m_class.id;
    World::Tables const& tables = World::Current().m_tables[static_cast<std::size_t>(owner)];
    return const_cast<CAttributeInfo**>(tables.attributes.data());
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (read) {
      Tell(Item("get", m_number, index));
      value = m_properties[index];
    } else {
      Tell(Item("set", m_number, index) + " " + TextOf(value));
      m_properties[index] = value;
    }
  }
  void Init() override {
    Tell(Item("init", m_number));
    if (m_class.init == InitKind::kNothing) return;
    bool const isAll = m_class.init != InitKind::kClearCollections;
    for (auto& property : m_properties) {
      if (property.second.GetItemType() == ItemType_xmlCollection) {
        property.second.GetXmlCollection()->Clear();
      } else if (isAll && (property.second.GetItemType() != ItemType_xmlObject || !IsMandatory(property.first))) {
        property.second.Clear();
      }
    }
    if (m_class.init != InitKind::kClearAll) return;
    for (Member const& member : m_class.members) MakeHeld(member, false);
  }

  std::string TextOf(QnVariant const& value) const {
    if (!value.IsValid()) return "nothing";
    if (value.GetItemType() != ItemType_xmlObject) return value.ToString(nullptr);
    CSmartPtr<CXmlObjectBase> const object = value.GetXmlObject();
    if (!object) return "null";
    auto const* const bound = dynamic_cast<BoundClass const*>(object.Get());
    return bound != nullptr ? Item("object", bound->m_number) : "element";
  }

  Class const& m_class;
  World::Tables const& m_tables;
  int const m_number;
  std::map<int, QnVariant> m_properties;

 private:
  bool IsMandatory(int index) const {
    return index < static_cast<int>(m_class.members.size()) &&
           m_class.members[static_cast<std::size_t>(index)].occurs == Occurs::kMandatory;
  }
  void Hold(int index, CXmlCollectionBase* collection) {
    m_properties[index].SetXmlCollection(collection);
    m_listeners.push_back(std::make_unique<Listener>(m_number, index, collection));
  }
  void MakeHeld(Member const& member, bool withCollections);

  std::vector<std::unique_ptr<Listener>> m_listeners;
};

class NillableBoundClass : public BoundClass, public INillable {
 public:
  using BoundClass::BoundClass;
  bool IsNil() const override { return m_isNil; }
  void SetNil(bool nil) override {
    Tell(Item("nil", m_number, nil));
    m_isNil = nil;
  }

 private:
  bool m_isNil = false;
};

CSmartPtr<CXmlObjectBase> MakeBound(int classId, char const* name) {
  Class const& described = World::Current().m_schema[static_cast<std::size_t>(classId)];
  if (described.isNillable) return new NillableBoundClass(described, name);
  return new BoundClass(described, name);
}

CSmartPtr<CXmlObjectBase> MakeByFactory(int classId, char const* name) {
  Tell("make " + std::to_string(classId) + " " + name);
  return MakeBound(classId, name);
}

CSmartPtr<CXmlObjectBase> MakeForElement(CXmlElement* element) {
  Tell("find " + element->GetLocalName());
  int const id = ClassOfElement(World::Current().m_schema, element);
  return id < 0 ? CSmartPtr<CXmlObjectBase>() : MakeBound(id, element->GetLocalName().c_str());
}

/// A collection as generated code defines it.
class BoundCollection : public CXmlCollection {
 public:
  explicit BoundCollection(Member const& member)
      : CXmlCollection(member.name.c_str(), member.ns.c_str(), member.minOccurs, member.maxOccurs), m_member(member) {}
  CXmlObjectBase* At(int index) const { return GetNodeAtIndex(index)->m_item.Get(); }

 protected:
  void ToXml_Int(CXmlWriter*, bool, char const*, CXmlSerializationContext const&, bool) const override {}
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) override {
    while (cursor != nullptr && DoesElementNameMatch(ctx, cursor, m_member.name.c_str(), m_member.ns.c_str())) {
      CSmartPtr<CXmlObjectBase> const item = m_member.content == Content::kAbstract
                                                 ? MakeForElement(cursor)
                                                 : MakeByFactory(m_member.classId, m_member.name.c_str());
      if (!item) break;
      CXmlObjectBase::FromXml_Int(item.Get(), cursor, cursor->GetFirstElement(), ctx);
      AppendItem(item.Get());
      cursor = cursor->GetNextSiblingElement();
    }
    return cursor;
  }

 private:
  Member const& m_member;
};

CXmlCollectionBase* MakeCollection(Member const& member) {
  char const* const name = member.name.c_str();
  char const* const ns = member.ns.c_str();
  auto const rule = CWhitespaceUtils::WhitespaceRule_Collapse;
  switch (member.content) {
    case Content::kObject:
    case Content::kAbstract: return new BoundCollection(member);
    case Content::kUntyped: return new CElementCol("", "##any", member.target.c_str(), 0, -1);
    case Content::kValue:
    case Content::kEnum: break;
  }
  if (member.content == Content::kValue && member.type == ItemType_i4) {
    return new Ci4Col(name, ns, member.minOccurs, member.maxOccurs, "", -1, -1, "", "2", "", "", -1, rule, nullptr);
  }
  return new CstringCol(name, ns, member.minOccurs, member.maxOccurs, "", -1, 3, "", "", "", "", -1, rule, nullptr);
}

void BoundClass::MakeHeld(Member const& member, bool withCollections) {
  if (member.occurs == Occurs::kRepeated) {
    if (withCollections) Hold(member.index, MakeCollection(member));
  } else if (member.occurs == Occurs::kMandatory && member.content == Content::kObject) {
    m_properties[member.index].SetXmlObject(MakeBound(member.classId, member.name.c_str()).Get());
  } else if (member.occurs == Occurs::kMandatory && member.content == Content::kUntyped) {
    m_properties[member.index].SetXmlObject(
        new CElement(member.name.c_str(), "", member.heldRestriction.c_str(), "urn:t"));
  }
}

// ---- Descriptors

template <class Mnd, class Opt, class... Arguments>
CElementInfo* MandatoryOr(bool isMandatory, Arguments... arguments) {
  if (isMandatory) return new Mnd(arguments...);
  return new Opt(arguments...);
}

CPrimitiveRestrictions NoFacets() { return CPrimitiveRestrictions("", -1, -1, "", "", "", "", -1); }

// The constructors of a group's members, which take the same arguments in each group.
#define QN_MEMBERS(Group, Mnd)                                                                                       \
  CElementInfo* Make##Group(Member const& m) {                                                                       \
    char const* const name = m.name.c_str();                                                                         \
    char const* const ns = m.ns.c_str();                                                                             \
    auto const rule = CWhitespaceUtils::WhitespaceRule_Collapse;                                                     \
    auto const child = m.isGroup ? XmlElementType_Pseudo : XmlElementType_Element;                                   \
    bool const isMandatory = m.occurs == Occurs::kMandatory;                                                         \
    switch (m.content) {                                                                                             \
      case Content::kValue:                                                                                          \
        return MandatoryOr<CElementInfo##Group##Prim##Mnd, CElementInfo##Group##PrimOpt>(                            \
            isMandatory, name, ns, m.index, m.type, nullptr, rule, NoFacets());                                      \
      case Content::kEnum:                                                                                           \
        return MandatoryOr<CElementInfo##Group##Enum##Mnd, CElementInfo##Group##EnumOpt>(isMandatory, name, ns,      \
                                                                                         m.index, EnumText, EnumOf); \
      case Content::kObject: return Make##Group##Object(m, name, ns, child);                                         \
      case Content::kAbstract: return Make##Group##Abstract(m, name, ns, child);                                     \
      case Content::kUntyped:                                                                                        \
        return MandatoryOr<CElementInfo##Group##Untpd##Mnd, CElementInfo##Group##UntpdOpt>(                          \
            isMandatory, name, ns, m.index, m.restriction.c_str(), m.target.c_str());                                \
    }                                                                                                                \
    return nullptr;                                                                                                  \
  }

CElementInfo* MakeSeqObject(Member const& m, char const* name, char const* ns, XmlElementType child) {
  if (m.occurs == Occurs::kOptional) {
    return new CElementInfoSeqClsOpt(name, ns, m.index, child, MakeByFactory, m.classId);
  }
  return new CElementInfoSeqClsMnd(name, ns, m.index, child, MakeByFactory, m.classId, m.requiresContent);
}
CElementInfo* MakeAllObject(Member const& m, char const* name, char const* ns, XmlElementType child) {
  if (m.occurs == Occurs::kOptional) {
    return new CElementInfoAllClsOpt(name, ns, m.index, child, MakeByFactory, m.classId);
  }
  return new CElementInfoAllClsMnd(name, ns, m.index, child, MakeByFactory, m.classId, m.requiresContent);
}
CElementInfo* MakeChoiceObject(Member const& m, char const* name, char const* ns, XmlElementType child) {
  return new CElementInfoChoiceClsOpt(name, ns, m.index, child, MakeByFactory, m.classId);
}
CElementInfo* MakeSeqAbstract(Member const& m, char const* name, char const* ns, XmlElementType child) {
  return MandatoryOr<CElementInfoSeqAbsClsMnd, CElementInfoSeqAbsClsOpt>(m.occurs == Occurs::kMandatory, name, ns,
                                                                         m.index, child, MakeForElement);
}
CElementInfo* MakeAllAbstract(Member const& m, char const* name, char const* ns, XmlElementType child) {
  if (m.occurs == Occurs::kOptional) return new CElementInfoAllAbsClsOpt(name, ns, m.index, child, MakeForElement);
  return new CElementInfoAllAbsClsMnd(name, ns, m.index, child, MakeForElement, 0);
}
CElementInfo* MakeChoiceAbstract(Member const& m, char const* name, char const* ns, XmlElementType child) {
  return new CElementInfoChoiceAbsClsOpt(name, ns, m.index, child, MakeForElement);
}
QN_MEMBERS(Seq, Mnd)
QN_MEMBERS(All, Mnd)
QN_MEMBERS(Choice, Opt)
#undef QN_MEMBERS

template <class Prim, class Enum, class Cls, class AbsCls, class Untpd>
CElementInfo* MakeRepeated(Member const& m) {
  char const* const name = m.name.c_str();
  char const* const ns = m.ns.c_str();
  switch (m.content) {
    case Content::kValue: return new Prim(name, ns, m.index);
    case Content::kEnum: return new Enum(name, ns, m.index);
    case Content::kObject: return new Cls(name, ns, m.index, XmlElementType_Element);
    case Content::kAbstract: return new AbsCls(name, ns, m.index, XmlElementType_Element);
    case Content::kUntyped: return new Untpd(name, ns, m.index);
  }
  return nullptr;
}

CElementInfo* MakeDescriptor(Member const& m, XmlElementGroupType group) {
  if (m.occurs == Occurs::kRepeated && group == XmlElementGroupType_Sequence) {
    return MakeRepeated<CElementInfoSeqPrimCol, CElementInfoSeqEnumCol, CElementInfoSeqClsCol, CElementInfoSeqAbsClsCol,
                        CElementInfoSeqUntpdCol>(m);
  }
  if (m.occurs == Occurs::kRepeated) {
    return MakeRepeated<CElementInfoChoicePrimCol, CElementInfoChoiceEnumCol, CElementInfoChoiceClsCol,
                        CElementInfoChoiceAbsClsCol, CElementInfoChoiceUntpdCol>(m);
  }
  return group == XmlElementGroupType_Sequence ? MakeSeq(m)
         : group == XmlElementGroupType_All    ? MakeAll(m)
                                               : MakeChoice(m);
}

CAttributeInfo* MakeDescriptor(Attribute const& a) {
  char const* const name = a.name.c_str();
  char const* const ns = a.ns.c_str();
  switch (a.kind) {
    case AttributeKind::kValue:
      return new CAttributeInfoPrimitive(name, ns, a.index, a.isOptional, a.type, nullptr,
                                         CWhitespaceUtils::WhitespaceRule_Collapse, NoFacets(), nullptr);
    case AttributeKind::kEnum:
      return new CAttributeInfoEnum(name, ns, a.index, a.isOptional, EnumText, EnumOf, nullptr);
    case AttributeKind::kAny:
      return new CAttributeInfoAny(name, ns, a.index, a.isOptional, a.restriction.c_str(), "", nullptr);
  }
  return nullptr;
}

// ---- The contents of an object

std::string ValuesOf(CElement const& element) {
  std::string text = "<" + element.GetName() + "|" + element.GetNamespace();
  for (CAttribute const& attribute : *element.GetAttributes()) {
    text += " " + attribute.GetName() + "|" + attribute.GetNamespace() + "=" + attribute.GetValue();
  }
  text += ">" + element.GetText();
  for (CElement const& child : *element.GetElements()) text += ValuesOf(child);
  return text + "</>";
}

std::string ValuesOf(CXmlObjectBase const* object) {
  if (object == nullptr) return "null";
  if (auto const* const bound = dynamic_cast<BoundClass const*>(object)) return Reading::ValuesOf(*bound);
  return ValuesOf(dynamic_cast<CElement const&>(*object));
}

std::string ValuesOf(CXmlCollectionBase const& collection) {
  std::string text = "[";
  for (int i = 0; i < collection.GetCount(); ++i) {
    if (auto const* const objects = dynamic_cast<BoundCollection const*>(&collection)) {
      text += ValuesOf(objects->At(i));
    } else if (auto const* const strings = dynamic_cast<CstringCol const*>(&collection)) {
      text += strings->Item(i);
    } else if (auto const* const numbers = dynamic_cast<Ci4Col const*>(&collection)) {
      text += std::to_string(numbers->Item(i));
    } else if (auto const* const elements = dynamic_cast<CElementCol const*>(&collection)) {
      text += ValuesOf(*elements->Item(i));
    } else {
      CAttribute const& attribute = *dynamic_cast<CAttributeCol const&>(collection).Item(i);
      text += attribute.GetName() + "|" + attribute.GetNamespace() + "=" + attribute.GetValue();
    }
    text += ",";
  }
  return text + "]";
}

}  // namespace

World::World(Schema const& schema) : m_schema(schema), m_tables(schema.size()) {
  t_current = this;
  for (std::size_t i = schema.size(); i-- > 0;) {  // a table begins with descriptors of a later class
    Class const& described = schema[i];
    Tables& tables = m_tables[i];
    tables.info = std::make_unique<CParentElementInfo>(
        described.group, described.hasTag ? XmlElementType_Element : XmlElementType_Pseudo, "T", "urn:t",
        described.textProperty, described.rejectsAttributes, false);
    if (described.base >= 0) tables.elements = m_tables[static_cast<std::size_t>(described.base)].elements;
    tables.elements.resize(described.inherited);
    for (std::size_t m = described.inherited; m < described.members.size(); ++m) {
      tables.ownElements.emplace_back(MakeDescriptor(described.members[m], described.group));
      tables.elements.push_back(tables.ownElements.back().get());
    }
    tables.elements.push_back(nullptr);
    for (Attribute const& attribute : described.attributes) {
      tables.ownAttributes.emplace_back(MakeDescriptor(attribute));
      tables.attributes.push_back(tables.ownAttributes.back().get());
    }
    tables.attributes.push_back(nullptr);
  }
}

World::~World() { t_current = nullptr; }

CSmartPtr<CXmlGeneratedClass> MakeRoot() {
  CSmartPtr<CXmlObjectBase> const root = MakeBound(0, "root");
  return static_cast<CXmlGeneratedClass*>(root.Get());
}

std::string ValuesOf(CXmlGeneratedClass const& object) {
  auto const& bound = dynamic_cast<BoundClass const&>(object);
  auto const* const nillable = dynamic_cast<INillable const*>(&object);
  std::string text = "{" + bound.GetElementName();
  if (nillable != nullptr && nillable->IsNil()) text += " nil";
  for (auto const& [index, value] : bound.m_properties) {
    if (!value.IsValid()) continue;
    text += " " + std::to_string(index) + ":";
    if (value.GetItemType() == ItemType_xmlCollection) {
      text += ValuesOf(*value.GetXmlCollection());
    } else if (value.GetItemType() == ItemType_xmlObject) {
      text += ValuesOf(value.GetXmlObject().Get());
    } else {
      text += value.ToString(nullptr);
    }
  }
  return text + "}";
}

}  // namespace Reading
