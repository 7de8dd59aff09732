#include "reading_schema.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/class_factory.h"

namespace Reading {

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

constexpr unsigned kClasses = 6;
constexpr int kFirstAttribute = 100;

std::string Pick(Chooser const& choose, std::initializer_list<char const*> texts) {
  return texts.begin()[choose(static_cast<unsigned>(texts.size()))];
}

bool OneIn(Chooser const& choose, unsigned chances) { return choose(chances) == chances - 1; }

Content PickContent(Chooser const& choose, bool mayBeGroup) {
  static constexpr Content kContents[] = {Content::kValue,  Content::kValue,    Content::kEnum,   Content::kObject,
                                          Content::kObject, Content::kAbstract, Content::kUntyped};
  return mayBeGroup && OneIn(choose, 3) ? Content::kObject : kContents[choose(7)];
}

/// A class after \p id in the list, so that groups, and objects that exist with their owner, never contain themselves.
int PickLater(Chooser const& choose, int id, bool hasTag, Schema const& schema) {
  std::vector<int> fitting;
  for (Class const& one : schema) {
    if (one.id > id && one.hasTag == hasTag) fitting.push_back(one.id);
  }
  return fitting.empty() ? -1 : fitting[choose(static_cast<unsigned>(fitting.size()))];
}

Occurs PickOccurs(Chooser const& choose, XmlElementGroupType group) {
  if (group == XmlElementGroupType_All) return OneIn(choose, 2) ? Occurs::kMandatory : Occurs::kOptional;
  if (group == XmlElementGroupType_Choice) return OneIn(choose, 3) ? Occurs::kRepeated : Occurs::kOptional;
  return static_cast<Occurs>(choose(3));
}

Member MakeMember(Chooser const& choose, Class const& owner, Schema const& schema) {
  Member member;
  int const group = PickLater(choose, owner.id, false, schema);
  member.content = PickContent(choose, group >= 0);
  member.occurs = PickOccurs(choose, owner.group);
  member.name = Pick(choose, {"a", "b", "c", "d", "e"});
  member.ns = OneIn(choose, 6) ? "urn:o" : "";
  member.type = OneIn(choose, 3) ? ItemType_i4 : ItemType_string;
  member.requiresContent = OneIn(choose, 2);
  member.minOccurs = static_cast<int>(choose(3));
  member.maxOccurs = OneIn(choose, 3) ? 2 : -1;
  member.restriction = Pick(choose, {"##any", "##other", "##local", "urn:o", "##targetNamespace"});
  member.heldRestriction = Pick(choose, {"##any", "##other", "##local"});
  member.target = OneIn(choose, 3) ? "" : "urn:t";
  if (member.content == Content::kUntyped && OneIn(choose, 2)) member.name = "AnyElement";
  int const tagged = PickLater(choose, member.occurs == Occurs::kMandatory ? owner.id : -1, true, schema);
  member.isGroup = member.content == Content::kObject && member.occurs != Occurs::kRepeated && group >= 0 &&
                   (tagged < 0 || !OneIn(choose, 3));
  member.classId = member.isGroup ? group : tagged;
  if (member.content == Content::kObject && member.classId < 0) member.content = Content::kValue;
  // Abstract members of an all group cannot be read at all, so a few cases cover them.
  bool const isUnreadable = owner.group == XmlElementGroupType_All && member.content == Content::kAbstract;
  if (isUnreadable && !OneIn(choose, 8)) member.content = Content::kEnum;
  return member;
}

Attribute MakeAttribute(Chooser const& choose) {
  Attribute attribute;
  attribute.kind = static_cast<AttributeKind>(choose(3));
  attribute.name = Pick(choose, {"p", "q", "r"});
  attribute.ns = OneIn(choose, 4) ? "urn:o" : "";
  attribute.isOptional = !OneIn(choose, 6);
  attribute.type = OneIn(choose, 3) ? ItemType_i4 : ItemType_string;
  attribute.restriction = Pick(choose, {"##any", "##any", "##local"});
  return attribute;
}

void Number(Class& made) {
  int index = 0;
  for (Member& member : made.members) member.index = index++;
  index = kFirstAttribute;  // the same in all classes, so that they may share a table
  for (Attribute& attribute : made.attributes) attribute.index = index++;
  if (made.textProperty >= 0) made.textProperty = index;
}

/// The table of a class that derives from another one begins with the descriptors of that class.
void Inherit(Chooser const& choose, Class& made, Schema const& schema) {
  int const base = PickLater(choose, made.id, made.hasTag, schema);
  if (base < 0 || !OneIn(choose, 3)) return;
  Class const& from = schema[static_cast<std::size_t>(base)];
  if (from.group != made.group) return;
  made.base = base;
  made.inherited = from.members.size();
  made.members = from.members;
}

std::string MakeText(Chooser const& choose) { return Pick(choose, {"1", "2", "", "x", " 12 ", "long"}); }

std::string MakeAttributes(Chooser const& choose) {
  std::string text;
  char const* const names[] = {"p", "q", "r", "o:p", "o:q"};
  for (char const* const name : names) {
    if (OneIn(choose, 5)) text += std::string(" ") + name + "='" + MakeText(choose) + "'";
  }
  if (OneIn(choose, 8)) text += " xsi:nil='" + Pick(choose, {"true", "FALSE", "false", "1"}) + "'";
  if (OneIn(choose, 4)) text += " xsi:type='" + Pick(choose, {"none", "T0", "T1", "T2", "T3", "T4", "T5"}) + "'";
  return text;
}

char const* NameOf(XmlElementGroupType group) {
  return group == XmlElementGroupType_All ? "all" : group == XmlElementGroupType_Choice ? "choice" : "sequence";
}

}  // namespace

Schema MakeSchema(Chooser const& choose) {
  Schema schema(kClasses);
  for (unsigned i = 0; i < kClasses; ++i) {
    schema[i].id = static_cast<int>(i);
    schema[i].hasTag = i == 0 || i + 1 == kClasses || OneIn(choose, 3);
  }
  for (auto made = schema.rbegin(); made != schema.rend(); ++made) {
    made->group = static_cast<XmlElementGroupType>(choose(3));
    made->isNillable = OneIn(choose, 6);
    made->rejectsAttributes = OneIn(choose, 8);
    made->textProperty = OneIn(choose, 5) ? 0 : -1;
    made->ns = OneIn(choose, 3) ? "urn:t" : "";
    made->init = static_cast<InitKind>(choose(4));
    Inherit(choose, *made, schema);
    for (unsigned count = 1 + choose(4); count > 0; --count) made->members.push_back(MakeMember(choose, *made, schema));
    for (unsigned count = choose(3); count > 0; --count) made->attributes.push_back(MakeAttribute(choose));
    made->sharesAttributes = made->base >= 0 && made->id % 2 == 0;
    if (made->sharesAttributes) made->attributes = schema[static_cast<std::size_t>(made->base)].attributes;
    Number(*made);
  }
  return schema;
}

std::string MakeChild(Chooser const& choose, unsigned depth) {
  std::string const prefix = OneIn(choose, 6) ? "o:" : "";
  std::string const name = prefix + Pick(choose, {"a", "b", "c", "d", "e", "z"});
  std::string const attributes = OneIn(choose, 3) ? MakeAttributes(choose) : "";
  std::string content = MakeText(choose);
  if (depth > 0) {
    for (unsigned count = choose(4); count > 0; --count) content += MakeChild(choose, depth - 1);
  }
  return "<" + name + attributes + ">" + content + "</" + name + ">";
}

std::string MakeDocument(std::string const& attributes, std::string const& content) {
  return "<root xmlns:o='urn:o' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'" + attributes + ">" + content +
         "</root>";
}

Case MakeCase(Chooser const& choose, unsigned children) {
  Case made;
  made.ignoring = OneIn(choose, 3) ? "" : "U";
  if (made.ignoring.empty() && OneIn(choose, 2)) made.ignoring = "M";
  for (char const option : {'C', 'I', 'A', 'N'}) {
    if (OneIn(choose, 3)) made.ignoring += option;
  }
  made.schema = MakeSchema(choose);
  for (unsigned count = 1 + choose(3); count > 0; --count) {
    std::string const attributes = MakeAttributes(choose);
    std::string content = MakeText(choose);
    for (unsigned left = choose(children + 1); left > 0; --left) content += MakeChild(choose, 2);
    made.documents.push_back(MakeDocument(attributes, content));
  }
  return made;
}

std::string Describe(Case const& tried) {
  static char const* const contents[] = {"value", "enum", "object", "abstract", "untyped"};
  static char const* const occurrences[] = {"mandatory", "optional", "repeated"};
  static char const* const kinds[] = {"value", "enum", "any"};
  static char const* const inits[] = {"nothing", "collections", "all", "all but objects"};
  std::string text = "ignoring [" + tried.ignoring + "]\n";
  for (Class const& one : tried.schema) {
    text += FormatString(
        "class %d: %s, %s, ns [%s], Init clears %s%s%s, text %d, begins with %d of %d%s\n", one.id, NameOf(one.group),
        one.hasTag ? "tag" : "no tag", one.ns.c_str(), inits[static_cast<int>(one.init)],
        one.isNillable ? ", nillable" : "", one.rejectsAttributes ? ", rejects attributes" : "", one.textProperty,
        static_cast<int>(one.inherited), one.base, one.sharesAttributes ? ", shares its attributes" : "");
    for (Member const& member : one.members) {
      text += FormatString("  %d <%s> [%s] %s %s, type %d, class %d%s%s, %d to %d, [%s] held [%s] target [%s]\n",
                           member.index, member.name.c_str(), member.ns.c_str(),
                           occurrences[static_cast<int>(member.occurs)], contents[static_cast<int>(member.content)],
                           static_cast<int>(member.type), member.classId, member.isGroup ? " group" : "",
                           member.requiresContent ? " requires content" : "", member.minOccurs, member.maxOccurs,
                           member.restriction.c_str(), member.heldRestriction.c_str(), member.target.c_str());
    }
    for (Attribute const& attribute : one.attributes) {
      text += FormatString("  %d @%s [%s] %s%s, type %d [%s]\n", attribute.index, attribute.name.c_str(),
                           attribute.ns.c_str(), kinds[static_cast<int>(attribute.kind)],
                           attribute.isOptional ? "" : " required", static_cast<int>(attribute.type),
                           attribute.restriction.c_str());
    }
  }
  for (std::string const& document : tried.documents) text += document.substr(0, 2000) + "\n";
  return text;
}

int EnumOf(char const* text) {
  if (std::strcmp(text, "x") == 0) throw CQnInvalidValueException("No enumerator [x]");
  return std::strcmp(text, "1") == 0 ? 1 : 2;
}

int ClassOfElement(Schema const& schema, CXmlElement* element) {
  std::string const type = CClassfactoryBase::GetElementType(element);
  if (type == "none") return -1;
  auto const id = static_cast<std::size_t>(type.size() == 2 ? type[1] - '0' : static_cast<int>(kClasses) - 1);
  return schema[id].hasTag ? static_cast<int>(id) : -1;
}

}  // namespace Reading
