// How a generated class is read: the drivers walk the tables, and the descriptors decide.

#include <strings.h>

#include <cstdint>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "base/failure_detail.h"
#include "base/flag_set.h"
#include "base/nesting_guard.h"
#include "base/text_copy.h"
#include "binding/failure_report.h"
#include "descriptors/failed_scans.h"
#include "descriptors/member_asking.h"
#include "descriptors/table_check.h"
#include "descriptors/unknown_reading.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/xmlio/document.h"
#include "values/rules_in_use.h"
#include "xmlio/node_access.h"
#include "xmlio/object_content.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

using namespace Quillon9Data;

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* parent, CXmlElement* cursor,
                                             CXmlSerializationContext const& ctx, bool inChoice) {
  try {
    return ctx.GetKeepUnknown() ? ReadAndKeepUnknown(parent, cursor, ctx, inChoice)
                                : ReadElement(parent, cursor, ctx, inChoice);
  } catch (CQnException& cause) {
    FailureReport::Note(cause, {parent});
    throw CQnValidationException(FormatString("Failed to process the element [%s]", parent->GetLocalName().c_str()),
                                 cause);
  }
}

// What groups without a tag do not take is kept by the class of the element.
[[gnu::noinline]] CXmlElement* CXmlGeneratedClass::ReadAndKeepUnknown(CXmlElement* parent, CXmlElement* cursor,
                                                                      CXmlSerializationContext const& ctx,
                                                                      bool inChoice) {
  if (GetClassInfo()->m_elementType != XmlElementType_Element) return ReadElement(parent, cursor, ctx, inChoice);
  UnknownReading const reading(*parent);
  CXmlElement* const next = ReadElement(parent, cursor, ctx, inChoice);
  reading.KeepIn(*this, ctx);
  return next;
}

CXmlElement* CXmlGeneratedClass::ReadElement(CXmlElement* parent, CXmlElement* cursor,
                                             CXmlSerializationContext const& ctx, bool inChoice) {
  if (m_form != nullptr) {
    DropUnknownContent();
    DropDocumentForm();
  }
  Init();
  if constexpr (kChecksTables) CheckTablesOnce(*this);
  CParentElementInfo const& info = *GetClassInfo();
  NestingGuard const guard(info.m_elementType == XmlElementType_Element);
  if (info.m_elementType == XmlElementType_Element && !IsSameText(GetElementName(), parent->GetLocalName())) {
    SetElementName(parent->GetLocalName().c_str());
  }
  ProcessAttributesFromXml(ctx, parent, info.m_rejectUnknownAttributes);
  CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*parent);
  if (memory != nullptr && info.m_elementType == XmlElementType_Element) memory->CountContent(ObjectContent::kClass);
  INillable const* const nillable = AsNillable(memory != nullptr ? &memory->PlainTypes() : nullptr);
  if (nillable != nullptr && nillable->IsNil()) {
    if (UnknownReading* const unknown = UnknownReading::Of(parent, ctx)) unknown->NoteChildren({});
    return cursor;
  }
  // Only the reader that reports knows which children have been taken.
  bool const isReported = ctx.GetFailureSink() != nullptr || (ctx.GetKeepUnknown() && ctx.GetIgnoreUnknownElements());
  CXmlElement* const next = isReported ? ReadMembersReported(parent, cursor, ctx, inChoice)
                                       : ReadMembers(info, parent, cursor, ctx, inChoice);
  // A group that took nothing is dropped, and tried again at the next child.
  bool const isFilledGroup = info.m_elementType != XmlElementType_Element && next != cursor;
  if (memory != nullptr && isFilledGroup) memory->CountContent(ObjectContent::kClass);
  if (info.m_textPropertyIndex != -1) {
    QnVariant text;
    text.SetString(std::string(parent->GetTextView()));
    try {
      AccessProperty(info.m_textPropertyIndex, false, text);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {parent})) throw;
    }
  }
  return next;
}

CXmlElement* CXmlGeneratedClass::ReadMembers(CParentElementInfo const& info, CXmlElement* parent, CXmlElement* cursor,
                                             CXmlSerializationContext const& ctx, bool inChoice) {
  if (!ctx.GetIgnoreUnknownElements()) return ReadGroup(info, parent, cursor, ctx, inChoice);
  FailedScans* const outer = FailedScans::Of(parent, ctx);
  if (info.m_elementType == XmlElementType_Element || outer == nullptr) {
    return ReadMembersWithScans(info, parent, cursor, ctx, inChoice);
  }
  outer->NoteGroup();
  if (info.m_textPropertyIndex != -1) outer->Spend(parent->GetTextView().size() / 32);
  std::size_t const listed = outer->Listed();
  CXmlElement* const next = ReadGroup(info, parent, cursor, ctx, inChoice);
  if (next == cursor && ctx.GetKeepUnknown()) outer->Unlist(listed);
  return next;
}

// This is a separate function so that reading without the option needs no stack for the scans.
[[gnu::noinline]] CXmlElement* CXmlGeneratedClass::ReadMembersWithScans(CParentElementInfo const& info,
                                                                        CXmlElement* parent, CXmlElement* cursor,
                                                                        CXmlSerializationContext const& ctx,
                                                                        bool inChoice) {
  FailedScans const scans(*parent, ctx);
  return ReadGroup(info, parent, cursor, ctx, inChoice);
}

CXmlElement* CXmlGeneratedClass::ReadGroup(CParentElementInfo const& info, CXmlElement* parent, CXmlElement* cursor,
                                           CXmlSerializationContext const& ctx, bool inChoice) {
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
  throw OfKind(FailureKind_UnexpectedAttribute, CQnValidationException(FormatString("Unexpected Attribute [%s] found.",
                                                                                    attribute.GetLocalName().c_str())));
}

// Asks `member` and reports to `scans`, which is null if nothing is remembered.
bool AskNoted(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, FailedScans* scans, CElementInfo& member,
              CXmlElement* parent, CXmlElement** cursor, XmlElementType type) {
  if (scans == nullptr) return MemberAsking::Ask(ctx, holder, member, parent, cursor, type);
  FailedScans::Kind const kind = scans->Note(member);
  if (kind == FailedScans::Kind::kHeld && member.IsThisElement(ctx, *cursor)) scans->NoteEffect();
  CXmlElement const* const start = *cursor;
  std::uint64_t const groups = scans->Groups();
  std::size_t const listed = scans->Listed();
  bool const isSatisfied = MemberAsking::Ask(ctx, holder, member, parent, cursor, type);
  scans->NoteAnswer(kind, start, *cursor, groups);
  scans->ListTaken(member, kind, ctx, start, *cursor, listed);
  return isSatisfied;
}

void RemarkAttribute(CXmlSerializationContext const& ctx, CXmlElement const* parent, CXmlAttribute const& attribute) {
  FailureReport::Remark(ctx, FailureKind_DroppedAttribute, {parent, &attribute},
                        FormatString("The attribute [%s] is ignored", attribute.GetLocalName().c_str()));
}

// Whether the descriptors have no effect when an attribute does not belong to them.
bool TakesByName(CAttributeInfo* const* table) {
  for (; *table != nullptr; ++table) {
    std::type_info const& type = typeid(**table);
    if (type != typeid(CAttributeInfoPrimitive) && type != typeid(CAttributeInfoEnum)) return false;
  }
  return true;
}

// The classic rules know words only, in any case; those of XML Schema know numbers too, and white space around them.
bool IsBoolean(char const* text, char const* word, char const* number) {
  if (!RulesInUse::AreSchema()) return strcasecmp(text, word) == 0;
  std::string const collapsed = CWhitespaceUtils::Collapse(text);
  return collapsed == word || collapsed == number;
}

}  // namespace

void CXmlGeneratedClass::ReadNilAttribute(CXmlElement const&, CXmlAttribute const& attribute,
                                          CXmlSerializationContext const&) {
  auto* const nillable = dynamic_cast<INillable*>(this);
  if (nillable == nullptr) ThrowUnexpectedAttribute(attribute);
  std::string_view const text = attribute.GetValueView();
  char const* const value = text.find('\0') == std::string_view::npos ? text.data() : "";
  if (IsBoolean(value, "true", "1")) {
    nillable->SetNil(true);
  } else if (IsBoolean(value, "false", "0")) {
    nillable->SetNil(false);
  } else {
    throw OfKind(FailureKind_Nil, CQnValidationException(FormatString("Unexpected Value for Attribute [%s] found.",
                                                                      attribute.GetLocalName().c_str())));
  }
}

// Returns false if the attribute is ignored, which depends only on its name.
bool CXmlGeneratedClass::ReadAttribute(CXmlSerializationContext const& ctx, CAttributeInfo** table, FlagSet& found,
                                       CXmlAttribute* attribute, bool reject, CXmlElement const* parent) {
  if (attribute->IsNamespaceAttribute()) return false;
  bool const isNil = attribute->IsNilAttribute();
  std::size_t taker = 0;
  try {
    if (isNil) {
      ReadNilAttribute(*parent, *attribute, ctx);
      return true;
    }
    while (table[taker] != nullptr && !table[taker]->AttributeFromXml(ctx, this, attribute)) ++taker;
    if (table[taker] == nullptr) {
      if (reject && !ctx.GetIgnoreUnknownAttributes()) ThrowUnexpectedAttribute(*attribute);
      if (reject && ctx.GetFailureSink() != nullptr && !ctx.GetKeepUnknown()) RemarkAttribute(ctx, parent, *attribute);
      return false;
    }
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {parent, attribute})) throw;
    if (UnknownReading* const unknown = UnknownReading::Of(parent, ctx)) unknown->NoteAttribute(*attribute);
    if (isNil || table[taker] == nullptr) return true;
  }
  found.Set(taker);
  if (UnknownReading* const unknown = UnknownReading::Of(parent, ctx)) unknown->NoteAttribute(*attribute);
  return true;
}

void CXmlGeneratedClass::ProcessAttributesFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                  bool reject) {
  CAttributeInfo** const table = GetClassAttributeInfo();
  std::size_t count = 0;
  while (table[count] != nullptr) ++count;
  FlagSet found(count);
  bool const isGroup = ctx.GetIgnoreUnknownElements() && GetClassInfo()->m_elementType != XmlElementType_Element;
  FailedScans* const scans = isGroup ? FailedScans::Of(parent, ctx) : nullptr;
  if (scans != nullptr) {
    ReadGroupAttributes(ctx, *scans, parent, table, found, reject);
  } else {
    for (auto* attribute = parent->GetFirstAttribute(); attribute != nullptr;
         attribute = attribute->GetNextAttribute()) {
      ReadAttribute(ctx, table, found, attribute, reject, parent);
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    try {
      table[i]->Validate(ctx, found[i]);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {parent})) throw;
    }
  }
}

// A group is tried again for each child that is skipped, and gets all attributes each time.
void CXmlGeneratedClass::ReadGroupAttributes(CXmlSerializationContext const& ctx, FailedScans& scans,
                                             CXmlElement* parent, CAttributeInfo** table, FlagSet& found, bool reject) {
  bool const isByName = TakesByName(table);
  if (!isByName) scans.NoteEffect();
  // Of two classes with the same table, one may refuse what the other ignores.
  bool const isRemembered = isByName && (!reject || ctx.GetIgnoreUnknownAttributes());
  std::vector<CXmlAttribute*> const* const known = isRemembered ? scans.AttributesOf(table) : nullptr;
  if (known != nullptr) {
    std::size_t steps = 0;
    for (CXmlAttribute* const attribute : *known) {
      steps += 1 + attribute->GetValueView().size() / 32;
      ReadAttribute(ctx, table, found, attribute, reject, parent);
    }
    return scans.Spend(steps);
  }
  std::vector<CXmlAttribute*> some;
  std::size_t steps = 0;
  for (auto* attribute = parent->GetFirstAttribute(); attribute != nullptr; attribute = attribute->GetNextAttribute()) {
    steps += 1 + attribute->GetValueView().size() / 32;
    if (ReadAttribute(ctx, table, found, attribute, reject, parent)) some.push_back(attribute);
  }
  scans.Spend(steps);
  if (isRemembered) scans.NoteAttributes(table, std::move(some));
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                          CXmlElement* cursor, XmlElementType type) {
  if (type != XmlElementType_Element) return ReadSequenceGroup(ctx, parent, cursor, type);
  CXmlElement* const entry = cursor;
  for (CElementInfo* const* place = GetClassElementInfo(); *place != nullptr; ++place) {
    while (!MemberAsking::Ask(ctx, this, **place, parent, &cursor, type)) {
      if (!ctx.GetIgnoreUnknownElements() || cursor == nullptr) return entry;
      cursor = MemberAsking::PassVain(ctx, **place, parent, cursor);
    }
  }
  RejectLeftOver(ctx, parent, cursor);
  return cursor;
}

/// The same for a class without a tag.
CXmlElement* CXmlGeneratedClass::ReadSequenceGroup(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                   CXmlElement* cursor, XmlElementType type) {
  CXmlElement* const entry = cursor;
  FailedScans* const scans = FailedScans::Of(parent, ctx);
  for (CElementInfo* const* place = GetClassElementInfo(); *place != nullptr; ++place) {
    CElementInfo& member = **place;
    bool const isSought = scans != nullptr && FailedScans::IsSought(scans->Note(member));
    if (isSought) cursor = scans->Find(member, ctx, cursor);
    while (!AskNoted(ctx, this, scans, member, parent, &cursor, type)) {
      if (!ctx.GetIgnoreUnknownElements() || cursor == nullptr) return entry;
      cursor = scans != nullptr ? scans->Pass(ctx, cursor) : cursor->GetNextSiblingElement();
      if (isSought) cursor = scans->Find(member, ctx, cursor);
    }
  }
  return cursor;
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                          CXmlElement* cursor, XmlElementType type) {
  CXmlElement* const entry = cursor;
  auto const count = static_cast<std::size_t>(GetClassElementInfoCount());
  FailedScans* const scans = type != XmlElementType_Element ? FailedScans::Of(parent, ctx) : nullptr;
  FlagSet found(count);
  CXmlElement const* previous = nullptr;
  while (cursor != nullptr && cursor != previous) {
    previous = cursor;
    for (std::size_t i = 0; i < count; ++i) {
      if (found[i]) continue;
      if (AskNoted(ctx, this, scans, *GetClassElementInfo()[i], parent, &cursor, type)) found.Set(i);
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    CElementInfoAll const& member = MemberAsking::OfAllGroup(*GetClassElementInfo()[i]);
    try {
      if (!member.Validate(ctx, this, found[i], type == XmlElementType_Element)) return entry;
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, FailurePoint::At(parent, cursor))) throw;
    }
  }
  if (type == XmlElementType_Element) RejectLeftOver(ctx, parent, cursor);
  return cursor;
}

bool CXmlGeneratedClass::OfferToChoiceMembers(CXmlSerializationContext const& ctx, FailedScans* scans,
                                              CXmlElement* parent, CXmlElement** cursor, XmlElementType type) {
  int const count = GetClassElementInfoCount();
  for (int i = 0; i < count; ++i) {
    if (AskNoted(ctx, this, scans, *GetClassElementInfo()[i], parent, cursor, type)) return true;
  }
  return false;
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                             CXmlElement* cursor, XmlElementType type, bool inChoice) {
  CXmlElement* const entry = cursor;
  FailedScans* const scans = FailedScans::Of(parent, ctx);
  // Most choices with a tag take their first child, and then nothing needs to be noted.
  FailedScans* noted = type != XmlElementType_Element ? scans : nullptr;
  bool found = OfferToChoiceMembers(ctx, noted, parent, &cursor, type);
  while (!found && ctx.GetIgnoreUnknownElements() && type == XmlElementType_Element && cursor != nullptr) {
    cursor = noted != nullptr ? noted->Pass(ctx, cursor) : cursor->GetNextSiblingElement();
    noted = scans;
    if (cursor != nullptr) found = OfferToChoiceMembers(ctx, noted, parent, &cursor, type);
  }
  if (!found && !inChoice) {
    if (type == XmlElementType_Pseudo && ctx.GetIgnoreUnknownElements()) return entry;
    if (type == XmlElementType_Element && !DoesElementContainOptionalElements() && !ctx.GetIgnoreMissingChoice()) {
      try {
        MemberAsking::ThrowEmptyChoice(parent, cursor);
      } catch (CQnException& failure) {
        if (!FailureReport::GoesOn(ctx, failure, {parent})) throw;
      }
    }
  }
  if (type == XmlElementType_Element) RejectLeftOver(ctx, parent, cursor);
  return cursor;
}

void CXmlGeneratedClass::RejectLeftOver(CXmlSerializationContext const& ctx, CXmlElement const* parent,
                                        CXmlElement const* cursor) const {
  if (cursor == nullptr || ctx.GetIgnoreUnknownElements()) return;
  MemberAsking::ThrowLeftOver(parent, cursor);
}

}  // namespace Quillon9
