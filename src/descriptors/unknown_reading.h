#pragma once

#include <unordered_set>
#include <utility>
#include <vector>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/descriptors/unknown_content.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// What nothing has taken of an element that is read into an object of a generated class, groups without a tag
/// included. It exists while the element is read, under a context that keeps unknown content.
class UnknownReading {
 public:
  /// \p element is borrowed. This object is the current one of its thread until it is destroyed.
  explicit UnknownReading(CXmlElement const& element) : m_element(element), m_outer(t_current) { t_current = this; }
  ~UnknownReading() { t_current = m_outer; }
  UnknownReading(UnknownReading const&) = delete;
  UnknownReading& operator=(UnknownReading const&) = delete;

  /// The current one if it belongs to \p element and \p ctx keeps unknown content; otherwise null.
  static UnknownReading* Of(CXmlElement const* element, CXmlSerializationContext const& ctx) {
    bool const isOfElement = ctx.GetKeepUnknown() && t_current != nullptr && &t_current->m_element == element;
    return isOfElement ? t_current : nullptr;
  }

  /// Something has taken \p attribute.
  void NoteAttribute(CXmlAttribute const& attribute) { m_attributes.insert(&attribute); }
  /// Only these children, in document order, have been taken. Without this call, all of them have.
  void NoteChildren(std::vector<CXmlElement const*> taken) {
    m_children = std::move(taken);
    m_isAll = false;
  }
  /// Let \p object, which was read from the element, keep the rest.
  /// \throws CQnException where an element is nested too deeply, or when the content exceeds the limit.
  void KeepIn(CXmlGeneratedClass& object, CXmlSerializationContext const& ctx) const;

 private:
  bool HasRest() const;
  bool IsUnknown(CXmlAttribute const& attribute) const;
  bool IsDocumentElement() const;
  void KeepAttributes(CUnknownContent& unknown) const;
  void KeepChildren(CUnknownContent& unknown, CXmlSerializationContext const& ctx) const;

  static inline thread_local UnknownReading* t_current = nullptr;

  CXmlElement const& m_element;
  UnknownReading* const m_outer;
  bool m_isAll = true;
  std::vector<CXmlElement const*> m_children;
  std::unordered_set<CXmlAttribute const*> m_attributes;
};

}  // namespace Quillon9
