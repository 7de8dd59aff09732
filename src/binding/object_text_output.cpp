// The text output operations of CXmlObjectBase: each creates a text writer on a stream and passes it to ToXml_Int. They
// are in a file of their own because they depend on the writer and the streams.

#include "binding/lost_text.h"
#include "binding/text_scope.h"
#include "binding/write_failure.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

namespace {

void WriteTo(CTextStream& stream, CXmlObjectBase const& object, bool includeHeader, bool formatted, EOLType eol,
             CXmlSerializationContext const& ctx) {
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(formatted);
  writer.SetEOLType(eol);
  if (includeHeader) writer.WriteStartDocument();
  std::string const targetNamespace = object.GetTargetNamespace();
  CXmlObjectBase::ToXml_Int(&object, &writer, true, targetNamespace.c_str(), ctx, false);
  writer.Close();
}

}  // namespace

std::string CXmlObjectBase::ToXml(bool includeHeader, bool formatted, EOLType eol,
                                  CXmlSerializationContext const& ctx) const try {
  TextScope const scope(*this, ctx);
  CheckingWriter::Pause const pause;
  CTextStream stream;
  WriteTo(stream, *this, includeHeader, formatted, eol, ctx);
  std::string text = stream.CopyText();
  Utf8Text::Check(text);
  return text;
} catch (CQnException& failure) {
  WriteFailure::AddPlace(failure, *this, ctx);
  throw;
}

CBinaryData CXmlObjectBase::ToXmlStream(bool includeHeader, bool formatted, XmlEncoding encoding, EOLType eol,
                                        CXmlSerializationContext const& ctx, CompressionType compression) const try {
  TextScope const scope(*this, ctx);
  CheckingWriter::Pause const pause;
  CTextStream stream(encoding);
  WriteTo(stream, *this, includeHeader, formatted, eol, ctx);
  LossesOfWriting losses(ctx);
  CBinaryData data = stream.GetEncodedStream();
  losses.Tell(*this);
  if (compression != CompressionType_None) CQnZip::CompressData(data, compression);
  return data;
} catch (CQnException& failure) {
  WriteFailure::AddPlace(failure, *this, ctx);
  throw;
}

void CXmlObjectBase::ToXmlFile(char const* path, bool includeHeader, bool formatted, XmlEncoding encoding, EOLType eol,
                               CXmlSerializationContext const& ctx, CompressionType compression) const {
  if (compression == CompressionType_ZLib) {
    throw CQnException("ZLIB Compression only available for To Stream methods.");
  }
  if (!ASYNC_TOXMLFILE || compression == CompressionType_GZip) {
    // Qualified, so that a derived class that overrides the stream form does not change the file form.
    CBinaryData const data = CXmlObjectBase::ToXmlStream(includeHeader, formatted, encoding, eol, ctx, compression);
    CFileBinaryStream(path, encoding, data).ToFile();
    return;
  }
  try {
    TextScope const scope(*this, ctx);
    CheckingWriter::Pause const pause;
    CFileTextStream stream(path, encoding);
    WriteTo(stream, *this, includeHeader, formatted, eol, ctx);
  } catch (CQnException& failure) {
    WriteFailure::AddPlace(failure, *this, ctx);
    throw;
  }
}

}  // namespace Quillon9
