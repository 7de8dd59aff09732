#include "generated/members.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "base/failure_detail.h"
#include "binding/object_access.h"
#include "descriptors/generic_reading.h"
#include "descriptors/member_check.h"
#include "descriptors/member_signatures.h"
#include "generated/bound_access.h"
#include "generated/built_class.h"
#include "generated/content.h"
#include "generated/element_group.h"
#include "generated/namespace_rule.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/document.h"
#include "values/rules_in_use.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

using namespace Quillon9Data;

void ThrowElementNotSet(char const* name) { MemberCheck::ThrowNotSet(name); }

namespace {

/// Whether \p cursor is an element of the member with this row and descriptor.
bool IsElementOf(CElementRow const& row, CElementInfo const& info, CXmlSerializationContext const& ctx,
                 CXmlElement const* cursor) {
  if (cursor == nullptr) return false;
  if (row.group != nullptr) return FindStandIn(*row.group, ctx, cursor) != nullptr;
  if (row.kind == RowKind::Rounds) return row.type->Built().Round().Begins(ctx, cursor);
  return row.rule != nullptr ? Allows(*row.rule, cursor->GetNamespaceURI()) : info.IsThisElement(ctx, cursor);
}

[[noreturn]] void ThrowMissingElement(CElementRow const& row) {
  if (row.rule != nullptr) {
    throw OfKind(FailureKind_MissingElement,
                 CQnValidationException(
                     FormatString("Failed to find the required element from namespace [%s]", row.rule->allowed)));
  }
  if (row.kind == RowKind::Rounds) row.type->Built().Round().ThrowMissing();
  throw OfKind(FailureKind_MissingElement,
               CQnValidationException(FormatString("Failed to find a required element [%s]", row.name)));
}

}  // namespace

// ---- The particles of groups

bool MayBeAbsent(CElementRow const& row) {
  switch (row.kind) {
    case RowKind::Values:
    case RowKind::Objects:
    case RowKind::Anys:
    case RowKind::AnyTypes: return row.minOccurs <= 0;
    case RowKind::Rounds: return row.minOccurs <= 0 || MayBeEmpty(row.type->GetRow());
    default: return row.occurs == Occurs::Optional;
  }
}

bool Particle::Begins(CXmlSerializationContext const& ctx, CXmlElement const* cursor) const {
  return group != nullptr ? group->Begins(ctx, cursor) : IsElementOf(*row, *info, ctx, cursor);
}

bool Particle::IsSet(CXmlGeneratedClass const* holder) const {
  return group != nullptr ? group->IsSet(holder) : BoundAccess::Property(holder, row->property).IsSet();
}

void Particle::ThrowMissing() const {
  if (group != nullptr) group->ThrowMissing();
  ThrowMissingElement(*row);
}

void Particle::AppendNames(std::string& names) const {
  if (group != nullptr) return group->AppendNames(names);
  if (row->kind == RowKind::Rounds) return row->type->Built().Round().AppendNames(names);
  if (!names.empty()) names += ", ";
  names += row->rule != nullptr ? row->rule->allowed : row->name;
}

std::unique_ptr<CElementInfo> MakeMember(CElementRow const& row, bool isInGroup) {
  bool const isRequired = !isInGroup && !MayBeAbsent(row);
  switch (row.kind) {
    case RowKind::Value: {
      CValueType const& type = *row.value;
      if (type.enumeration != nullptr || row.defaultText != nullptr || row.fixedText != nullptr ||
          ValueRule::HasOwnRules(type)) {
        return std::make_unique<ValueMember>(row, isRequired);
      }
      char const* const format = FormatOf(type.kind);
      if (isRequired) {
        return std::make_unique<CElementInfoSeqPrimMnd>(row.name, row.ns, row.property, type.kind, format,
                                                        type.whitespace, RestrictionsOf(type));
      }
      return std::make_unique<CElementInfoSeqPrimOpt>(row.name, row.ns, row.property, type.kind, format,
                                                      type.whitespace, RestrictionsOf(type));
    }
    case RowKind::Object: return std::make_unique<ObjectMember>(row, isRequired);
    case RowKind::Any:
    case RowKind::AnyType: return std::make_unique<ElementMember>(row, isRequired);
    default: return std::make_unique<CollectionMember>(row, isRequired);
  }
}

// ---- What the members share

BoundMember::BoundMember(CElementRow const& row, bool isRequired)
    : CElementInfoSeq(row.name, row.ns, row.property), m_row(row), m_isRequired(isRequired) {}

BoundMember::BoundMember(CElementRow const& row, bool isRequired, CPrimitiveRestrictions const& restrictions)
    : CElementInfoSeq(row.name, row.ns, row.property, row.value->kind, FormatOf(row.value->kind), row.value->whitespace,
                      restrictions),
      m_row(row),
      m_isRequired(isRequired) {}

bool BoundMember::MayBegin(CXmlSerializationContext const& ctx, CXmlElement const* element) const {
  return IsElementOf(m_row, *this, ctx, element);
}

bool BoundMember::Seek(CXmlSerializationContext const& ctx, CXmlElement** cursor, XmlElementType holderType,
                       bool& answer) const {
  CXmlElement* at = *cursor;
  if (IsElementOf(m_row, *this, ctx, at)) return true;
  answer = !m_isRequired || holderType == XmlElementType_Element;
  if (!m_isRequired || holderType != XmlElementType_Element) return false;
  if (ctx.GetIgnoreMissingMandatoryElements()) return false;
  while (ctx.GetIgnoreUnknownElements() && at != nullptr) {
    at = at->GetNextSiblingElement();
    if (!IsElementOf(m_row, *this, ctx, at)) continue;
    *cursor = at;
    return true;
  }
  ThrowMissingElement(m_row);
}

bool BoundMember::AbsentOnWriting(CXmlSerializationContext const& ctx) const {
  if (m_isRequired && !ctx.GetIgnoreMissingMandatoryElements()) ThrowElementNotSet(m_row.name);
  return false;
}

// ---- Values

ValueMember::ValueMember(CElementRow const& row, bool isRequired)
    : BoundMember(row, isRequired, RestrictionsOf(*row.value)),
      m_rule(row.name, *row.value, row.defaultText, row.fixedText) {}

// A write lets pass that a required value is not set.
bool ValueMember::OmitOnWriting(CXmlSerializationContext const& ctx, CXmlWriter const& writer) const {
  CheckingWriter const* const check = XmlWriterAccess::Checking(writer);
  return check != nullptr && check->JudgesReading() && AbsentOnWriting(ctx);
}

QN_ELEMENT_TO_XML(ValueMember) {
  QnVariant value;
  ReadProperty(holder, value);
  if (!value.IsValid()) return m_isRequired && OmitOnWriting(ctx, *writer);
  m_rule.CheckOwn(value);
  if (ValueRule::HasNames(*m_row.value)) return WriteNames(value, *writer);
  bool const isPlain = m_row.value->enumeration == nullptr && !ValueRule::IsList(*m_row.value);
  if (isPlain) return ElementToXmlPrim(ctx, holder, writer);
  WriteText(writer, m_rule.Print(value), ItemType_string);
  return true;
}

bool ValueMember::WriteNames(QnVariant const& value, CXmlWriter& writer) const {
  writer.WriteStartElement(m_row.name, m_namespace);
  writer.WriteString(m_rule.NamesText(value, writer), ItemType_string);
  writer.WriteEndElement();
  return true;
}

QN_ELEMENT_FROM_XML(ValueMember) {
  bool answer = false;
  if (!Seek(ctx, cursor, holderType, answer)) return answer;
  CXmlElement* const element = *cursor;
  try {
    QnVariant value = m_rule.Read(element->GetTextView(), true, &ctx);
    if (ValueRule::HasNames(*m_row.value)) {
      value = m_rule.Resolve(value, *element);
      m_rule.CheckResolved(value);
    }
    AccessProperty(holder, false, value);
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {element})) throw;
  }
  *cursor = element->GetNextSiblingElement();
  return true;
}

// ---- Objects

QN_ELEMENT_TO_XML(ObjectMember) {
  CXmlObjectBase const* const child = BoundAccess::Property(holder, m_propertyIndex).Look();
  if (child == nullptr) return AbsentOnWriting(ctx);
  char const* const ns = m_row.group != nullptr ? NamespaceOfStandIn(*child, m_row) : m_namespace.c_str();
  CXmlObjectBase::ToXml_Int(child, writer, false, ns, ctx, false);
  return true;
}

QN_ELEMENT_FROM_XML(ObjectMember) {
  bool answer = false;
  if (!Seek(ctx, cursor, holderType, answer)) return answer;
  CXmlElement* const element = *cursor;
  try {
    CSmartPtr<CXmlObjectBase> child;
    if (m_row.group != nullptr) {
      child = ReadStandIn(m_row, parent, cursor, ctx);
    } else {
      child = BoundAccess::MakeFor(*m_row.type, *element, m_row.name, m_row.block);
      ReadChild(ctx, child.Get(), cursor, false);
    }
    BoundAccess::Property(holder, m_propertyIndex).Hold(child.Get());  // a child that fails is not stored
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {element})) throw;
    *cursor = element->GetNextSiblingElement();
  }
  return true;
}

// ---- Generic elements

namespace {

void RequireAllowedElement(CNamespaceRule const& rule, CElement const& element, CXmlWriter& writer) {
  try {
    RequireAllowed(rule, element.GetNamespace());
  } catch (CQnException& failure) {
    CheckingWriter* const check = XmlWriterAccess::Checking(writer);
    if (check == nullptr || !check->GoesOnAt(element.GetName(), element.GetNamespace(), failure)) throw;
  }
}

}  // namespace

QN_ELEMENT_TO_XML(ElementMember) {
  auto* const element = static_cast<CElement*>(BoundAccess::Property(holder, m_propertyIndex).Look());
  if (element == nullptr) return AbsentOnWriting(ctx);
  if (m_row.rule != nullptr) RequireAllowedElement(*m_row.rule, *element, *writer);
  CXmlObjectBase::ToXml_Int(element, writer, false, m_namespace.c_str(), ctx, false);
  return true;
}

QN_ELEMENT_FROM_XML(ElementMember) {
  bool answer = false;
  if (!Seek(ctx, cursor, holderType, answer)) return answer;
  CXmlElement* const source = *cursor;
  try {
    CSmartPtr<CElement> const element = TakeGeneric(parent, cursor, ctx);
    BoundAccess::Property(holder, m_propertyIndex).Hold(element.Get());
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {source})) throw;
    *cursor = source->GetNextSiblingElement();
  }
  return true;
}

// ---- Collections

QN_ELEMENT_TO_XML(CollectionMember) {
  CPropertyRef const property = BoundAccess::Property(holder, m_propertyIndex);
  if (property.IsSet()) {
    CXmlObjectBase::ToXml_Int(property.Look(), writer, false, m_namespace.c_str(), ctx, false);
    return true;
  }
  if (m_isRequired) static_cast<CXmlCollectionBase const&>(*property.Make(&m_row)).ValidateCount(ctx);
  return false;
}

QN_ELEMENT_FROM_XML(CollectionMember) {
  CXmlElement* first = *cursor;
  while (m_isRequired && ctx.GetIgnoreUnknownElements() && first != nullptr && !IsElementOf(m_row, *this, ctx, first)) {
    first = first->GetNextSiblingElement();
  }
  bool const isThere = IsElementOf(m_row, *this, ctx, first);
  if (!isThere && !m_isRequired) return true;
  if (!isThere && holderType != XmlElementType_Element) return false;
  if (isThere) *cursor = ReadItems(ctx, holder, parent, first);
  try {
    ValidateCount(ctx, holder);
  } catch (CQnException& failure) {
    FailureReport::Note(failure, WhereCountIsWrong(ctx, holder, parent, first, *cursor));
    throw;
  }
  return true;
}

// The elements that follow each other are shared out among this round and those after it: as many as possible for this
// one, so that the others get what they need. Any number of elements from `enough` on can be shared out.
int CollectionMember::CountForRound(CXmlSerializationContext const& ctx, CXmlElement const* cursor) const {
  constexpr std::int64_t kMostAhead = 1000;
  std::int64_t const least = m_row.minOccurs;
  std::int64_t const most = m_row.maxOccurs;
  if (least < 2 || most <= least) return m_row.maxOccurs;
  std::int64_t const enough = std::min(least * ((most - 2) / (most - least)), kMostAhead);
  std::int64_t there = 0;
  for (; there < most + enough && IsElementOf(m_row, *this, ctx, cursor); ++there) {
    cursor = cursor->GetNextSiblingElement();
  }
  auto const canBeShared = [&](std::int64_t count) { return (count + most - 1) / most * least <= count; };
  for (std::int64_t taken = std::min(most, there); taken >= least; --taken) {
    if (canBeShared(there - taken)) return static_cast<int>(taken);
  }
  return m_row.maxOccurs;
}

CXmlElement* CollectionMember::ReadItems(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                         CXmlElement* parent, CXmlElement* cursor) const {
  CPropertyRef const property = BoundAccess::Property(holder, m_propertyIndex);
  CSmartPtr<CXmlObjectBase> held = property.Look();
  if (!held) {
    RulesInUse::Scope const rules(holder->GetDefaultValueRules());
    held = property.Make(&m_row);
    property.Hold(held.Get());
  }
  // What is left over may begin the next round.
  bool const isInRound = static_cast<CBoundObject const*>(holder)->GetClassTables().GetRow().round;
  if (isInRound && m_row.maxOccurs >= 0) {
    auto& collection = static_cast<CXmlCollectionBase&>(*held);
    int const count = collection.GetCount() == 0 ? CountForRound(ctx, cursor) : m_row.maxOccurs;
    ObjectAccess::StopAt(collection, count);
  }
  return FromXml_Int(held.Get(), parent, cursor, ctx, false);
}

void CollectionMember::ValidateCount(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder) const {
  CPropertyRef const property = BoundAccess::Property(holder, m_propertyIndex);
  auto const* const held = static_cast<CXmlCollectionBase const*>(property.Look());
  if (held != nullptr) return held->ValidateCount(ctx);
  static_cast<CXmlCollectionBase const&>(*property.Make(&m_row)).ValidateCount(ctx);
}

FailurePoint CollectionMember::WhereCountIsWrong(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                                 CXmlElement const* parent, CXmlElement const* first,
                                                 CXmlElement const* next) const {
  auto const* const held =
      static_cast<CXmlCollectionBase const*>(BoundAccess::Property(holder, m_propertyIndex).Look());
  int const most = m_row.maxOccurs;
  if (m_row.kind == RowKind::Rounds || held == nullptr || most < 0 || held->GetCount() <= most) {
    return FailurePoint::At(parent, next);
  }
  int count = 0;
  for (CXmlElement const* item = first; item != next; item = item->GetNextSiblingElement()) {
    if (IsElementOf(m_row, *this, ctx, item) && ++count > most) return {item};
  }
  return FailurePoint::At(parent, next);
}

}  // namespace Quillon9
