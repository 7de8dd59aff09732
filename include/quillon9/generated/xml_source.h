#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/generated/class_tables.h"

namespace Quillon9 {

struct XmlSourceAccess;

/// A document as text; see XmlText().
struct CXmlText {
  std::string_view text;  ///< borrowed
};
/// Let a function that takes a CXmlSource read the document \p text, which is borrowed, instead of a file.
inline CXmlText XmlText(std::string_view text) { return {text}; }

/// Where a document is read from: a file, text, bytes or a stream. XML text or Fast Infoset, either of which may be
/// compressed by gzip or zlib. What it is made from is borrowed, so use it as an argument only.
class QUILLON9_API CXmlSource {
 public:
  /// The file \p path.
  ///@{
  CXmlSource(char const* path) : m_kind(Kind::File), m_data(path) {}
  CXmlSource(std::string const& path) : m_kind(Kind::File), m_data(path.c_str()) {}
  ///@}
  /// A text; see XmlText().
  CXmlSource(CXmlText text) : m_kind(Kind::Bytes), m_data(text.text.data()), m_size(text.text.size()) {}
  /// Octets.
  CXmlSource(CBinaryData const& bytes);
  /// The rest of \p stream, which is read to its end.
  CXmlSource(std::istream& stream) : m_kind(Kind::Stream), m_data(&stream) {}

  /// Load the document.
  /// \throws what CXmlDocument::Load() and LoadXmlStream() throw; CQnException "Failed to read the stream".
  void Load(CXmlDocument& document) const;
  /// The path of the file; null if the source is something else.
  char const* GetPath() const { return m_kind == Kind::File ? static_cast<char const*>(m_data) : nullptr; }

 private:
  friend struct XmlSourceAccess;
  enum class Kind { File, Bytes, Stream };

  Kind m_kind;
  void const* m_data;
  std::size_t m_size = 0;
};

/// The context of functions that read documents, unless they get another.
inline CXmlSerializationContext const& DefaultContext() { return CXmlSerializationContext::m_defaultContext; }

/// A global element of a schema.
struct CRootRow {
  char const* name = "";               ///< its local name
  char const* ns = "";                 ///< its namespace; empty for none
  CClassTables const* type = nullptr;  ///< null for an element with any content, which is read into a CElement
  std::uint8_t block = 0;              ///< derivations that an xsi:type must not use
};

/// Read a document whose element is one of the \p count elements at \p roots. The class of the object follows from the
/// element, and from its xsi:type.
/// \throws CQnValidationException "The document element is [%s] instead of [%s]", with the namespace of each in braces
///         in front of its name; what CClassTables::TypeOf(), CXmlSource::Load() and
///         CXmlObjectBase::FromXmlElement() throw.
QUILLON9_API CSmartPtr<CXmlObjectBase> ReadAnyRoot(CXmlSource const& source, CRootRow const* roots, int count,
                                                   CXmlSerializationContext const& ctx);
/// The same for an array.
template <int count>
CSmartPtr<CXmlObjectBase> ReadAnyRoot(CXmlSource const& source, CRootRow const (&roots)[count],
                                      CXmlSerializationContext const& ctx) {
  return ReadAnyRoot(source, roots, count, ctx);
}
/// The same for one element, whose class is \p Class.
template <class Class>
CSmartPtr<Class> ReadRoot(CXmlSource const& source, CRootRow const& root, CXmlSerializationContext const& ctx) {
  return static_cast<Class*>(ReadAnyRoot(source, &root, 1, ctx).Get());
}
/// A new object for a document with this element.
/// \throws CQnInvalidStateException "The type [%s] is abstract".
QUILLON9_API CSmartPtr<CXmlObjectBase> CreateAnyRoot(CRootRow const& root);
/// The same for the class \p Class of the element.
template <class Class>
CSmartPtr<Class> CreateRoot(CRootRow const& root) {
  return static_cast<Class*>(CreateAnyRoot(root).Get());
}

namespace Rows {

/// Short names.
///@{
using XmlSource = CXmlSource;
using Context = CXmlSerializationContext;
using RootRow = CRootRow;
///@}

/// ReadRoot() and CreateRoot() under names that no generated function has.
///@{
template <class Class>
CSmartPtr<Class> RootFrom(CXmlSource const& source, CRootRow const& root, CXmlSerializationContext const& ctx) {
  return ReadRoot<Class>(source, root, ctx);
}
template <class Class>
CSmartPtr<Class> NewRoot(CRootRow const& root) {
  return CreateRoot<Class>(root);
}
///@}

}  // namespace Rows

}  // namespace Quillon9
