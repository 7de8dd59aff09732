// How a generated class is read: the drivers walk the tables, and the descriptors decide.

#include <strings.h>

#include <cstdint>
#include <string>

#include "binding/failed_scans.h"
#include "binding/flag_set.h"
#include "binding/nesting_guard.h"
#include "quillon9/binding/exceptions.h"
#include "quillon9/binding/generated_class.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/object_content.h"
#include "xmlio/text_copy.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

using namespace Quillon9Data;

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* parent, CXmlElement* cursor,
                                             CXmlSerializationContext const& ctx, bool inChoice) {
  try {
    return ReadElement(parent, cursor, ctx, inChoice);
  } catch (CQnException const& cause) {
    throw CQnValidationException(FormatString("Failed to process the element [%s]", parent->GetLocalName().c_str()),
                                 cause);
  }
}

CXmlElement* CXmlGeneratedClass::ReadElement(CXmlElement* parent, CXmlElement* cursor,
                                             CXmlSerializationContext const& ctx, bool inChoice) {
  Init();
  CParentElementInfo const& info = *GetClassInfo();
  NestingGuard const guard(info.m_elementType == XmlElementType_Element);
  if (info.m_elementType == XmlElementType_Element && !IsSameText(GetElementName(), parent->GetLocalName())) {
    SetElementName(parent->GetLocalName().c_str());
  }
  ProcessAttributesFromXml(ctx, parent, info.m_rejectUnknownAttributes);
  CTreeMemory* const memory = parent->Memory();
  if (memory != nullptr && info.m_elementType == XmlElementType_Element) memory->CountContent(ObjectContent::kClass);
  INillable const* const nillable = AsNillable(memory != nullptr ? &memory->PlainClasses() : nullptr);
  if (nillable != nullptr && nillable->IsNil()) return cursor;
  CXmlElement* const next = ReadMembers(parent, cursor, ctx, inChoice);
  // A group that took nothing is dropped, and tried again for the next child.
  bool const isFilledGroup = info.m_elementType != XmlElementType_Element && next != cursor;
  if (memory != nullptr && isFilledGroup) memory->CountContent(ObjectContent::kClass);
  if (info.m_textPropertyIndex != -1) {
    QnVariant text;
    text.SetString(std::string(parent->GetTextView()));
    AccessProperty(info.m_textPropertyIndex, false, text);
  }
  return next;
}

CXmlElement* CXmlGeneratedClass::ReadMembers(CXmlElement* parent, CXmlElement* cursor,
                                             CXmlSerializationContext const& ctx, bool inChoice) {
  if (GetClassInfo()->m_elementType != XmlElementType_Element) return ReadGroup(parent, cursor, ctx, inChoice);
  FailedScans const scans(ctx.GetIgnoreUnknownElements());
  return ReadGroup(parent, cursor, ctx, inChoice);
}

CXmlElement* CXmlGeneratedClass::ReadGroup(CXmlElement* parent, CXmlElement* cursor,
                                           CXmlSerializationContext const& ctx, bool inChoice) {
  CParentElementInfo const& info = *GetClassInfo();
  switch (info.m_groupType) {
    case XmlElementGroupType_Sequence: return ProcessElementSeqFromXml(ctx, parent, cursor, info.m_elementType);
    case XmlElementGroupType_Choice:
      return ProcessElementChoiceFromXml(ctx, parent, cursor, info.m_elementType, inChoice);
    case XmlElementGroupType_All: return ProcessElementAllFromXml(ctx, parent, cursor, info.m_elementType);
  }
  throw CQnException("Unknow Group Type");
}

namespace {

[[noreturn]] void ThrowUnexpectedAttribute(CXmlAttribute const& attribute) {
  throw CQnValidationException(FormatString("Unexpected Attribute [%s] found.", attribute.GetLocalName().c_str()));
}

// The place of the descriptor that took the attribute; the end of the table when none did.
std::size_t OfferAttribute(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CAttributeInfo** table,
                           CXmlAttribute* attribute) {
  std::size_t i = 0;
  while (table[i] != nullptr && !table[i]->AttributeFromXml(ctx, holder, attribute)) ++i;
  return i;
}

}  // namespace

void CXmlGeneratedClass::ReadNilAttribute(CXmlAttribute const& attribute) {
  auto* const nillable = dynamic_cast<INillable*>(this);
  if (nillable == nullptr) ThrowUnexpectedAttribute(attribute);
  std::string_view const text = attribute.GetValueView();
  char const* const value = text.find('\0') == std::string_view::npos ? text.data() : "";
  if (strcasecmp(value, "true") == 0) {
    nillable->SetNil(true);
  } else if (strcasecmp(value, "false") == 0) {
    nillable->SetNil(false);
  } else {  // 1 and 0 too, on purpose
    throw CQnValidationException(
        FormatString("Unexpected Value for Attribute [%s] found.", attribute.GetLocalName().c_str()));
  }
}

void CXmlGeneratedClass::ProcessAttributesFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                  bool reject) {
  CAttributeInfo** const table = GetClassAttributeInfo();
  std::size_t count = 0;
  while (table[count] != nullptr) ++count;
  FlagSet found(count);
  bool const isKnown = FailedScans::TakesNoAttribute(table, parent);
  bool tookSome = false;
  CXmlAttribute* const first = isKnown ? nullptr : parent->GetFirstAttribute();
  for (auto* attribute = first; attribute != nullptr; attribute = attribute->GetNextAttribute()) {
    if (attribute->IsNamespaceAttribute()) continue;
    if (attribute->IsNilAttribute()) {
      ReadNilAttribute(*attribute);
      tookSome = true;
      continue;
    }
    std::size_t const taker = OfferAttribute(ctx, this, table, attribute);
    if (taker < count) {
      found.Set(taker);
      tookSome = true;
    } else if (reject && !ctx.GetIgnoreUnknownAttributes()) {
      ThrowUnexpectedAttribute(*attribute);
    }
  }
  // A group is asked again for each child that is skipped, and each time shown all attributes.
  if (!isKnown && !tookSome && GetClassInfo()->m_elementType != XmlElementType_Element) {
    FailedScans::NoteNoAttribute(table, parent);
  }
  for (std::size_t i = 0; i < count; ++i) table[i]->Validate(ctx, found[i]);
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                          CXmlElement* cursor, XmlElementType type) {
  if (type != XmlElementType_Element) return ReadSequenceGroup(ctx, parent, cursor, type);
  CXmlElement* const entry = cursor;
  std::string const ns = NamespaceForMembers(parent);  // once, not for each try: a tenth of what binding costs
  for (CElementInfo* const* place = GetClassElementInfo(); *place != nullptr; ++place) {
    while (!(*place)->ElementFromXml(ctx, this, parent, &cursor, ns.c_str(), type)) {
      if (!ctx.GetIgnoreUnknownElements() || cursor == nullptr) return entry;
      cursor = cursor->GetNextSiblingElement();
    }
  }
  RejectLeftOver(ctx, parent, cursor);
  return cursor;
}

/// The same without a tag, with what was looked through in vain remembered.
CXmlElement* CXmlGeneratedClass::ReadSequenceGroup(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                   CXmlElement* cursor, XmlElementType type) {
  CXmlElement* const entry = cursor;
  std::string const ns = NamespaceForMembers(parent);
  for (CElementInfo* const* place = GetClassElementInfo(); *place != nullptr; ++place) {
    CElementInfo* const member = *place;
    CXmlElement* const start = cursor;
    unsigned long const takes = FailedScans::Takes();
    cursor = FailedScans::Skip(member, parent, cursor);
    if (cursor == nullptr && start != nullptr) return entry;
    CXmlElement* at = cursor;
    while (!member->ElementFromXml(ctx, this, parent, &cursor, ns.c_str(), type)) {
      bool const isLast = !ctx.GetIgnoreUnknownElements() || cursor == nullptr;
      if (isLast && takes == FailedScans::Takes()) FailedScans::Note(member, parent, start, nullptr);
      if (isLast) return entry;
      cursor = cursor->GetNextSiblingElement();
      at = cursor;
    }
    if (at != start && takes == FailedScans::Takes()) FailedScans::Note(member, parent, start, at);
  }
  return cursor;
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                          CXmlElement* cursor, XmlElementType type) {
  CXmlElement* const entry = cursor;
  auto const count = static_cast<std::size_t>(GetClassElementInfoCount());
  std::string const ns = NamespaceForMembers(parent);
  FlagSet found(count);
  CXmlElement const* previous = nullptr;
  while (cursor != nullptr && cursor != previous) {
    previous = cursor;
    for (std::size_t i = 0; i < count; ++i) {
      if (found[i]) continue;
      if (GetClassElementInfo()[i]->ElementFromXml(ctx, this, parent, &cursor, ns.c_str(), type)) found.Set(i);
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    auto const* const member = dynamic_cast<CElementInfoAll const*>(GetClassElementInfo()[i]);
    if (member == nullptr) throw CQnException("The table of an all group holds a member of another group");
    if (!member->Validate(ctx, this, found[i], type == XmlElementType_Element)) return entry;
  }
  if (type == XmlElementType_Element) RejectLeftOver(ctx, parent, cursor);
  return cursor;
}

// Most classes have no untyped member, and making the text costs more than a percent of reading.
std::string CXmlGeneratedClass::NamespaceForMembers(CXmlElement const* parent) const {
  CElementInfo* const* const table = GetClassElementInfo();
  if (*table == nullptr) return std::string();
  CTreeMemory* const memory = parent->Memory();
  std::uint64_t const number = (*table)->GetNumber();  // of the first member: it is in no other table
  if (memory != nullptr && memory->IsKnownAsTyped(number)) return std::string();
  for (CElementInfo* const* place = table; *place != nullptr; ++place) {
    if ((*place)->ReadsHolderNamespace()) return GetNamespace();
  }
  if (memory != nullptr) memory->NoteAsTyped(number);
  return std::string();
}

bool CXmlGeneratedClass::OfferToChoiceMembers(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                              CXmlElement** cursor, XmlElementType type) {
  int const count = GetClassElementInfoCount();
  std::string const ns = NamespaceForMembers(parent);
  for (int i = 0; i < count; ++i) {
    if (GetClassElementInfo()[i]->ElementFromXml(ctx, this, parent, cursor, ns.c_str(), type)) return true;
  }
  return false;
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                             CXmlElement* cursor, XmlElementType type, bool inChoice) {
  CXmlElement* const entry = cursor;
  bool found = OfferToChoiceMembers(ctx, parent, &cursor, type);
  while (!found && ctx.GetIgnoreUnknownElements() && type == XmlElementType_Element && cursor != nullptr) {
    cursor = cursor->GetNextSiblingElement();
    if (cursor != nullptr) found = OfferToChoiceMembers(ctx, parent, &cursor, type);
  }
  if (!found && !inChoice) {
    if (type == XmlElementType_Pseudo && ctx.GetIgnoreUnknownElements()) return entry;
    if (type == XmlElementType_Element && !DoesElementContainOptionalElements() && !ctx.GetIgnoreMissingChoice()) {
      throw CQnValidationException(
          FormatString("No child elements within the element [%s] were populated. The element represents a "
                       "choice, so one and only "
                       "one element should be populated. The element contained no sutable child elements",
                       parent->GetLocalName().c_str()));
    }
  }
  if (type == XmlElementType_Element) RejectLeftOver(ctx, parent, cursor);
  return cursor;
}

void CXmlGeneratedClass::RejectLeftOver(CXmlSerializationContext const& ctx, CXmlElement const* parent,
                                        CXmlElement const* cursor) const {
  if (cursor == nullptr || ctx.GetIgnoreUnknownElements()) return;
  throw CQnValidationException(
      FormatString("Failed read all the elements held within the element [%s]. The unexpected element [%s] "
                   "remains un processed",
                   parent->GetLocalName().c_str(), cursor->GetLocalName().c_str()));
}

}  // namespace Quillon9
