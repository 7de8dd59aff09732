#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "records/record_path.h"
#include "records/text_window.h"

namespace Quillon9 {

/// What remains of a document without the content of its records. A parser checks that it is well-formed, and tells the
/// names of the elements.
class RecordSkeleton {
 public:
  RecordSkeleton();
  ~RecordSkeleton();
  RecordSkeleton(RecordSkeleton const&) = delete;
  RecordSkeleton& operator=(RecordSkeleton const&) = delete;

  /// Parse \p text, which begins at \p at in the document and in which \p tags start tags stand.
  /// \throws CQnException "[what the parser says] at line [number]", with the place in the document; "The document has
  ///         elements in an entity, which cannot be read as records"; as CXmlDocument does for a document type
  ///         declaration that is not allowed, and for nesting beyond the limit.
  void Feed(std::string_view text, TextPosition const& at, std::size_t tags = 0) { Parse(text, at, tags, false); }
  /// Parse \p text, with which the document ends.
  /// \throws as Feed() does.
  void Finish(std::string_view text, TextPosition const& at) { Parse(text, at, 0, true); }

  /// Whether the XML declaration says that the document stands alone.
  bool IsStandalone() const { return m_isStandalone; }
  /// How many elements are open.
  std::size_t Depth() const { return m_depth; }
  /// The name of the element that was opened last.
  ElementName const& Opened() const { return m_opened; }

 private:
  struct ParserDeleter {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  template <class Action>
  static void Guarded(void* self, Action action) noexcept;
  static void XMLCALL FnStartElement(void* self, XML_Char const* name, XML_Char const** attributes);
  static void XMLCALL FnEndElement(void* self, XML_Char const* name);
  static void XMLCALL FnXmlDeclaration(void* self, XML_Char const* version, XML_Char const* encoding, int standalone);
  static void XMLCALL FnStartDocumentType(void* self, XML_Char const* name, XML_Char const* systemId,
                                          XML_Char const* publicId, int hasInternalSubset);
  static void XMLCALL FnDeclareAttribute(void* self, XML_Char const* element, XML_Char const* attribute,
                                         XML_Char const* type, XML_Char const* value, int isRequired);
  void DeclareAttribute(std::string const& element);
  void Parse(std::string_view text, TextPosition const& at, std::size_t tags, bool isFinal);
  void StartElement(std::string_view name);
  [[noreturn]] void ThrowFailure(std::string_view text, TextPosition const& at) const;

  std::unique_ptr<XML_ParserStruct, ParserDeleter> m_parser;
  std::exception_ptr m_failure;
  std::map<std::string, std::uint32_t> m_declaredAttributes;  // of elements
  std::size_t m_depth = 0;
  ElementName m_opened;
  bool m_isStandalone = false;
  std::int64_t m_fed = 0;
  std::size_t m_started = 0;  // by the present text
};

}  // namespace Quillon9
