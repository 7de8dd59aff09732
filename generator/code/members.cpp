#include "code/members.h"

#include <algorithm>
#include <vector>

#include "code/types.h"
#include "code/value_text.h"
#include "plan/names.h"

namespace Quillon9Generator::Code {

using Plan::Member;
using Plan::ValueType;
using Kind = Plan::Member::Kind;

namespace {

std::string TypeOf(Plan::ValueType const& value, Scope const& scope) {
  if (value.item != nullptr) return "std::vector<" + TypeOf(*value.item, scope) + ">";
  return value.enumeration != nullptr ? NameOf(*value.enumeration, scope) : CppType(value);
}

/// The class that holds the elements of \p group.
std::string HolderOf(Plan::ElementGroup const& group, Scope const& scope) {
  switch (group.holder) {
    case Plan::ElementGroup::Holder::Class: return NameOf(*group.type, scope);
    case Plan::ElementGroup::Holder::Value: return ValueElementType(group.value, scope);
    case Plan::ElementGroup::Holder::BoundObject: return "Quillon9::CBoundObject";
    case Plan::ElementGroup::Holder::AnyObject: return "Quillon9::CXmlObjectBase";
  }
  return "";
}

/// The class of one object of the member.
std::string ObjectClass(Member const& member, Scope const& scope) {
  return member.group != nullptr ? HolderOf(*member.group, scope) : NameOf(*member.type, scope);
}

/// The class of the objects or of the collection that the member holds; empty for a value.
std::string HeldClass(Member const& member, Scope const& scope) {
  auto const collectionOf = [](std::string const& item) { return "Quillon9::CObjectCol<" + item + ">"; };
  switch (member.kind) {
    case Kind::Value: return "";
    case Kind::Values:
      return member.value.enumeration == nullptr ? CollectionType(member.value)
                                                 : "Quillon9::CEnumCol<" + TypeOf(member.value, scope) + ">";
    case Kind::Object: return ObjectClass(member, scope);
    case Kind::Objects:
    case Kind::Rounds: return collectionOf(ObjectClass(member, scope));
    case Kind::NillableValue: return ValueElementType(member.value, scope);
    case Kind::NillableValues: return collectionOf(ValueElementType(member.value, scope));
    case Kind::Any:
    case Kind::AnyType: return "Quillon9::CElement";
    case Kind::Anys:
    case Kind::AnyTypes: return "Quillon9::CAnyElementCol";
    case Kind::AnyAttributes: return "Quillon9::CAttributeCol";
  }
  return "";
}

bool IsCollection(Member const& member) {
  switch (member.kind) {
    case Kind::Values:
    case Kind::Objects:
    case Kind::Rounds:
    case Kind::NillableValues:
    case Kind::Anys:
    case Kind::AnyTypes:
    case Kind::AnyAttributes: return true;
    case Kind::Value:
    case Kind::Object:
    case Kind::NillableValue:
    case Kind::Any:
    case Kind::AnyType: return false;
  }
  return false;
}

/// Whether the class of the member's object is one that the library cannot make itself: any element.
bool IsAnyElement(Member const& member) { return member.kind == Kind::Any || member.kind == Kind::AnyType; }

bool CanBeCreated(Member const& member) {
  if (member.group != nullptr) return member.group->canCreateHead;
  return !IsAnyElement(member) && (member.type == nullptr || !member.type->abstract);
}

/// What the value is while the document says nothing; null for none.
std::string const* ImpliedValue(Member const& member) {
  if (member.fixedValue) return &*member.fixedValue;
  return member.defaultValue ? &*member.defaultValue : nullptr;
}

std::string ImpliedText(Member const& member, Scope const& scope) {
  ValueType const& single = member.value.Single();
  std::string const name = TypeOf(single, scope);
  if (member.value.item == nullptr) return ValueText(single, *ImpliedValue(member), name);
  std::string items;
  for (std::string const& item : Plan::ItemsOf(*ImpliedValue(member))) {
    items += (items.empty() ? "" : ", ") + ValueText(single, item, name);
  }
  return TypeOf(member.value, scope) + "{" + items + "}";
}

std::string LettersAndDigits(std::string const& name) {
  std::string kept;
  for (char const each : name) {
    char const c = Plan::Lowered(each);
    if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z')) kept += c;
  }
  return kept;
}

/// Says which name of a document the accessors stand for, where theirs does not show it.
std::string DescribeName(Member const& member) {
  std::string const& name = member.name.local;
  if (name.empty() || LettersAndDigits(name) == LettersAndDigits(member.cppName)) return "";
  return (member.place == Member::Place::Attribute ? "The attribute " : "The element ") + name + ".";
}

/// Names elements that may stand in place of the head of a substitution group.
std::string DescribeGroup(Member const& member) {
  if (member.group == nullptr) return "";
  constexpr std::size_t kMost = 8;
  std::string names;
  std::size_t count = 0;
  std::string const* last = nullptr;
  for (Plan::ElementGroup::Element const& element : member.group->elements) {
    if (last != nullptr && *last == element.name.local) continue;  // of another namespace
    last = &element.name.local;
    if (++count <= kMost) names += (count == 1 ? "" : ", ") + element.name.local;
  }
  return "Any of the elements " + names + (count > kMost ? " and " + std::to_string(count - kMost) + " others." : ".");
}

std::string Comment(Member const& member) {
  std::string comment = member.documentation;
  auto const add = [&comment](std::string const& line) {
    if (!line.empty()) comment += (comment.empty() ? "" : "\n") + line;
  };
  if (!comment.empty()) comment += '\n';
  add(DescribeName(member));
  add(DescribeGroup(member));
  add(DescribeFacets(member.value));
  if (member.fixedValue) {
    add("Fixed: " + *member.fixedValue + ".");
  } else if (member.defaultValue) {
    add("Default: " + *member.defaultValue + ".");
  }
  return comment;
}

std::string Call(char const* function, Member const& member, bool takesValue) {
  return std::string(function) + "(" + std::to_string(member.property) + ", " + member.field +
         (takesValue ? ", std::move(value))" : ")");
}

/// The body of the setter of a value of type \p scalar or not.
std::string SetterBody(Member const& member, bool scalar) {
  std::string const value = scalar ? "value" : "std::move(value)";
  if (!HasChecks(member) && member.choice < 0) return member.field + " = " + value + ";";
  return "Assign(" + std::to_string(member.property) + ", " + member.field + ", " + value + ");";
}

/// A function that reads or changes a member.
struct Accessor {
  std::string result;
  std::string signature;
  std::string body;
  bool needsClass = false;  ///< the class of the member has to be complete for the body
};

using Accessors = std::vector<Accessor>;

/// The text of mixed content, which stands among the elements.
Accessors MixedTextAccessors(Member const& member) {
  std::string const& name = member.cppName;
  return {{"std::string const&", "Get" + name + "() const", "return " + member.field + ";"},
          {"void", "Set" + name + "(std::string value)", "ReplaceMixed(" + member.field + ", std::move(value));"},
          {"void", "Append" + name + "(std::string_view text)", "AppendMixed(" + member.field + ", text);"}};
}

Accessors ValueAccessors(Member const& member, Scope const& scope) {
  std::string const type = TypeOf(member.value, scope);
  bool const scalar = IsScalar(member.value);
  std::string const reference = scalar ? "" : " const&";
  std::string const getter = "Get" + member.cppName + "() const";
  std::string const setter = "Set" + member.cppName;
  std::string const body = "return " + member.field + ";";
  if (member.mandatory) {
    return {{type + reference, getter, body}, {"void", setter + "(" + type + " value)", SetterBody(member, scalar)}};
  }
  std::string const optional = "std::optional<" + type + ">";
  Accessors accessors;
  if (ImpliedValue(member) != nullptr) {
    accessors.push_back({type, getter, "return " + member.field + ".value_or(" + ImpliedText(member, scope) + ");"});
    accessors.push_back({"bool", "Has" + member.cppName + "() const", "return " + member.field + ".has_value();"});
  } else {
    accessors.push_back({optional + reference, getter, body});
  }
  accessors.push_back({"void", setter + "(" + optional + " value)", SetterBody(member, scalar)});
  return accessors;
}

/// \p type is the class of the object in the scope of its holder, \p result outside of it.
Accessors ObjectAccessors(Member const& member, std::string const& type, std::string const& result) {
  std::string const getter = "Get" + member.cppName + "()";
  Accessors accessors;
  if (member.mandatory && CanBeCreated(member)) {
    std::string const body = "return " + Call("Object", member, false) + ";";
    accessors.push_back({result + "&", getter, body, true});
    accessors.push_back({result + " const&", getter + " const", body});
  } else {
    std::string const body = "return " + member.field + ";";
    accessors.push_back({result + "*", getter, body});
    accessors.push_back({result + " const*", getter + " const", body});
    if (CanBeCreated(member)) {
      accessors.push_back(
          {result + "&", "Create" + member.cppName + "()", "return " + Call("Create", member, false) + ";", true});
    }
  }
  accessors.push_back(
      {"void", "Set" + member.cppName + "(CSmartPtr<" + type + "> value)", Call("Hold", member, true) + ";", true});
  return accessors;
}

Accessors CollectionAccessors(Member const& member, std::string const& result) {
  std::string const getter = "Get" + member.cppName + "()";
  std::string const body = "return " + Call("Collection", member, false) + ";";
  return {{result + "&", getter, body, true}, {result + " const&", getter + " const", body, true}};
}

/// \p scope is that of the class, \p outside where the results of the functions are named.
Accessors AccessorsOf(Member const& member, Scope const& scope, Scope const& outside) {
  if (member.place == Member::Place::Text && scope.cls->mixed) return MixedTextAccessors(member);
  if (member.kind == Kind::Value) return ValueAccessors(member, scope);
  std::string const result = HeldClass(member, outside);
  if (IsCollection(member)) return CollectionAccessors(member, result);
  return ObjectAccessors(member, HeldClass(member, scope), result);
}

bool IsOfOtherHeader(Member const& member, HeaderFile const& header) {
  return member.type != nullptr && !header.Defines(*member.type);
}

}  // namespace

std::string ValueElementType(Plan::ValueType const& value, Scope const& scope) {
  return "Quillon9::CValueElement<" + TypeOf(value, scope) + ">";
}

void DeclareAccessors(Text& text, Member const& member, Scope const& scope) {
  bool const isMixedText = member.place == Member::Place::Text && scope.cls->mixed;
  text.Comment(isMixedText ? "All text of the element in one piece. Content() has it between the elements."
                           : Comment(member));
  bool const isElsewhere = IsOfOtherHeader(member, *scope.header);
  for (Accessor const& each : AccessorsOf(member, scope, scope)) {
    std::string const declarator = each.result + ' ' + each.signature;
    isElsewhere&& each.needsClass ? text.Line(declarator + ';') : text.Function(declarator, each.body);
  }
}

void DefineAccessors(Text& text, Member const& member, Scope const& scope) {
  if (!IsOfOtherHeader(member, *scope.header)) return;
  for (Accessor const& each : AccessorsOf(member, scope, {scope.ns, nullptr, scope.header})) {
    if (each.needsClass) text.Function(each.result + ' ' + scope.cls->cppName + "::" + each.signature, each.body);
  }
}

bool HoldsOtherClasses(Plan::Class const& cls, HeaderFile const& header) {
  return std::any_of(cls.members.begin(), cls.members.end(),
                     [&header](Member const& member) { return IsOfOtherHeader(member, header); });
}

std::string AccessedType(Member const& member, Scope const& scope) {
  if (member.kind != Kind::Value) return HeldClass(member, scope);
  std::string const type = TypeOf(member.value, scope);
  return member.mandatory || ImpliedValue(member) != nullptr ? type : "std::optional<" + type + ">";
}

void DeclareField(Text& text, Member const& member, Scope const& scope) {
  if (member.kind != Kind::Value) {
    text.Line("CSmartPtr<" + HeldClass(member, scope) + "> " + member.field + ";");
    return;
  }
  std::string const type = TypeOf(member.value, scope);
  if (!member.mandatory) return text.Line("std::optional<" + type + "> " + member.field + ";");
  std::string const initial =
      ImpliedValue(member) != nullptr ? " = " + ImpliedText(member, scope) : Initializer(member.value);
  text.Line(type + " " + member.field + initial + ";");
}

std::string PropertyOf(Member const& member) {
  ValueType const& value = member.value.Single();
  bool const isPlainValue = member.kind == Kind::Value && value.enumeration == nullptr;
  bool const needsKind = isPlainValue && SharesCppType(value.kind) && value.kind != Quillon9::ItemType_ui1 &&
                         value.kind != Quillon9::ItemType_ui2;
  if (!needsKind) return member.field;
  return "Quillon9::CPropertyRef(" + member.field + ", Quillon9::" + KindName(value.kind) + ")";
}

}  // namespace Quillon9Generator::Code
