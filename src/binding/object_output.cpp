// The Fast Infoset output operations of CXmlObjectBase. They are in a file of their own because they depend on the
// writer and the streams.

#include "binding/lost_text.h"
#include "binding/text_scope.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/fastinfoset/writer.h"
#include "quillon9/xmlio/streams.h"

namespace Quillon9 {

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl decl, CXmlSerializationContext const& ctx,
                                                CompressionType compression) const {
  Utf8Text::Scope const scope(TextUse(*this, ctx));
  CBinaryStream stream;
  CFastInfosetWriter writer(*ctx.GetFIContext(), stream);
  LossesOfWriting losses(ctx, &writer);
  writer.Open();
  writer.WriteStartDocument(decl);
  std::string const targetNamespace = GetTargetNamespace();
  ToXml_Int(&writer, true, targetNamespace.c_str(), ctx, false);
  writer.WriteEndDocument();
  writer.Close();
  losses.Tell();
  CBinaryData data = stream.GetBinaryStream();
  if (compression != CompressionType_None) CQnZip::CompressData(data, compression);
  return data;
}

void CXmlObjectBase::ToFastInfosetFile(char const* path, FInfoDecl decl, CXmlSerializationContext const& ctx,
                                       CompressionType compression) const {
  if (compression == CompressionType_ZLib) {
    throw CQnException("ZLIB Compression only available for To Stream methods.");
  }
  CFileBinaryStream(path, XmlEncoding_Default, ToFastInfosetStream(decl, ctx, compression)).ToFile();
}

}  // namespace Quillon9
