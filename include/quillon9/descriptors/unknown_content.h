#pragma once

#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/export.h"
#include "quillon9/xmlio/markup.h"

namespace Quillon9 {

/// An element that no descriptor took, or a comment or processing instruction.
struct CUnknownItem : CMarkup {
  CSmartPtr<CElement> element;  ///< null for a comment or processing instruction
};

/// What an object of a generated class keeps of its element although its class does not know it; see
/// CXmlSerializationContext::SetKeepUnknown(). Belongs to its object and, like that, to one thread while it changes.
class QUILLON9_API CUnknownContent {
 public:
  CUnknownContent();
  ~CUnknownContent();
  CUnknownContent(CUnknownContent const&) = delete;
  CUnknownContent& operator=(CUnknownContent const&) = delete;

  /// The elements, comments and processing instructions in the order in which they are written, which the program may
  /// change. CMarkup::childrenInFront of each is the number of elements that the object itself writes in front of it;
  /// where the object writes fewer, it follows all of them.
  ///@{
  std::vector<CUnknownItem>& GetItems() { return m_items; }
  std::vector<CUnknownItem> const& GetItems() const { return m_items; }
  ///@}
  /// The comments and processing instructions around the document element, if this belongs to its object:
  /// CMarkup::childrenInFront is 0 in front of the document element and 1 after it.
  ///@{
  std::vector<CMarkup>& GetDocumentMarkup() { return m_documentMarkup; }
  std::vector<CMarkup> const& GetDocumentMarkup() const { return m_documentMarkup; }
  ///@}
  /// The attributes that no descriptor took, written after those of the class. Never null.
  CAttributeCol* GetAttributes() const { return m_attributes.Get(); }
  /// Whether there is nothing.
  bool IsEmpty() const;

 private:
  std::vector<CUnknownItem> m_items;
  std::vector<CMarkup> m_documentMarkup;
  CSmartPtr<CAttributeCol> m_attributes;
};

}  // namespace Quillon9
