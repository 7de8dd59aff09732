#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/xmlio/document_form.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/start_tag.h"

namespace Quillon9 {

/// Writes a document in the form of another one, into a stream in memory. A class of its own, so that writing without a
/// form pays nothing for it.
class FormWriter : public CXmlTextWriter {
 public:
  /// \p stream and \p form are borrowed. The default namespace of the form is used if \p usesDefault says so.
  FormWriter(CTextStream& stream, CDocumentForm const& form, bool usesDefault);

  /// Write the XML declaration of the form, for text in the encoding \p name, which is empty if it must not say one; or
  /// the usual one if the form does not know and \p isWanted says so.
  void WriteHeader(bool isWanted, std::string_view name);
  /// After Close(): what was written, with the spelling of the form where that says the same.
  std::string FormedText() const;

  /// Whether the name of a type without a namespace was written where it belongs to the default namespace.
  bool IsTypeInDefault() const { return m_isInDefault; }

  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override;
  void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) override;
  void WriteEndElement() override;

 private:
  std::string_view LineEnd() const { return GetEOLType() == EOLType_CRLF ? "\r\n" : "\n"; }
  std::string WithLineEnds(std::string_view text) const;
  std::string FormedProlog(std::string_view written) const;
  std::string FormedTags(std::string_view written, std::size_t root) const;
  std::string FormedTag(std::string_view written, bool isRoot) const;
  void TakeModels();

  CTextStream& m_stream;
  CDocumentForm const& m_form;
  bool m_isInDefault = false;
  std::size_t m_headerEnd = 0;
  std::vector<std::size_t> m_tags;  // a place inside each start tag, after its name
  std::size_t m_rootEnd = 0;
  std::vector<std::string> m_spelled;
  std::map<std::string_view, StartTag> m_models;  // by name; they refer to m_spelled
};

}  // namespace Quillon9
