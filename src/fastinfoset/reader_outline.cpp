#include "base/failure_detail.h"
#include "fastinfoset/reader.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

bool CFastInfosetReader::ParseWithOutline(DocumentOutline& outline) {
  m_outline = &outline;
  return Parse();
}

// Like the plain loop of ElementBit2(). What an item opens and closes shows in the number of open elements, so that
// the operations themselves need not report it.
void CFastInfosetReader::OutlineElement(std::uint32_t octet) {
  std::size_t open = 0;
  do {
    std::size_t const at = m_source.GetOffset() - 1;
    bool const isStart = octet < fi::kCharacterChunk;
    try {
      if (open == 0) {
        StartElement(octet);
      } else {
        ReadContent(m_document.GetOpenElement(), octet);
      }
    } catch (CQnException const&) {  // in its attributes
      if (m_document.GetOpenElementCount() > open) FollowStart(open, at);
      throw;
    }
    if (isStart) FollowStart(open++, at);
    FollowEnds(open, isStart ? m_source.GetOffset() - 1 : at);
    if (open > 0) octet = m_source.Octet();
  } while (open > 0);
}

/// An element without content is closed again by the end of its attributes.
void CFastInfosetReader::FollowStart(std::size_t open, std::size_t at) {
  CXmlElement const* element = m_document.GetOpenElement();
  if (m_document.GetOpenElementCount() == open) {
    element = element != nullptr ? XmlNodeAccess::LastChild(*element) : m_document.GetDocumentElement();
  }
  Learn(m_elementNames, m_knownElements, m_elementSpellings);
  m_outline->Start(Spelled(m_elementSpellings, element->GetNames()), {static_cast<std::uint32_t>(at), 0, 0});
}

void CFastInfosetReader::FollowEnds(std::size_t& open, std::size_t at) {
  for (; open > m_document.GetOpenElementCount(); --open) m_outline->End({static_cast<std::uint32_t>(at), 0, 0});
}

/// Names with a prefix are spelled out before they are used, so the last spelling of a name counts.
void CFastInfosetReader::Learn(ReadNames const& table, std::size_t& known, Spellings& spellings) {
  for (; known < table.GetSize(); ++known) {
    ReadName const& each = table.At(known + 1);
    if (each.prefix == 0 || each.prefix > m_prefixes.GetSize()) continue;
    CXmlName const* const name = SharedName(each);
    std::string const prefix(m_prefixes.At(each.prefix).GetView());
    spellings[{name->namespaceUri, name->localName}] = prefix + ':' + name->localName;
  }
}

std::string CFastInfosetReader::Spelled(Spellings const& spellings, CXmlName const& name) {
  auto const found = spellings.find({name.namespaceUri, name.localName});
  return found != spellings.end() ? found->second : name.localName;
}

std::string CFastInfosetReader::GetSpelledAttribute(CXmlName const& name) {
  Spellings spellings;
  std::size_t known = 0;
  Learn(m_attributeNames, known, spellings);
  return Spelled(spellings, name);
}

}  // namespace Quillon9
