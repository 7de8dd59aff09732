#include "code/constants.h"

#include <algorithm>
#include <cctype>

#include "code/members.h"
#include "code/types.h"

namespace Quillon9Generator::Code {

namespace {

/// The letters and digits of \p name, the first letter of each word raised.
std::string Camel(std::string const& name) {
  std::string result;
  bool raise = true;
  for (char const c : name) {
    bool const isWord = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (isWord) result += raise && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    raise = !isWord;
  }
  return result;
}

/// What a constant is called for a type of the schema: "po:SKU" gives "SKU", an anonymous type \p hint.
std::string TypeName(Plan::ValueType const& type, std::string const& hint) {
  std::string const local = Camel(type.schemaName.substr(type.schemaName.find(':') + 1));
  return local.empty() ? hint : local;
}

std::string TextOrNull(std::string const& text) { return text.empty() ? "nullptr" : Literal(text); }

/// `a, b, c` without what is at the end of \p values the same as at the end of \p defaults.
std::string WithoutDefaults(std::vector<std::string> values, std::vector<std::string> const& defaults) {
  while (!values.empty() && values.back() == defaults[values.size() - 1]) values.pop_back();
  std::string list;
  for (std::string const& value : values) list += (list.empty() ? "" : ", ") + value;
  return list;
}

void PrintGroup(Text& text, std::vector<std::string> const& lines) {
  for (std::string const& line : lines) text.Line(line);
  if (!lines.empty()) text.Blank();
}

}  // namespace

std::string Constants::Unique(std::string const& wanted) {
  std::string name = wanted;
  for (int number = 2; !m_names.insert(name).second; ++number) name = wanted + std::to_string(number);
  return name;
}

std::string Constants::TablesOf(Plan::Class const& cls) const { return Code::TablesOf(cls, m_ns); }

std::string Constants::Uri(std::string const& uri) {
  if (uri.empty()) return "\"\"";
  auto const [entry, added] = m_uris.emplace(uri, "");
  if (added) {
    entry->second = Unique("kNs");
    m_uriLines.push_back("constexpr char " + entry->second + "[] = " + Literal(uri) + ";");
  }
  return entry->second;
}

std::string Constants::Rule(Plan::Member const& wildcard) {
  bool const isOther = wildcard.restriction == "##other";
  std::string const target = isOther ? wildcard.targetNamespace : "";
  auto const [entry, added] = m_rules.emplace(std::make_tuple(wildcard.restriction, target), "");
  if (added) {
    bool const isAny = wildcard.restriction == "##any";
    entry->second = Unique(isAny ? "kAnyNamespace" : isOther ? "kOtherNamespace" : "kNamespaces");
    std::string const list = WithoutDefaults({Literal(wildcard.restriction), Literal(target)}, {"\"##any\"", "\"\""});
    m_ruleLines.push_back("constexpr NamespaceRule " + entry->second + "{" + list + "};");
  }
  return entry->second;
}

std::string Constants::Texts(Plan::Enumeration const& enumeration) {
  auto const [entry, added] = m_texts.emplace(&enumeration, "");
  if (!added) return entry->second;
  std::string stem = enumeration.cppName;
  stem = Camel(enumeration.owner != nullptr ? Identifier(*enumeration.owner) + ShortName(enumeration).substr(1)
                                            : ShortName(enumeration).substr(1));
  entry->second = Unique("k" + stem + "Enum");
  std::string const list = Unique("k" + stem + "Text");
  std::vector<std::string> texts;
  for (Plan::Enumerator const& each : enumeration.enumerators) texts.push_back(Literal(each.text));
  for (std::string const& line : BracedList("constexpr char const* " + list + "[] = ", texts))
    m_typeLines.push_back(line);
  m_typeLines.push_back("constexpr Quillon9::CEnumTexts " + entry->second + "{" + Literal(ShortName(enumeration)) +
                        ", " + list + "};");
  return entry->second;
}

std::string Constants::Facets(Plan::Facets const& facets, std::string const& wanted) {
  FacetKey key{facets.pattern,      facets.length,         facets.minLength,    facets.maxLength,
               facets.totalDigits,  facets.fractionDigits, facets.minInclusive, facets.maxInclusive,
               facets.minExclusive, facets.maxExclusive};
  auto const [entry, added] = m_facets.emplace(std::move(key), "");
  if (added) {
    entry->second = Unique(wanted);
    std::string const list = WithoutDefaults(
        {TextOrNull(facets.pattern), std::to_string(facets.length), std::to_string(facets.minLength),
         std::to_string(facets.maxLength), TextOrNull(facets.minInclusive), TextOrNull(facets.maxInclusive),
         TextOrNull(facets.minExclusive), TextOrNull(facets.maxExclusive), std::to_string(facets.totalDigits),
         std::to_string(facets.fractionDigits)},
        {"nullptr", "-1", "-1", "-1", "nullptr", "nullptr", "nullptr", "nullptr", "-1", "-1"});
    m_typeLines.push_back("constexpr Facets " + entry->second + "{" + list + "};");
  }
  return entry->second;
}

// The types and values that it refers to come first.
std::string Constants::Parts(Plan::ValueType const& type, std::string const& name) {
  std::string const role = type.isQualifiedName ? "ValueRole::QualifiedName"
                           : type.isIdentifier  ? "ValueRole::Identifier"
                                                : "ValueRole::None";
  bool const isPlain = type.item == nullptr && type.members.empty() && type.values.empty();
  if (isPlain && !type.isQualifiedName && !type.isIdentifier) return "nullptr";
  std::vector<std::string> members;
  std::vector<std::string> values;
  std::string const item = type.item != nullptr ? '&' + ValueType(*type.item, name + "Item") : "nullptr";
  for (Plan::ValueType const& each : type.members) members.push_back('&' + ValueType(each, name + "Member"));
  for (std::string const& each : type.values) values.push_back(Literal(each));
  std::vector<std::string> key = {item, role};
  key.insert(key.end(), members.begin(), members.end());
  key.emplace_back();
  key.insert(key.end(), values.begin(), values.end());
  auto const [entry, added] = m_parts.emplace(std::move(key), "");
  if (!added) return '&' + entry->second;
  auto const array = [&](char const* of, std::string const& suffix, std::vector<std::string> const& items) {
    if (items.empty()) return std::string("nullptr");
    std::string const unique = Unique("k" + name + suffix);
    for (std::string const& line : BracedList(std::string("constexpr ") + of + " " + unique + "[] = ", items)) {
      m_typeLines.push_back(line);
    }
    return unique;
  };
  std::string const memberList = array("ValueType const*", "Members", members);
  std::string const valueList = array("char const*", "Values", values);
  entry->second = Unique("k" + name + "Parts");
  std::string const list = WithoutDefaults(
      {item, memberList, std::to_string(members.size()), valueList, std::to_string(values.size()), role},
      {"nullptr", "nullptr", "0", "nullptr", "0", "ValueRole::None"});
  m_typeLines.push_back("constexpr TypeParts " + entry->second + "{" + list + "};");
  return '&' + entry->second;
}

namespace {

std::string FormText(Quillon9::SchemaForm form) {
  static constexpr char const* kNames[] = {"Any", "Language", "NMToken", "Name", "NCName", "AnyURI", "QName"};
  return std::string("SchemaForm::") + kNames[static_cast<int>(form)];
}

}  // namespace

std::string Constants::ValueType(Plan::ValueType const& type, std::string const& hint) {
  std::string const name = TypeName(type, hint);
  std::string const facets = type.facets.Empty() ? "nullptr" : '&' + Facets(type.facets, "k" + name + "Facets");
  std::string const texts = type.enumeration != nullptr ? '&' + Texts(*type.enumeration) : "nullptr";
  std::string const parts = Parts(type, name);
  auto const [entry, added] =
      m_types.emplace(std::make_tuple(static_cast<int>(type.kind), static_cast<int>(type.whiteSpace), facets,
                                      type.enumeration, parts, static_cast<int>(type.form)),
                      "");
  if (!added) return entry->second;
  static constexpr char const* kRules[] = {"kPreserve", "kReplace", "kCollapse"};
  entry->second = Unique("k" + name);
  std::string const list =
      WithoutDefaults({"Quillon9::" + KindName(type.kind), kRules[static_cast<int>(type.whiteSpace)], facets, texts,
                       parts, FormText(type.form)},
                      {"", "kCollapse", "nullptr", "nullptr", "nullptr", "SchemaForm::Any"});
  m_typeLines.push_back("constexpr ValueType " + entry->second + "{" + list + "};");
  return entry->second;
}

std::string Constants::ValueElement(Plan::ValueType const& type, ValueTexts const& texts, std::string const& hint) {
  if (m_main != nullptr) {
    std::string const shared = m_main->ValueElement(type, texts, hint);
    m_main->m_shared.insert(shared);
    m_shared.insert(shared);
    return m_main->m_ns.cppName == m_ns.cppName ? shared : "::" + m_main->m_ns.cppName + "::" + shared;
  }
  std::string const value = ValueType(type, hint);
  std::string const arguments =
      WithoutDefaults({value, "\"\"", texts.defaultValue ? Literal(*texts.defaultValue) : "nullptr",
                       texts.fixedValue ? Literal(*texts.fixedValue) : "nullptr",
                       m_ns.classicValues ? "Quillon9::ValueRules_Classic" : ""},
                      {"", "\"\"", "nullptr", "nullptr", ""});
  auto const [entry, added] = m_valueElements.emplace(arguments, "");
  if (added) {
    bool const hasTexts = texts.defaultValue || texts.fixedValue;
    std::string const name = (hasTexts ? hint : value.substr(1)) + "Element";
    std::string const row = Unique("k" + name);
    entry->second = Unique("g_" + name);
    std::string const cpp = ValueElementType(type, {&m_ns, nullptr, nullptr});
    m_elements.push_back({entry->second,
                          "constexpr ClassRow " + row + " = Quillon9::ValueElementRow(" + arguments + ");",
                          "ClassTables " + entry->second + "{" + row + ", &" + cpp + "::Make};"});
  }
  return entry->second;
}

std::string BlockText(unsigned derivations) {
  bool const extends = (derivations & Schema::kExtension) != 0;
  bool const restricts = (derivations & Schema::kRestriction) != 0;
  if (extends && restricts) return "Derivation_Extension | Derivation_Restriction";
  return extends ? "Derivation_Extension" : restricts ? "Derivation_Restriction" : "";
}

std::string Constants::Group(Plan::ElementGroup const& group) {
  auto const [entry, added] = m_groups.emplace(&group, "");
  if (!added) return entry->second;
  std::string const stem = "k" + Camel(group.head->name.local);
  entry->second = Unique(stem + "Group");
  std::string const list = Unique(stem + "Elements");
  std::vector<std::string> elements;
  for (Plan::ElementGroup::Element const& element : group.elements) {
    std::string const tables =
        element.anyType ? "nullptr"
        : element.type != nullptr
            ? '&' + TablesOf(*element.type)
            : '&' + ValueElement(element.value, {element.defaultValue, element.fixedValue}, Camel(element.name.local));
    std::string const block = element.block != 0 ? ", " + BlockText(element.block) : "";
    elements.push_back("{" + Literal(element.name.local) + ", " + Uri(element.name.ns) + ", " + tables + block + "}");
  }
  for (std::string const& line : BracedList("constexpr GroupElement " + list + "[] = ", elements)) {
    m_groupLines.push_back(line);
  }
  m_groupLines.push_back("constexpr ElementGroup " + entry->second + "{" + list + ", " +
                         std::to_string(elements.size()) + "};");
  return entry->second;
}

void Constants::Print(Text& text) const {
  PrintGroup(text, m_uriLines);
  PrintGroup(text, m_ruleLines);
  PrintGroup(text, m_typeLines);
  std::vector<std::string> elementLines;
  for (Element const& element : m_elements) {
    elementLines.push_back(element.row);
    if (m_shared.count(element.name) == 0) elementLines.push_back(element.definition);
  }
  PrintGroup(text, elementLines);
  PrintGroup(text, m_groupLines);
}

void Constants::PrintShared(Text& text) const {
  for (Element const& element : m_elements) {
    if (m_shared.count(element.name) != 0) text.Line(element.definition);
  }
}

}  // namespace Quillon9Generator::Code
