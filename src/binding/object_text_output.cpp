// The text output operations of CXmlObjectBase: each creates a text writer on a stream and passes it to ToXml_Int. They
// are in a file of their own because they depend on the writer and the streams.

#include "binding/lost_text.h"
#include "binding/text_scope.h"
#include "binding/write_failure.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/xmlio/document_form.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/checking_writer.h"
#include "xmlio/form_writer.h"

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

CDocumentForm const* FormFor(CXmlObjectBase const& object, CXmlSerializationContext const& ctx) {
  return ctx.GetKeepForm() ? object.GetDocumentForm() : nullptr;
}

/// The name of the encoding in which text is returned as \p encoding; empty if the text must not say one.
char const* NameOf(XmlEncoding encoding) {
  switch (encoding) {
    case XmlEncoding_UTF8: return "UTF-8";
    case XmlEncoding_UTF16: return "UTF-16";
    case XmlEncoding_Default: return Utf8Text::IsInUse() ? "UTF-8" : "";
    case XmlEncoding_Unicode: break;
  }
  return "";
}

/// The arguments of a writing operation.
struct Wanted {
  bool includeHeader;
  bool formatted;
  EOLType eol;
  XmlEncoding encoding;
};

/// Write \p object in \p form; returns false if that is not possible with the default namespace of the form.
bool WriteInForm(CDocumentForm const& form, bool usesDefault, CXmlObjectBase const& object, Wanted const& wanted,
                 CXmlSerializationContext const& ctx, std::string& text) {
  CTextStream stream(wanted.encoding);
  FormWriter writer(stream, form, usesDefault);
  writer.Open();
  writer.SetFormat(form.hasLayout ? form.isFormatted : wanted.formatted);
  writer.SetEOLType(form.hasLayout ? form.lineEnd : wanted.eol);
  if (form.hasLayout) writer.SetIndent(form.indentCharacter, form.indentWidth, form.flatLevels);
  writer.WriteHeader(wanted.includeHeader, NameOf(wanted.encoding));
  std::string const targetNamespace = object.GetTargetNamespace();
  try {
    CXmlObjectBase::ToXml_Int(&object, &writer, true, targetNamespace.c_str(), ctx, false);
  } catch (CQnException const&) {  // perhaps a name in a value that has no namespace
    if (usesDefault) return false;
    throw;
  }
  writer.Close();
  if (usesDefault && writer.IsTypeInDefault()) return false;
  text = writer.FormedText();
  return true;
}

std::string TextInForm(CDocumentForm const& form, CXmlObjectBase const& object, Wanted const& wanted,
                       CXmlSerializationContext const& ctx) {
  bool const hasDefault = !form.defaultNamespace.empty() && ctx.GetDefaultNamespaceURI().empty() &&
                          !ctx.GetNamespaceAliases()->DoesNamespaceExist(form.defaultNamespace.c_str());
  std::string text;
  bool const isDone = hasDefault && WriteInForm(form, true, object, wanted, ctx, text);
  if (!isDone) static_cast<void>(WriteInForm(form, false, object, wanted, ctx, text));
  return text;
}

CBinaryData WithByteOrderMark(CBinaryData const& text) {
  constexpr unsigned char kMark[] = {0xEF, 0xBB, 0xBF};
  CBinaryData data;
  data.Append(kMark, sizeof kMark);
  data.Append(text);
  return data;
}

}  // namespace

std::string CXmlObjectBase::ToXml(bool includeHeader, bool formatted, EOLType eol,
                                  CXmlSerializationContext const& ctx) const try {
  TextScope const scope(*this, ctx);
  CheckingWriter::Pause const pause;
  CTextStream stream;
  std::string text;
  if (CDocumentForm const* const form = FormFor(*this, ctx)) {
    text = TextInForm(*form, *this, {includeHeader, formatted, eol, XmlEncoding_Default}, ctx);
  } else {
    WriteTo(stream, *this, includeHeader, formatted, eol, ctx);
    text = stream.CopyText();
  }
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
  CDocumentForm const* const form = FormFor(*this, ctx);
  if (form != nullptr) {
    stream.Append(TextInForm(*form, *this, {includeHeader, formatted, eol, encoding}, ctx));
  } else {
    WriteTo(stream, *this, includeHeader, formatted, eol, ctx);
  }
  LossesOfWriting losses(ctx);
  CBinaryData data = stream.GetEncodedStream();
  losses.Tell(*this);
  if (form != nullptr && form->hasByteOrderMark && encoding == XmlEncoding_UTF8) data = WithByteOrderMark(data);
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
