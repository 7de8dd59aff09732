#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/export.h"
#include "quillon9/fastinfoset/declaration.h"
#include "quillon9/fwd.h"
#include "quillon9/records/record_target.h"
#include "quillon9/values/item_type.h"
#include "quillon9/xmlio/compression.h"
#include "quillon9/xmlio/output_options.h"

namespace Quillon9 {

/// Writes a long document record by record. Its memory is that of the largest record and some blocks of about 64 KiB,
/// whatever the length of the document:
///
/// \code
/// Quillon9::CXmlRecordWriter writer("orders.xml");
/// writer.OpenElement("orders", "urn:example:orders");
/// for (auto const& order : orders) writer.Write(order);
/// writer.Finish();
/// \endcode
///
/// The output is what a write of the whole document gives: ToXmlStream() of an object with all records, or
/// ToFastInfosetStream() under SetFastInfoset(). One difference is that at most 65,536 different values of elements,
/// and as many of attributes, get numbers in Fast Infoset, so that the memory of neither end grows with the document;
/// names always get numbers. The context is used as in such a write: for the namespaces, attributes and processing
/// instructions of the document element, among others.
///
/// A record that cannot be written, such as one with a value that breaks a facet, leaves nothing in the output: Write()
/// throws, and the next call goes on. A failure of the target ends the writer: from then on, every call throws it
/// again. So does a shortage of memory outside of a record. A file or memory gets its contents in Finish(), and stays as
/// it was without that call.
///
/// With CRecordTarget::EndOfFile(), each record is an element of its own: there are neither a header nor elements
/// around the records, and each declares its namespaces. Such a file is an external parsed entity (XML 1.0, W3C,
/// 4.3.2), which becomes a document with a start tag in front of it and the end tag after it. What has been written is
/// kept without Finish(), too.
///
/// Names and texts that a program passes to the operations are UTF-8. A writer belongs to one thread at a time.
class QUILLON9_API CXmlRecordWriter {
 public:
  /// Write to \p target under the options of \p ctx, which must outlive the writer.
  explicit CXmlRecordWriter(CRecordTarget target,
                            CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// Discard a document that is not finished. Throws nothing.
  ~CXmlRecordWriter();
  CXmlRecordWriter(CXmlRecordWriter const&) = delete;
  CXmlRecordWriter& operator=(CXmlRecordWriter const&) = delete;

  /// \name Form of the document
  /// Before anything is written. \throws CQnInvalidStateException "The write has begun" later.
  /// @{

  /// Write text in UTF-8, as it is done without this call, with the options of CXmlObjectBase::ToXml().
  void SetText(bool includeHeader = true, bool formatted = true, EOLType eol = EOLType_LF);
  /// Write Fast Infoset.
  /// \throws CQnInvalidParamException "Records in Fast Infoset cannot be appended to a file".
  void SetFastInfoset(FInfoDecl decl = FInfoDecl_None);
  /// Compress the document as CQnZip does; one that does not become shorter, too.
  void SetCompression(CompressionType compression);
  /// @}

  /// \name Elements around the records
  /// Each throws CQnInvalidParamException "The name [%s] is not a name in XML" and, for elements, "The element [%s] is
  /// in the namespace of declarations".
  /// @{

  /// Declare \p prefix for \p uri on the document element, so that everything in the document can use it; an empty
  /// prefix makes it the default namespace. Before the attributes of that element.
  /// \throws CQnInvalidStateException "Namespaces are declared before the attributes and the content of the document
  ///         element"; CQnInvalidParamException "The prefix [%s] cannot stand for [%s]" for reserved ones and for a
  ///         prefix that stands for another namespace.
  void DeclareNamespace(std::string const& prefix, std::string const& uri);
  /// Open an element, in which everything is that follows until CloseElement(): the document element first, others as
  /// needed.
  /// \throws CQnInvalidStateException "A document has only one element"; "Records that are appended have no elements
  ///         around them"; CQnInvalidParamException "The element [%s] has no namespace, which cannot be written where
  ///         there is a default namespace".
  void OpenElement(std::string const& localName, std::string const& namespaceUri = {});
  /// Open an element with the name and the attributes of \p object, whose other content is not written. It gets no
  /// further attributes. The comments and processing instructions that \p object has kept around the document element
  /// are written if it becomes that.
  /// \throws as the other form, and what a write of \p object throws; the element is not open then.
  void OpenElement(CXmlGeneratedClass const& object);
  /// Write an attribute of the element that was opened last, before its content. \p type may select the encoding in
  /// Fast Infoset.
  /// \throws CQnInvalidStateException "There is no open element", "The attribute [%s] comes after the content of its
  ///         element"; CQnInvalidParamException "The element has two attributes [%s]", "The attribute [%s] would
  ///         declare a namespace"; CQnInvalidValueException "The character U+%04X cannot stand in an XML document", and
  ///         "The text is not well-formed UTF-8 after [%s]".
  void WriteAttribute(std::string const& localName, std::string const& value, std::string const& namespaceUri = {},
                      ItemType type = ItemType_string);
  /// Write text into the open element. Text around records counts, so no line ends and tabs are added until that
  /// element is closed.
  /// \throws CQnInvalidStateException "There is no open element"; CQnInvalidValueException as WriteAttribute().
  void WriteText(std::string const& text, ItemType type = ItemType_string);
  /// Close the element that was opened last.
  /// \throws CQnInvalidStateException "There is no open element".
  void CloseElement();
  /// @}

  /// \name Records
  /// A record without an open element is the document element. Each throws CQnInvalidStateException "A document has
  /// only one element" after it.
  /// @{

  /// Write \p object under its element name, in its target namespace: what GetElementName() and GetTargetNamespace()
  /// return.
  /// \throws what CXmlObjectBase::ToXml() throws, with the path from the record; nothing of it is written then.
  void Write(CXmlObjectBase const& object);
  /// Write \p object, which has this element name in the meantime, in its target namespace or in \p namespaceUri, which
  /// is empty for none. A CElement keeps its own name and namespace.
  /// \throws as Write(object), and CQnInvalidParamException "The name [%s] is not a name in XML", "The element [%s] is in
  ///         the namespace of declarations".
  ///@{
  void Write(CXmlObjectBase& object, std::string const& localName);
  void Write(CXmlObjectBase& object, std::string const& localName, std::string const& namespaceUri);
  ///@}
  /// Write an element with all that is in it, whatever class it is for. Its text is UTF-8 or in the local code page, as
  /// CXmlSerializationContext::SetTextEncoding() says. Under SetKeepPrefixes(), the prefixes of its document are
  /// declared where they have no other meaning; comments and processing instructions are written if the document has
  /// kept them.
  /// \throws CQnInvalidParamException as OpenElement(); CQnInvalidValueException as WriteAttribute(); CQnException "The
  ///         element nesting exceeds the limit of %u levels". Nothing of it is written then.
  void Write(CXmlElement const& element);
  /// How many records have been written.
  std::uint64_t GetCount() const;
  /// @}

  /// Pass on to the target what has been written so far: to a reader that waits at the other end of a pipe, for
  /// example. Without this call, that happens when a block is full. Compressed data become a little longer.
  void Flush();
  /// Close the open elements and complete the document. Further calls of this do nothing; others throw
  /// CQnInvalidStateException "The document is finished".
  /// \throws CQnInvalidStateException "A document needs an element" if nothing has been written.
  void Finish();

 private:
  class Work;

  std::unique_ptr<Work> m_work;
};

}  // namespace Quillon9
