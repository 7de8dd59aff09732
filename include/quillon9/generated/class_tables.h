#pragma once

#include <atomic>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/generated/rows.h"

namespace Quillon9 {

class BuiltClass;  // for internal use

/// What a generated class knows about itself: its constant rows, and the record and tables that are made from them. A
/// class has one as a static member, which needs no code when the program starts and none when it ends.
///
/// The tables are built when they are first needed, and never freed. Any thread may ask for them at any time; threads
/// that do so at the same time get the same tables.
class QUILLON9_API CClassTables {
 public:
  /// Create an object of the class that has these tables, for an element of this name.
  using Create = CSmartPtr<CXmlObjectBase> (*)(CClassTables const& tables, char const* elementName);

  /// \p row is kept; it is a constant that lives until the process ends. \p create is null for an abstract class.
  constexpr explicit CClassTables(CClassRow const& row, Create create = nullptr) : m_row(&row), m_create(create) {}

  /// The row that was passed to the constructor.
  CClassRow const& GetRow() const { return *m_row; }
  /// Whether there are no objects of exactly this class.
  bool IsAbstract() const { return m_create == nullptr; }
  /// Create an object for an element of this name, a null-terminated text.
  /// \throws CQnInvalidStateException "The type [%s] is abstract" for an abstract class.
  CSmartPtr<CXmlObjectBase> CreateObject(char const* elementName) const;
  /// The tables of the class whose object \p element becomes where an element of this type is declared: the type that
  /// its xsi:type names, or else this class. The tree keeps only the last meaning of each prefix, so a prefix whose
  /// meaning does not lead to a derived type may stand for the namespace of \p element or for any that makes the name
  /// unique among the derived types.
  /// \throws CQnValidationException "The type [%s] of the element [%s] is not derived from [%s]"; "The type [%s] of the
  ///         element [%s] is abstract".
  CClassTables const& TypeOf(CXmlElement const& element) const { return TypeOf(element, 0); }
  /// The same for a declaration that excludes types whose derivation from this one is in \p block, a set of Derivation.
  /// \throws CQnValidationException also "The type [%s] of the element [%s] is blocked".
  CClassTables const& TypeOf(CXmlElement const& element, unsigned block) const;
  /// Whether a declaration that has this type and excludes \p block excludes \p derived, a class that derives from it.
  bool Blocks(CClassTables const& derived, unsigned block) const;

  /// The record and the two tables in the form that CXmlGeneratedClass asks for, and what else is made of the rows. For
  /// CBoundObject.
  BuiltClass const& Built() const {
    BuiltClass const* const built = m_built.load(std::memory_order_acquire);
    return built != nullptr ? *built : Build();
  }

 private:
  BuiltClass const& Build() const;

  CClassRow const* m_row;
  Create m_create;
  mutable std::atomic<BuiltClass const*> m_built{nullptr};
};

/// The function that CClassTables calls for a class \p Class that has a static CreateInstance(elementName).
template <class Class>
CSmartPtr<CXmlObjectBase> MakeObject(CClassTables const&, char const* elementName) {
  return Class::CreateInstance(elementName);
}

namespace Rows {

/// A short name.
using ClassTables = CClassTables;
using Quillon9::MakeObject;

}  // namespace Rows

}  // namespace Quillon9
