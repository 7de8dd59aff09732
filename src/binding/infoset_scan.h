#pragma once

#include <string>

#include "fastinfoset/reader.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/document_outline.h"

namespace Quillon9 {

/// Finds the places of elements in a Fast Infoset document by reading it into a second tree. Names come as the document
/// spells them, in the encoding of text in memory.
class InfosetScan {
 public:
  /// The input of \p document, which must outlive this object.
  explicit InfosetScan(CXmlDocument const& document);

  /// Add the elements to \p outline, up to a fault of the document. The elements that are open there stay so. Returns
  /// false if the input is in another format.
  bool Outline(DocumentOutline& outline);
  /// After Outline(): the name of an attribute.
  std::string NameOf(CXmlAttribute const& attribute);

 private:
  CXmlDocument m_copy;
  CFastInfosetReader m_reader;
};

}  // namespace Quillon9
