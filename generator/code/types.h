#pragma once

#include <string>

#include "plan/plan.h"

/// How the values of the plan are held in C++.
namespace Quillon9Generator::Code {

/// The C++ type of one value that is no enumerator and no list.
std::string CppType(Plan::ValueType const& value);

/// The class of a collection of such values.
std::string CollectionType(Plan::ValueType const& value);

/// Whether a value is passed and returned by value and needs no std::move().
bool IsScalar(Plan::ValueType const& value);

/// Whether the C++ type stands for more than one kind, so that a reference to the property must state it.
bool SharesCppType(Quillon9::ItemType kind);

/// The name of \p kind in the library: "ItemType_i4".
std::string KindName(Quillon9::ItemType kind);

/// What a data member of this type is initialised with: " = 0", "{}", or nothing for classes.
std::string Initializer(Plan::ValueType const& value);

/// Whether a value that is assigned is checked.
bool HasChecks(Plan::Member const& member);

/// The facets in words, for a documentation comment; empty for none.
std::string DescribeFacets(Plan::ValueType const& value);

}  // namespace Quillon9Generator::Code
