// Comments and processing instructions. Their strings are in two tables of their own (Rec. ITU-T X.891, 8.4), which are
// kept only for a document that keeps the comments and processing instructions.

#include <string>
#include <utility>

#include "fastinfoset/reader.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

/// Read a name that is neither one of the tree nor a prefix; empty if nobody needs it.
std::string CFastInfosetReader::OtherName() {
  if (m_keepsMarkup) return std::string(m_otherNames.At(IdentifyingStringOrIndex(m_otherNames)).GetView());
  SkipIdentifyingStringsOrIndices(1);
  return {};
}

/// Read a string that is neither text nor a value; empty if nobody needs it.
std::string CFastInfosetReader::OtherString() {
  if (!m_keepsMarkup) {
    SkipNonIdentifyingStringOrIndex();
    return {};
  }
  std::string text(NonIdentifyingStringOrIndexBit1(m_otherStrings));
  m_document.CountContent(text.size());
  return text;
}

void CFastInfosetReader::Comment() {
  std::string text = OtherString();
  if (m_keepsMarkup) XmlNodeAccess::AddMarkup(m_document, {}, std::move(text));
}

void CFastInfosetReader::ProcessingInstruction() {
  std::string target = OtherName();
  std::string text = OtherString();
  if (m_keepsMarkup) XmlNodeAccess::AddMarkup(m_document, std::move(target), std::move(text));
}

}  // namespace Quillon9
