#include "pages/entries.h"

#include <algorithm>
#include <optional>

#include "code/text.h"
#include "pages/html.h"
#include "schema/built_ins.h"

namespace Quillon9Generator::Pages {

using Schema::AttributeUse;
using Schema::ComplexType;
using Schema::ElementDeclaration;
using Schema::Particle;
using Schema::SimpleType;

namespace {

/// What is longer is shown in full only in the entry of its component.
constexpr std::size_t kLongestSummary = 200;
/// A longer type or description of an attribute is not shown again in each type that has the attribute by a group.
constexpr std::size_t kLongestRepetition = 800;

std::string Fact(char const* name, std::string const& value) {
  return value.empty() ? value : "<dt>" + std::string(name) + "</dt><dd>" + value + "</dd>\n";
}

std::string Fact(char const* name, std::optional<std::string> const& value) {
  return value ? Fact(name, CodeText(*value)) : std::string();
}

std::string ListOf(std::string const& facts) { return facts.empty() ? facts : "<dl>\n" + facts + "</dl>\n"; }

std::string Occurs(Particle const& particle) {
  std::string least = std::to_string(particle.minOccurs);
  if (particle.minOccurs == particle.maxOccurs) return least;
  return least + ".." + (particle.maxOccurs == Particle::kUnbounded ? "*" : std::to_string(particle.maxOccurs));
}

/// The first line of \p documentation.
std::string Summary(std::string const& documentation) {
  std::size_t const begin = std::min(documentation.find_first_not_of(" \t\r\n"), documentation.size());
  std::size_t const end = std::min(documentation.find('\n', begin), documentation.size());
  if (end - begin <= kLongestSummary) return Escaped(documentation.substr(begin, end - begin));
  std::size_t const blank = documentation.rfind(' ', begin + kLongestSummary);
  if (blank == documentation.npos || blank <= begin) return {};
  return Escaped(documentation.substr(begin, blank - begin)) + " ...";
}

std::string Implied(std::optional<std::string> const& defaultValue, std::optional<std::string> const& fixedValue) {
  if (fixedValue) return "<p>Fixed: " + CodeText(*fixedValue) + "</p>\n";
  return defaultValue ? "<p>Default: " + CodeText(*defaultValue) + "</p>\n" : std::string();
}

std::string WildcardText(Schema::Wildcard const& wildcard) {
  std::string text;
  switch (wildcard.constraint) {
    case Schema::Wildcard::Constraint::Any: text = "of any namespace"; break;
    case Schema::Wildcard::Constraint::Other:
      text = wildcard.notNamespace.empty()
                 ? "of any namespace, but not of none"
                 : "of any namespace but " + CodeText(Code::ShortenedText(wildcard.notNamespace, kLongestSummary));
      break;
    case Schema::Wildcard::Constraint::Listed:
      for (std::string const& ns : wildcard.namespaces) {
        text += (text.empty() ? "of " : ", ") +
                (ns.empty() ? "no namespace" : CodeText(Code::ShortenedText(ns, kLongestSummary)));
      }
      break;
  }
  switch (wildcard.processing) {
    case Schema::Wildcard::Processing::Strict: return text;
    case Schema::Wildcard::Processing::Lax: return text + "; checked if it is declared";
    case Schema::Wildcard::Processing::Skip: return text + "; not checked";
  }
  return text;
}

char const* CompositorText(Schema::ModelGroup::Compositor compositor) {
  switch (compositor) {
    case Schema::ModelGroup::Compositor::Sequence: return "sequence";
    case Schema::ModelGroup::Compositor::Choice: return "choice";
    case Schema::ModelGroup::Compositor::All: return "all";
  }
  return "";
}

bool IsSame(AttributeUse const& a, AttributeUse const& b) {
  return a.declaration == b.declaration && a.required == b.required && a.defaultValue == b.defaultValue &&
         a.fixedValue == b.fixedValue;
}

std::string PlaceText(Schema::Place const& place) {
  if (place.file == nullptr) return {};
  std::string const name = place.file->substr(place.file->rfind('/') + 1);
  return "<p class=\"place\">" + Escaped(name) + ":" + std::to_string(place.line) + "</p>\n";
}

template <class Value>
void AddFacet(std::string& list, char const* name, Value const& value, Value const& inherited) {
  if (!value || value == inherited) return;
  if constexpr (std::is_same_v<Value, std::optional<long>>) {
    list += "<li>" + std::string(name) + " " + std::to_string(*value) + "</li>\n";
  } else {
    list += "<li>" + std::string(name) + " " + CodeText(*value) + "</li>\n";
  }
}

/// Whether the values of \p facets are those of the base, which each derived type has too.
bool InheritsValues(Schema::Facets const& facets, Schema::Facets const& base) {
  if (facets.enumeration.empty()) return true;
  if (base.enumeration.empty()) return false;
  Schema::Place const& a = facets.enumeration.front().place;
  Schema::Place const& b = base.enumeration.front().place;
  return a.file == b.file && a.line == b.line && a.column == b.column;
}

}  // namespace

std::string LinkTo(Entry const& entry) {
  return "<a href=\"" + entry.page + "#" + Fragment(entry.anchor) + "\">" +
         Escaped(Code::ShortenedText(entry.name->local, kLongestSummary)) + "</a>";
}

// ---- Entries

std::string Entries::Print(Entry const& entry) {
  m_current = &entry;
  return "<h2><span class=\"kind\">" + std::string(KindText(entry.kind)) + "</span> " + Escaped(entry.name->local) +
         "</h2>\n" + PlaceText(entry.component->place) + Paragraphs(entry.component->documentation) + Body(entry);
}

std::string Entries::Body(Entry const& entry) {
  switch (entry.kind) {
    case Entry::Kind::Element: return ElementBody(*static_cast<ElementDeclaration const*>(entry.component));
    case Entry::Kind::Attribute:
      return AttributeBody(*static_cast<Schema::AttributeDeclaration const*>(entry.component));
    case Entry::Kind::ComplexType: return ComplexTypeBody(*static_cast<ComplexType const*>(entry.component));
    case Entry::Kind::SimpleType: return SimpleTypeBody(*static_cast<SimpleType const*>(entry.component));
    case Entry::Kind::Group: return GroupBody(*static_cast<Schema::GroupDefinition const*>(entry.component));
  }
  return {};
}

std::string Entries::Users(Entry const& entry) const {
  auto const found = m_users.find(&entry);
  if (found == m_users.end()) return {};
  std::string list;
  for (Entry const* user : found->second) {
    list += (list.empty() ? "" : ", ") + std::string(KindText(user->kind)) + " " + LinkTo(*user);
  }
  return "<p>Used by " + list + "</p>\n";
}

std::string Entries::ElementBody(ElementDeclaration const& element) {
  ComplexType const* const type = element.complexType;
  bool const isAnonymous = type != nullptr && type->IsAnonymous();
  std::string substitutes;
  for (ElementDeclaration const* each : element.substitutes) {
    substitutes += (substitutes.empty() ? "" : ", ") + Mention(each, each->name);
  }
  Facts facts = Fact("Type", TypeText(element));
  if (element.substitutionHead != nullptr) {
    facts += Fact("In place of", Link(element.substitutionHead, element.substitutionHead->name));
  }
  facts +=
      Fact("Substituted by", substitutes) + Fact("Default", element.defaultValue) + Fact("Fixed", element.fixedValue);
  if (element.abstract) facts += Fact("Abstract", std::string("documents have another element in its place"));
  if (element.nillable) facts += Fact("Nillable", std::string("it may be nil"));
  facts += ConstraintsOf(element);
  if (isAnonymous) facts += FactsOf(*type);
  if (isAnonymous) AddContent(*type, 0);
  return ListOf(facts) + (isAnonymous ? Paragraphs(type->documentation) : "") + TakeTable();
}

Entries::Facts Entries::ConstraintsOf(ElementDeclaration const& element) {
  Facts facts;
  for (Schema::IdentityConstraint const* each : element.identityConstraints) {
    std::string text = CodeText(each->name.local) + ": for each " + CodeText(each->selector) + " the value of";
    for (std::string const& field : each->fields) text += " " + CodeText(field);
    if (each->refer != nullptr) text += " refers to " + CodeText(each->refer->name.local);
    switch (each->kind) {
      case Schema::IdentityConstraint::Kind::Unique: facts += Fact("Unique", text); break;
      case Schema::IdentityConstraint::Kind::Key: facts += Fact("Key", text); break;
      case Schema::IdentityConstraint::Kind::Keyref: facts += Fact("Reference", text); break;
    }
  }
  return facts;
}

std::string Entries::AttributeBody(Schema::AttributeDeclaration const& attribute) {
  return ListOf(Fact("Type", TypeText(*attribute.type)) + Fact("Default", attribute.defaultValue) +
                Fact("Fixed", attribute.fixedValue));
}

std::string Entries::ComplexTypeBody(ComplexType const& type) {
  AddContent(type, 0);
  return ListOf(Fact("Derivation", Derivation(type)) + FactsOf(type)) + TakeTable();
}

Entries::Facts Entries::FactsOf(ComplexType const& type) {
  Facts facts;
  std::string derived;
  for (ComplexType const* each : type.derived) {
    bool const isNamed = !each->IsAnonymous();
    if (!isNamed && each->owner == nullptr) continue;
    derived += (derived.empty() ? "" : ", ") +
               (isNamed ? Mention(each, each->name) : "the type of " + Mention(each->owner, each->owner->name));
  }
  facts += Fact("Derived types", derived);
  if (type.abstract) facts += Fact("Abstract", std::string("documents name a derived type by <code>xsi:type</code>"));
  if (type.content == ComplexType::Content::Mixed) {
    facts += Fact("Mixed", std::string("text may stand between the elements"));
  }
  return facts;
}

std::string Entries::SimpleTypeBody(SimpleType const& type) { return ListOf(Fact("Values", Definition(type))); }

std::string Entries::GroupBody(Schema::GroupDefinition const& group) {
  AddGroup(*group.group, Particle(), 0);
  return TakeTable();
}

// ---- Types

std::string Entries::Mention(Schema::Component const* component, Schema::QualifiedName const& name) const {
  Entry const* const entry = m_contents.Find(component);
  return entry != nullptr ? LinkTo(*entry) : Escaped(name.local);
}

std::string Entries::Link(Schema::Component const* component, Schema::QualifiedName const& name) {
  Entry const* const entry = m_contents.Find(component);
  if (entry != nullptr && entry != m_current) {
    std::vector<Entry const*>& users = m_users[entry];
    if (users.empty() || users.back() != m_current) users.push_back(m_current);
  }
  return Mention(component, name);
}

std::string Entries::Link(SimpleType const& type) {
  if (type.builtIn == Schema::BuiltIn::None) return Link(&type, type.name);
  std::string const name = Schema::NameOf(type.builtIn);
  if (type.builtIn == Schema::BuiltIn::AnySimpleType) return "xs:" + name;
  return "<a href=\"https://www.w3.org/TR/xmlschema-2/#" + name + "\">xs:" + name + "</a>";
}

std::string Entries::TypeText(SimpleType const& type) {
  bool const isKnown = type.builtIn != Schema::BuiltIn::None || m_contents.Find(&type) != nullptr;
  return isKnown ? Link(type) : Definition(type);
}

std::string Entries::TypeText(ElementDeclaration const& element) {
  if (element.complexType == nullptr) return TypeText(*element.simpleType);
  ComplexType const& type = *element.complexType;
  if (type.anyType) return "xs:anyType";
  return type.IsAnonymous() ? Derivation(type) : Link(&type, type.name);
}

std::string Entries::Derivation(ComplexType const& type) {
  if (type.derivation == ComplexType::Derivation::None) return {};
  std::string const base = type.base != nullptr         ? Link(type.base, type.base->name)
                           : type.simpleBase != nullptr ? TypeText(*type.simpleBase)
                                                        : "xs:anyType";
  return (type.derivation == ComplexType::Derivation::Extension ? "extension of " : "restriction of ") + base;
}

SimpleType const& Entries::KnownBase(SimpleType const& type) const {
  SimpleType const* base = type.base;
  while (base->builtIn == Schema::BuiltIn::None && m_contents.Find(base) == nullptr) base = base->base;
  return *base;
}

std::string Entries::Definition(SimpleType const& type) {
  SimpleType const& base = KnownBase(type);
  std::string const facets = FacetList(type, base);
  bool const isBuilt = base.builtIn == Schema::BuiltIn::AnySimpleType;
  if (isBuilt && type.itemType != nullptr) return "list of " + TypeText(*type.itemType) + facets;
  if (!isBuilt || type.memberTypes.empty()) return Link(base) + facets;
  std::string members;
  for (SimpleType const* member : type.memberTypes) members += "<li>" + TypeText(*member) + "</li>\n";
  return "one of\n<ul>\n" + members + "</ul>\n" + facets;
}

std::string Entries::FacetList(SimpleType const& type, SimpleType const& base) {
  Schema::Facets const& own = type.facets;
  Schema::Facets const& inherited = base.facets;
  std::string list;
  AddFacet(list, "length", own.length, inherited.length);
  AddFacet(list, "minLength", own.minLength, inherited.minLength);
  AddFacet(list, "maxLength", own.maxLength, inherited.maxLength);
  AddFacet(list, "minInclusive", own.minInclusive, inherited.minInclusive);
  AddFacet(list, "minExclusive", own.minExclusive, inherited.minExclusive);
  AddFacet(list, "maxInclusive", own.maxInclusive, inherited.maxInclusive);
  AddFacet(list, "maxExclusive", own.maxExclusive, inherited.maxExclusive);
  AddFacet(list, "totalDigits", own.totalDigits, inherited.totalDigits);
  AddFacet(list, "fractionDigits", own.fractionDigits, inherited.fractionDigits);
  for (std::size_t step = inherited.patterns.size(); step < own.patterns.size(); ++step) {
    std::string alternatives;
    for (std::string const& each : own.patterns[step])
      alternatives += (alternatives.empty() ? "" : " or ") + CodeText(each);
    list += "<li>pattern " + alternatives + "</li>\n";
  }
  if (!InheritsValues(own, inherited)) list += Values(type);
  return list.empty() ? list : "\n<ul>\n" + list + "</ul>\n";
}

std::string Entries::Values(SimpleType const& type) {
  std::string list;
  for (Schema::EnumerationValue const& value : type.facets.enumeration) {
    list += "<li>" + CodeText(value.text) + Paragraphs(value.documentation) + "</li>\n";
  }
  return list;
}

// ---- Content

void Entries::AddContent(ComplexType const& type, int depth) {
  bool const isExtension =
      type.derivation == ComplexType::Derivation::Extension && m_contents.Find(type.base) != nullptr;
  if (isExtension) AddRow(depth, "the content of " + Link(type.base, type.base->name), "", "", "");
  if (!isExtension) AddText(type, depth);
  std::optional<Particle> const& content = isExtension ? type.ownParticle : type.particle;
  if (content) AddParticle(*content, depth);
  AddAttributes(type, isExtension, depth);
}

void Entries::AddText(ComplexType const& type, int depth) {
  if (type.simpleContent != nullptr) AddRow(depth, "text", "", TypeText(*type.simpleContent), "");
}

void Entries::AddParticle(Particle const& particle, int depth) {
  if (auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term)) {
    return AddElement(**element, particle, depth);
  }
  if (auto const* const wildcard = std::get_if<Schema::Wildcard const*>(&particle.term)) {
    return AddRow(depth, "any element", Occurs(particle), WildcardText(**wildcard),
                  Paragraphs((*wildcard)->documentation));
  }
  if (particle.group != nullptr && m_contents.Find(particle.group) != nullptr) {
    return AddRow(depth, "group " + Link(particle.group, particle.group->name), Occurs(particle), "",
                  Summary(particle.group->documentation));
  }
  AddGroup(*std::get<Schema::ModelGroup const*>(particle.term), particle, depth);
}

void Entries::AddElement(ElementDeclaration const& element, Particle const& particle, int depth) {
  if (element.global) {
    bool const isNamed = element.complexType == nullptr || !element.complexType->IsAnonymous();
    bool const isShort = isNamed && (element.simpleType == nullptr || !element.simpleType->IsAnonymous());
    return AddRow(depth, Link(&element, element.name), Occurs(particle), isShort ? TypeText(element) : "",
                  Summary(element.documentation));
  }
  bool const isAnonymous = element.complexType != nullptr && element.complexType->IsAnonymous();
  std::string description = Paragraphs(element.documentation);
  if (isAnonymous) description += Paragraphs(element.complexType->documentation);
  description += Implied(element.defaultValue, element.fixedValue);
  if (element.nillable) description += "<p>It may be nil.</p>\n";
  description += ListOf(ConstraintsOf(element));
  AddRow(depth, CodeText(element.name.local), Occurs(particle), TypeText(element), description);
  if (isAnonymous) AddContent(*element.complexType, depth + 1);
}

void Entries::AddGroup(Schema::ModelGroup const& group, Particle const& particle, int depth) {
  AddRow(depth, CompositorText(group.compositor), Occurs(particle), "", Paragraphs(group.documentation));
  for (Particle const& each : group.particles) AddParticle(each, depth + 1);
}

void Entries::AddAttributes(ComplexType const& type, bool isExtension, int depth) {
  bool const isRestriction =
      type.derivation == ComplexType::Derivation::Restriction && m_contents.Find(type.base) != nullptr;
  std::map<Schema::QualifiedName, AttributeUse const*> inherited;
  if (isRestriction) {
    for (AttributeUse const& use : type.base->attributes) inherited[use.declaration->name] = &use;
  }
  bool keepsSome = false;
  for (AttributeUse const& use : isExtension ? type.ownAttributes : type.attributes) {
    auto const found = inherited.find(use.declaration->name);
    bool const isKept = found != inherited.end() && IsSame(*found->second, use);
    if (!isKept) AddAttribute(use, depth);
    if (found != inherited.end()) inherited.erase(found);
    keepsSome = keepsSome || isKept;
  }
  for (auto const& [name, use] : inherited) AddRow(depth, CodeText("@" + name.local), "prohibited", "", "");
  if (keepsSome) AddRow(depth, "other attributes of " + Link(type.base, type.base->name), "", "", "");
  if (type.attributeWildcard) {
    AddRow(depth, "any attribute", "", WildcardText(*type.attributeWildcard),
           Paragraphs(type.attributeWildcard->documentation));
  }
}

void Entries::AddAttribute(AttributeUse const& use, int depth) {
  Schema::AttributeDeclaration const& declaration = *use.declaration;
  std::string const occurs = use.required ? "required" : "optional";
  if (declaration.global) {
    bool const isOwn = use.defaultValue != declaration.defaultValue || use.fixedValue != declaration.fixedValue;
    return AddRow(
        depth, "@" + Link(&declaration, declaration.name), occurs, "",
        Summary(declaration.documentation) + (isOwn ? Implied(use.defaultValue, use.fixedValue) : std::string()));
  }
  auto const [first, isNew] = m_printed.emplace(&declaration, m_current);
  bool isShown = isNew || declaration.documentation.size() <= kLongestRepetition;
  std::string const type = isShown ? TypeText(*declaration.type) : "";
  isShown = isShown && (isNew || type.size() <= kLongestRepetition);
  AddRow(depth, CodeText("@" + declaration.name.local), occurs, isShown ? type : "",
         isShown ? Paragraphs(declaration.documentation) + Implied(use.defaultValue, use.fixedValue)
                 : "as in " + LinkTo(*first->second));
}

void Entries::AddRow(int depth, std::string const& name, std::string const& occurs, std::string const& type,
                     std::string const& description) {
  constexpr int kDeepest = 20;  // more would leave no room for the text
  m_rows += "<tr><td style=\"padding-left: " + std::to_string(1 + std::min(depth, kDeepest)) + "em\">" + name +
            "</td><td>" + occurs + "</td><td>" + type + "</td><td>" + description + "</td></tr>\n";
}

std::string Entries::TakeTable() {
  if (m_rows.empty()) return {};
  std::string table =
      "<table>\n<tr><th>Content</th><th>Occurs</th><th>Type</th><th>Description</th></tr>\n" + m_rows + "</table>\n";
  m_rows.clear();
  return table;
}

}  // namespace Quillon9Generator::Pages
