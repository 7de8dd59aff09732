#pragma once

#include "code/file_plan.h"
#include "code/text.h"
#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// Append what \p header declares, after its first line.
void PrintHeader(Text& text, Plan::Plan const& plan, HeaderFile const& header);

/// The directive in the file \p from, which is a path in the output folder, that includes the header \p to.
std::string IncludeOf(std::string const& from, std::string const& to);

/// The elements that the function ReadRoot() of \p ns reads; none where it has no such function.
std::vector<Plan::Root const*> DocumentsReadIn(Plan::Plan const& plan, Plan::Namespace const& ns);

/// The namespace that \p cls goes into.
Plan::Namespace const& NamespaceOf(Plan::Plan const& plan, Plan::Class const& cls);

/// What the constructor of \p cls calls its base.
std::string BaseInConstructor(Plan::Class const& cls, Plan::Namespace const& ns);

/// The name of the function that converts a text into \p enumeration: `ColourFromText`, for a nested one
/// `Items_ColourFromText`.
std::string FromTextName(Plan::Enumeration const& enumeration);

/// The enumerations of \p ns that \p header defines, those of a class after those around it.
std::vector<Plan::Enumeration const*> AllEnumerations(HeaderFile const& header, Plan::Namespace const& ns);

/// The classes of \p ns that \p header defines with the nested ones, these before the class around them.
std::vector<Plan::Class const*> AllClasses(HeaderFile const& header, Plan::Namespace const& ns);

/// The type of the object that reads \p root.
std::string RootType(Plan::Root const& root, Plan::Namespace const& ns);

/// Whether objects for \p root can be made.
bool CanBeCreated(Plan::Root const& root);

}  // namespace Quillon9Generator::Code
