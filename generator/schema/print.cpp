#include <string>
#include <string_view>

#include "schema/built_ins.h"
#include "schema/load.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

namespace {

std::string Text(QualifiedName const& name) {
  if (name.ns == kSchemaNamespace) return "xs:" + name.local;
  return name.ns.empty() ? name.local : "{" + name.ns + "}" + name.local;
}

/// Return the name of a type after a blank; nothing for an anonymous one.
std::string Name(QualifiedName const& name) { return name.local.empty() ? std::string() : " " + Text(name); }

std::string Quoted(std::string const& text) { return "\"" + text + "\""; }

std::string Occurrence(Particle const& particle) {
  if (particle.minOccurs == 1 && particle.maxOccurs == 1) return {};
  bool const isUnbounded = particle.maxOccurs == Particle::kUnbounded;
  return " " + std::to_string(particle.minOccurs) + ".." + (isUnbounded ? "*" : std::to_string(particle.maxOccurs));
}

std::string Text(Wildcard const& wildcard) {
  std::string text = wildcard.constraint == Wildcard::Constraint::Any ? " ##any" : "";
  if (wildcard.constraint == Wildcard::Constraint::Other) text = " not " + Quoted(wildcard.notNamespace);
  for (std::string const& ns : wildcard.namespaces) text += " " + Quoted(ns);
  if (wildcard.processing == Wildcard::Processing::Lax) text += " lax";
  if (wildcard.processing == Wildcard::Processing::Skip) text += " skip";
  return text;
}

char const* Text(ModelGroup::Compositor compositor) {
  switch (compositor) {
    case ModelGroup::Compositor::All: return "all";
    case ModelGroup::Compositor::Choice: return "choice";
    case ModelGroup::Compositor::Sequence: break;
  }
  return "sequence";
}

template <class Value>
std::string Fact(char const* name, std::optional<Value> const& value) {
  if (!value) return {};
  if constexpr (std::is_same_v<Value, long>) {
    return std::string(" ") + name + "=" + std::to_string(*value);
  } else {
    return std::string(" ") + name + "=" + Quoted(*value);
  }
}

/// Prints one set. Groups and named types are printed where they are defined, so that the text stays small.
class Printer {
 public:
  std::string Print(SchemaSet const& set) {
    for (ElementDeclaration const* element : set.elements) PrintElement(*element, "");
    for (AttributeDeclaration const* attribute : set.attributes) {
      PrintAttribute(*attribute, "", attribute->defaultValue, attribute->fixedValue);
    }
    for (SimpleType const* type : set.simpleTypes) PrintSimpleType(*type);
    for (ComplexType const* type : set.complexTypes) PrintComplexType(*type);
    for (GroupDefinition const* group : set.groups) PrintGroup(*group);
    return std::move(m_text);
  }

 private:
  /// Add one line, after which Inner() adds lines that belong to it.
  void Line(std::string const& text) { m_text.append(m_indent, ' ').append(text) += '\n'; }
  template <class Action>
  void Inner(Action action) {
    m_indent += 2;
    action();
    m_indent -= 2;
  }

  void PrintDocumentation(Component const& component) {
    std::string_view rest = component.documentation;
    while (!rest.empty()) {
      std::size_t const end = std::min(rest.find('\n'), rest.size());
      Line("/// " + std::string(rest.substr(0, end)));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

  static std::string Reference(SimpleType const& type) { return type.IsAnonymous() ? "(simple)" : Text(type.name); }

  void PrintElement(ElementDeclaration const& element, std::string const& occurrence) {
    PrintDocumentation(element);
    bool const isComplex = element.complexType != nullptr;
    std::string const type = isComplex
                                 ? element.complexType->IsAnonymous() ? "(complex)" : Text(element.complexType->name)
                                 : Reference(*element.simpleType);
    std::string text = "element " + Text(element.name) + ": " + type + occurrence;
    if (element.nillable) text += " nillable";
    if (element.abstract) text += " abstract";
    text += Fact("default", element.defaultValue) + Fact("fixed", element.fixedValue);
    if (element.substitutionHead != nullptr) text += " substitutes " + Text(element.substitutionHead->name);
    if (!element.substitutes.empty()) text += " substituted by";
    for (ElementDeclaration const* substitute : element.substitutes) text += " " + Text(substitute->name);
    Line(text);
    Inner([&] {
      if (isComplex && element.complexType->IsAnonymous()) PrintComplexType(*element.complexType);
      if (!isComplex && element.simpleType->IsAnonymous()) PrintSimpleType(*element.simpleType);
    });
  }

  void PrintAttribute(AttributeDeclaration const& attribute, std::string const& use,
                      std::optional<std::string> const& defaultValue, std::optional<std::string> const& fixedValue) {
    PrintDocumentation(attribute);
    Line("attribute " + Text(attribute.name) + ": " + Reference(*attribute.type) + use + Fact("default", defaultValue) +
         Fact("fixed", fixedValue));
    Inner([&] {
      if (attribute.type->IsAnonymous()) PrintSimpleType(*attribute.type);
    });
  }

  void PrintSimpleType(SimpleType const& type) {
    PrintDocumentation(type);
    std::string text = "simpleType" + Name(type.name);
    if (type.variety == Variety::Atomic || type.base->builtIn != BuiltIn::AnySimpleType) {
      text += ": " + Reference(*type.base);
      if (type.base->builtIn == BuiltIn::None) text += std::string(" (xs:") + NameOf(type.ancestor) + ")";
    } else {
      text += type.variety == Variety::List ? " list of " + Reference(*type.itemType) : " union of";
      for (SimpleType const* member : type.memberTypes) text += " " + Reference(*member);
    }
    Line(text + Scalars(type.facets));
    Inner([&] { PrintParts(type); });
  }

  void PrintParts(SimpleType const& type) {
    for (auto const& step : type.facets.patterns) {
      std::string text = "pattern";
      for (std::string const& pattern : step) text += " " + pattern;
      Line(text);
    }
    for (EnumerationValue const& value : type.facets.enumeration) {
      PrintDocumentation(value);
      Line("value " + Quoted(value.text));
    }
    if (type.base->IsAnonymous()) return PrintSimpleType(*type.base);
    if (type.base->builtIn != BuiltIn::AnySimpleType) return;
    if (type.itemType != nullptr && type.itemType->IsAnonymous()) PrintSimpleType(*type.itemType);
    for (SimpleType const* member : type.memberTypes) {
      if (member->IsAnonymous()) PrintSimpleType(*member);
    }
  }

  static std::string Scalars(Facets const& facets) {
    std::string const text = Fact("length", facets.length) + Fact("minLength", facets.minLength) +
                             Fact("maxLength", facets.maxLength) + Fact("totalDigits", facets.totalDigits) +
                             Fact("fractionDigits", facets.fractionDigits) + Fact("minInclusive", facets.minInclusive) +
                             Fact("minExclusive", facets.minExclusive) + Fact("maxInclusive", facets.maxInclusive) +
                             Fact("maxExclusive", facets.maxExclusive);
    if (facets.whiteSpace == WhiteSpace::Collapse) return text;
    return text + (facets.whiteSpace == WhiteSpace::Replace ? " replace" : " preserve");
  }

  void PrintComplexType(ComplexType const& type) {
    PrintDocumentation(type);
    std::string text = "complexType" + Name(type.name);
    if (type.derivation != ComplexType::Derivation::None) {
      text += type.derivation == ComplexType::Derivation::Extension ? " extends " : " restricts ";
      text += type.base != nullptr         ? Text(type.base->name)
              : type.simpleBase != nullptr ? Reference(*type.simpleBase)
                                           : "xs:anyType";
    }
    if (type.content == ComplexType::Content::Empty) text += " empty";
    if (type.content == ComplexType::Content::Mixed) text += " mixed";
    if (type.abstract) text += " abstract";
    if (!type.derived.empty()) text += " derived:";
    for (ComplexType const* derived : type.derived) {
      text += " " + (derived->IsAnonymous() ? "(" + derived->owner->name.local + ")" : Text(derived->name));
    }
    Line(text);
    Inner([&] { PrintContent(type); });
  }

  void PrintContent(ComplexType const& type) {
    if (type.simpleContent != nullptr) {
      Line("text: " + Reference(*type.simpleContent));
      Inner([&] {
        if (type.simpleContent->IsAnonymous()) PrintSimpleType(*type.simpleContent);
      });
    }
    if (type.particle) PrintParticle(*type.particle, type.base);
    for (AttributeUse const& use : type.attributes) {
      PrintAttribute(*use.declaration, use.required ? " required" : "", use.defaultValue, use.fixedValue);
    }
    if (type.attributeWildcard) Line("anyAttribute" + Text(*type.attributeWildcard));
    if (type.derivation != ComplexType::Derivation::Extension) return;
    std::string own = "own:";
    if (type.ownParticle) own += " content";
    for (AttributeUse const& use : type.ownAttributes) own += " " + Text(use.declaration->name);
    Line(own);
  }

  /// \p base is the type whose content stands in place of itself, or null.
  void PrintParticle(Particle const& particle, ComplexType const* base) {
    if (auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term)) {
      if (!(*element)->global) return PrintElement(**element, Occurrence(particle));
      return Line("element ref " + Text((*element)->name) + Occurrence(particle));
    }
    if (auto const* const wildcard = std::get_if<Wildcard const*>(&particle.term)) {
      return Line("any" + Text(**wildcard) + Occurrence(particle));
    }
    ModelGroup const* const group = *std::get_if<ModelGroup const*>(&particle.term);
    if (base != nullptr && base->particle && base->particle->term == particle.term) {
      return Line("content of " + Text(base->name));
    }
    if (particle.group != nullptr) return Line("group ref " + Text(particle.group->name) + Occurrence(particle));
    Line(Text(group->compositor) + Occurrence(particle));
    PrintParticles(*group, base);
  }

  void PrintParticles(ModelGroup const& group, ComplexType const* base) {
    Inner([&] {
      for (Particle const& particle : group.particles) PrintParticle(particle, base);
    });
  }

  void PrintGroup(GroupDefinition const& group) {
    PrintDocumentation(group);
    Line("group " + Text(group.name));
    Inner([&] {
      Line(Text(group.group->compositor));
      PrintParticles(*group.group, nullptr);
    });
  }

  std::string m_text;
  std::size_t m_indent = 0;
};

}  // namespace

std::string Print(SchemaSet const& set) { return Printer().Print(set); }

}  // namespace Quillon9Generator::Schema
