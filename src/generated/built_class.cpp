#include "generated/built_class.h"

#include <algorithm>

#include "generated/attributes.h"

namespace Quillon9 {

using namespace Quillon9Data;

namespace {

using RowList = std::vector<CElementRow const*>;

/// Calls \p visit for a class and its bases, the first base first.
template <class Visit>
void ForEachBase(CClassRow const& row, Visit visit) {
  if (row.base != nullptr) ForEachBase(row.base->GetRow(), visit);
  visit(row);
}

bool BeginsGroup(CElementRow const& row) {
  return row.kind == RowKind::BeginSequence || row.kind == RowKind::BeginChoice || row.kind == RowKind::BeginAll;
}

/// Whether the particles from \p at up to the end of their group may all be absent, or one of them in a choice. Moves
/// \p at past that end.
bool GroupMayBeEmpty(RowList const& rows, std::size_t& at, RowKind kind) {
  bool all = true;
  bool any = false;
  for (; at < rows.size() && rows[at]->kind != RowKind::EndGroup;) {
    CElementRow const& row = *rows[at++];
    bool const isEmptyGroup = BeginsGroup(row) && GroupMayBeEmpty(rows, at, row.kind);
    bool const mayBeAbsent = BeginsGroup(row) ? isEmptyGroup || row.occurs == Occurs::Optional : MayBeAbsent(row);
    all = all && mayBeAbsent;
    any = any || mayBeAbsent;
  }
  ++at;
  return all || (kind == RowKind::BeginChoice && any);
}

}  // namespace

RowList ElementRowsOf(CClassRow const& row) {
  RowList rows;
  ForEachBase(row, [&](CClassRow const& base) {
    if (base.replacesBaseElements) rows.clear();
    for (int i = 0; i < base.elementCount; ++i) rows.push_back(&base.elements[i]);
  });
  return rows;
}

namespace {

std::vector<CAttributeRow const*> AttributeRowsOf(CClassRow const& row) {
  std::vector<CAttributeRow const*> rows;
  ForEachBase(row, [&](CClassRow const& base) {
    if (base.replacesBaseAttributes) rows.clear();
    for (int i = 0; i < base.attributeCount; ++i) rows.push_back(&base.attributes[i]);
  });
  return rows;
}

}  // namespace

bool MayBeEmpty(CClassRow const& row) {
  std::size_t at = 0;
  return GroupMayBeEmpty(ElementRowsOf(row), at, RowKind::BeginSequence);
}

BuiltClass::BuiltClass(CClassTables const& tables)
    : m_info(XmlElementGroupType_Sequence, tables.GetRow().round ? XmlElementType_Pseudo : XmlElementType_Element,
             tables.GetRow().typeName, tables.GetRow().typeNamespace, -1, tables.GetRow().rejectUnknownAttributes,
             false) {
  CClassRow const& row = tables.GetRow();
  m_members.resize(static_cast<std::size_t>(row.firstProperty + row.propertyCount));
  RowList const rows = ElementRowsOf(row);
  NoteProperties(row);
  NoteText(row);
  NoteRoles(row);
  NoteChoices(rows);
  MakeElements(row, rows);
  MakeAttributes(row);
}

BuiltClass::~BuiltClass() = default;

int BuiltClass::FindChoice(CElementRow const* row) const {
  auto const found =
      std::find_if(m_choices.begin(), m_choices.end(), [&](Choice const& choice) { return choice.row == row; });
  return found != m_choices.end() ? static_cast<int>(found - m_choices.begin()) : -1;
}

// ---- The properties

namespace {

std::unique_ptr<ValueRule const> RuleOf(char const* name, CValueType const& type, char const* fixedText) {
  if (type.facets == nullptr && fixedText == nullptr && !ValueRule::HasParts(type)) return nullptr;
  return std::make_unique<ValueRule const>(name, type, nullptr, fixedText);
}

}  // namespace

void BuiltClass::NoteProperties(CClassRow const& row) {
  ForEachBase(row, [&](CClassRow const& base) {
    for (int i = 0; i < base.elementCount; ++i) {
      if (base.elements[i].property >= 0) NoteElement(base.elements[i]);
    }
    for (int i = 0; i < base.attributeCount; ++i) NoteAttribute(base.attributes[i]);
  });
  NoteRemoved(row);
}

void BuiltClass::NoteElement(CElementRow const& element) {
  Member& member = Noted(element.property);
  member.element = &element;
  member.value = element.value;
  if (element.kind == RowKind::Value) member.rule = RuleOf(element.name, *element.value, element.fixedText);
}

void BuiltClass::NoteAttribute(CAttributeRow const& attribute) {
  Member& member = Noted(attribute.property);
  member.value = attribute.value;
  if (attribute.value != nullptr) member.rule = RuleOf(attribute.name, *attribute.value, attribute.fixedText);
}

// The accessors of a base work on an object of a class that restricts it, also for what the restriction removed.
void BuiltClass::NoteRemoved(CClassRow const& row) {
  std::vector<bool> isThere(m_members.size());
  for (CElementRow const* element : ElementRowsOf(row)) {
    if (element->property >= 0) isThere[static_cast<std::size_t>(element->property)] = true;
  }
  for (CAttributeRow const* attribute : AttributeRowsOf(row)) {
    isThere[static_cast<std::size_t>(attribute->property)] = true;
  }
  ForEachBase(row, [&](CClassRow const& base) {
    auto const note = [&](int property, char const* name) {
      if (property >= 0 && !isThere[static_cast<std::size_t>(property)]) m_removed.push_back({property, name});
    };
    for (int i = 0; i < base.elementCount; ++i) {
      CElementRow const& element = base.elements[i];
      note(element.property, element.rule != nullptr ? element.rule->allowed : element.name);
    }
    for (int i = 0; i < base.attributeCount; ++i) {
      CAttributeRow const& attribute = base.attributes[i];
      note(attribute.property, attribute.rule != nullptr ? attribute.rule->allowed : attribute.name);
    }
  });
}

// The library hands the text of an element over as it is in the document. A rule converts it.
void BuiltClass::NoteText(CClassRow const& row) {
  ForEachBase(row, [&](CClassRow const& base) {
    if (base.textProperty < 0) return;
    m_info.m_textPropertyIndex = base.textProperty;
    m_textProperty = base.textProperty;
    m_isMixed = base.text == nullptr;
    Member& member = Noted(base.textProperty);
    member.value = base.text;
    m_textRule = nullptr;
    if (base.text == nullptr) return;
    member.rule = std::make_unique<ValueRule const>(*base.typeName != '\0' ? base.typeName : "text", *base.text,
                                                    base.textDefault, base.textFixed);
    m_textRule = member.rule.get();
    m_info.m_textPropertyIndex = kConvertedText;
  });
}

void BuiltClass::NoteRoles(CClassRow const& row) {
  for (CAttributeRow const* attribute : AttributeRowsOf(row)) {
    bool const isWildcard = attribute->value == nullptr;
    if (!isWildcard && !ValueRule::HasNames(*attribute->value)) continue;
    m_prefixUsers.push_back({attribute->property, isWildcard ? nullptr : attribute->name, attribute->ns});
  }
  for (std::size_t i = 0; i < m_members.size(); ++i) {
    Member const& member = m_members[i];
    RowKind const kind = member.element != nullptr ? member.element->kind : RowKind::Value;
    bool const isText = kind == RowKind::Value || kind == RowKind::Values;
    bool const isId = isText && member.value != nullptr && member.value->parts != nullptr &&
                      member.value->parts->role == ValueRole::Identifier;
    if (isId) m_ids.push_back(static_cast<int>(i));
  }
}

void BuiltClass::NoteChoices(RowList const& rows) {
  std::vector<int> open;  // the groups around a row: numbers of choices, -1 for groups of another kind
  for (CElementRow const* const row : rows) {
    if (row->kind == RowKind::EndGroup) {
      open.pop_back();
      continue;
    }
    if (!open.empty() && open.back() >= 0) {
      m_choices[static_cast<std::size_t>(open.back())].alternatives.emplace_back();
    }
    if (BeginsGroup(*row)) {
      bool const isChoice = row->kind == RowKind::BeginChoice;
      open.push_back(isChoice ? static_cast<int>(m_choices.size()) : -1);
      if (isChoice) m_choices.push_back({row, {}});
      continue;
    }
    Member& member = Noted(row->property);
    member.isRequired = open.empty() && !MayBeAbsent(*row);
    for (int const choice : open) {
      if (choice < 0) continue;
      auto& alternatives = m_choices[static_cast<std::size_t>(choice)].alternatives;
      alternatives.back().push_back(row->property);
      member.choices.emplace_back(choice, static_cast<int>(alternatives.size()) - 1);
    }
  }
}

// ---- The tables

Particle BuiltClass::MakeParticle(RowList const& rows, std::size_t& at, bool isInGroup) const {
  CElementRow const& row = *rows[at++];
  if (!BeginsGroup(row)) return {&row, !MayBeAbsent(row), MakeMember(row, isInGroup), nullptr};
  auto made = std::make_unique<GroupInfo>(row.kind, row.occurs, MakeParticles(rows, at));
  GroupInfo const* const group = made.get();
  return {&row, group->IsRequired(), std::move(made), group};
}

std::vector<Particle> BuiltClass::MakeParticles(RowList const& rows, std::size_t& at) const {
  std::vector<Particle> particles;
  while (at < rows.size() && rows[at]->kind != RowKind::EndGroup) particles.push_back(MakeParticle(rows, at, true));
  ++at;
  return particles;
}

void BuiltClass::MakeElements(CClassRow const& row, RowList const& rows) {
  std::size_t at = 0;
  if (row.round) {
    auto round = std::make_unique<GroupInfo>(RowKind::BeginSequence, Occurs::Once, MakeParticles(rows, at));
    m_round = round.get();
    m_elements.push_back({nullptr, m_round->IsRequired(), std::move(round), m_round});
  }
  while (at < rows.size()) m_elements.push_back(MakeParticle(rows, at, false));
  for (Particle const& element : m_elements) m_elementTable.push_back(element.info.get());
  m_elementTable.push_back(nullptr);
}

// A wildcard takes what the others leave, also those of derived classes.
void BuiltClass::MakeAttributes(CClassRow const& row) {
  for (bool const isWildcard : {false, true}) {
    for (CAttributeRow const* attribute : AttributeRowsOf(row)) {
      if ((attribute->value == nullptr) == isWildcard) m_attributes.push_back(MakeAttribute(*attribute));
    }
  }
  for (auto const& attribute : m_attributes) m_attributeTable.push_back(attribute.get());
  m_attributeTable.push_back(nullptr);
}

}  // namespace Quillon9
