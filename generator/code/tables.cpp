#include "code/tables.h"

#include <algorithm>

namespace Quillon9Generator::Code {

using Plan::Member;
using Kind = Plan::Member::Kind;

namespace {

/// A call that makes a row: `Value("zip", kNs, 4, kOnce, kDecimal)`.
class RowCall {
 public:
  explicit RowCall(char const* maker) : m_text(maker) { m_text += '('; }
  /// An empty argument is left out.
  RowCall& operator<<(std::string const& argument) {
    if (argument.empty()) return *this;
    if (m_text.back() != '(') m_text += ", ";
    m_text += argument;
    return *this;
  }
  RowCall& operator<<(int number) { return *this << std::to_string(number); }
  std::string Text() const { return m_text + ')'; }

 private:
  std::string m_text;
};

std::string OccursText(bool once) { return once ? "kOnce" : "kOptional"; }

void AddDefaults(RowCall& row, Member const& member) {
  if (!member.defaultValue && !member.fixedValue) return;
  row << (member.defaultValue ? Literal(*member.defaultValue) : "nullptr");
  if (member.fixedValue) row << Literal(*member.fixedValue);
}

std::string ValueElementOf(Member const& member, Constants& constants) {
  return constants.ValueElement(member.value, {member.defaultValue, member.fixedValue}, member.cppName);
}

std::string ElementRow(Member const& member, Constants& constants) {
  std::string const name = Literal(member.name.local);
  std::string const once = OccursText(member.minOccurs > 0);
  auto const uri = [&] { return constants.Uri(member.name.ns); };
  auto const named = [&](char const* maker) {
    RowCall row(maker);
    row << name << uri() << member.property;
    return row;
  };
  auto const repeated = [&](RowCall row) {
    row << member.minOccurs << member.maxOccurs;
    return row;
  };
  switch (member.kind) {
    case Kind::Value: {
      RowCall row = named("Value");
      row << once << constants.ValueType(member.value, member.cppName);
      AddDefaults(row, member);
      return row.Text();
    }
    case Kind::Values: return (repeated(named("Values")) << constants.ValueType(member.value, member.cppName)).Text();
    case Kind::Object:
      if (member.group != nullptr) return (named("Head") << once << constants.Group(*member.group)).Text();
      return (named("Object") << once << constants.TablesOf(*member.type) << BlockText(member.block)).Text();
    case Kind::Objects:
      if (member.group != nullptr) return (repeated(named("Heads")) << constants.Group(*member.group)).Text();
      return (repeated(named("Objects")) << constants.TablesOf(*member.type) << BlockText(member.block)).Text();
    case Kind::NillableValue: return (named("Object") << once << ValueElementOf(member, constants)).Text();
    case Kind::NillableValues: return (repeated(named("Objects")) << ValueElementOf(member, constants)).Text();
    case Kind::Rounds: {
      RowCall row("Rounds");
      row << Literal(member.cppName) << member.property;
      return (repeated(row) << constants.TablesOf(*member.type)).Text();
    }
    case Kind::Any: return (RowCall("Any") << member.property << once << constants.Rule(member)).Text();
    case Kind::Anys: {
      RowCall row("Anys");
      row << member.property;
      return (repeated(row) << constants.Rule(member)).Text();
    }
    case Kind::AnyType: return (named("AnyType") << once).Text();
    case Kind::AnyTypes: return repeated(named("AnyTypes")).Text();
    case Kind::AnyAttributes: break;
  }
  return "";
}

std::string GroupRow(Plan::Row const& row) {
  switch (row.kind) {
    case Plan::Row::Kind::BeginSequence: return "BeginSequence(" + OccursText(!row.optional) + ")";
    case Plan::Row::Kind::BeginChoice: return "BeginChoice(" + OccursText(!row.optional) + ")";
    case Plan::Row::Kind::BeginAll: return "BeginAll(" + OccursText(!row.optional) + ")";
    case Plan::Row::Kind::End: return "EndGroup()";
    case Plan::Row::Kind::Member: break;
  }
  return "";
}

std::string AttributeRow(Member const& member, Constants& constants) {
  if (member.kind == Kind::AnyAttributes) {
    return (RowCall("AnyAttributes") << member.property << constants.Rule(member)).Text();
  }
  RowCall row("Attribute");
  row << Literal(member.name.local) << constants.Uri(member.name.ns) << member.property
      << OccursText(member.minOccurs > 0) << constants.ValueType(member.value, member.cppName);
  AddDefaults(row, member);
  return row.Text();
}

/// The lines of the element table, the rows within a group indented.
std::vector<std::string> ElementRows(Plan::Class const& cls, Constants& constants) {
  std::vector<std::string> lines;
  std::size_t depth = 0;
  for (Plan::Row const& row : cls.rows) {
    if (row.kind == Plan::Row::Kind::End) --depth;
    bool const isMember = row.kind == Plan::Row::Kind::Member;
    std::string const line = isMember
                                 ? ElementRow(Plan::MembersOfRows(cls)[static_cast<std::size_t>(row.member)], constants)
                                 : GroupRow(row);
    lines.push_back(std::string(2 * depth, ' ') + line);
    if (!isMember && row.kind != Plan::Row::Kind::End) ++depth;
  }
  return lines;
}

std::vector<std::string> AttributeRows(Plan::Class const& cls, Constants& constants) {
  std::vector<std::string> lines;
  for (std::vector<Member> const* members : {&cls.restated, &cls.members}) {
    for (Member const& member : *members) {
      if (member.place == Member::Place::Attribute) lines.push_back(AttributeRow(member, constants));
    }
  }
  return lines;
}

/// Append an array of \p items unless there are none. \returns its name, or nullptr.
std::string PrintArray(Text& text, std::string const& type, std::string const& name,
                       std::vector<std::string> const& items) {
  if (items.empty()) return "nullptr";
  text.Line("constexpr " + type + " " + name + "[] = {");
  for (std::size_t i = 0; i < items.size(); ++i) text.Line("    " + items[i] + (i + 1 < items.size() ? "," : "};"));
  return name;
}

std::string DerivedClasses(Text& text, Plan::Class const& cls, std::string const& name, Constants const& constants) {
  std::vector<std::string> items;
  for (Plan::Class const* each : cls.derived) items.push_back('&' + constants.TablesOf(*each));
  if (items.empty()) return "nullptr";
  for (std::string const& line : BracedList("constexpr ClassTables* " + name + "[] = ", items)) text.Line(line);
  return name;
}

}  // namespace

std::string PrintRows(Text& text, Plan::Class const& cls, Constants& constants) {
  std::string const stem = "k" + Identifier(cls) + "_";
  std::vector<std::string> const elements = ElementRows(cls, constants);
  std::vector<std::string> const attributes = AttributeRows(cls, constants);
  auto const isText = [](Member const& member) { return member.place == Member::Place::Text; };
  auto const textMember = std::find_if(cls.members.begin(), cls.members.end(), isText);
  bool const hasText = textMember != cls.members.end();
  bool const hasTextType = hasText && !cls.mixed;
  std::string const textType =
      hasTextType ? '&' + constants.ValueType(textMember->value, textMember->cppName) : "nullptr";

  std::string const elementArray = PrintArray(text, "ElementRow", constants.Unique(stem + "Elements"), elements);
  std::string const attributeArray =
      PrintArray(text, "AttributeRow", constants.Unique(stem + "Attributes"), attributes);
  std::string const derivedArray = DerivedClasses(text, cls, constants.Unique(stem + "Derived"), constants);
  std::vector<std::string> const fields = {Literal(cls.name.local),
                                           cls.name.local.empty() ? "\"\"" : constants.Uri(cls.name.ns),
                                           constants.Uri(cls.targetNamespace),
                                           cls.base != nullptr ? '&' + constants.TablesOf(*cls.base) : "nullptr",
                                           elementArray,
                                           std::to_string(elements.size()),
                                           attributeArray,
                                           std::to_string(attributes.size()),
                                           std::to_string(cls.firstProperty),
                                           std::to_string(cls.members.size()),
                                           hasText ? std::to_string(textMember->property) : "-1",
                                           textType,
                                           cls.round ? "true" : "false",
                                           cls.rejectUnknownAttributes && !cls.round ? "true" : "false",
                                           derivedArray,
                                           std::to_string(cls.derived.size()),
                                           cls.replacesElements ? "true" : "false",
                                           cls.replacesAttributes ? "true" : "false",
                                           cls.derivation != 0 ? BlockText(cls.derivation) : "0",
                                           cls.block != 0 ? BlockText(cls.block) : "0",
                                           "nullptr",
                                           "nullptr",
                                           cls.classicValues ? "Quillon9::ValueRules_Classic" : ""};
  static std::vector<std::string> const kDefaults = {
      "\"\"",  "\"\"", "\"\"",    "nullptr", "nullptr", "0",     "nullptr", "0", "0",       "0",       "-1", "nullptr",
      "false", "true", "nullptr", "0",       "false",   "false", "0",       "0", "nullptr", "nullptr", ""};
  std::size_t count = fields.size();
  while (count != 0 && fields[count - 1] == kDefaults[count - 1]) --count;
  std::string const name = constants.Unique(stem + "Class");
  std::vector<std::string> const given(fields.begin(), fields.begin() + static_cast<std::ptrdiff_t>(count));
  for (std::string const& line : BracedList("constexpr ClassRow " + name, given)) text.Line(line);
  return name;
}

std::string PrintRoots(Text& text, std::vector<Plan::Root const*> const& roots, Constants& constants) {
  std::vector<std::string> rows;
  for (Plan::Root const* root : roots) {
    std::string const tables =
        root->anyType ? "nullptr"
        : root->type != nullptr
            ? '&' + constants.TablesOf(*root->type)
            : '&' + constants.ValueElement(root->value, {root->defaultValue, root->fixedValue}, root->cppName);
    std::string const block = root->block != 0 ? ", " + BlockText(root->block) : "";
    rows.push_back("{" + Literal(root->name.local) + ", " + constants.Uri(root->name.ns) + ", " + tables + block + "}");
  }
  return PrintArray(text, "RootRow", constants.Unique("kRoots"), rows);
}

}  // namespace Quillon9Generator::Code
