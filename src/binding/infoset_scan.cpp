#include "binding/infoset_scan.h"

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

CXmlDocument& WithInputOf(CXmlDocument const& document, CXmlDocument& copy) {
  XmlNodeAccess::LendInput(copy, document);
  return copy;
}

}  // namespace

InfosetScan::InfosetScan(CXmlDocument const& document)
    : m_copy(document.GetContext()), m_reader(*document.GetContext().GetFIContext(), WithInputOf(document, m_copy)) {}

bool InfosetScan::Outline(DocumentOutline& outline) try {
  return m_reader.ParseWithOutline(outline);
} catch (CQnException const&) {  // the first read has reported it
  return true;
}

std::string InfosetScan::NameOf(CXmlAttribute const& attribute) {
  return m_reader.GetSpelledAttribute(XmlNodeAccess::NameOf(attribute));
}

}  // namespace Quillon9
