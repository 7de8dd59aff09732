// The Fast Infoset output operations of CXmlObjectBase. They are in a file of their own because they depend on the
// writer and the streams.

#include "binding/lost_text.h"
#include "binding/text_scope.h"
#include "binding/write_failure.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/fastinfoset/writer.h"
#include "quillon9/xmlio/document_form.h"
#include "quillon9/xmlio/streams.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

void WriteFailure::AddPlaceInInfoset(CQnException& failure, CXmlObjectBase const& object, FInfoDecl decl,
                                     CXmlSerializationContext const& ctx) noexcept {
  try {
    TextScope const scope(object, ctx);
    CBinaryStream stream;
    CFastInfosetWriter encoder(*ctx.GetFIContext(), stream);
    encoder.Open();
    encoder.WriteStartDocument(decl);
    AddPlace(failure, object, ctx, encoder);
  } catch (...) {  // the failure that ended the write counts
  }
}

namespace {

/// The declaration that the form of \p object has, or \p wanted if it has no form.
FInfoDecl DeclarationFor(CXmlObjectBase const& object, FInfoDecl wanted, CXmlSerializationContext const& ctx) {
  CDocumentForm const* const form = ctx.GetKeepForm() ? object.GetDocumentForm() : nullptr;
  if (form == nullptr) return wanted;
  auto const has = [&](char const* part) { return form->declaration.find(part) != std::string::npos; };
  if (form->declaration.empty()) return FInfoDecl_None;
  bool const isLater = has("1.1");
  if (!has("standalone")) return isLater ? FInfoDecl_Version11 : FInfoDecl_Version10;
  if (has("yes")) return isLater ? FInfoDecl_Version11_StandaloneYes : FInfoDecl_Version10_StandaloneYes;
  return isLater ? FInfoDecl_Version11_StandaloneNo : FInfoDecl_Version10_StandaloneNo;
}

}  // namespace

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl decl, CXmlSerializationContext const& ctx,
                                                CompressionType compression) const try {
  TextScope const scope(*this, ctx);
  CheckingWriter::Pause const pause;
  CBinaryStream stream;
  CFastInfosetWriter writer(*ctx.GetFIContext(), stream);
  LossesOfWriting losses(ctx);
  writer.Open();
  writer.WriteStartDocument(DeclarationFor(*this, decl, ctx));
  std::string const targetNamespace = GetTargetNamespace();
  ToXml_Int(&writer, true, targetNamespace.c_str(), ctx, false);
  writer.WriteEndDocument();
  writer.Close();
  losses.Tell(*this);
  CBinaryData data = stream.GetBinaryStream();
  if (compression != CompressionType_None) CQnZip::CompressData(data, compression);
  return data;
} catch (CQnException& failure) {
  WriteFailure::AddPlaceInInfoset(failure, *this, decl, ctx);
  throw;
}

void CXmlObjectBase::ToFastInfosetFile(char const* path, FInfoDecl decl, CXmlSerializationContext const& ctx,
                                       CompressionType compression) const {
  if (compression == CompressionType_ZLib) {
    throw CQnException("ZLIB Compression only available for To Stream methods.");
  }
  CFileBinaryStream(path, XmlEncoding_Default, ToFastInfosetStream(decl, ctx, compression)).ToFile();
}

}  // namespace Quillon9
