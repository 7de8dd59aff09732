#include "quillon9/descriptors/class_factory.h"

#include "quillon9/xmlio/document.h"

namespace Quillon9 {

namespace {

std::string const& TypeAttribute(CXmlElement const& element) {
  static auto const& name = *new std::string("type");
  static auto const& ns = *new std::string("http://www.w3.org/2001/XMLSchema-instance");
  return element.GetAttribute(name, ns);
}

}  // namespace

CClassfactoryBase::~CClassfactoryBase() = default;

std::string CClassfactoryBase::GetElementType(CXmlElement* element) {
  std::string const& value = TypeAttribute(*element);
  std::size_t const colon = value.find(':');
  return colon == std::string::npos ? value : value.substr(colon + 1);
}

std::string CClassfactoryBase::GetElementTypeNamespaceUri(CXmlElement* element) {
  std::string const& value = TypeAttribute(*element);
  std::size_t const colon = value.find(':');
  if (colon == std::string::npos) return element->GetNamespaceURI();
  if (element->GetDocument() == nullptr) return element->GetNamespaceURI();
  std::string ns = element->GetDocument()->LookupNamespaceFromAlias(value.substr(0, colon).c_str());
  return ns.empty() ? element->GetNamespaceURI() : ns;
}

}  // namespace Quillon9
