#include "xmlio/mixed_texts.h"

#include <limits>
#include <string>
#include <utility>

#include "text/utf8_text.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

}  // namespace

MixedTexts::MixedTexts(CXmlWriter& writer, std::string_view text, std::vector<std::size_t> const& places,
                       InsertedItems* items)
    : m_writer(writer), m_text(text), m_places(places), m_items(items), m_outer(XmlWriterAccess::Texts(writer)) {
  writer.WriteString({}, ItemType_string);  // makes the element the open one of writers that start it late
  m_element = XmlWriterAccess::OpenElement(writer);
  if (m_element == nullptr) return;
  if (m_outer != nullptr && m_outer->m_element == m_element) m_items = std::exchange(m_outer->m_items, nullptr);
  XmlWriterAccess::SetMixed(*m_element, true);
  XmlWriterAccess::Texts(writer) = this;
}

MixedTexts::~MixedTexts() {
  if (m_element == nullptr) return;
  XmlWriterAccess::SetMixed(*m_element, false);
  XmlWriterAccess::Texts(m_writer) = m_outer;
}

MixedTexts* MixedTexts::Of(CXmlWriter& writer) {
  MixedTexts* const innermost = XmlWriterAccess::Texts(writer);
  return innermost != nullptr && innermost->m_element == XmlWriterAccess::OpenElement(writer) ? innermost : nullptr;
}

void MixedTexts::BeforeChild() {
  if (m_items != nullptr) WriteItems(m_child, kAll);
  WriteUpTo(m_child < m_places.size() ? m_places[m_child] : m_text.size());
  ++m_child;
}

void MixedTexts::Finish() {
  if (m_items != nullptr) WriteItems(kAll, kAll);
  WriteUpTo(m_text.size());
}

// The children that an item begins are not those that are counted.
void MixedTexts::WriteItems(std::size_t childrenInFront, std::size_t textInFront) {
  if (m_items == nullptr) return;
  while (CMarkup const* const next = m_items->Next()) {
    if (next->childrenInFront > childrenInFront || next->textInFront > textInFront) return;
    WriteUpTo(next->textInFront);
    if (m_element != nullptr) XmlWriterAccess::SetMixed(*m_element, false);
    m_items->WriteNext(m_writer);
    if (m_element != nullptr) XmlWriterAccess::SetMixed(*m_element, true);
  }
}

void MixedTexts::WriteText(std::string const& text, ItemType type, bool hasItemsInside) {
  m_text = text;
  WriteItems(m_child, hasItemsInside && !text.empty() ? text.size() - 1 : 0);
  if (m_written == 0) {
    m_writer.WriteString(text, type);
  } else {
    WriteUpTo(text.size());
  }
  m_text = {};
}

// The text may have changed since the places were noted.
void MixedTexts::WriteUpTo(std::size_t place) {
  place = Utf8Text::OutsideCharacters(m_text, place);
  if (place <= m_written) return;
  std::string const run(m_text.substr(m_written, place - m_written));
  m_written = place;
  m_writer.WriteString(run, ItemType_string);
}

}  // namespace Quillon9
