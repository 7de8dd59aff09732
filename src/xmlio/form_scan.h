#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/document_form.h"
#include "xmlio/start_tag.h"

namespace Quillon9 {

/// Finds the form of a document in its input, which a reader has accepted. It looks at the beginning and the end of the
/// input, and decides nothing about the content: a wrong guess changes only what a document looks like.
class FormScan {
 public:
  /// The form of the document whose tree is \p document; it has a document element.
  static CDocumentForm Of(CXmlDocument const& document);

  /// The comments, processing instructions and document type declarations that \p text consists of, without the white
  /// space around them; false if there is something else.
  static bool SplitMarkup(std::string_view text, std::vector<std::string_view>& pieces);
  /// The end of the tag that begins at \p start; npos if it has none.
  static std::size_t FindTagEnd(std::string_view text, std::size_t start);
  /// \p declaration, which is spelled as CDocumentForm has it, with the encoding \p name, or without one if that is
  /// empty. A document without a declared encoding is in UTF-8.
  static std::string WithEncoding(std::string declaration, std::string_view name);

 private:
  FormScan(std::string_view text, CDocumentForm& form) : m_text(text), m_form(form) {}

  bool TakeInfosetDeclaration();
  void Run();
  void TakeDeclaration();
  bool TakeProlog();
  void TakeEpilog();
  void TakeTags();
  bool TakeStartTag(std::string_view spelled);
  void TakeIndentation(std::string_view space, std::string_view next, std::size_t depth);
  static std::size_t FindMarkupEnd(std::string_view text, std::size_t start);
  static std::size_t FindTextMarkupEnd(std::string_view text, std::size_t start);
  static std::size_t FindDocumentTypeEnd(std::string_view text, std::size_t start);

  std::string_view m_text;
  std::size_t m_at = 0;
  std::array<int, 3> m_emptyElements{};  // how often each form occurs
  std::uint8_t m_flatLevels = 0;
  bool m_isIndentKnown = false;
  std::map<std::string_view, StartTag> m_known;  // by name, each with the attributes of all tags so far
  CDocumentForm& m_form;
};

}  // namespace Quillon9
