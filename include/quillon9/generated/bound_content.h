#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

struct BoundContent;  // for internal use

/// One piece of the content of an object of a generated class: a run of its text, or an element inside it, which is an
/// object, a generic element or a value. An item owns nothing: it is valid as long as the object and its members do not
/// change.
class QUILLON9_API CBoundItem {
 public:
  /// Return whether this is a run of text.
  bool IsText() const { return m_holder == nullptr; }
  /// Return the run of text; empty for an element.
  std::string_view GetText() const { return m_text; }

  /// Return the local name of the element; empty for a run of text.
  std::string GetName() const;
  /// Return the object of the element, which may be a CElement; null for a value, and for a run of text.
  CXmlObjectBase* GetObject() const { return m_object; }
  /// Return the same as \p T; null if it is not one.
  template <class T>
  T* As() const {
    return dynamic_cast<T*>(m_object);
  }
  /// Return the text of a value as it is written; empty for other items. O(n) for a value among n of one member.
  /// \throws what writing that member throws.
  std::string GetValue() const;

  /// Return the object that has the member: the one whose content this is, or a round of a repeated group in it. Null
  /// for a run of text.
  CBoundObject* GetHolder() const { return m_holder; }
  /// Return the number of the member's property, and of the element among those of a repeated member, from 0.
  ///@{
  int GetProperty() const { return m_property; }
  int GetIndex() const { return m_index; }
  ///@}

 private:
  friend struct BoundContent;
  CBoundItem() = default;

  std::string_view m_text;
  CBoundObject* m_holder = nullptr;
  CXmlObjectBase* m_object = nullptr;
  int m_property = -1;
  int m_index = 0;
};

/// The content of an object in the order in which it is written. No run of text is empty.
using CBoundContent = std::vector<CBoundItem>;

}  // namespace Quillon9
