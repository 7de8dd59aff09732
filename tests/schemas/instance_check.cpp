#include "schemas/instance_check.h"

#include <algorithm>
#include <string_view>

#include "generated/qualified_name_text.h"
#include "quillon9/text/whitespace.h"

namespace SchemaTests {

using namespace Schema;
using Quillon9::CXmlAttribute;

namespace {

constexpr char const* kSchemaNamespace = "http://www.w3.org/2001/XMLSchema";
constexpr char const* kInstanceNamespace = "http://www.w3.org/2001/XMLSchema-instance";

template <class Named>
Named const* Find(std::vector<Named const*> const& all, QualifiedName const& name) {
  auto const found = std::find_if(all.begin(), all.end(), [&name](Named const* each) { return each->name == name; });
  return found != all.end() ? *found : nullptr;
}

char const* TextOrNull(std::optional<std::string> const& text) { return text ? text->c_str() : nullptr; }

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

bool IsForSchema(CXmlAttribute const& attribute) {
  return attribute.IsNamespaceAttribute() || attribute.GetNamespaceURI() == kInstanceNamespace;
}

QualifiedName NameOf(CXmlAttribute const& attribute) { return {attribute.GetNamespaceURI(), attribute.GetLocalName()}; }

bool IsNil(Quillon9::CXmlElement const& element) {
  CXmlAttribute const* const nil = element.FindAttribute("nil", kInstanceNamespace);
  if (nil == nullptr) return false;
  std::string const text = Quillon9::CWhitespaceUtils::Collapse(nil->GetValue());
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  throw Invalid("xsi:nil is [" + text + "]");
}

}  // namespace

InstanceCheck::InstanceCheck(SchemaSet const& set, Quillon9::CXmlSerializationContext const& context)
    : m_set(set), m_context(context), m_builtIns(AddBuiltInTypes(m_storage)) {}

void InstanceCheck::Check(Element const& root) {
  ElementDeclaration const* const declaration = Find(m_set.elements, SchemaTests::NameOf(root));
  if (declaration != nullptr) return CheckElement(root, *declaration);
  CXmlAttribute const* const typeName = root.FindAttribute("type", kInstanceNamespace);
  if (typeName == nullptr) throw Invalid("the element [" + root.GetLocalName() + "] is not declared");
  CheckUndeclared(root, *typeName);
}

void InstanceCheck::CheckUndeclared(Element const& element, CXmlAttribute const& typeName) {
  ElementDeclaration declaration;
  declaration.name = SchemaTests::NameOf(element);
  CheckTyped(element, declaration, TypeNamed(element, typeName.GetValue()));
}

bool InstanceCheck::IsDerived(Type const& type, Type const& from) {
  bool const fromAny = from.complex != nullptr && from.complex->anyType;
  if (fromAny) return true;
  SimpleType const* simple = type.simple;
  for (ComplexType const* each = type.complex; each != nullptr; each = each->base) {
    if (each == from.complex) return true;
    simple = each->simpleBase;
  }
  if (from.complex != nullptr) return false;
  if (from.simple == nullptr) return simple != nullptr;  // xs:anySimpleType
  if (simple == nullptr) return false;
  bool const isOfUnion =
      std::any_of(from.simple->memberTypes.begin(), from.simple->memberTypes.end(), [&](SimpleType const* member) {
        return IsDerived(type, {member, nullptr});
      });
  if (isOfUnion) return true;
  for (; simple != nullptr; simple = simple->base) {
    if (simple == from.simple || (simple->builtIn != BuiltIn::None && simple->builtIn == from.simple->builtIn)) {
      return true;
    }
  }
  return false;
}

InstanceCheck::Type InstanceCheck::TypeNamed(Element const& element, std::string const& name) const {
  Quillon9::CQName const resolved = Quillon9::QualifiedNameText::Parse(
      Quillon9::QualifiedNameText::Resolved(Quillon9::CWhitespaceUtils::Collapse(name), element));
  QualifiedName const key{resolved.GetNamespace(), resolved.GetLocalName()};
  if (key.ns == kSchemaNamespace) {
    if (key.local == "anyType") return {nullptr, m_builtIns.anyType};
    if (SimpleType const* const type = Find(m_builtIns.simpleTypes, key)) return {type, nullptr};
  }
  if (SimpleType const* const type = Find(m_set.simpleTypes, key)) return {type, nullptr};
  if (ComplexType const* const type = Find(m_set.complexTypes, key)) return {nullptr, type};
  throw Invalid("there is no type [" + name + "]");
}

void InstanceCheck::CheckElement(Element const& element, ElementDeclaration const& declaration) {
  if (declaration.abstract) throw Invalid("the element [" + declaration.name.local + "] is abstract");
  Type type{declaration.simpleType, declaration.complexType};
  if (CXmlAttribute const* const named = element.FindAttribute("type", kInstanceNamespace)) {
    Type const actual = TypeNamed(element, named->GetValue());
    if (!IsDerived(actual, type))
      throw Invalid("the type [" + named->GetValue() + "] is not derived from the declared");
    type = actual;
  }
  CheckTyped(element, declaration, type);
}

void InstanceCheck::CheckTyped(Element const& element, ElementDeclaration const& declaration, Type const& type) {
  if (type.complex != nullptr) {
    if (type.complex->abstract) throw Invalid("the type of [" + declaration.name.local + "] is abstract");
    CheckAttributes(element, *type.complex);
  } else if (!std::all_of(element.Attributes().begin(), element.Attributes().end(), IsForSchema)) {
    throw Invalid("the element [" + declaration.name.local + "] has attributes");
  }
  bool const isNil = IsNil(element);
  if (element.FindAttribute("nil", kInstanceNamespace) != nullptr && !declaration.nillable) {
    throw Invalid("the element [" + declaration.name.local + "] is not nillable");
  }
  if (!isNil) return CheckContent(element, declaration, type);
  if (element.GetFirstElement() != nullptr || !element.GetTextView().empty()) {
    throw Invalid("the element [" + declaration.name.local + "] is nil, but not empty");
  }
}

// What a wildcard with lax processing takes, and the content of xs:anyType.
void InstanceCheck::CheckLaxly(Element const& element) {
  if (ElementDeclaration const* const declaration = Find(m_set.elements, SchemaTests::NameOf(element))) {
    return CheckElement(element, *declaration);
  }
  for (Element const& child : element.Children()) CheckLaxly(child);
}

void InstanceCheck::CheckContent(Element const& element, ElementDeclaration const& declaration, Type const& type) {
  ComplexType::Content const content = type.complex != nullptr ? type.complex->content : ComplexType::Content::Simple;
  bool const hasElements = element.GetFirstElement() != nullptr;
  std::string_view const text = element.GetTextView();
  switch (content) {
    case ComplexType::Content::Simple:
      if (hasElements) throw Invalid("the element [" + declaration.name.local + "] has child elements");
      return CheckValue(element, text, true, type.complex != nullptr ? type.complex->simpleContent : type.simple,
                        {declaration.defaultValue, declaration.fixedValue});
    case ComplexType::Content::Empty:
      if (hasElements || !text.empty()) throw Invalid("the element [" + declaration.name.local + "] is not empty");
      return;
    case ComplexType::Content::ElementOnly:
      if (!IsBlank(text)) throw Invalid("the element [" + declaration.name.local + "] has text");
      return CheckChildren(element, *type.complex);
    case ComplexType::Content::Mixed: break;
  }
  if (!type.complex->anyType) return CheckChildren(element, *type.complex);
  for (Element const& child : element.Children()) CheckLaxly(child);
}

void InstanceCheck::CheckChildren(Element const& element, ComplexType const& type) {
  if (!type.particle) {
    if (element.GetFirstElement() == nullptr) return;
    throw Invalid("the element [" + element.GetLocalName() + "] has child elements");
  }
  for (Element const& child : element.Children()) {
    Taker const taker = TakerOf(*type.particle, SchemaTests::NameOf(child));
    if (taker.element != nullptr) {
      CheckElement(child, *taker.element);
    } else if (taker.wildcard == nullptr) {
      throw Invalid("the element [" + child.GetLocalName() + "] is not expected");
    } else if (taker.wildcard->processing == Wildcard::Processing::Strict) {
      Check(child);
    } else if (taker.wildcard->processing == Wildcard::Processing::Lax) {
      CheckLaxly(child);
    }
  }
  if (!ContentMatch(element).Fits(*type.particle)) {
    throw Invalid("the content of [" + element.GetLocalName() + "] is not in order or not complete");
  }
}

void InstanceCheck::CheckAttributes(Element const& element, ComplexType const& type) {
  if (type.anyType) return;
  for (CXmlAttribute const& attribute : element.Attributes()) {
    if (IsForSchema(attribute)) continue;
    auto const use =
        std::find_if(type.attributes.begin(), type.attributes.end(),
                     [&attribute](AttributeUse const& each) { return each.declaration->name == NameOf(attribute); });
    if (use == type.attributes.end()) {
      CheckOtherAttribute(element, attribute, type);
    } else {
      CheckValue(element, attribute.GetValueView(), false, use->declaration->type,
                 {use->defaultValue, use->fixedValue});
    }
  }
  for (AttributeUse const& use : type.attributes) {
    QualifiedName const& name = use.declaration->name;
    if (use.required && element.FindAttribute(name.local, name.ns) == nullptr) {
      throw Invalid("the attribute [" + name.local + "] is missing");
    }
  }
}

void InstanceCheck::CheckOtherAttribute(Element const& element, CXmlAttribute const& attribute,
                                        ComplexType const& type) {
  if (!type.attributeWildcard || !Allows(*type.attributeWildcard, attribute.GetNamespaceURI())) {
    throw Invalid("the attribute [" + attribute.GetLocalName() + "] is not expected");
  }
  Wildcard::Processing const processing = type.attributeWildcard->processing;
  if (processing == Wildcard::Processing::Skip) return;
  if (AttributeDeclaration const* const declaration = Find(m_set.attributes, NameOf(attribute))) {
    CheckValue(element, attribute.GetValueView(), false, declaration->type,
               {declaration->defaultValue, declaration->fixedValue});
  } else if (processing == Wildcard::Processing::Strict) {
    throw Invalid("the attribute [" + attribute.GetLocalName() + "] is not declared");
  }
}

void InstanceCheck::CheckValue(Element const& element, std::string_view text, bool isElement, SimpleType const* type,
                               Texts const& texts) {
  auto const read = [&](Quillon9::ValueRule const& rule) {
    Quillon9::QnVariant const value = rule.Read(text, isElement, &m_context);
    if (Quillon9::ValueRule::HasNames(rule.GetType())) rule.CheckResolved(rule.Resolve(value, element));
  };
  if (!texts.defaultValue && !texts.fixedValue) return read(m_rows.RuleOf(type));
  read(m_rows.RuleOf(type, TextOrNull(texts.defaultValue), TextOrNull(texts.fixedValue)));
}

}  // namespace SchemaTests
