// The form of a document, which its document element keeps and is written in.

#include "quillon9/xmlio/document_form.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "descriptors/form_access.h"
#include "descriptors/kept_form.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/form_scan.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

CDocumentForm const* CXmlGeneratedClass::GetDocumentForm() const {
  return m_form != nullptr ? m_form->document.get() : nullptr;
}

void CXmlGeneratedClass::SetDocumentForm(CDocumentForm form) {
  FormAccess::ToChange(*this).document = std::make_unique<CDocumentForm>(std::move(form));
}

void CXmlGeneratedClass::DropDocumentForm() {
  if (m_form != nullptr) m_form->document.reset();
}

void KeptForm::Keep(CXmlElement const& root, CXmlObjectBase& object) {
  CXmlDocument const* const document = root.GetDocument();
  auto* const holder = dynamic_cast<CXmlGeneratedClass*>(&object);
  if (holder == nullptr || document == nullptr || document->GetDocumentElement() != &root) return;
  holder->SetDocumentForm(FormScan::Of(*document));
}

namespace {

std::string const& SchemaInstance() {
  static auto const& uri = *new std::string("http://www.w3.org/2001/XMLSchema-instance");
  return uri;
}

/// Notes the attributes of xsi that an object writes.
class AttributeNotes : public CXmlTextWriter {
 public:
  explicit AttributeNotes(CTextStream& unused) : CXmlTextWriter(unused) {}

  bool Has(char const* name) const { return m_names.count(name) != 0; }

  void WriteAttributeString(std::string const& localName, std::string const& namespaceUri, std::string const&,
                            ItemType) override {
    if (namespaceUri == SchemaInstance()) m_names.insert(localName);
  }

 private:
  std::set<std::string> m_names;
};

}  // namespace

KeptForm::Locations KeptForm::LocationsFor(CXmlGeneratedClass const& object, CXmlWriter& writer,
                                           CXmlSerializationContext const& ctx) {
  Locations locations;
  CDocumentForm const& form = *object.GetDocumentForm();
  if (form.schemaLocation) locations.emplace_back("schemaLocation", *form.schemaLocation);
  if (form.noNamespaceSchemaLocation) {
    locations.emplace_back("noNamespaceSchemaLocation", *form.noNamespaceSchemaLocation);
  }
  if (locations.empty() || ctx.GetInLineSchema().find("chemaLocation") != std::string::npos) return {};
  CTextStream unused;
  AttributeNotes notes(unused);
  notes.Open();
  notes.WriteStartElement(object.GetElementName(), "");
  CXmlObjectBase::AttributesToXml_Int(&object, &notes, ctx);
  CAttributeCol const* const additional = ctx.FindAdditionalRootAttributes();
  auto const isThere = [&](Locations::value_type const& location) {
    if (notes.Has(location.first)) return true;
    return additional != nullptr && additional->Find(location.first, SchemaInstance().c_str());
  };
  locations.erase(std::remove_if(locations.begin(), locations.end(), isThere), locations.end());
  if (XmlWriterAccess::IsFreeForDocument(writer, "xsi", SchemaInstance())) writer.AddNamespace("xsi", SchemaInstance());
  return locations;
}

void KeptForm::Write(Locations const& locations, CXmlWriter& writer) {
  for (auto const& [name, value] : locations) {
    writer.WriteAttributeString(name, SchemaInstance(), value, ItemType_string);
  }
}

}  // namespace Quillon9
