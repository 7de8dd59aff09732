#include "quillon9/generated/bound_object.h"

#include <algorithm>
#include <utility>

#include "base/failure_detail.h"
#include "binding/failure_report.h"
#include "descriptors/generic_reading.h"
#include "descriptors/root_prologue.h"
#include "generated/bound_access.h"
#include "generated/built_class.h"
#include "generated/content_reader.h"
#include "generated/element_group.h"
#include "generated/mixed_content.h"
#include "generated/namespace_rule.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/fastinfoset/writer.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"
#include "xmlio/checking_writer.h"
#include "xmlio/node_access.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

using namespace Quillon9Data;

CXmlObjectBase const& detail::KeepForever(CSmartPtr<CXmlObjectBase> const& object) {
  object->AddRef();
  return *object;
}

namespace {

constexpr CClassRow kAnyObject;

}  // namespace

CClassTables CBoundObject::s_class{kAnyObject};

CBoundObject::CBoundObject(CClassTables const& tables, char const* elementName) : m_tables(&tables) {
  SetElementName(elementName);
}

CBoundObject::~CBoundObject() = default;

std::string CBoundObject::GetTargetNamespace() const {
  return m_elementNamespace != nullptr ? m_elementNamespace : m_tables->GetRow().targetNamespace;
}

std::string CBoundObject::GetNamespace() const { return m_tables->GetRow().targetNamespace; }

CParentElementInfo* CBoundObject::GetClassInfo() const { return m_tables->Built().Info(); }
CElementInfo** CBoundObject::GetClassElementInfo() const { return m_tables->Built().Elements(); }
CAttributeInfo** CBoundObject::GetClassAttributeInfo() const { return m_tables->Built().Attributes(); }

namespace {

/// What a reader refuses: a text that is not set is written as none.
void CheckEmptyText(ValueRule const& rule) {
  CheckingWriter* const check = CheckingWriter::Current();
  if (check == nullptr || !check->JudgesReading()) return;
  try {
    rule.Check(rule.Read("", true));
  } catch (CQnException& failure) {
    if (!check->GoesOn(failure)) throw;
  }
}

/// The object that is being written whose text has prefixes, and its writer.
struct NamesInText {
  CBoundObject const* holder = nullptr;
  CXmlWriter* writer = nullptr;
};
thread_local NamesInText t_namesInText;

// Kept apart, so that access to other properties needs no room for this one.
[[gnu::noinline]] void AccessText(CBoundObject const& holder, ValueRule const& rule, CPropertyRef property, bool read,
                                  QnVariant& value) {
  if (!read) return property.Store(rule.ValueOf(value.GetString(), true));
  QnVariant held;
  property.Read(held);
  if (held.IsValid()) rule.Check(held);
  if (!held.IsValid()) CheckEmptyText(rule);
  if (t_namesInText.holder == &holder && ValueRule::HasNames(rule.GetType())) {
    CXmlWriter& writer = *std::exchange(t_namesInText, {}).writer;
    return value.SetString(held.IsValid() ? rule.NamesText(held, writer) : std::string());
  }
  value.SetString(held.IsValid() ? rule.Print(held) : std::string());
}

}  // namespace

void CBoundObject::AccessProperty(int index, bool read, QnVariant& value) {
  if (index == kConvertedText) {
    BuiltClass const& built = m_tables->Built();
    return AccessText(*this, *built.TextRule(), Property(built.TextProperty()), read, value);
  }
  CPropertyRef const property = Property(index);
  if (!property) return;
  if (read) {
    property.Read(value);
  } else {
    property.Store(value);
  }
}

void CBoundObject::Init() {
  if (std::exchange(m_isNew, false)) return;
  FormAccess::Drop(*this);
  CClassRow const& row = m_tables->GetRow();
  for (int i = 0; i < row.firstProperty + row.propertyCount; ++i) {
    CPropertyRef const property = Property(i);
    if (property) property.Clear();
  }
}

bool CBoundObject::HoldsUtf8Text() const { return true; }

ValueRules CBoundObject::GetDefaultValueRules() const { return m_tables->GetRow().valueRules; }

CXmlElement* CBoundObject::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                       bool inChoice) {
  m_writesType = parent->GetFirstAttribute() != nullptr && FindTypeAttribute(*parent) != nullptr;
  CXmlElement* const next = CXmlGeneratedClass::FromXml_Int(parent, cursor, ctx, inChoice);
  BuiltClass const& built = m_tables->Built();
  if (ctx.GetKeepPrefixes()) KeepPrefixes(*parent);
  if (built.IsMixed()) MixedContent::AfterRead(*this, *parent, ctx);
  if (!built.PrefixUsers().empty() || built.HasNamesInText()) ResolvePrefixes(*parent, ctx);
  ValueRule const* const rule = built.TextRule();
  if (rule != nullptr && (ValueRule::ChecksFacets(ctx) || rule->HasFixedValue())) CheckText(*parent, ctx);
  return next;
}

void CBoundObject::ReadNilAttribute(CXmlElement const& element, CXmlAttribute const& attribute,
                                    CXmlSerializationContext const& ctx) {
  std::string const text = CWhitespaceUtils::Collapse(attribute.GetValue());
  auto* const nillable = dynamic_cast<INillable*>(this);
  bool const isTrue = text == "true" || text == "1";
  if (nillable == nullptr || (!isTrue && text != "false" && text != "0")) {
    return CXmlGeneratedClass::ReadNilAttribute(element, attribute, ctx);
  }
  bool const hasElement = element.GetFirstElement() != nullptr && !ctx.GetIgnoreUnknownElements();
  if (isTrue && (hasElement || element.GetTextView().find_first_not_of(" \t\r\n") != std::string_view::npos)) {
    throw OfKind(FailureKind_Nil, CQnValidationException(FormatString("The element [%s] is nil, but not empty",
                                                                      element.GetLocalName().c_str())));
  }
  nillable->SetNil(isTrue);
}

void CBoundObject::KeepPrefixes(CXmlElement const& element) {
  CXmlDocument const* const document = element.GetDocument();
  bool const isRoot = document != nullptr && document->GetDocumentElement() == &element && !m_tables->GetRow().round;
  BoundAccess::SetPrefixes(*this, isRoot ? XmlNodeAccess::PrefixesOf(*document) : ObjectForm().prefixes);
}

void CBoundObject::ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                             bool inChoice) const {
  if (isRoot) BindKeptPrefixes(*this, ctx, *writer);
  CXmlGeneratedClass::ToXml_Int(writer, isRoot, ns, ctx, inChoice);
}

// Those who read the values do not know the element where the prefixes are in scope.
void CBoundObject::ResolvePrefixes(CXmlElement const& element, CXmlSerializationContext const& ctx) {
  BuiltClass const& built = m_tables->Built();
  auto const resolve = [&](int number, FailurePoint const& place) {
    CPropertyRef const property = Property(number);
    try {
      QnVariant held;
      property.Read(held);
      if (!held.IsValid()) return;
      ValueRule const& rule = *built.At(number).rule;
      QnVariant const resolved = rule.Resolve(held, element);
      if (place.attribute != nullptr) rule.CheckResolved(resolved);  // a text is checked unless it is nil
      property.Store(resolved);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, place)) throw;
      property.Clear();
    }
  };
  for (BuiltClass::PrefixUser const& user : built.PrefixUsers()) {
    if (user.name == nullptr) {
      auto* const held = static_cast<CAttributeCol*>(Property(user.property).Look());
      if (held != nullptr) NotePrefixes(element, *held);
      continue;
    }
    CXmlAttribute const* const attribute = element.FindAttribute(user.name, user.ns);
    if (attribute != nullptr) resolve(user.property, {&element, attribute});
  }
  if (built.HasNamesInText()) resolve(built.TextProperty(), {&element});
}

// Before the first attribute, since some formats have no place for declarations after it.
void CBoundObject::DeclarePrefixes(CXmlWriter& writer) const {
  BuiltClass const& built = m_tables->Built();
  auto const declare = [&](int number) {
    QnVariant held;
    ConstProperty(number).Read(held);
    if (held.IsValid()) built.At(number).rule->Declare(held, writer);
  };
  for (BuiltClass::PrefixUser const& user : built.PrefixUsers()) {
    if (user.name != nullptr) {
      declare(user.property);
    } else if (auto const* const held = static_cast<CAttributeCol const*>(ConstProperty(user.property).Look())) {
      held->WritePrefixes(writer);
    }
  }
  if (!built.HasNamesInText()) return;
  declare(built.TextProperty());
  t_namesInText = {this, &writer};
}

// AccessProperty() stores the text of a document, but does not know the context.
void CBoundObject::CheckText(CXmlElement const& element, CXmlSerializationContext const& ctx) {
  BuiltClass const& built = m_tables->Built();
  CPropertyRef const property = Property(built.TextProperty());
  auto const* const nillable = dynamic_cast<INillable const*>(this);
  if (nillable != nullptr && nillable->IsNil()) return;
  try {
    QnVariant held;
    property.Read(held);
    ValueRule const& rule = *built.TextRule();
    if (!held.IsValid()) return;
    rule.CheckRead(held, rule.TextOf(element.GetTextView(), true), &ctx);
    if (ValueRule::HasNames(rule.GetType())) rule.CheckResolved(held);
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {&element})) {
      throw CQnValidationException(FormatString("Failed to process the element [%s]", element.GetLocalName().c_str()),
                                   failure);
    }
    property.Clear();
  }
}

CXmlElement* CBoundObject::ReadMembersWithSink(CXmlElement* parent, CXmlElement* cursor,
                                               CXmlSerializationContext const& ctx, bool inChoice) {
  if (ctx.GetIgnoreUnknownElements()) {
    return CXmlGeneratedClass::ReadMembersWithSink(parent, cursor, ctx, inChoice);
  }
  return ReadContent(m_tables->Built().Content(), *this, parent, cursor, ctx);
}

namespace {

[[gnu::noinline]] void WriteTypeAttribute(CXmlWriter& writer, CClassRow const& row,
                                          CXmlSerializationContext const& ctx) {
  if (*row.typeName == '\0' || !ctx.GetWriteTypeAttribute()) return;
  if (*row.typeNamespace != '\0' && dynamic_cast<CFastInfosetWriter*>(&writer) != nullptr) {
    // Without a prefix for the namespace, this writer writes another attribute. A reader needs its declaration.
    bool const isDefault = XmlWriterAccess::StartedElement(writer)->GetDefaultNamespace() == row.typeNamespace;
    if (!isDefault) writer.PrefixForValues(row.typeNamespace, "");
  }
  writer.WriteAttributeType(row.typeNamespace, row.typeName, ItemType_string);
}

}  // namespace

void CBoundObject::AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const {
  BuiltClass const& built = m_tables->Built();
  if (ObjectForm const* const form = FormAccess::Find(*this)) {
    for (auto const& [prefix, uri] : form->prefixes) writer->DeclarePrefix(prefix, uri);
  }
  if (!built.PrefixUsers().empty() || built.HasNamesInText()) DeclarePrefixes(*writer);
  if (m_writesType) WriteTypeAttribute(*writer, m_tables->GetRow(), ctx);
  if (!built.RemovedProperties().empty()) RequireRemovedUnset(*writer);
  CXmlGeneratedClass::AttributesToXml_Int(writer, ctx);
}

void CBoundObject::RequireRemovedUnset(CXmlWriter const& writer) const {
  for (BuiltClass::Removed const& removed : m_tables->Built().RemovedProperties()) {
    try {
      if (!ConstProperty(removed.property).IsSet()) continue;
      throw OfKind(FailureKind_UnexpectedElement,
                   CQnValidationException(FormatString("[%s] is set, but the type [%s] does not allow it", removed.name,
                                                       m_tables->GetRow().typeName)));
    } catch (CQnException& failure) {
      CheckingWriter* const check = XmlWriterAccess::Checking(writer);
      if (check == nullptr || !check->GoesOn(failure)) throw;
    }
  }
}

// ---- What accessors call

void CBoundObject::SetDefaultText() {
  CClassRow const& row = m_tables->GetRow();
  if (row.textDefault == nullptr && row.textFixed == nullptr) return;
  BuiltClass const& built = m_tables->Built();
  Property(built.TextProperty()).Store(built.TextRule()->ValueOf("", true));
}

ItemType CBoundObject::KindOf(int property) const {
  CValueType const* const type = m_tables->Built().At(property).value;
  return type != nullptr ? type->HeldKind() : ItemType_invalid;
}

void CBoundObject::PrepareValue(int property, CPropertyRef const& value) {
  if (!value.IsSet()) return;
  ValueRule const* const rule = m_tables->Built().At(property).rule.get();
  if (rule != nullptr) {
    Utf8Text::Scope const scope(Utf8Text::Use::kCountingCharacters);
    RulesInUse::Scope const rules(GetDefaultValueRules());
    QnVariant held;
    value.Read(held);
    rule->Check(held);
  }
  Select(property);
}

void CBoundObject::PrepareObject(int property, CXmlObjectBase* object) {
  BuiltClass::Member const& member = m_tables->Built().At(property);
  CElementRow const& row = *member.element;
  if (object == nullptr) {
    if (member.isRequired) Throw_IfPropertyIsNull(nullptr, row.name);
    return;
  }
  if (row.group != nullptr) {
    AdoptStandIn(*object, row);
  } else if (row.kind == RowKind::Object) {
    BoundAccess::Adopt(static_cast<CBoundObject&>(*object), row.name, *row.type, row.block);
  } else if (row.kind == RowKind::Any) {
    RequireAllowed(*row.rule, static_cast<CElement const&>(*object).GetNamespace());
  } else {
    static_cast<CElement&>(*object).SetName(row.name);
    static_cast<CElement&>(*object).SetNamespace(row.ns);
  }
  Select(property);
}

void BoundAccess::Adopt(CBoundObject& object, char const* elementName, CClassTables const& declared, unsigned block) {
  if (declared.Blocks(*object.m_tables, block)) {
    throw CQnInvalidParamException(FormatString("An object of the type [%s] cannot be the element [%s]",
                                                object.m_tables->GetRow().typeName, elementName));
  }
  if (!declared.GetRow().round) {
    if (object.GetElementName().empty()) object.SetElementName(elementName);
    object.Throw_IfElementNameDiffers(&object, elementName);
  }
  if (object.m_tables != &declared) object.m_writesType = true;
}

CSmartPtr<CXmlObjectBase> CBoundObject::NewObject(int property) const {
  CElementRow const& row = *m_tables->Built().At(property).element;
  return row.group != nullptr ? NewHead(row) : row.type->CreateObject(row.name);
}

CSmartPtr<CXmlObjectBase> CBoundObject::NewCollection(int property, CPropertyRef const& member) const {
  RulesInUse::Scope const rules(GetDefaultValueRules());
  return member.Make(m_tables->Built().At(property).element);
}

void CBoundObject::ThrowNotSet(int property) const {
  throw CQnInvalidStateException(
      FormatString("The element [%s] is not set", m_tables->Built().At(property).element->name));
}

// Asked of the class that has the choice, since a class that restricts it has rows of its own.
int CBoundObject::Alternative(CClassTables const& tables, int row) const {
  BuiltClass const& built = tables.Built();
  int const choice = built.FindChoice(&tables.GetRow().elements[row]);
  if (choice < 0) return 0;
  auto const& alternatives = built.Alternatives(choice);
  auto const isSet = [&](int property) { return ConstProperty(property).IsSet(); };
  auto const chosen = std::find_if(alternatives.begin(), alternatives.end(), [&](std::vector<int> const& properties) {
    return std::any_of(properties.begin(), properties.end(), isSet);
  });
  return chosen != alternatives.end() ? static_cast<int>(chosen - alternatives.begin()) + 1 : 0;
}

void CBoundObject::Select(int property) {
  BuiltClass const& built = m_tables->Built();
  for (auto const& [choice, chosen] : built.At(property).choices) {
    auto const& alternatives = built.Alternatives(choice);
    for (std::size_t i = 0; i < alternatives.size(); ++i) {
      if (static_cast<int>(i) == chosen) continue;
      for (int const other : alternatives[i]) Property(other).Clear();
    }
  }
}

}  // namespace Quillon9
