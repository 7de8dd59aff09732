#pragma once

#include <string>
#include <string_view>

#include "code/file_plan.h"
#include "plan/plan.h"

/// How the text of one class refers to others.
namespace Quillon9Generator::Code {

/// Where a name is used: the namespace, the class whose members are being declared or defined, null outside of one, and
/// the header that declares that class.
struct Scope {
  Plan::Namespace const* ns = nullptr;
  Plan::Class const* cls = nullptr;
  HeaderFile const* header = nullptr;
};

/// The shortest name that means the class or enumeration with this \p cppName in \p scope. It is qualified with the
/// namespace where it is in another one, or where a nested class of the same name, also one of a base class, would be
/// found first.
std::string NameOf(Plan::Class const& target, Scope const& scope);
std::string NameOf(Plan::Enumeration const& target, Scope const& scope);

/// The last part of the name of \p enumeration.
std::string ShortName(Plan::Enumeration const& enumeration);

/// The tables of \p cls, as seen in \p ns outside of classes.
std::string TablesOf(Plan::Class const& cls, Plan::Namespace const& ns);

/// The name of a class for constants in the source: `CItems::CItem` gives `Items_Item`.
std::string Identifier(Plan::Class const& cls);

}  // namespace Quillon9Generator::Code
