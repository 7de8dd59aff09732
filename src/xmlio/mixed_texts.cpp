#include "xmlio/mixed_texts.h"

#include <algorithm>
#include <string>

#include "xmlio/writer_access.h"

namespace Quillon9 {

MixedTexts::MixedTexts(CXmlWriter& writer, std::string_view text, std::vector<std::size_t> const& places)
    : m_writer(writer), m_text(text), m_places(places), m_outer(XmlWriterAccess::Texts(writer)) {
  writer.WriteString({}, ItemType_string);  // makes the element the open one of writers that start it late
  m_element = XmlWriterAccess::OpenElement(writer);
  if (m_element == nullptr) return;
  XmlWriterAccess::SetMixed(*m_element, true);
  XmlWriterAccess::Texts(writer) = this;
}

MixedTexts::~MixedTexts() {
  if (m_element == nullptr) return;
  XmlWriterAccess::SetMixed(*m_element, false);
  XmlWriterAccess::Texts(m_writer) = m_outer;
}

void MixedTexts::BeforeChild() {
  WriteUpTo(m_child < m_places.size() ? m_places[m_child] : m_text.size());
  ++m_child;
}

void MixedTexts::WriteUpTo(std::size_t place) {
  place = std::min(place, m_text.size());
  if (place <= m_written) return;
  std::string const run(m_text.substr(m_written, place - m_written));
  m_written = place;
  m_writer.WriteString(run, ItemType_string);
}

}  // namespace Quillon9
