#pragma once

#include "quillon9/fwd.h"

namespace Quillon9 {

/// Whether this build checks the tables of each class at its first use.
#ifdef QUILLON9_CHECK_TABLES
constexpr bool kChecksTables = true;
#else
constexpr bool kChecksTables = false;
#endif

/// Call CheckTables() of \p object, unless an object of its class has passed it before or the checks are disabled. A class
/// that fails is checked again each time. Any thread.
/// \throws what CheckTables() throws.
void CheckTablesOnce(CXmlGeneratedClass const& object);

/// Let CheckTablesOnce() do its work, which is the initial state, or nothing; the result is the former state. For tests
/// with one class that has many tables. Any thread.
bool EnableTableChecks(bool enabled);

}  // namespace Quillon9
