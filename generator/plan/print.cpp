#include "plan/make_plan.h"

namespace Quillon9Generator::Plan {

namespace {

std::string Quoted(std::string const& text) { return "\"" + text + "\""; }

char const* WhiteSpaceText(Schema::WhiteSpace whiteSpace) {
  switch (whiteSpace) {
    case Schema::WhiteSpace::Preserve: return " preserve";
    case Schema::WhiteSpace::Replace: return " replace";
    case Schema::WhiteSpace::Collapse: return "";
  }
  return "";
}

void AppendNumber(std::string& text, char const* name, long value) {
  if (value >= 0) text += std::string(" ") + name + "=" + std::to_string(value);
}

void AppendText(std::string& text, char const* name, std::string const& value) {
  if (!value.empty()) text += std::string(" ") + name + "=" + value;
}

std::string ChecksText(ValueType const& value);

std::string ValueText(ValueType const& value) {
  if (value.item != nullptr) return "list of (" + ValueText(*value.item) + ")" + ChecksText(value);
  if (value.enumeration != nullptr) return value.enumeration->cppName + WhiteSpaceText(value.whiteSpace);
  if (value.isQualifiedName) return "qualified name" + ChecksText(value);
  if (value.isIdentifier) return "identifier" + ChecksText(value);
  return std::string(KindName(value.kind)) + WhiteSpaceText(value.whiteSpace) + ChecksText(value);
}

std::string ChecksText(ValueType const& value) {
  std::string text;
  AppendText(text, "pattern", value.facets.pattern);
  AppendNumber(text, "length", value.facets.length);
  AppendNumber(text, "minLength", value.facets.minLength);
  AppendNumber(text, "maxLength", value.facets.maxLength);
  AppendNumber(text, "totalDigits", value.facets.totalDigits);
  AppendNumber(text, "fractionDigits", value.facets.fractionDigits);
  AppendText(text, "minInclusive", value.facets.minInclusive);
  AppendText(text, "maxInclusive", value.facets.maxInclusive);
  AppendText(text, "minExclusive", value.facets.minExclusive);
  AppendText(text, "maxExclusive", value.facets.maxExclusive);
  for (ValueType const& member : value.members) text += " or (" + ValueText(member) + ")";
  for (std::string const& each : value.values) text += " " + Quoted(each);
  return text;
}

std::string NameText(Schema::QualifiedName const& name) {
  return name.ns.empty() ? name.local : "{" + name.ns + "}" + name.local;
}

std::string OccursText(int least, int most) {
  if (least == 1 && most == 1) return "";
  if (least == 0 && most == 1) return "?";
  return "{" + std::to_string(least) + "," + (most == Schema::Particle::kUnbounded ? "" : std::to_string(most)) + "}";
}

/// " blocks extension restriction"; empty for an empty set.
std::string DerivationText(char const* what, unsigned derivations) {
  std::string text;
  if ((derivations & Schema::kExtension) != 0) text += " extension";
  if ((derivations & Schema::kRestriction) != 0) text += " restriction";
  return text.empty() ? text : std::string(" ") + what + text;
}

/// What a member, an element of a group and a root say alike.
template <class Declaration>
std::string RulesText(Declaration const& declaration) {
  std::string text;
  if (declaration.defaultValue) text += " default=" + Quoted(*declaration.defaultValue);
  if (declaration.fixedValue) text += " fixed=" + Quoted(*declaration.fixedValue);
  return text + DerivationText("blocks", declaration.block);
}

std::string GroupText(ElementGroup const& group) {
  std::string text;
  switch (group.holder) {
    case ElementGroup::Holder::Class: break;
    case ElementGroup::Holder::Value: text = " " + ValueText(group.value); break;
    case ElementGroup::Holder::BoundObject: text = " bound-object"; break;
    case ElementGroup::Holder::AnyObject: text = " any-object"; break;
  }
  for (std::size_t i = 0; i < group.elements.size(); ++i) {
    ElementGroup::Element const& element = group.elements[i];
    std::string const type = element.anyType           ? "anytype"
                             : element.type != nullptr ? element.type->cppName
                                                       : ValueText(element.value);
    text += (i == 0 ? " of " : ", ") + NameText(element.name) + " " + type + RulesText(element);
  }
  return text;
}

std::string MemberText(Member const& member) {
  std::string text = std::to_string(member.property) + " " + member.cppName + " " + member.field + ": ";
  text += KindText(member.kind);
  if (member.place == Member::Place::Attribute) text += " @";
  if (member.place == Member::Place::Text) text += " #text";
  if (member.place == Member::Place::Element && !member.name.local.empty()) text += ' ';
  text += NameText(member.name) + OccursText(member.minOccurs, member.maxOccurs);
  if (member.type != nullptr) text += " " + member.type->cppName;
  if (member.group != nullptr) text += GroupText(*member.group);
  if (member.MayHaveDefault() || member.kind == Member::Kind::Values) text += " " + ValueText(member.value);
  if (member.mandatory) text += " mandatory";
  text += RulesText(member);
  if (!member.restriction.empty()) text += " allows " + Quoted(member.restriction);
  if (!member.targetNamespace.empty()) text += " not " + Quoted(member.targetNamespace);
  if (member.choice >= 0) text += " in " + std::to_string(member.choice);
  return text;
}

std::string RowsText(Class const& cls) {
  std::string text;
  std::vector<bool> optional;
  for (Row const& row : cls.rows) {
    if (row.kind != Row::Kind::End && !text.empty() && text.back() != '(') text += ' ';
    switch (row.kind) {
      case Row::Kind::Member: text += MembersOfRows(cls)[static_cast<std::size_t>(row.member)].cppName; continue;
      case Row::Kind::BeginSequence: text += "sequence("; break;
      case Row::Kind::BeginChoice:
        text += row.choice < 0 ? "choice(" : cls.choices[static_cast<std::size_t>(row.choice)].cppName + "(";
        break;
      case Row::Kind::BeginAll: text += "all("; break;
      case Row::Kind::End:
        text += optional.back() ? ")?" : ")";
        optional.pop_back();
        continue;
    }
    optional.push_back(row.optional);
  }
  return text;
}

void PrintEnumeration(Enumeration const& enumeration, std::string const& indent, std::string& text) {
  text += indent + "enum " + enumeration.cppName;
  if (!enumeration.name.local.empty()) text += " of " + NameText(enumeration.name);
  text += ':';
  for (Enumerator const& each : enumeration.enumerators) text += " " + each.name + "=" + Quoted(each.text);
  text += '\n';
}

std::string ClassLine(Class const& cls) {
  std::string line = "class " + cls.cppName;
  if (!cls.name.local.empty()) line += " of " + NameText(cls.name);
  if (cls.base != nullptr) line += " : " + cls.base->cppName;
  if (cls.abstract) line += " abstract";
  line += DerivationText("by", cls.derivation) + DerivationText("blocks", cls.block);
  if (cls.round) line += " round";
  if (cls.nillable) line += " nillable";
  if (cls.mixed) line += " mixed";
  if (cls.replacesElements) line += " replaces-elements";
  if (cls.replacesAttributes) line += " replaces-attributes";
  if (!cls.defaultElementName.empty()) {
    line += " element " + NameText({cls.targetNamespace, cls.defaultElementName});
  }
  return line;
}

void PrintClass(Class const& cls, std::string const& indent, std::string& text) {
  text += indent + ClassLine(cls) + '\n';
  std::string const inner = indent + "  ";
  for (Enumeration const* nested : cls.nestedEnumerations) PrintEnumeration(*nested, inner, text);
  for (Class const* nested : cls.nested) PrintClass(*nested, inner, text);
  for (Member const& member : cls.restated) text += inner + "restates " + MemberText(member) + '\n';
  for (Member const& member : cls.members) text += inner + MemberText(member) + '\n';
  for (Choice const& choice : cls.choices) {
    text += inner + "choice " + choice.cppName + ":";
    for (std::string const& alternative : choice.alternatives) text += " " + alternative;
    text += '\n';
  }
  if (RowsText(cls).find('(') != std::string::npos) text += inner + "rows " + RowsText(cls) + '\n';
}

std::string RootLine(Root const& root) {
  std::string line = (root.isDocument ? "root " : "made ") + root.cppName + " " + NameText(root.name) + " ";
  if (root.type != nullptr) {
    line += root.type->cppName;
  } else {
    line += root.anyType ? "anytype" : ValueText(root.value);
  }
  line += RulesText(root);
  return root.alias.empty() ? line : line + " alias " + root.alias;
}

}  // namespace

char const* KindText(Member::Kind kind) {
  switch (kind) {
    case Member::Kind::Value: return "value";
    case Member::Kind::Values: return "values";
    case Member::Kind::Object: return "object";
    case Member::Kind::Objects: return "objects";
    case Member::Kind::NillableValue: return "nillable value";
    case Member::Kind::NillableValues: return "nillable values";
    case Member::Kind::Rounds: return "rounds";
    case Member::Kind::Any: return "any";
    case Member::Kind::Anys: return "anys";
    case Member::Kind::AnyType: return "anytype";
    case Member::Kind::AnyTypes: return "anytypes";
    case Member::Kind::AnyAttributes: return "anyattributes";
  }
  return "";
}

std::string Print(Plan const& plan) {
  std::string text;
  for (Namespace const& each : plan.namespaces) {
    text += "namespace " + each.cppName + " in " + each.fileStem + '\n';
    for (Enumeration const* enumeration : each.enumerations) PrintEnumeration(*enumeration, "", text);
    for (Class const* cls : each.classes) PrintClass(*cls, "", text);
    for (Root const& root : each.roots) text += RootLine(root) + '\n';
  }
  return text;
}

}  // namespace Quillon9Generator::Plan
