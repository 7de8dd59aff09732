#include "plan/class_builder.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "plan/constraints.h"
#include "plan/element_groups.h"
#include "plan/names.h"

namespace Quillon9Generator::Plan {

namespace {

using Schema::ComplexType;
using Schema::ElementDeclaration;
using Schema::Wildcard;

/// Of the content models of all types together, with the groups written out. The largest sets of real schemas have a
/// tenth of that.
constexpr std::size_t kMostParts = 200'000;
/// How many octets of documentation all members together may have.
constexpr std::size_t kMostDocumentation = 50'000'000;

std::string Quoted(std::string const& name) { return "\"" + name + "\""; }

bool IsAnySimpleType(Schema::SimpleType const* type) {
  return type == nullptr || type->builtIn == Schema::BuiltIn::AnySimpleType;
}

// An element of any content, or of any simple type, which xsi:type names then.
bool IsAnything(ElementDeclaration const& element) {
  if (element.complexType != nullptr) return element.complexType->anyType;
  return IsAnySimpleType(element.simpleType);
}

void SetRestriction(Wildcard const& wildcard, Member& member) {
  member.restriction.clear();
  member.targetNamespace.clear();
  switch (wildcard.constraint) {
    case Wildcard::Constraint::Any: member.restriction = "##any"; return;
    case Wildcard::Constraint::Other:
      member.restriction = "##other";
      member.targetNamespace = wildcard.notNamespace;
      return;
    case Wildcard::Constraint::Listed: break;
  }
  for (std::string const& ns : wildcard.namespaces) {
    if (!member.restriction.empty()) member.restriction += ' ';
    member.restriction += ns.empty() ? "##local" : ns;
  }
}

// Whether all that \p narrow allows is allowed by \p wide.
bool Covers(Wildcard const& wide, Wildcard const& narrow) {
  auto const allows = [&wide](std::string const& ns) {
    if (wide.constraint == Wildcard::Constraint::Other) return !ns.empty() && ns != wide.notNamespace;
    return std::find(wide.namespaces.begin(), wide.namespaces.end(), ns) != wide.namespaces.end();
  };
  if (wide.constraint == Wildcard::Constraint::Any) return true;
  if (narrow.constraint == Wildcard::Constraint::Listed) {
    return std::all_of(narrow.namespaces.begin(), narrow.namespaces.end(), allows);
  }
  return wide.constraint == narrow.constraint && wide.notNamespace == narrow.notNamespace;
}

Class const* WithMember(Class const* cls, Member::Place place) {
  auto const isThere = [place](Member const& member) { return member.place == place; };
  while (cls != nullptr && std::none_of(cls->members.begin(), cls->members.end(), isThere)) cls = cls->base;
  return cls;
}

// The attributes of a class with those of its bases, as their tables have them.
std::vector<Member const*> AttributesOf(Class const* cls) {
  std::vector<Class const*> chain;
  for (; cls != nullptr; cls = cls->base) {
    chain.push_back(cls);
    if (cls->replacesAttributes) break;
  }
  std::vector<Member const*> attributes;
  auto const append = [&attributes](std::vector<Member> const& members) {
    for (Member const& member : members) {
      if (member.place == Member::Place::Attribute) attributes.push_back(&member);
    }
  };
  for (auto each = chain.rbegin(); each != chain.rend(); ++each) {
    append((*each)->restated);
    append((*each)->members);
  }
  return attributes;
}

bool HasAnyAttributes(Class const* cls) {
  std::vector<Member const*> const attributes = AttributesOf(cls);
  return std::any_of(attributes.begin(), attributes.end(),
                     [](Member const* member) { return member->kind == Member::Kind::AnyAttributes; });
}

// The member of a base that holds a part of a restriction; there is one.
template <class Condition>
Member const& MemberOfBase(Class const* cls, Condition isThis) {
  for (;; cls = cls->base) {
    std::vector<Member> const& members = cls->replacesElements ? cls->restated : cls->members;
    auto const found = std::find_if(members.begin(), members.end(), [&](Member const& member) {
      return member.place == Member::Place::Element && isThis(member);
    });
    if (found != members.end()) return *found;
  }
}

Member Restated(Member const& ofBase) {
  Member member = ofBase;
  if (member.restates == nullptr) member.restates = &ofBase;
  member.choice = -1;
  return member;
}

bool SameRow(Member const& a, Member const& b) {
  return a.block == b.block && a.minOccurs == b.minOccurs && a.defaultValue == b.defaultValue &&
         a.fixedValue == b.fixedValue && a.value.HasSameRules(b.value) && a.restriction == b.restriction &&
         a.targetNamespace == b.targetNamespace;
}

Member::Kind Repeated(Member::Kind kind) {
  switch (kind) {
    case Member::Kind::Value: return Member::Kind::Values;
    case Member::Kind::Object: return Member::Kind::Objects;
    case Member::Kind::NillableValue: return Member::Kind::NillableValues;
    case Member::Kind::Any: return Member::Kind::Anys;
    case Member::Kind::AnyType: return Member::Kind::AnyTypes;
    default: return kind;
  }
}

}  // namespace

ClassBuilder::ClassBuilder(Selection const& selection, PlanOptions const& options, Plan& plan,
                           Schema::Diagnostics& diagnostics)
    : m_selection(selection),
      m_set(selection.set),
      m_options(options),
      m_plan(plan),
      m_diagnostics(diagnostics),
      m_values(options, plan, diagnostics),
      m_derivations(m_set, diagnostics),
      m_budget(kMostParts) {}

void ClassBuilder::Build() {
  NoteElementsOfGroups();
  MakeClassesOfTypes();
  for (Schema::SimpleType const* type : m_set.simpleTypes) m_values.Of(type, {});
  MakeRoots();
  // Filling a class finds those of anonymous types.
  for (std::size_t i = 0; i < m_toFill.size(); ++i) {
    auto const [cls, type] = m_toFill[i];
    Fill(*cls, *type);
  }
  FinishClasses();
}

void ClassBuilder::NoteElementsOfGroups() {
  std::set<Schema::GroupDefinition const*> const global(m_set.groups.begin(), m_set.groups.end());
  for (Schema::GroupDefinition const* definition : m_set.groups) {
    std::vector<Schema::ModelGroup const*> pending{definition->group};
    while (!pending.empty()) {
      Schema::ModelGroup const* const group = pending.back();
      pending.pop_back();
      if (group == nullptr) continue;
      for (Schema::Particle const& particle : group->particles) {
        if (auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term)) {
          if (!(*element)->global) m_groups.emplace(*element, definition);
        } else if (auto const* const inner = std::get_if<Schema::ModelGroup const*>(&particle.term)) {
          // What a redefinition has replaced belongs to the group that refers to it.
          if (global.count(particle.group) == 0) pending.push_back(*inner);
        }
      }
    }
  }
}

// ---- Classes

Class* ClassBuilder::NewClass(std::string shortName, Class const* owner) {
  m_plan.classStorage.push_back(std::make_unique<Class>());
  Class* const cls = m_plan.classStorage.back().get();
  cls->shortName = std::move(shortName);
  cls->owner = owner;
  if (owner != nullptr) cls->cppNamespace = owner->cppNamespace;
  return cls;
}

Class* ClassBuilder::NewClassOf(ComplexType const& type, Class const* user) {
  ElementDeclaration const* const owner = type.IsAnonymous() ? type.owner : nullptr;
  std::string name = owner != nullptr ? owner->name.local : type.name.local;
  std::string ns = type.name.ns;
  if (!type.IsAnonymous()) name = NameOf(type.name, m_options);
  Class const* enclosing = type.IsAnonymous() ? user : nullptr;
  auto const group = m_groups.find(owner);
  if (owner != nullptr && owner->global) {
    name = NameOf(owner->name, m_options);
    ns = owner->name.ns;
    enclosing = nullptr;
  } else if (owner != nullptr && group != m_groups.end()) {  // all users of the group share it
    name = UpperCamel(group->second->name.local) + UpperCamel(name);
    ns = group->second->name.ns;
    enclosing = nullptr;
  }
  Class* const cls = NewClass(std::move(name), enclosing);
  if (enclosing == nullptr) cls->cppNamespace = std::move(ns);
  cls->name = type.name;
  cls->targetNamespace = owner != nullptr ? owner->name.ns : type.name.ns;
  cls->documentation = type.documentation.empty() && owner != nullptr ? owner->documentation : type.documentation;
  cls->place = type.place;
  cls->abstract = type.abstract;
  cls->block = type.block;
  cls->derivation = type.derivation == ComplexType::Derivation::Extension ? Schema::kExtension : Schema::kRestriction;
  m_toFill.emplace_back(cls, &type);
  return cls;
}

Class* ClassBuilder::ClassOf(ComplexType const& type, Class const* user) {
  auto const known = m_classes.find(&type);
  if (known != m_classes.end()) return known->second;
  return m_classes[&type] = NewClassOf(type, user);
}

void ClassBuilder::MakeClassesOfTypes() {
  for (ComplexType const* type : m_set.complexTypes) ClassOf(*type, nullptr);
  for (ElementDeclaration const* element : m_set.elements) {
    if (element->complexType != nullptr && !element->complexType->anyType) ClassOf(*element->complexType, nullptr);
  }
}

void ClassBuilder::Fill(Class& cls, ComplexType const& type) {
  if (!m_filled.insert(&cls).second) return;
  ComplexType const* const base = m_derivations.BaseOf(type);
  if (base != nullptr) {
    Class* const baseClass = ClassOf(*base, nullptr);
    Fill(*baseClass, *base);
    cls.base = baseClass;
  }
  FillContent(cls, type);
  AddText(cls, type);
  AddAttributes(cls, type);
}

void ClassBuilder::FillContent(Class& cls, ComplexType const& type) {
  Schema::Particle const* const own = m_derivations.OwnContent(type);
  cls.replacesElements = m_derivations.ReplacesElements(type);
  std::optional<Schema::Particle> const none;
  std::optional<ContentNode> const content = NormalizedContent(cls.replacesElements ? type.particle
                                                               : own != nullptr ? std::optional<Schema::Particle>(*own)
                                                                                : none,
                                                               m_budget);
  if (!content) {
    if (!m_diagnostics.HasErrors()) {
      m_diagnostics.Error(type.place, "the content models are too large or too deep when all groups are written out");
    }
    return;
  }
  for (ContentNode const& child : content->children) AddNode(cls, child, {});
}

void ClassBuilder::AddText(Class& cls, ComplexType const& type) {
  bool const isMixed = type.content == ComplexType::Content::Mixed;
  cls.mixed = isMixed;
  if ((!isMixed && type.content != ComplexType::Content::Simple) || WithMember(cls.base, Member::Place::Text)) return;
  Member text;
  text.place = Member::Place::Text;
  text.mandatory = true;
  text.schemaPlace = type.place;
  if (isMixed) {
    text.value.whiteSpace = Schema::WhiteSpace::Preserve;
  } else {
    text.value = m_values.Of(type.simpleContent, {&cls, cls.shortName, cls.cppNamespace});
  }
  cls.members.push_back(std::move(text));
}

// ---- Attributes

void ClassBuilder::AddAttributes(Class& cls, ComplexType const& type) {
  std::vector<Member const*> const inherited = AttributesOf(cls.base);
  if (type.derivation == ComplexType::Derivation::Restriction) RestateAttributes(cls, type, inherited);
  for (Schema::AttributeUse const& use : type.attributes) {
    auto const isThis = [&use](Member const* member) { return member->name == use.declaration->name; };
    if (std::none_of(inherited.begin(), inherited.end(), isThis)) AddAttribute(cls, use);
  }
  if (type.attributeWildcard) AddAttributeWildcard(cls, type);
}

// The table of the base does where the restriction only gives an attribute a type of another kind, which the member of
// the base could not hold.
void ClassBuilder::RestateAttributes(Class& cls, ComplexType const& type, std::vector<Member const*> const& inherited) {
  std::vector<Member> restated;
  bool isSame = true;
  for (Member const* ofBase : inherited) {
    std::optional<Member> member = RestatedAttribute(cls, type, *ofBase);
    isSame = isSame && member && SameRow(*member, *ofBase);
    if (member) restated.push_back(std::move(*member));
  }
  if (isSame) return;
  cls.replacesAttributes = true;
  cls.restated.insert(cls.restated.end(), restated.begin(), restated.end());
}

std::optional<Member> ClassBuilder::RestatedAttribute(Class const& cls, ComplexType const& type, Member const& ofBase) {
  Member member = Restated(ofBase);
  if (member.kind == Member::Kind::AnyAttributes) {
    if (!type.attributeWildcard) return std::nullopt;
    bool const isNarrower =
        !type.base->attributeWildcard || Covers(*type.base->attributeWildcard, *type.attributeWildcard);
    if (isNarrower) SetRestriction(*type.attributeWildcard, member);
    return member;
  }
  auto const use =
      std::find_if(type.attributes.begin(), type.attributes.end(),
                   [&ofBase](Schema::AttributeUse const& each) { return each.declaration->name == ofBase.name; });
  if (use == type.attributes.end()) return ofBase.mandatory ? std::optional<Member>(member) : std::nullopt;
  Schema::AttributeDeclaration const& declaration = *use->declaration;
  member.minOccurs = use->required ? 1 : member.minOccurs;
  member.defaultValue = use->defaultValue;
  member.fixedValue = use->fixedValue;
  RestateValue(cls, member, declaration.type, declaration.name, &declaration, declaration.global);
  return member;
}

// The member of the base can hold a value of its own kind only.
void ClassBuilder::RestateValue(Class const& cls, Member& member, Schema::SimpleType const* type,
                                Schema::QualifiedName const& name, void const* declaration, bool global) {
  bool const needsEnumeration = type != nullptr && type->IsAnonymous() && !type->facets.enumeration.empty();
  if (needsEnumeration) return;
  ValueType value = ValueOf(type, name, declaration, global, cls);
  if (value.IsHeldLike(member.value)) member.value = std::move(value);
}

void ClassBuilder::AddAttribute(Class& cls, Schema::AttributeUse const& use) {
  Schema::AttributeDeclaration const& declaration = *use.declaration;
  Member member;
  member.place = Member::Place::Attribute;
  member.name = declaration.name;
  member.minOccurs = use.required ? 1 : 0;
  member.mandatory = use.required;
  member.value = ValueOf(declaration.type, declaration.name, &declaration, declaration.global, cls);
  member.defaultValue = use.defaultValue;
  member.fixedValue = use.fixedValue;
  member.documentation = Documentation(declaration.documentation, use.place);
  member.schemaPlace = use.place;
  cls.members.push_back(std::move(member));
}

void ClassBuilder::AddAttributeWildcard(Class& cls, ComplexType const& type) {
  Wildcard const& wildcard = *type.attributeWildcard;
  if (HasAnyAttributes(cls.base)) {
    bool const isCovered =
        type.base == nullptr || !type.base->attributeWildcard || Covers(*type.base->attributeWildcard, wildcard);
    if (!isCovered) {
      m_diagnostics.Warning(wildcard.place, "attributes of other namespaces than the wildcard of the base type " +
                                                Quoted(type.base->name.local) + " allows are refused");
    }
    return;
  }
  Member member;
  member.kind = Member::Kind::AnyAttributes;
  member.place = Member::Place::Attribute;
  member.minOccurs = 0;
  member.maxOccurs = Schema::Particle::kUnbounded;
  member.documentation = Documentation(wildcard.documentation, wildcard.place);
  member.schemaPlace = wildcard.place;
  SetRestriction(wildcard, member);
  cls.members.push_back(std::move(member));
}

// ---- Content

void ClassBuilder::AddNode(Class& cls, ContentNode const& node, Position position) {
  if (cls.replacesElements && (!node.IsGroup() || node.IsRepeated())) return Restate(cls, node);
  if (node.kind == ContentNode::Kind::Element) return AddElement(cls, node, position);
  if (node.kind == ContentNode::Kind::Wildcard) return AddWildcard(cls, node, position);
  if (node.IsRepeated()) return AddRounds(cls, node, position);
  AddGroup(cls, node, position);
}

// A member of the base with the occurrence and type of the restriction. It stays repeated, if it is.
void ClassBuilder::Restate(Class& cls, ContentNode const& node) {
  bool const isElement = node.kind == ContentNode::Kind::Element;
  Member member = Restated(MemberOfBase(cls.base, [&](Member const& each) {
    if (isElement && each.group != nullptr && StandsFor(*node.element, *each.group->head)) return true;
    if (isElement) return each.name == node.element->name && !each.name.local.empty();
    bool const isRounds = each.kind == Member::Kind::Rounds;
    return node.IsGroup() ? isRounds : each.name.local.empty() && !isRounds;
  }));
  member.minOccurs = node.minOccurs;
  member.maxOccurs = node.maxOccurs;
  member.schemaPlace = node.place;
  if (isElement) {
    if (member.group == nullptr) member.block = node.element->block;
    RestateElementType(cls, member, *node.element);
  } else if (!node.IsGroup()) {
    SetRestriction(*node.wildcard, member);
  }
  Row row;
  row.member = static_cast<int>(cls.restated.size());
  cls.restated.push_back(std::move(member));
  cls.rows.push_back(row);
}

void ClassBuilder::RestateElementType(Class& cls, Member& member, ElementDeclaration const& element) {
  if (member.group != nullptr) {
    member.name = element.name;
    member.group = GroupOf(element);
    return;
  }
  switch (member.kind) {
    case Member::Kind::Object:
    case Member::Kind::Objects: {
      Class* const type = ClassOf(*element.complexType, &cls);
      NoteUse(*type, element);
      member.type = type;
      return;
    }
    case Member::Kind::Value:
    case Member::Kind::NillableValue:
    case Member::Kind::NillableValues:
      member.defaultValue = element.defaultValue;
      member.fixedValue = element.fixedValue;
      [[fallthrough]];
    case Member::Kind::Values:
      return RestateValue(cls, member, element.simpleType, element.name, &element, element.global);
    default: return;
  }
}

void ClassBuilder::AddGroup(Class& cls, ContentNode const& node, Position position) {
  Row begin;
  begin.kind = node.kind == ContentNode::Kind::All ? Row::Kind::BeginAll : Row::Kind::BeginSequence;
  begin.optional = node.minOccurs == 0;
  position.mandatory = position.mandatory && node.minOccurs > 0;
  if (node.kind == ContentNode::Kind::Choice) {
    begin.kind = Row::Kind::BeginChoice;
    if (!cls.replacesElements) {
      begin.choice = static_cast<int>(cls.choices.size());
      Choice choice;
      choice.row = static_cast<int>(cls.rows.size());
      cls.choices.push_back(std::move(choice));
    }
    position = {false, begin.choice};
  }
  cls.rows.push_back(begin);
  for (ContentNode const& child : node.children) AddNode(cls, child, position);
  Row end;
  end.kind = Row::Kind::End;
  cls.rows.push_back(end);
}

void ClassBuilder::AddRow(Class& cls, Member member, Position position) {
  member.mandatory = position.mandatory && member.minOccurs > 0 && member.maxOccurs == 1;
  member.choice = position.choice;
  Row row;
  row.member = static_cast<int>(cls.members.size());
  cls.members.push_back(std::move(member));
  cls.rows.push_back(row);
}

// All users of a group repeat what it says.
std::string ClassBuilder::Documentation(std::string text, Schema::Place const& place) {
  bool const wasTooMuch = m_documented > kMostDocumentation;
  m_documented += text.size();
  if (m_documented <= kMostDocumentation) return text;
  if (!wasTooMuch) {
    m_diagnostics.Error(place, "the members of all classes have more than " + std::to_string(kMostDocumentation) +
                                   " octets of documentation");
  }
  return {};
}

ValueType ClassBuilder::ValueOf(Schema::SimpleType const* type, Schema::QualifiedName const& name,
                                void const* declaration, bool global, Class const& user) {
  auto const group = m_groups.find(declaration);
  if (group == m_groups.end()) {
    return m_values.Of(type, {global ? nullptr : &user, name.local, global ? name.ns : user.cppNamespace});
  }
  Schema::QualifiedName const& ofGroup = group->second->name;
  return m_values.Of(type, {nullptr, UpperCamel(ofGroup.local) + UpperCamel(name.local), ofGroup.ns});
}

void ClassBuilder::NoteUse(Class& cls, ElementDeclaration const& element) {
  if (!element.abstract) m_elementsOf[&cls].insert(element.name);
  cls.nillable = cls.nillable || element.nillable;
}

void ClassBuilder::SetElementType(Class& cls, Member& member, ElementDeclaration const& element) {
  if (!element.standIns.empty()) {
    member.kind = Member::Kind::Object;
    member.group = GroupOf(element);
  } else if (IsAnything(element)) {
    member.kind = Member::Kind::AnyType;
  } else if (element.complexType != nullptr) {
    Class* const type = ClassOf(*element.complexType, &cls);
    NoteUse(*type, element);
    member.kind = Member::Kind::Object;
    member.type = type;
  } else {
    member.kind = element.nillable ? Member::Kind::NillableValue : Member::Kind::Value;
    member.value = ValueOf(element.simpleType, element.name, &element, element.global, cls);
  }
  if (member.maxOccurs == 1) return;
  member.kind = Repeated(member.kind);
  // No collection holds vectors or qualified names, or has a default, but one of objects holds anything.
  bool const needsObjects =
      member.value.item != nullptr || member.value.isQualifiedName || element.defaultValue || element.fixedValue;
  if (member.kind == Member::Kind::Values && needsObjects) member.kind = Member::Kind::NillableValues;
}

void ClassBuilder::AddElement(Class& cls, ContentNode const& node, Position position) {
  ElementDeclaration const& element = *node.element;
  Member member;
  member.name = element.name;
  member.minOccurs = node.minOccurs;
  member.maxOccurs = node.maxOccurs;
  member.documentation = Documentation(DocumentationWithConstraints(element), node.place);
  member.schemaPlace = node.place;
  SetElementType(cls, member, element);
  if (member.group == nullptr) member.block = element.block;
  if (member.MayHaveDefault()) {
    member.defaultValue = element.defaultValue;
    member.fixedValue = element.fixedValue;
  } else if (element.simpleType == nullptr) {
    WarnOfTextRules(element);
  }
  AddRow(cls, std::move(member), position);
}

/// A class has the text of all elements of its type.
void ClassBuilder::WarnOfTextRules(ElementDeclaration const& element) {
  std::string const name = Quoted(element.name.local) + ", which has a complex type,";
  if (element.defaultValue) {
    m_diagnostics.Warning(element.place,
                          "the default value of the element " + name + " is not applied to an empty one");
  } else if (element.fixedValue) {
    m_diagnostics.Warning(element.place, "the fixed value of the element " + name + " is not checked");
  }
}

ElementGroup const* ClassBuilder::GroupOf(ElementDeclaration const& head) {
  auto const [entry, isNew] = m_elementGroups.emplace(&head, nullptr);
  if (!isNew) return entry->second;
  m_plan.groupStorage.push_back(std::make_unique<ElementGroup>());
  ElementGroup& group = *m_plan.groupStorage.back();
  entry->second = &group;
  group.head = &head;
  std::vector<ElementDeclaration const*> declarations = head.standIns;
  if (!head.abstract) declarations.push_back(&head);
  for (ElementDeclaration const* declaration : declarations) {
    ElementGroup::Element element;
    element.name = declaration->name;
    element.place = declaration->place;
    element.anyType = IsAnything(*declaration);
    element.block = declaration->block;
    if (!element.anyType && declaration->complexType != nullptr) {
      element.type = ClassOf(*declaration->complexType, nullptr);
    } else if (!element.anyType) {
      element.value = m_values.Of(declaration->simpleType, {nullptr, declaration->name.local, declaration->name.ns});
      element.defaultValue = declaration->defaultValue;
      element.fixedValue = declaration->fixedValue;
    }
    group.elements.push_back(std::move(element));
  }
  if (head.complexType != nullptr && !IsAnything(head)) group.type = ClassOf(*head.complexType, nullptr);
  return &group;
}

void ClassBuilder::AddWildcard(Class& cls, ContentNode const& node, Position position) {
  Member member;
  member.kind = node.IsRepeated() ? Member::Kind::Anys : Member::Kind::Any;
  member.minOccurs = node.minOccurs;
  member.maxOccurs = node.maxOccurs;
  member.documentation = Documentation(node.wildcard->documentation, node.place);
  member.schemaPlace = node.place;
  SetRestriction(*node.wildcard, member);
  AddRow(cls, std::move(member), position);
}

void ClassBuilder::AddRounds(Class& cls, ContentNode const& node, Position position) {
  std::string name = node.kind == ContentNode::Kind::Choice ? "Choice" : "Sequence";
  if (node.group != nullptr) name = node.group->name.local;
  Class* const round = NewClass(std::move(name), &cls);
  m_filled.insert(round);
  round->round = true;
  round->targetNamespace = cls.targetNamespace;
  round->rejectUnknownAttributes = false;
  round->place = node.place;
  if (node.group != nullptr) round->documentation = Documentation(node.group->documentation, node.place);
  ContentNode once = node;
  once.minOccurs = once.maxOccurs = 1;
  if (once.kind == ContentNode::Kind::Sequence) {
    for (ContentNode const& child : once.children) AddNode(*round, child, {});
  } else {
    AddNode(*round, once, {});
  }
  Member member;
  member.kind = Member::Kind::Rounds;
  member.minOccurs = node.minOccurs;
  member.maxOccurs = node.maxOccurs;
  member.type = round;
  member.documentation = Documentation(round->documentation, node.place);
  member.schemaPlace = node.place;
  AddRow(cls, std::move(member), position);
}

// ---- The rest

void ClassBuilder::MakeRoots() {
  std::vector<Root>& roots = m_plan.namespaces.emplace_back().roots;
  for (ElementDeclaration const* element : m_set.elements) {
    Root root;
    root.isDocument = m_selection.documents.count(element) != 0;
    root.cppName = NameOf(element->name, m_options);
    root.name = element->name;
    root.documentation = DocumentationWithConstraints(*element);
    root.place = element->place;
    root.anyType = IsAnything(*element);
    root.block = element->block;
    if (!root.anyType && element->complexType != nullptr) {
      Class* const cls = ClassOf(*element->complexType, nullptr);
      NoteUse(*cls, *element);
      root.type = cls;
    } else if (!root.anyType) {
      root.value = m_values.Of(element->simpleType, {nullptr, element->name.local, element->name.ns});
      root.defaultValue = element->defaultValue;
      root.fixedValue = element->fixedValue;
    }
    bool const isOfGroup = element->substitutionHead != nullptr || !element->standIns.empty();
    if (!element->abstract && (root.isDocument || isOfGroup)) roots.push_back(std::move(root));
  }
  std::stable_partition(roots.begin(), roots.end(), [](Root const& root) { return root.isDocument; });
}

// What only all members together say.
void ClassBuilder::FinishClasses() {
  for (auto const& group : m_plan.groupStorage) FinishGroup(*group);
  for (auto const& cls : m_plan.classStorage) {
    auto const elements = m_elementsOf.find(cls.get());
    if (elements != m_elementsOf.end() && elements->second.size() == 1) {
      cls->defaultElementName = elements->second.begin()->local;
      cls->targetNamespace = elements->second.begin()->ns;
    }
    for (Class const* base = cls->base; base != nullptr; base = base->base) {
      cls->nillable = cls->nillable || base->nillable;
    }
    for (Member& member : cls->members) {
      if (member.group != nullptr) member.type = member.group->type;
    }
  }
}

}  // namespace Quillon9Generator::Plan
