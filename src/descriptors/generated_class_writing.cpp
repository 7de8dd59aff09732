// How a generated class is written. The code that writes something also checks the rules for it, so an object that
// breaks one fails in the middle of the output.

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/failure_detail.h"
#include "base/fast_paths.h"
#include "base/nesting_guard.h"
#include "base/text_arguments.h"
#include "base/text_copy.h"
#include "descriptors/kept_form.h"
#include "descriptors/object_form.h"
#include "descriptors/root_prologue.h"
#include "descriptors/table_check.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/descriptors/generic_content.h"
#include "xmlio/checking_writer.h"
#include "xmlio/mixed_texts.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

using namespace Quillon9Data;

void CXmlGeneratedClass::ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                                   bool inChoice) const {
  if (CheckingWriter* const check = XmlWriterAccess::Checking(*writer)) {
    return CheckElement(*check, isRoot, ns, ctx, inChoice);
  }
  try {
    WriteElement(writer, isRoot, ns, ctx, inChoice);
  } catch (CQnException const& cause) {
    throw CQnValidationException(FormatString("Failed to convert the element [%s] to XML", GetElementName().c_str()),
                                 cause);
  }
}

namespace {

void WriteDocumentMarkup(CXmlWriter& writer, CUnknownContent const& unknown, std::size_t childrenInFront) {
  for (CMarkup const& markup : unknown.GetDocumentMarkup()) {
    if (markup.childrenInFront == childrenInFront) writer.WriteMarkup(markup);
  }
}

/// Without those that \p additional, which may be null, has as well.
[[gnu::noinline]] void WriteUnknownAttributes(CXmlWriter& writer, CUnknownContent const& unknown,
                                              CAttributeCol const* additional, CXmlSerializationContext const& ctx) {
  for (CAttribute const& attribute : *unknown.GetAttributes()) {
    bool const isThere =
        additional != nullptr && additional->Find(attribute.GetName().c_str(), attribute.GetNamespace().c_str());
    if (!isThere) CXmlObjectBase::ToXml_Int(&attribute, &writer, false, "", ctx, false);
  }
}

}  // namespace

void CXmlGeneratedClass::WriteElement(CXmlWriter* writer, bool isRoot, char const* ns,
                                      CXmlSerializationContext const& ctx, bool inChoice) const {
  if constexpr (kChecksTables) CheckTablesOnce(*this);
  bool const hasTag = GetClassInfo()->m_elementType == XmlElementType_Element;
  NestingGuard const guard(hasTag);
  if (m_form != nullptr && m_form->unknown != nullptr && hasTag) {
    return WriteWithUnknown(writer, isRoot, ns, ctx, inChoice);
  }
  if (hasTag) WriteStart(writer, isRoot, ns, ctx, inChoice);
  INillable const* const nillable = AsNillable(&XmlWriterAccess::PlainTypes(*writer));
  if (nillable != nullptr && nillable->IsNil()) {
    writer->WriteAttributeNil();
  } else {
    ContentToXml_Int(writer, ctx, inChoice);
  }
  if (hasTag) writer->WriteEndElement();
}

namespace {

/// The items of an object in the order in which they are written.
class UnknownItems : public InsertedItems {
 public:
  UnknownItems(CUnknownContent const& unknown, CXmlSerializationContext const& ctx)
      : m_next(unknown.GetItems().begin()), m_end(unknown.GetItems().end()), m_ctx(ctx) {}

  CMarkup const* Next() const override { return m_next != m_end ? &*m_next : nullptr; }
  void WriteNext(CXmlWriter& writer) override {
    CUnknownItem const& item = *m_next++;
    if (item.element) {
      CXmlObjectBase::ToXml_Int(item.element.Get(), &writer, false, "", m_ctx, false);
    } else {
      writer.WriteMarkup(item);
    }
  }

 private:
  std::vector<CUnknownItem>::const_iterator m_next;
  std::vector<CUnknownItem>::const_iterator const m_end;
  CXmlSerializationContext const& m_ctx;
};

}  // namespace

// The same for an object that has unknown content, apart, so that the others do not pay for it.
[[gnu::noinline]] void CXmlGeneratedClass::WriteWithUnknown(CXmlWriter* writer, bool isRoot, char const* ns,
                                                            CXmlSerializationContext const& ctx, bool inChoice) const {
  CUnknownContent const& unknown = *m_form->unknown;
  WriteStart(writer, isRoot, ns, ctx, inChoice);
  INillable const* const nillable = AsNillable(&XmlWriterAccess::PlainTypes(*writer));
  bool const isNil = nillable != nullptr && nillable->IsNil();
  if (isNil) writer->WriteAttributeNil();
  if (!unknown.GetItems().empty()) {
    if (GetClassInfo()->m_textPropertyIndex != -1) writer->PreserveSpace();
    static auto const& noPlaces = *new std::vector<std::size_t>();
    UnknownItems items(unknown, ctx);
    MixedTexts inserted(*writer, {}, noPlaces, &items);
    if (!isNil) ContentToXml_Int(writer, ctx, inChoice);
    inserted.Finish();
  } else if (!isNil) {
    ContentToXml_Int(writer, ctx, inChoice);
  }
  writer->WriteEndElement();
  if (isRoot) WriteDocumentMarkup(*writer, unknown, 1);
}

void CXmlGeneratedClass::WriteStart(CXmlWriter* writer, bool isRoot, char const* ns,
                                    CXmlSerializationContext const& ctx, bool inChoice) const {
  if (isRoot) {
    if (m_form != nullptr && m_form->unknown != nullptr) WriteDocumentMarkup(*writer, *m_form->unknown, 0);
    WriteRootPrologue(*writer, GetUnknownContent(), ctx);
  }
  KeptForm::Locations locations;
  if (isRoot && ctx.GetKeepForm() && GetDocumentForm() != nullptr) {
    locations = KeptForm::LocationsFor(*this, *writer, ctx);
  }
  std::string text = std::move(XmlWriterAccess::NamespaceText(*writer));  // reuses its memory
  std::string_view const wanted = OrEmpty(ns);
  if (!kNamespaceText.IsOn()) text = std::string();
  if (!IsSameText(text, wanted)) text = wanted;  // neighbours usually share it
  writer->WriteStartElement(GetElementName(), text);
  XmlWriterAccess::NamespaceText(*writer) = std::move(text);
  if (m_form != nullptr && m_form->unknown != nullptr) m_form->unknown->GetAttributes()->WritePrefixes(*writer);
  // Does not create the collection if there is none: writing changes no context, because threads may share it.
  CAttributeCol const* const additional = isRoot ? ctx.FindAdditionalRootAttributes() : nullptr;
  if (additional != nullptr) CXmlObjectBase::ToXml_Int(additional, writer, false, ns, ctx, inChoice);
  AttributesToXml_Int(writer, ctx);
  if (m_form != nullptr && m_form->unknown != nullptr) {
    WriteUnknownAttributes(*writer, *m_form->unknown, additional, ctx);
  }
  if (!locations.empty()) KeptForm::Write(locations, *writer);
  if (isRoot && !ctx.GetInLineSchema().empty()) writer->WriteInlineSchema(ctx.GetInLineSchema());
}

void CXmlGeneratedClass::ContentToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx,
                                          bool inChoice) const {
  CParentElementInfo const& info = *GetClassInfo();
  switch (info.m_groupType) {
    case XmlElementGroupType_Sequence: ProcessElementSeqToXml(ctx, GetClassElementInfo(), writer); break;
    case XmlElementGroupType_Choice: ProcessElementChoiceToXml(ctx, GetClassElementInfo(), writer, inChoice); break;
    case XmlElementGroupType_All: ProcessElementAllToXml(ctx, GetClassElementInfo(), writer); break;
    default: throw CQnException("Unknown XML Group Type");
  }
  if (info.m_textPropertyIndex == -1) return;
  QnVariant text;
  ReadProperty(info.m_textPropertyIndex, text);
  bool const hasItems = m_form != nullptr && m_form->unknown != nullptr && !m_form->unknown->GetItems().empty();
  MixedTexts* const items = hasItems ? MixedTexts::Of(*writer) : nullptr;
  if (items == nullptr) return writer->WriteString(text.GetString(), text.GetItemType());
  bool const isOfSameSize = text.GetString().size() == m_form->textSize;
  items->WriteText(text.GetString(), text.GetItemType(), isOfSameSize);
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const {
  try {
    CParentElementInfo const& info = *GetClassInfo();
    NestingGuard const guard(false);  // the attributes of groups nest without elements
    if (ctx.GetWriteTypeAttribute() && info.m_typeAttributeWanted && info.m_typeName != GetElementName()) {
      writer->WriteAttributeType(info.m_typeNamespace, info.m_typeName, ItemType_string);
    }
    ProcessAttributesToXml(ctx, GetClassElementInfo(), GetClassAttributeInfo(), writer);
  } catch (CQnException const& cause) {
    throw CQnException("Failed to convert attributes to XML", cause);
  }
}

void CXmlGeneratedClass::ProcessAttributesToXml(CXmlSerializationContext const& ctx, CElementInfo** elements,
                                                CAttributeInfo** attributes, CXmlWriter* writer) const {
  if (CheckingWriter* const check = XmlWriterAccess::Checking(*writer)) {
    return CheckAttributes(*check, ctx, elements, attributes);
  }
  for (; *attributes != nullptr; ++attributes) (*attributes)->AttributeToXml(ctx, this, writer);
  for (; *elements != nullptr; ++elements) (*elements)->PseudoChildAttributeToXml(ctx, this, writer);
}

void CXmlGeneratedClass::ProcessElementSeqToXml(CXmlSerializationContext const& ctx, CElementInfo** elements,
                                                CXmlWriter* writer) const {
  for (; *elements != nullptr; ++elements) (*elements)->ElementToXml(ctx, this, writer);
}

// Writes in table order, whatever the order in which the members were read.
void CXmlGeneratedClass::ProcessElementAllToXml(CXmlSerializationContext const& ctx, CElementInfo** elements,
                                                CXmlWriter* writer) const {
  for (; *elements != nullptr; ++elements) (*elements)->ElementToXml(ctx, this, writer);
}

void CXmlGeneratedClass::ProcessElementChoiceToXml(CXmlSerializationContext const& ctx, CElementInfo** elements,
                                                   CXmlWriter* writer, bool inChoice) const {
  for (; *elements != nullptr; ++elements) {
    if ((*elements)->ElementToXml(ctx, this, writer)) return;
  }
  RequireChoice(ctx, inChoice);
}

// Nothing of this choice is set.
void CXmlGeneratedClass::RequireChoice(CXmlSerializationContext const& ctx, bool inChoice) const {
  if (DoesElementContainOptionalElements() || inChoice || ctx.GetIgnoreMissingChoice()) return;
  throw OfKind(
      FailureKind_EmptyChoice,
      CQnValidationException(
          "This element is a choice, and as such must have at one (and only one) valid item, currently there are none "
          "set"));
}

}  // namespace Quillon9
