#pragma once

#include <expat.h>

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "quillon9/xmlio/document.h"
#include "text/utf8_to_local.h"
#include "xmlio/expat_input.h"
#include "xmlio/name_cache.h"

namespace Quillon9 {

/// Feeds a document's input to expat and builds the document's tree from the callbacks. It lives for one parse, on
/// the stack of the load.
///
/// No exception crosses expat's frames: a callback stores it and stops the parser, and Parse rethrows it.
class CExpatReader {
 public:
  explicit CExpatReader(CXmlDocument& document);
  ~CExpatReader();
  CExpatReader(CExpatReader const&) = delete;
  CExpatReader& operator=(CExpatReader const&) = delete;

  /// Create the parser, with namespace processing unless the schema type has none.
  /// \throws CQnException as RequireExpat() does for the expat version at run time; std::bad_alloc.
  void CreateParser();
  /// Feed the whole input. With \p isFinal the document must end there. After a failure the parser accepts no more.
  /// \throws CQnException "[what expat says] at line [number]"; whatever a callback threw.
  void Parse(bool isFinal);
  /// After a failure of Parse(): where the parser was.
  InputPosition GetPosition() const { return Input().PositionOf(m_parser.get()); }

 private:
  struct ParserDeleter {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  static void XMLCALL FnStartElement(void* self, XML_Char const* name, XML_Char const** attributes);
  static void XMLCALL FnEndElement(void* self, XML_Char const* name);
  static void XMLCALL FnStartNamespace(void* self, XML_Char const* prefix, XML_Char const* uri);
  static void XMLCALL FnEndNamespace(void* self, XML_Char const* prefix);
  static void XMLCALL FnText(void* self, XML_Char const* text, int length);
  static void XMLCALL FnStartCDATA(void* self);
  static void XMLCALL FnEndCDATA(void* self);
  static void XMLCALL FnStartDocumentType(void* self, XML_Char const* name, XML_Char const* systemId,
                                          XML_Char const* publicId, int hasInternalSubset);
  static void XMLCALL FnEndDocumentType(void* self);
  static void XMLCALL FnComment(void* self, XML_Char const* text);
  static void XMLCALL FnInstruction(void* self, XML_Char const* target, XML_Char const* text);
  static void XMLCALL FnAttributeDeclaration(void* self, XML_Char const* element, XML_Char const* attribute,
                                             XML_Char const* type, XML_Char const* value, int isRequired);

  static int XMLCALL FnUnknownEncoding(void* self, XML_Char const* name, XML_Encoding* encoding);

  ExpatInput Input() const { return {m_document.GetInputData(), m_document.GetInputSize()}; }
  template <class Action>
  static void Guarded(void* self, Action action) noexcept;
  CXmlName const* NameOf(XML_Char const* whole);
  [[gnu::noinline]] CXmlName const* NewName(XML_Char const* whole);
  CXmlName const* SharedName(XML_Char const* whole);
  void StartElement(XML_Char const* name, XML_Char const** attributes);
  void AddAttributes(CXmlElement* element, XML_Char const** attributes);
  void AppendMark(std::string_view mark);
  void AddMarkup(XML_Char const* target, XML_Char const* text);
  void CountDeclaredAttribute(XML_Char const* element);

  CXmlDocument& m_document;
  CUtf8ToLocal const m_toLocal;
  CNameCache m_names;
  std::unique_ptr<XML_ParserStruct, ParserDeleter> m_parser;
  std::exception_ptr m_failure;
  std::map<std::string, std::uint32_t> m_declaredAttributes;  // their number, by element name
  bool m_isInDocumentType = false;
};

}  // namespace Quillon9
