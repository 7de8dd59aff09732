#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/namespace_alias_map.h"
#include "quillon9/export.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/fwd.h"
#include "quillon9/text/text_encoding.h"
#include "quillon9/values/value_rules.h"
#include "quillon9/xmlio/schema_type.h"

namespace Quillon9 {

/// The options of one read or write: how strict reading is, and what is written at the root of a document. The caller
/// fills them, and every call passes them on by const reference.
///
/// Takes no locks. A context belongs to one thread while it changes; once nothing changes it any more, any number of
/// threads may use it at once, as they do m_defaultContext.
class QUILLON9_API CXmlSerializationContext {
 public:
  CXmlSerializationContext();
  /// Copies every option. The copy shares the additional root attributes, if there are any.
  ///@{
  CXmlSerializationContext(CXmlSerializationContext const& other);
  CXmlSerializationContext& operator=(CXmlSerializationContext const& other);
  ///@}
  virtual ~CXmlSerializationContext();

  /// Accept an attribute that no descriptor takes, instead of failing. Default false. SetKeepUnknown() keeps it.
  ///@{
  bool GetIgnoreUnknownAttributes() const { return m_ignoreUnknownAttributes; }
  void SetIgnoreUnknownAttributes(bool ignore) { m_ignoreUnknownAttributes = ignore; }
  ///@}

  /// Accept child elements that no descriptor takes. Default false. Such elements are skipped where they are left over,
  /// before a mandatory element of a sequence (along with anything else that precedes it, including elements of later
  /// members), and before the member of a choice. Before other members they end the reading of the element without a
  /// failure, as any unknown element does in an all group.
  bool GetIgnoreUnknownElements() const { return m_ignoreUnknownElements; }
  /// \throws CQnInvalidStateException when \p ignore is true and missing mandatory elements are already ignored: the
  ///         two options exclude each other. The option stays false.
  void SetIgnoreUnknownElements(bool ignore);

  /// Accept that a mandatory element is absent. Default false. Applies to values, enumerations and objects of known
  /// classes with a tag, in a sequence of an element; not to an all group, abstract types, untyped content and groups
  /// without a tag.
  bool GetIgnoreMissingMandatoryElements() const { return m_ignoreMissingMandatoryElements; }
  /// \throws CQnInvalidStateException when \p ignore is true and unknown elements are already ignored.
  void SetIgnoreMissingMandatoryElements(bool ignore);

  /// Accept a choice with nothing set or found, on reading and writing. Default false. A choice with a member that is
  /// not repeated is optional as a whole and needs no option.
  ///@{
  bool GetIgnoreMissingChoice() const { return m_ignoreMissingChoice; }
  void SetIgnoreMissingChoice(bool ignore) { m_ignoreMissingChoice = ignore; }
  ///@}

  /// Accept a collection whose count is outside its limits. Default false.
  ///@{
  bool GetIgnoreInvalidCollectionCounts() const { return m_ignoreInvalidCollectionCounts; }
  void SetIgnoreInvalidCollectionCounts(bool ignore) { m_ignoreInvalidCollectionCounts = ignore; }
  ///@}

  /// Match elements, and attributes that are enumerations, by local name only. True when set, and always for a schema
  /// without namespaces. The matching of other attributes and of untyped content does not change.
  ///@{
  bool GetIgnoreNamespaces() const { return m_ignoreNamespaces || m_schemaType == SchemaType_DTD; }
  void SetIgnoreNamespaces(bool ignore) { m_ignoreNamespaces = ignore; }
  ///@}

  /// Do not write an optional attribute whose text equals its default. Default false.
  ///@{
  bool GetNoOptionalAttributeDefaultOutput() const { return m_noOptionalAttributeDefaultOutput; }
  void SetNoOptionalAttributeDefaultOutput(bool omit) { m_noOptionalAttributeDefaultOutput = omit; }
  ///@}

  /// Write xsi:type where a class asks for it. Default true.
  ///@{
  bool GetWriteTypeAttribute() const { return m_writeTypeAttribute; }
  void SetWriteTypeAttribute(bool write) { m_writeTypeAttribute = write; }
  ///@}

  /// The kind of schema, SchemaType_XSD by default. Any number is accepted; only SchemaType_DTD makes a difference.
  ///@{
  SchemaType GetSchemaType() const { return m_schemaType; }
  void SetSchemaType(SchemaType type) { m_schemaType = type; }
  ///@}

  /// Read a CDATA section as plain text (true, the default), or keep its delimiters in the text (false).
  ///@{
  bool GetStripCDATA() const { return m_stripCDATA; }
  void SetStripCDATA(bool strip) { m_stripCDATA = strip; }
  ///@}

  /// Whether generic content that is read keeps where text other than white space stands between children, and is
  /// written that way; false by default, when all of its text follows the children. CElement::IsMixed() has more.
  /// Generated classes that derive from CBoundObject always keep it.
  ///@{
  bool GetKeepMixedContent() const { return m_keepMixedContent; }
  void SetKeepMixedContent(bool keep) { m_keepMixedContent = keep; }
  ///@}
  /// Whether the document element of a read, if its class derives from CBoundObject, remembers the prefixes of the
  /// document and declares them when it is written; false by default. For documents that have prefixes in texts whose
  /// type does not say so, such as paths. A prefix is kept if the document element declares it, or if it has one
  /// meaning in the whole document; the default namespace is not. CElement::CopyXmlElement() heeds this, too.
  ///@{
  bool GetKeepPrefixes() const { return m_keepPrefixes; }
  void SetKeepPrefixes(bool keep) { m_keepPrefixes = keep; }
  ///@}
  /// Whether the document element of a read, if its class is a generated one, keeps the form of the document, and a
  /// write of such an object uses it; false by default. CXmlGeneratedClass::GetDocumentForm() returns it. CDocumentForm
  /// says what belongs to it, docs/options.md what a write makes of it. It then counts in place of the arguments of
  /// ToXml(), ToXmlStream(), ToXmlFile() and ToFastInfosetStream() that say whether there is a declaration, whether the
  /// text is formatted, and which line ends it has.
  ///@{
  bool GetKeepForm() const { return m_keepForm; }
  void SetKeepForm(bool keep) { m_keepForm = keep; }
  ///@}
  /// Whether objects of generated classes keep what no descriptor takes, and write it back where it stood; false by
  /// default. Kept are the elements and attributes that the options for unknown ones let pass, attributes that a class
  /// accepts without an option, and the comments and processing instructions between children, in generic content and
  /// around the document element. CXmlGeneratedClass::GetUnknownContent() returns it. CXmlDocument uses this option
  /// too: only a tree that was loaded with it has comments and processing instructions for objects.
  ///@{
  bool GetKeepUnknown() const { return m_keepUnknown; }
  void SetKeepUnknown(bool keep) { m_keepUnknown = keep; }
  ///@}
  /// The encoding of all text of the read or write in memory: TextEncoding_Locale (the default), or TextEncoding_UTF8,
  /// in which no character is lost in any locale, and text that is not well-formed is refused on writing. Classes whose
  /// HoldsUtf8Text() says so always use UTF-8. CXmlDocument uses this option too.
  ///@{
  TextEncoding GetTextEncoding() const { return m_textEncoding; }
  void SetTextEncoding(TextEncoding encoding) { m_textEncoding = encoding; }
  ///@}

  /// The rules of values: ValueRules_XmlSchema converts, checks and writes them exactly as XML Schema does, and checks
  /// facets on reading too; docs/values.md compares the two. Default ValueRules_Classic. A context that has not been told
  /// leaves the choice to the object that is read or written: see CXmlObjectBase::GetDefaultValueRules().
  ///@{
  ValueRules GetValueRules() const { return m_valueRules; }
  void SetValueRules(ValueRules rules) {
    m_valueRules = rules;
    m_hasValueRules = true;
  }
  bool HasValueRules() const { return m_hasValueRules; }
  ///@}

  /// \name Failures
  /// @{

  /// Who is told all failures of a read, instead of the read ending at the first one; null, the default, for nobody.
  /// After a failure, the member keeps what Init() gave it, an unexpected element or attribute is skipped, and what is
  /// missing is passed over. A read whose sink says always to go on returns normally. Remarks about what options make
  /// the reader drop, and about characters that become "?", go to the same sink; writing sends it only the latter. The
  /// sink is borrowed and must outlive every read under this context; a sink serves one read at a time.
  ///@{
  IFailureSink* GetFailureSink() const { return m_failureSink; }
  void SetFailureSink(IFailureSink* sink) { m_failureSink = sink; }
  ///@}

  /// The number of errors after which a read ends with the last one, whatever its sink says. Default 1000; 0 for no
  /// limit. Each remark beyond as many is not told.
  ///@{
  std::uint32_t GetMaxFailures() const { return m_maxFailures; }
  void SetMaxFailures(std::uint32_t count) { m_maxFailures = count; }
  ///@}

  /// Check the facets of single elements and of attributes on reading too, not only on writing, with the same texts
  /// and classes of failures. Default false.
  ///@{
  bool GetChecksFacetsOnReading() const { return m_checksFacetsOnReading; }
  void SetChecksFacetsOnReading(bool check) { m_checksFacetsOnReading = check; }
  ///@}

  /// Check on reading that an element or attribute has its fixed value, where a generated class knows one. Default
  /// true.
  ///@{
  bool GetChecksFixedValuesOnReading() const { return m_checksFixedValuesOnReading; }
  void SetChecksFixedValuesOnReading(bool check) { m_checksFixedValuesOnReading = check; }
  ///@}
  /// @}

  /// Text to write inside the start tag of the root, such as a schema location attribute. It is written verbatim.
  ///@{
  std::string const& GetInLineSchema() const { return m_inLineSchema; }
  void SetInLineSchema(char const* text) { m_inLineSchema = text != nullptr ? text : ""; }
  ///@}

  /// The default namespace to declare on the root; none when empty.
  ///@{
  std::string const& GetDefaultNamespaceURI() const { return m_defaultNamespaceURI; }
  void SetDefaultNamespaceURI(char const* uri) { m_defaultNamespaceURI = uri != nullptr ? uri : ""; }
  ///@}

  /// The options of Fast Infoset, which the caller may change directly. They live as long as this context.
  ///@{
  CFastInfosetContext* GetFIContext() { return &m_fiContext; }
  CFastInfosetContext const* GetFIContext() const { return &m_fiContext; }
  ///@}

  /// The prefixes to declare on the root, which the caller may change directly. They live as long as this context.
  ///@{
  CNamespaceAliasMap* GetNamespaceAliases() { return &m_namespaceAliases; }
  CNamespaceAliasMap const* GetNamespaceAliases() const { return &m_namespaceAliases; }
  ///@}

  /// The attributes to write on the root before its own, which the caller may change directly; created by the first
  /// call, with the restriction "##any". Never null.
  CSmartPtr<CAttributeCol> GetAdditionalRootAttributes() const;
  /// The same, but null if nothing has asked for them yet; for code that must not change a shared context.
  CAttributeCol const* FindAdditionalRootAttributes() const;

  /// The processing instructions to write before the root, each a complete `<?...?>`. The caller may change them
  /// directly.
  ///@{
  std::vector<std::string>& GetProcessingInstructions() { return m_processingInstructions; }
  std::vector<std::string> const& GetProcessingInstructions() const { return m_processingInstructions; }
  ///@}

  /// The context for callers without special needs: every option at its default. Shared by the whole process.
  static CXmlSerializationContext m_defaultContext;

 private:
  std::string m_defaultNamespaceURI;
  bool m_writeTypeAttribute = true;
  bool m_keepMixedContent = false;
  bool m_keepPrefixes = false;
  bool m_keepUnknown = false;
  bool m_keepForm = false;
  CNamespaceAliasMap m_namespaceAliases;
  mutable CSmartPtr<CAttributeCol> m_additionalRootAttributes;
  std::vector<std::string> m_processingInstructions;
  std::string m_inLineSchema;
  bool m_ignoreInvalidCollectionCounts = false;
  bool m_ignoreMissingChoice = false;
  bool m_ignoreMissingMandatoryElements = false;
  bool m_ignoreUnknownElements = false;
  bool m_ignoreUnknownAttributes = false;
  bool m_ignoreNamespaces = false;
  SchemaType m_schemaType = SchemaType_XSD;
  bool m_noOptionalAttributeDefaultOutput = false;
  CFastInfosetContext m_fiContext;
  bool m_stripCDATA = true;
  TextEncoding m_textEncoding = TextEncoding_Locale;
  ValueRules m_valueRules = ValueRules_Classic;
  bool m_hasValueRules = false;
  IFailureSink* m_failureSink = nullptr;
  std::uint32_t m_maxFailures = 1000;
  bool m_checksFacetsOnReading = false;
  bool m_checksFixedValuesOnReading = true;
};

}  // namespace Quillon9
