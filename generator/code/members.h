#pragma once

#include <string>

#include "code/names.h"
#include "code/text.h"
#include "plan/plan.h"

/// The text for one member of a class.
namespace Quillon9Generator::Code {

/// What reads and changes the member, in the public part of its class. What needs a class that another header than
/// that of \p scope defines is declared only.
void DeclareAccessors(Text& text, Plan::Member const& member, Scope const& scope);

/// What DeclareAccessors() only declares.
void DefineAccessors(Text& text, Plan::Member const& member, Scope const& scope);

/// Whether \p cls has members whose class is defined by another header than \p header. Its constructor and destructor
/// need that class, too.
bool HoldsOtherClasses(Plan::Class const& cls, HeaderFile const& header);

/// What the getter of the member returns, without `&`, `*` and `const`: `std::optional<std::string>`, `CShape`.
std::string AccessedType(Plan::Member const& member, Scope const& scope);

/// The data member.
void DeclareField(Text& text, Plan::Member const& member, Scope const& scope);

/// The member as an argument of Pick(): `m_x`, or a CPropertyRef where its C++ type does not say its kind.
std::string PropertyOf(Plan::Member const& member);

/// The type of an element of simple type that may be nil or is the root: `Quillon9::CValueElement<std::string>`.
std::string ValueElementType(Plan::ValueType const& value, Scope const& scope);

}  // namespace Quillon9Generator::Code
