// The form of a document, which its document element keeps and is written in.

#include "quillon9/xmlio/document_form.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "descriptors/form_access.h"
#include "descriptors/kept_form.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/descriptors/generic_content.h"
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

bool HasLocations(CDocumentForm const* form) {
  return form != nullptr && (form->schemaLocation || form->noNamespaceSchemaLocation);
}

}  // namespace

void KeptForm::BindPrefix(CDocumentForm const* form, CXmlWriter& writer) {
  if (!HasLocations(form) || !XmlWriterAccess::IsFreeForDocument(writer, "xsi", SchemaInstance())) return;
  writer.AddNamespace("xsi", SchemaInstance());
}

void KeptForm::WriteLocations(CDocumentForm const* form, CAttributeCol const* additional, CXmlWriter& writer,
                              CXmlSerializationContext const& ctx) {
  if (!HasLocations(form) || ctx.GetInLineSchema().find("chemaLocation") != std::string::npos) return;
  auto const write = [&](char const* name, std::optional<std::string> const& value) {
    bool const isThere = additional != nullptr && additional->Find(name, SchemaInstance().c_str());
    if (!isThere && value) writer.WriteAttributeString(name, SchemaInstance(), *value, ItemType_string);
  };
  write("schemaLocation", form->schemaLocation);
  write("noNamespaceSchemaLocation", form->noNamespaceSchemaLocation);
}

}  // namespace Quillon9
