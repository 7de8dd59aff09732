#pragma once

#include <atomic>
#include <string>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/export.h"
#include "quillon9/fastinfoset/declaration.h"
#include "quillon9/fwd.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/compression.h"
#include "quillon9/xmlio/output_options.h"

namespace Quillon9 {

/// Receives the change events of collections.
class QUILLON9_API IEventSink {
 public:
  /// What happened, or is about to happen.
  enum MsgType {
    CollectionChange = 0,         ///< after every change; data is null
    CollectionAdd = 1,            ///< before an item enters; data is the object, or the address of the value
    CollectionAddComplete = 2,    ///< after it entered; data as for CollectionAdd
    CollectionRemove = 3,         ///< before an item leaves; data is the address of its int index, null for -1
    CollectionRemoveComplete = 4  ///< after it left; data as for CollectionRemove
  };

  /// \p sender is the collection. \p data is valid only during the call; an object that is being added may not have an
  /// owner yet, so a listener must not take a CSmartPtr to it. An exception reaches the caller of the change, and
  /// prevents the change if the event precedes it.
  virtual void OnEvent(CXmlObjectBase* sender, MsgType type, void* data) = 0;

 protected:
  ~IEventSink() = default;
};

/// Implemented by generated classes for nillable elements. The library finds it by a cast at run time. A group without
/// a tag inside such a class also sees xsi:nil="false" and refuses it unless the group is nillable itself. Members that
/// are values ignore xsi:nil.
class QUILLON9_API INillable {
 public:
  /// Whether the element is nil, that is, written with xsi:nil and without content.
  virtual bool IsNil() const = 0;
  /// Called on reading when the element carries xsi:nil.
  virtual void SetNil(bool nil) = 0;

 protected:
  ~INillable() = default;
};

/// Root of everything that can be read from XML and written to XML: generated classes, collections, generic content.
///
/// Objects are reference-counted. A new object has count 0 and becomes owned when the first CSmartPtr takes it; an
/// object on the stack needs no owner. The count is atomic. A graph of objects that is being changed belongs to one
/// thread at a time; any number of threads may write out a graph that no thread changes.
///
/// Every reading operation fills this object from the document element, whatever its name is, and throws a CQnException
/// or a class derived from it: CQnException itself for unreadable input, CQnValidationException "Failed to process the
/// element [%s]", with the cause as innermost inner exception, for content that does not fit. After a failure the
/// object keeps what was read so far; nothing is rolled back.
///
/// A writing operation that fails walks the graph again to find the path of the failure, so the getters of the program
/// may be called more often than by a write that succeeds.
///
/// A derived class that overrides GetBase() writes `using CXmlGeneratedClass::GetBase;` (or names its own base) to keep
/// the const form; one that overrides ToXml_Int() or FromXml_Int() calls the static forms as
/// `CXmlObjectBase::ToXml_Int`.
class QUILLON9_API CXmlObjectBase : public IEventSink {
 public:
  CXmlObjectBase();
  CXmlObjectBase(CXmlObjectBase const&) = delete;
  CXmlObjectBase& operator=(CXmlObjectBase const&) = delete;

  /// Overridden by generated classes to learn of changes in the collections that they own. Does nothing here.
  void OnEvent(CXmlObjectBase* sender, MsgType type, void* data) override;

  /// This object as a CXmlObjectBase.
  virtual CXmlObjectBase* GetBase() = 0;

  /// Write a document to the file \p path, in the form that ToXmlStream() writes. CFileBinaryStream::ToFile() replaces
  /// the file when the document is complete, unless AsyncToXmlFile(true) is in force and nothing is compressed.
  /// \throws CQnException "ZLIB Compression only available for To Stream methods." for CompressionType_ZLib; "Failed to
  ///         write data to the file [%s]" when not all of it reached the file; what ToXmlStream() throws. Under
  ///         AsyncToXmlFile(true) a failure leaves a partly written file.
  virtual void ToXmlFile(char const* path, bool includeHeader = true, bool formatted = true,
                         XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                         CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext,
                         CompressionType compression = CompressionType_None) const;
  /// Write a document to the file \p path, in the form that ToFastInfosetStream() writes. CFileBinaryStream::ToFile()
  /// replaces the file when the document is complete.
  /// \throws CQnException "ZLIB Compression only available for To Stream methods." for CompressionType_ZLib;
  ///         "Failed to write data to the file [%s]" when not all of it reached the file; what ToFastInfosetStream()
  ///         throws.
  virtual void ToFastInfosetFile(char const* path, FInfoDecl decl = FInfoDecl_None,
                                 CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext,
                                 CompressionType compression = CompressionType_None) const;
  /// Write a document as text in the local code page, or in UTF-8 under TextEncoding_UTF8. \p includeHeader writes the XML declaration, \p formatted puts
  /// each element on a line of its own, indented by tabs. FromXml() takes undeclared text as UTF-8, so it can read the
  /// result only if the code page is UTF-8 or the text is pure ASCII; ToXmlStream() and FromXmlStream() always match.
  /// \throws CQnValidationException "Failed to convert the element [%s] to XML" with the cause as inner exception;
  ///         CQnInvalidValueException "The text is not well-formed UTF-8 after [%s]" under TextEncoding_UTF8, possibly
  ///         also as such a cause.
  virtual std::string ToXml(bool includeHeader = true, bool formatted = true, EOLType eol = EOLType_LF,
                            CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext) const;
  /// Write a document as encoded bytes, compressed if \p compression asks for it.
  /// \throws CQnValidationException as ToXml; CQnException for XmlEncoding_Default, which has no encoded form, and
  ///         "Failed to compress data. [Error Code: %d]" for a document that compression does not make shorter.
  virtual CBinaryData ToXmlStream(bool includeHeader = true, bool formatted = true,
                                  XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                                  CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext,
                                  CompressionType compression = CompressionType_None) const;
  /// Write a document as Fast Infoset (Rec. ITU-T X.891), with the options of the context's GetFIContext(), compressed
  /// if \p compression asks for it. \p decl is the XML declaration in front of it.
  /// \throws CQnValidationException as ToXml(), with an exception of CFastInfosetWriter as the cause when a value does
  ///         not fit its encoding; CQnException "Failed to write FastInfoset. Invalid declaration value [%d]", and
  ///         "Failed to compress data. [Error Code: %d]" for a document that compression does not make shorter.
  virtual CBinaryData ToFastInfosetStream(
      FInfoDecl decl = FInfoDecl_None, CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext,
      CompressionType compression = CompressionType_None) const;

  /// Read the document in the file \p path: XML text or Fast Infoset, either of which may be compressed by gzip or
  /// zlib.
  virtual void FromXmlFile(char const* path,
                           CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// Read a document from NUL-terminated text in the encoding that it declares (UTF-8 when it declares none,
  /// whatever the local code page is).
  virtual void FromXml(char const* text,
                       CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// Read a document from NUL-terminated wide text. Characters above U+FFFF are truncated to 16 bits.
  virtual void FromXml(wchar_t const* text,
                       CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// Read a document from \p length bytes, which stay unchanged: XML text or Fast Infoset, either of which may be
  /// compressed by gzip or zlib.
  /// \throws CQnException "XML Stream is empty!" when there are no bytes.
  virtual void FromXmlStream(unsigned char* data, unsigned long length,
                             CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// The same with the bytes of \p data.
  virtual void FromXmlStream(CBinaryData const& data,
                             CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// Read from an element of a tree that has already been loaded; the caller keeps ownership of the tree. The place of a
  /// failure is only a path, which begins at \p element and has no prefixes.
  /// \throws CQnInvalidParamException "The element to read from may not be NULL".
  virtual void FromXmlElement(CXmlElement const* element,
                              CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  /// Read from generic content, by way of the text that \p element writes under the default context: characters that
  /// the local code page cannot represent are lost, and text in a code page that is neither UTF-8 nor ASCII cannot be
  /// read back. The place of a failure is only a path, which has no prefixes.
  /// \throws CQnInvalidParamException "The element to read from may not be NULL".
  virtual void FromXmlElement(CElement const* element,
                              CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);

  /// Find out whether a write of this object as text would succeed and a read of that text would take it back, without
  /// writing anything. It goes on after each failure, and sends it to \p sink in the order of the document: with the
  /// text that a write would fail with, such as a broken facet, a missing object, an enumerator without a text, a wrong
  /// count, an empty choice, a namespace that a wildcard does not allow, and text that is not well-formed UTF-8; and for
  /// what a write lets pass but a reader refuses, such as a mandatory member that is not set, two members of a choice,
  /// and control characters. The options of \p ctx that relax reading and writing relax this, too. What is written
  /// literally, such as processing instructions, CDATA sections and names, is not parsed, and what a code page or an
  /// encoding of Fast Infoset cannot represent is not found.
  ///
  /// The path of a failure leads from the root through the elements and attributes that a write would make; one for
  /// a missing element ends at the element in which it is missing. It has local names, and a number from 1 for each
  /// element with siblings of that name, also later ones. Line, column, offset and file are not known.
  ///
  /// A class that overrides ToXml_Int() is checked by calling that with another writer; a failure that it throws is
  /// told at that object, or at the element that it had begun, and the rest of the object is passed over.
  ///
  /// \param sink borrowed; null for the answer only. The check ends when it returns false, and after
  ///        ctx.GetMaxFailures() failures. The sink of \p ctx is not used.
  /// \return Whether there is no failure.
  /// \throws what \p sink throws, and what classes of the program throw outside the family of CQnException. The failures
  ///         themselves are not thrown. Any number of threads may check a graph that no thread changes.
  bool Check(CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext,
             IFailureSink* sink = nullptr) const;

  virtual ~CXmlObjectBase();

  /// The namespace in which the element of this object is written at the document root.
  virtual std::string GetTargetNamespace() const = 0;
  /// The namespace that is passed to the element descriptors of this object during reading.
  virtual std::string GetNamespace() const = 0;

  // The three operations to which the public ones and the descriptors delegate.
 protected:
  /// Write the attributes of this object on the open element. Does nothing here.
  virtual void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const;
  /// Write this object as an element in the namespace \p ns. \p isRoot says that it is the document element,
  /// \p inChoice that it is the chosen member of a choice, which may be empty.
  virtual void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                         bool inChoice) const = 0;
  /// Read this object from \p parent, whose attributes and text it may take, and from \p cursor, the first child that
  /// has not been taken yet (null for none). Returns the first child that this object did not take. The children and
  /// attributes of \p parent must not change until the read of the whole document has ended.
  virtual CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                   bool inChoice) = 0;

 public:
  /// Whether this object and everything inside it hold their text in UTF-8 in any locale, as generated classes do. A
  /// read or write of this object then behaves as under TextEncoding_UTF8, and facets count the lengths of strings in
  /// characters. False here; only the object that is read or written is asked, not the objects inside it.
  virtual bool HoldsUtf8Text() const;
  /// The rules of values for a read, write or check of this object under a context that does not say which. Classic here;
  /// those of XML Schema for generated classes that derive from CBoundObject, unless they were generated with
  /// `--value-rules=classic`. Only the object that is read or written is asked.
  virtual ValueRules GetDefaultValueRules() const;
  /// The form in which a write under CXmlSerializationContext::SetKeepForm() puts this object as a document; null for
  /// none, as here. It lives as long as this object does not change.
  virtual CDocumentForm const* GetDocumentForm() const;

  /// The local name under which this object is written. Empty in a new object unless its constructor sets it;
  /// reading sets it to the name found.
  std::string const& GetElementName() const { return m_elementName; }
  /// Set the name under which this object is written. Null counts as an empty name.
  void SetElementName(char const* name) { m_elementName = name != nullptr ? name : ""; }
  /// The same for a const object.
  CXmlObjectBase* GetBase() const { return const_cast<CXmlObjectBase*>(this)->GetBase(); }

  /// Change the count and return the new one. Release() deletes the object when the count reaches 0. Any thread may
  /// call these.
  ///@{
  int AddRef() { return m_refCount.fetch_add(1, std::memory_order_relaxed) + 1; }
  int Release() {
    // Everything that any owner did to the object must happen before its destruction.
    int const count = m_refCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (count == 0) delete this;
    return count;
  }
  ///@}

  /// The operations of CXmlObjectHelper with the same names, for generated code.
  ///@{
  bool DoesElementNameMatch(CXmlSerializationContext const& ctx, CXmlElement const* element, char const* name,
                            char const* ns) const;
  bool IsNamespaceValid(char const* ns, char const* list, char const* target) const;
  void TestNamespace(char const* ns, char const* list, char const* target) const;
  ///@}

  /// Access to the operations above for generated collections and similar code, which holds objects of other classes.
  ///@{
  static void AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                  CXmlSerializationContext const& ctx);
  static void ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool isRoot, char const* ns,
                        CXmlSerializationContext const& ctx, bool inChoice);
  static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                  CXmlSerializationContext const& ctx);
  ///@}

  /// Send one event of \p collection to \p sink, with the collection as sender.
  ///@{
  static void FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection);
  static void FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
  static void FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
  static void FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);
  static void FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);
  ///@}

 protected:
  /// Helpers for generated property setters. \p selected is a string that the generated class keeps for each choice:
  /// the name of the property that is currently set, empty for none.

  /// Record that the member \p name of a choice was set to \p value, or was unset when \p value is null.
  /// \throws CQnInvalidStateException "The Property [%s] is already set. Only one element within this class bay be
  ///         set at a time" when another member is set.
  void Choice_SelectElement(char const* name, CXmlObjectBase* value, std::string& selected);
  /// Record that the collection \p name, a member of a choice, now holds \p count items.
  /// \throws CQnInvalidStateException as Choice_SelectElement.
  void Choice_CollectionChanged(char const* name, long count, std::string& selected);
  /// Confirm a selection that has already been made, or clear it when \p valid is false.
  /// \throws CQnInvalidStateException "The Property %s is already set. Only one element within this class bay be set at
  ///         a time" unless \p name is selected.
  void Choice_SetElementValid(bool valid, char const* name, std::string& selected);
  /// Read the items of \p col, a member of a choice, unless \p count shows that it has already been read. Reading items
  /// moves \p cursor and raises \p count.
  /// \throws CQnValidationException for a count outside the limits of \p col.
  void Choice_Read_Collection(CXmlCollectionBase* col, CXmlElement* parent, CXmlElement*& cursor, long& count,
                              CXmlSerializationContext const& ctx);
  /// \throws CQnInvalidParamException "This property requrires an element with the name %s the element being set
  /// has the element name %s" when \p value is not null and has another name.
  void Throw_IfElementNameDiffers(CXmlObjectBase* value, char const* name);
  /// \throws CQnInvalidParamException "The Property [%s] is mandatory, it may node be NULL" when \p value is null.
  void Throw_IfPropertyIsNull(CXmlObjectBase* value, char const* name);

 private:
  friend struct ObjectAccess;

  std::string m_elementName;
  std::atomic<int> m_refCount = 0;  // instead of a mutex and a count: faster and smaller
};

}  // namespace Quillon9
