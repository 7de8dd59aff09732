#include "reading_model.h"

#include <strings.h>

#include <map>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/values/object_helper.h"

namespace Reading {

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

struct Object;
using ObjectPtr = std::shared_ptr<Object>;

/// A property: nothing, a value as text, an object that may be null, or a collection.
struct Property {
  enum Kind { kNothing, kValue, kObject, kCollection } kind = kNothing;
  std::string text;
  ObjectPtr object;
};

/// An object of a class, an untyped element, or a collection of values, objects, elements or attributes.
struct Object {
  enum Kind { kBound, kElement, kValues, kObjects, kElements, kAttributes } kind = kBound;
  Class const* described = nullptr;
  Member const* member = nullptr;  // of a collection
  int number = 0;                  // of a bound object, or of the owner of a collection
  int index = 0;                   // of a collection
  std::string name;
  std::string ns;
  std::string text;
  std::string restriction;
  std::string target;
  bool isNil = false;
  std::map<int, Property> properties;
  std::vector<std::string> attributes;  // of an element or of a collection of them
  std::vector<std::string> values;
  std::vector<ObjectPtr> items;

  int Count() const {
    return static_cast<int>(kind == kValues ? values.size() : kind == kAttributes ? attributes.size() : items.size());
  }
};

enum Event { kChange, kAdd, kAddComplete, kRemove, kRemoveComplete };

std::string AttributeText(CXmlAttribute const& attribute) {
  return attribute.GetLocalName() + "|" + attribute.GetNamespaceURI() + "=" + attribute.GetValue();
}

std::string ValuesOf(Object const& object) {
  std::string text;
  if (object.kind == Object::kElement) {
    text = "<" + object.name + "|" + object.ns;
    for (std::string const& attribute : object.attributes) text += " " + attribute;
    text += ">" + object.text;
    for (ObjectPtr const& child : object.items) text += ValuesOf(*child);
    return text + "</>";
  }
  if (object.kind != Object::kBound) {
    text = "[";
    for (std::string const& value : object.values) text += value + ",";
    for (std::string const& attribute : object.attributes) text += attribute + ",";
    for (ObjectPtr const& item : object.items) text += ValuesOf(*item) + ",";
    return text + "]";
  }
  text = "{" + object.name + (object.isNil ? " nil" : "");
  for (auto const& [index, property] : object.properties) {
    if (property.kind == Property::kNothing) continue;
    text += " " + std::to_string(index) + ":";
    if (property.kind == Property::kValue) {
      text += property.text;
    } else {
      text += property.object ? ValuesOf(*property.object) : "null";
    }
  }
  return text + "}";
}

}  // namespace

class Model::Reader {
 public:
  Reader(Schema const& schema, CXmlSerializationContext const& ctx, Log& log)
      : m_schema(schema), m_ctx(ctx), m_log(log), m_root(Make(0, "root")) {}

  CXmlElement* FromXml(Object& object, CXmlElement* parent, CXmlElement* cursor, bool inChoice) {
    try {
      Class const& described = *object.described;
      Init(object);
      if (described.hasTag) object.name = parent->GetLocalName();
      Attributes(object, parent);
      if (described.isNillable && object.isNil) return cursor;
      CXmlElement* const next = described.group == XmlElementGroupType_Sequence ? Sequence(object, parent, cursor)
                                : described.group == XmlElementGroupType_Choice
                                    ? Choice(object, parent, cursor, inChoice)
                                    : All(object, parent, cursor);
      if (described.textProperty >= 0) SetValue(object, described.textProperty, parent->GetText());
      return next;
    } catch (CQnException const& cause) {
      throw CQnValidationException("Failed to process the element [" + parent->GetLocalName() + "]", cause);
    }
  }

  Object& Root() { return *m_root; }

 private:
  // ---- Objects

  void Tell(std::string item) { m_log.push_back(std::move(item)); }
  void Fire(Object const& collection, Event event) {
    Tell(Item("event", collection.number, collection.index) + " " + std::to_string(event));
  }

  ObjectPtr Make(int classId, std::string const& name) {
    auto object = std::make_shared<Object>();
    object->described = &m_schema[static_cast<std::size_t>(classId)];
    object->number = m_objects++;
    object->name = name;
    for (Member const& member : object->described->members) {
      if (member.occurs == Occurs::kRepeated) MakeCollection(*object, member);
      MakeHeld(*object, member);
    }
    for (Attribute const& attribute : object->described->attributes) {
      if (attribute.kind != AttributeKind::kAny) continue;
      auto collection = MakeCollection(*object, attribute.index, Object::kAttributes);
      collection->restriction = attribute.restriction;
    }
    return object;
  }
  ObjectPtr MakeCollection(Object& owner, int index, Object::Kind kind) {
    auto collection = std::make_shared<Object>();
    collection->kind = kind;
    collection->number = owner.number;
    collection->index = index;
    owner.properties[index] = {Property::kCollection, "", collection};
    return collection;
  }
  void MakeCollection(Object& owner, Member const& member) {
    Object::Kind const kind = member.content == Content::kUntyped ? Object::kElements
                              : member.content == Content::kObject || member.content == Content::kAbstract
                                  ? Object::kObjects
                                  : Object::kValues;
    auto collection = MakeCollection(owner, member.index, kind);
    collection->member = &member;
    collection->name = kind == Object::kElements ? "" : member.name;
    collection->target = member.target;
  }
  void MakeHeld(Object& owner, Member const& member) {
    if (member.occurs != Occurs::kMandatory) return;
    if (member.content == Content::kObject) {
      owner.properties[member.index] = {Property::kObject, "", Make(member.classId, member.name)};
    } else if (member.content == Content::kUntyped) {
      owner.properties[member.index] = {Property::kObject, "",
                                        MakeElement(member.name, "", member.heldRestriction, "urn:t")};
    }
  }
  ObjectPtr MakeElement(std::string const& name, std::string const& ns, std::string const& restriction,
                        std::string const& target) {
    CXmlObjectHelper::TestNamespace(ns, restriction, target);
    auto element = std::make_shared<Object>();
    element->kind = Object::kElement;
    element->name = name;
    element->ns = ns;
    element->restriction = restriction;
    element->target = target;
    return element;
  }

  void Init(Object& object) {
    Tell(Item("init", object.number));
    InitKind const kind = object.described->init;
    if (kind == InitKind::kNothing) return;
    for (auto& [index, property] : object.properties) {
      if (property.kind == Property::kCollection) {
        Clear(*property.object);
      } else if (kind != InitKind::kClearCollections &&
                 !(property.kind == Property::kObject && IsMandatory(object, index))) {
        property = Property();
      }
    }
    if (kind != InitKind::kClearAll) return;
    for (Member const& member : object.described->members) MakeHeld(object, member);
  }
  static bool IsMandatory(Object const& object, int index) {
    for (Member const& member : object.described->members) {
      if (member.index == index) return member.occurs == Occurs::kMandatory;
    }
    return false;
  }
  void Clear(Object& collection) {
    while (collection.Count() > 0) {
      Fire(collection, kRemove);
      if (!collection.values.empty()) {
        collection.values.erase(collection.values.begin());
      } else if (!collection.attributes.empty()) {
        collection.attributes.erase(collection.attributes.begin());
      } else {
        collection.items.erase(collection.items.begin());
      }
      Fire(collection, kRemoveComplete);
      Fire(collection, kChange);
    }
  }

  Property& Get(Object& object, int index) {
    Tell(Item("get", object.number, index));
    return object.properties[index];
  }
  void SetValue(Object& object, int index, std::string const& text) {
    Tell(Item("set", object.number, index) + " " + text);
    object.properties[index] = {Property::kValue, text, nullptr};
  }
  void SetObject(Object& object, int index, ObjectPtr held) {
    std::string const text = !held ? "null" : held->kind == Object::kElement ? "element" : Item("object", held->number);
    Tell(Item("set", object.number, index) + " " + text);
    object.properties[index] = {Property::kObject, "", std::move(held)};
  }
  std::string Namespace(Object const& object) {
    Tell(Item("namespace", object.number));
    return object.described->ns;
  }

  ObjectPtr ByFactory(int classId, std::string const& name) {
    Tell("make " + std::to_string(classId) + " " + name);
    return Make(classId, name);
  }
  ObjectPtr ForElement(CXmlElement* element) {
    Tell("find " + element->GetLocalName());
    int const id = ClassOfElement(m_schema, element);
    return id < 0 ? nullptr : Make(id, element->GetLocalName());
  }

  static std::string Converted(std::string const& text, ItemType type) {
    QnVariant value;
    value.FromString(text, type, CWhitespaceUtils::WhitespaceRule_Collapse);
    return value.ToString(nullptr);
  }

  // ---- Attributes

  void Attributes(Object& object, CXmlElement* parent) {
    std::vector<Attribute> const& table = object.described->attributes;
    std::vector<bool> found(table.size());
    for (CXmlAttribute* attribute : parent->GetAttributes()) {
      if (attribute->IsNamespaceAttribute()) continue;
      if (attribute->IsNilAttribute()) {
        Nil(object, *attribute);
        continue;
      }
      std::size_t i = 0;
      while (i < table.size() && !TakeAttribute(object, table[i], *attribute)) ++i;
      if (i < table.size()) {
        found[i] = true;
      } else if (object.described->rejectsAttributes && !m_ctx.GetIgnoreUnknownAttributes()) {
        throw CQnValidationException("Unexpected Attribute [" + attribute->GetLocalName() + "] found.");
      }
    }
    for (std::size_t i = 0; i < table.size(); ++i) {
      if (table[i].kind == AttributeKind::kAny || table[i].isOptional || found[i]) continue;
      throw CQnValidationException("Failed to find the required Attribute [" + table[i].name + "]");
    }
  }

  void Nil(Object& object, CXmlAttribute const& attribute) {
    if (!object.described->isNillable) {
      throw CQnValidationException("Unexpected Attribute [" + attribute.GetLocalName() + "] found.");
    }
    bool const isTrue = strcasecmp(attribute.GetValue().c_str(), "true") == 0;
    if (!isTrue && strcasecmp(attribute.GetValue().c_str(), "false") != 0) {
      throw CQnValidationException("Unexpected Value for Attribute [" + attribute.GetLocalName() + "] found.");
    }
    Tell(Item("nil", object.number, isTrue));
    object.isNil = isTrue;
  }

  bool TakeAttribute(Object& object, Attribute const& described, CXmlAttribute const& attribute) {
    bool const isName = attribute.GetLocalName() == described.name;
    bool const isNamespace = attribute.GetNamespaceURI() == described.ns;
    switch (described.kind) {
      case AttributeKind::kValue:
        if (!isName || !isNamespace) return false;  // whatever the option for namespaces
        SetValue(object, described.index, Converted(attribute.GetValue(), described.type));
        return true;
      case AttributeKind::kEnum:
        if (!isName || (!isNamespace && !m_ctx.GetIgnoreNamespaces())) return false;
        SetValue(object, described.index, std::to_string(EnumOf(attribute.GetValue().c_str())));
        return true;
      case AttributeKind::kAny: break;
    }
    CXmlObjectHelper::TestNamespace(attribute.GetNamespaceURI(), described.restriction, "");
    Object& collection = *Get(object, described.index).object;
    CXmlObjectHelper::TestNamespace(attribute.GetNamespaceURI(), collection.restriction, "");
    Fire(collection, kAdd);
    collection.attributes.push_back(AttributeText(attribute));
    Fire(collection, kAddComplete);
    Fire(collection, kChange);
    return true;
  }

  // ---- Drivers

  [[noreturn]] static void LeftOver(CXmlElement* parent, CXmlElement* cursor) {
    throw CQnValidationException("Failed read all the elements held within the element [" + parent->GetLocalName() +
                                 "]. The unexpected element [" + cursor->GetLocalName() + "] remains un processed");
  }

  CXmlElement* Sequence(Object& object, CXmlElement* parent, CXmlElement* cursor) {
    CXmlElement* const entry = cursor;
    for (std::size_t i = 0; i < object.described->members.size();) {
      if (Ask(object, object.described->members[i], parent, cursor)) {
        ++i;
        continue;
      }
      if (!m_ctx.GetIgnoreUnknownElements()) return entry;
      if (cursor == nullptr) return entry;
      cursor = cursor->GetNextSiblingElement();
    }
    if (object.described->hasTag && cursor != nullptr && !m_ctx.GetIgnoreUnknownElements()) LeftOver(parent, cursor);
    return cursor;
  }

  CXmlElement* All(Object& object, CXmlElement* parent, CXmlElement* cursor) {
    CXmlElement* const entry = cursor;
    std::vector<Member> const& members = object.described->members;
    std::vector<bool> found(members.size());
    CXmlElement* previous = nullptr;
    while (cursor != nullptr && cursor != previous) {
      previous = cursor;
      for (std::size_t i = 0; i < members.size(); ++i) {
        if (!found[i]) found[i] = Ask(object, members[i], parent, cursor);
      }
    }
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (!Validate(members[i], found[i], object.described->hasTag)) return entry;
    }
    if (object.described->hasTag && cursor != nullptr && !m_ctx.GetIgnoreUnknownElements()) LeftOver(parent, cursor);
    return cursor;
  }

  static bool Validate(Member const& member, bool found, bool required) {
    if (member.occurs != Occurs::kMandatory) return true;
    if (found || !required) return found;
    if (member.content == Content::kObject && !member.isGroup && !member.requiresContent) return true;
    throw CQnValidationException("Failed to find the mandatory element [" + member.name + "]");
  }

  CXmlElement* Choice(Object& object, CXmlElement* parent, CXmlElement* cursor, bool inChoice) {
    CXmlElement* const entry = cursor;
    bool const hasTag = object.described->hasTag;
    bool found = false;
    for (;;) {
      for (Member const& member : object.described->members) {
        found = Ask(object, member, parent, cursor);
        if (found) break;
      }
      if (found || !m_ctx.GetIgnoreUnknownElements() || !hasTag || cursor == nullptr) break;
      cursor = cursor->GetNextSiblingElement();
      if (cursor == nullptr) break;
    }
    if (!hasTag) return found || inChoice || !m_ctx.GetIgnoreUnknownElements() ? cursor : entry;
    if (!found && !inChoice && !MayBeEmpty(object) && !m_ctx.GetIgnoreMissingChoice()) {
      throw CQnValidationException(
          "No child elements within the element [" + parent->GetLocalName() +
          "] were populated. The element represents a choice, so one and only one element should be populated. The "
          "element contained no sutable child elements");
    }
    if (cursor != nullptr && !m_ctx.GetIgnoreUnknownElements()) LeftOver(parent, cursor);
    return cursor;
  }

  bool MayBeEmpty(Object& object) {
    for (Member const& member : object.described->members) {
      if (member.occurs != Occurs::kRepeated) return true;
      Object const& collection = *Get(object, member.index).object;
      if (collection.kind == Object::kElements || member.minOccurs == 0) return true;
    }
    return false;
  }

  // ---- Members

  bool IsThis(Member const& member, CXmlElement const* element) const {
    if (element == nullptr || element->GetLocalName() != member.name) return false;
    return m_ctx.GetIgnoreNamespaces() || element->GetNamespaceURI() == member.ns;
  }

  bool Ask(Object& object, Member const& member, CXmlElement* parent, CXmlElement*& cursor) {
    bool const readsNamespace = member.content == Content::kUntyped && member.occurs != Occurs::kRepeated;
    std::string const ns = readsNamespace ? Namespace(object) : "";
    if (member.occurs == Occurs::kRepeated) return AskRepeated(object, member, parent, cursor);
    switch (member.content) {
      case Content::kValue:
      case Content::kEnum: return AskValue(object, member, cursor);
      case Content::kObject:
        return member.isGroup ? AskGroup(object, member, parent, cursor) : AskObject(object, member, cursor);
      case Content::kAbstract: return AskAbstract(object, member, cursor);
      case Content::kUntyped: return AskUntyped(object, member, ns, cursor);
    }
    return false;
  }

  static bool IsSequence(Object const& object) { return object.described->group == XmlElementGroupType_Sequence; }
  static bool IsChoice(Object const& object) { return object.described->group == XmlElementGroupType_Choice; }

  /// For a sequence: return whether the member is absent, and set \p answer accordingly. Otherwise move the cursor to
  /// it.
  bool IsAbsent(Object const& object, Member const& member, CXmlElement*& cursor, bool& answer) const {
    answer = IsSequence(object) && member.occurs == Occurs::kOptional;
    if (!IsSequence(object) || member.occurs == Occurs::kOptional) return !IsThis(member, cursor);
    bool const hasTag = object.described->hasTag;
    while (!IsThis(member, cursor)) {
      if (!hasTag && member.content != Content::kValue) return true;  // only values search further
      if (hasTag && m_ctx.GetIgnoreMissingMandatoryElements()) {
        answer = true;
        return true;
      }
      if (!m_ctx.GetIgnoreUnknownElements() || cursor == nullptr) {
        if (!hasTag) return true;
        throw CQnValidationException("Failed to find a required element [" + member.name + "]");
      }
      cursor = cursor->GetNextSiblingElement();
    }
    return false;
  }

  bool AskValue(Object& object, Member const& member, CXmlElement*& cursor) {
    bool answer = false;
    if (IsAbsent(object, member, cursor, answer)) return answer;
    SetValue(object, member.index,
             member.content == Content::kValue ? Converted(cursor->GetText(), member.type)
                                               : std::to_string(EnumOf(cursor->GetText().c_str())));
    cursor = cursor->GetNextSiblingElement();
    return true;
  }

  bool AskObject(Object& object, Member const& member, CXmlElement*& cursor) {
    bool answer = false;
    if (IsAbsent(object, member, cursor, answer)) return answer;
    CXmlElement* const element = cursor;
    if (member.occurs == Occurs::kMandatory) {
      ObjectPtr const child = Get(object, member.index).object;
      FromXml(*child, element, element->GetFirstElement(), false);
      cursor = element->GetNextSiblingElement();
      return true;
    }
    ObjectPtr const child = ByFactory(member.classId, member.name);
    if (IsChoice(object)) SetObject(object, member.index, child);
    FromXml(*child, element, element->GetFirstElement(), IsChoice(object));
    cursor = element->GetNextSiblingElement();
    if (!IsChoice(object)) SetObject(object, member.index, child);
    return true;
  }

  bool AskGroup(Object& object, Member const& member, CXmlElement* parent, CXmlElement*& cursor) {
    if (member.occurs == Occurs::kMandatory) return AskMandatoryGroup(object, member, parent, cursor);
    if (cursor == nullptr) return IsSequence(object);
    ObjectPtr const child = ByFactory(member.classId, member.name);
    if (IsChoice(object)) SetObject(object, member.index, child);
    CXmlElement* const next = FromXml(*child, parent, cursor, false);
    if (next == cursor) {
      if (IsChoice(object)) SetObject(object, member.index, nullptr);
      return IsSequence(object);
    }
    if (!IsChoice(object)) SetObject(object, member.index, child);
    cursor = next;
    return true;
  }

  bool AskMandatoryGroup(Object& object, Member const& member, CXmlElement* parent, CXmlElement*& cursor) {
    bool const isTold = IsSequence(object) && member.requiresContent;  // absence has an effect at once
    bool const hasTag = object.described->hasTag;
    CXmlElement* next = cursor;
    if (!isTold || cursor != nullptr) {
      ObjectPtr const child = Get(object, member.index).object;
      next = FromXml(*child, parent, cursor, false);
    }
    bool const isTaken = next != cursor;
    if (!IsSequence(object) || isTaken) {
      cursor = next;
      return isTaken;
    }
    if (isTold) {
      if (hasTag) throw CQnValidationException("Failed to find a required element [" + member.name + "]");
      return false;
    }
    return !(cursor != nullptr && m_ctx.GetIgnoreUnknownElements() && hasTag);
  }

  bool AskAbstract(Object& object, Member const& member, CXmlElement*& cursor) {
    bool const isMandatory = member.occurs == Occurs::kMandatory;
    if (object.described->group == XmlElementGroupType_All) {
      throw CQnException(std::string("CElementInfoAllAbsCls") + (isMandatory ? "Mnd" : "Opt") +
                         "::ElementFromXml, has not been implemented fully, please contact the support of the code "
                         "generator");
    }
    bool const isThis = IsThis(member, cursor);
    ObjectPtr const child = isThis ? ForElement(cursor) : nullptr;
    if (isThis && IsChoice(object)) SetObject(object, member.index, child);
    if (!child && isMandatory && object.described->hasTag) {
      throw CQnValidationException("Failed to find a suitable substitution element for [" + member.name + "]");
    }
    if (!child) return IsSequence(object) && !isMandatory;
    FromXml(*child, cursor, cursor->GetFirstElement(), false);
    if (!IsChoice(object)) SetObject(object, member.index, child);
    cursor = cursor->GetNextSiblingElement();
    return true;
  }

  // ---- Untyped content

  static bool IsName(Member const& member, CXmlElement const* element) {
    return member.name == "AnyElement" || element->GetLocalName() == member.name;
  }

  CXmlElement* ReadElement(Object& element, CXmlElement* cursor) {
    if (!CXmlObjectHelper::IsNamespaceValid(cursor->GetNamespaceURI(), element.restriction, element.target)) {
      return cursor;
    }
    for (CXmlAttribute const* attribute : cursor->GetAttributes()) {
      element.attributes.push_back(AttributeText(*attribute));
    }
    for (CXmlElement* child = cursor->GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
      element.items.push_back(MakeElement(child->GetLocalName(), child->GetNamespaceURI(), "##any", element.target));
      ReadElement(*element.items.back(), child);
    }
    element.text = cursor->GetText();
    element.name = cursor->GetLocalName();
    element.ns = cursor->GetNamespaceURI();
    return cursor->GetNextSiblingElement();
  }

  bool AskUntyped(Object& object, Member const& member, std::string const& holderNamespace, CXmlElement*& cursor) {
    bool const isMandatory = member.occurs == Occurs::kMandatory;
    if (cursor == nullptr && isMandatory && IsSequence(object)) {
      throw CQnValidationException("Failed to find a required element [" + member.name + "]");
    }
    if (cursor == nullptr) return IsSequence(object);
    ObjectPtr const element = isMandatory ? Get(object, member.index).object : NewElement(member, holderNamespace);
    CXmlElement* const next = IsName(member, cursor) ? ReadElement(*element, cursor) : cursor;
    bool const isTaken = next != cursor;
    if (!isMandatory && (isTaken || IsChoice(object))) SetObject(object, member.index, isTaken ? element : nullptr);
    if (!isTaken && isMandatory && IsSequence(object) && object.described->hasTag) {
      throw CQnValidationException("Failed to find the required element from namespace [" + member.ns + "]");
    }
    cursor = next;
    return isTaken || (IsSequence(object) && !isMandatory);
  }

  ObjectPtr NewElement(Member const& member, std::string const& holderNamespace) {
    std::string const ns = CElementInfo::GetAnyDefaultNamespace(member.restriction.c_str(), holderNamespace.c_str(),
                                                                member.target.c_str());
    return MakeElement(member.name, ns, member.restriction, member.target);
  }

  // ---- Collections

  bool AskRepeated(Object& object, Member const& member, CXmlElement* parent, CXmlElement*& cursor) {
    Object& collection = *Get(object, member.index).object;
    CXmlElement* const next = ReadCollection(collection, member, parent, cursor);
    if (IsSequence(object)) {
      cursor = next;
      return Judge(collection, member, object.described->hasTag);
    }
    if (next == cursor) return false;
    if (object.described->hasTag) cursor = next;
    if (!Judge(collection, member, object.described->hasTag)) return false;
    cursor = next;
    return true;
  }

  bool Judge(Object const& collection, Member const& member, bool mayThrow) const {
    if (m_ctx.GetIgnoreInvalidCollectionCounts() || collection.kind == Object::kElements) return true;
    bool const isAbove = member.maxOccurs != -1 && collection.Count() > member.maxOccurs;
    if (!isAbove && collection.Count() >= member.minOccurs) return true;
    if (!mayThrow) return false;
    throw CQnValidationException(FormatString("The %s number of [%s] elements allowed in this collection is %d",
                                              isAbove ? "Maximum" : "Minimum", member.name.c_str(),
                                              isAbove ? member.maxOccurs : member.minOccurs));
  }

  CXmlElement* ReadCollection(Object& collection, Member const& member, CXmlElement* parent, CXmlElement* cursor) {
    if (collection.kind == Object::kElements) return ReadElements(collection, member, cursor);
    while (CXmlObjectHelper::DoesElementNameMatch(m_ctx, cursor, member.name, member.ns)) {
      if (collection.kind == Object::kValues) {
        AddValue(collection, member, cursor->GetText());
      } else {
        ObjectPtr const item =
            member.content == Content::kAbstract ? ForElement(cursor) : ByFactory(member.classId, member.name);
        if (!item) break;
        FromXml(*item, cursor, cursor->GetFirstElement(), false);
        AddItem(collection, item);
      }
      cursor = cursor->GetNextSiblingElement();
    }
    static_cast<void>(parent);
    return cursor;
  }

  CXmlElement* ReadElements(Object& collection, Member const& member, CXmlElement* cursor) {
    std::string const ns = cursor != nullptr ? cursor->GetNamespaceURI() : "";
    bool const isAny = member.name == "AnyElement";
    while (cursor != nullptr && (isAny || (cursor->GetLocalName() == member.name && cursor->GetNamespaceURI() == ns))) {
      ObjectPtr const element = MakeElement(cursor->GetLocalName(), cursor->GetNamespaceURI(), "##any", member.target);
      CXmlElement* const next = ReadElement(*element, cursor);
      if (next == cursor) return cursor;
      AddItem(collection, element);
      cursor = next;
    }
    return cursor;
  }

  void AddValue(Object& collection, Member const& member, std::string const& text) {
    bool const isNumber = member.content == Content::kValue && member.type == ItemType_i4;
    QnVariant value;
    value.FromString(text, isNumber ? ItemType_i4 : ItemType_string, CWhitespaceUtils::WhitespaceRule_Collapse);
    Fire(collection, kAdd);
    if (isNumber) {
      CXmlObjectHelper::CheckRestrictionFori4(member.name.c_str(), value.GetI4(),
                                              CPrimitiveRestrictions("", -1, -1, "", "2", "", "", -1));
    } else {
      CXmlObjectHelper::CheckRestrictionForstring(member.name.c_str(), value.GetString(),
                                                  CPrimitiveRestrictions("", -1, 3, "", "", "", "", -1));
    }
    collection.values.push_back(value.ToString(nullptr));
    Fire(collection, kAddComplete);
    Fire(collection, kChange);
  }

  void AddItem(Object& collection, ObjectPtr item) {
    Fire(collection, kAdd);
    collection.items.push_back(std::move(item));
    Fire(collection, kAddComplete);
    Fire(collection, kChange);
  }

  Schema const& m_schema;
  CXmlSerializationContext const& m_ctx;
  Log& m_log;
  int m_objects = 0;
  ObjectPtr m_root;
};

Model::Model(Schema const& schema, CXmlSerializationContext const& ctx)
    : m_reader(std::make_unique<Reader>(schema, ctx, m_log)) {}
Model::~Model() = default;

void Model::Read(CXmlElement* root) { m_reader->FromXml(m_reader->Root(), root, root->GetFirstElement(), false); }

std::string Model::Values() const { return ValuesOf(m_reader->Root()); }

}  // namespace Reading
