#include "quillon9/generated/any_element_col.h"

#include "binding/failure_report.h"
#include "binding/name_match.h"
#include "descriptors/generic_reading.h"
#include "generated/namespace_rule.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

CAnyElementCol::CAnyElementCol(CElementRow const& row) : CObjectCol(row), m_rule(row.rule) {}

CAnyElementCol::~CAnyElementCol() = default;

void CAnyElementCol::ValidateCount(CXmlSerializationContext const& ctx) const {
  if (m_rule == nullptr) return CObjectCol::ValidateCount(ctx);
  RequireValidCount(ctx, m_rule->allowed);
}

CElement& CAnyElementCol::Add(char const* name, char const* ns) { return Add(new CElement(name, ns, "##any", "")); }

CElement& CAnyElementCol::Add(CSmartPtr<CElement> const& element) {
  Throw_IfPropertyIsNull(element.Get(), GetElementName().c_str());
  if (m_rule != nullptr) {
    RequireAllowed(*m_rule, element->GetNamespace());
  } else if (element->GetName() != GetElementName()) {
    element->SetElementName(element->GetName().c_str());  // for the failure
    Throw_IfElementNameDiffers(element.Get(), GetElementName().c_str());
  }
  AppendItem(element.Get());
  return *element;
}

bool CAnyElementCol::Takes(CXmlSerializationContext const& ctx, CXmlElement const* element) const {
  if (element == nullptr) return false;
  if (m_rule == nullptr) return IsElementNamed(ctx, element, GetElementName(), GetNamespace());
  return (GetMaxOccurs() < 0 || GetCount() < GetMaxOccurs()) && Allows(*m_rule, element->GetNamespaceURI());
}

CXmlElement* CAnyElementCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                         bool) {
  while (!IsFull() && Takes(ctx, cursor)) {
    CXmlElement* const element = cursor;
    try {
      AppendItem(TakeGeneric(parent, &cursor, ctx).Get());
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {element})) throw;
      cursor = element->GetNextSiblingElement();
    }
  }
  return cursor;
}

}  // namespace Quillon9
