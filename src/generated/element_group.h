#pragma once

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fwd.h"
#include "quillon9/generated/rows.h"

// Elements of a substitution group, which stand where their head is declared: by a row that has a group.
namespace Quillon9 {

/// The member of \p group that has the name of \p element; null for none, or for no element.
CGroupElement const* FindStandIn(CElementGroup const& group, CXmlSerializationContext const& ctx,
                                 CXmlElement const* element);

/// A new object for the head.
/// \throws CQnInvalidStateException "The element [%s] is abstract"; what CClassTables::CreateObject() throws.
CSmartPtr<CXmlObjectBase> NewHead(CElementRow const& row);

/// Read the element under \p cursor, a child of \p parent, and move the cursor. Null, with the cursor unchanged, where
/// FindStandIn() finds none.
CSmartPtr<CXmlObjectBase> ReadStandIn(CElementRow const& row, CXmlElement* parent, CXmlElement** cursor,
                                      CXmlSerializationContext const& ctx);

/// Check that \p object may stand where \p row is, and decide which element of the group it is: that of its name, if it
/// has one, or else the only one of its class.
/// \throws CQnInvalidParamException "The element [%s] is not in the substitution group of [%s]"; "An object of the type
///         [%s] cannot be the element [%s]".
void AdoptStandIn(CXmlObjectBase& object, CElementRow const& row);

/// The namespace of the element that \p object was made for or adopted as.
char const* NamespaceOfStandIn(CXmlObjectBase const& object, CElementRow const& row);

}  // namespace Quillon9
