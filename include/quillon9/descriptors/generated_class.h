#pragma once

#include <memory>
#include <string>

#include "quillon9/base/critical_section.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/values/variant.h"

namespace Quillon9Data {

/// The content model of a generated class. Generated tables contain the numbers.
enum XmlElementGroupType : int {
  XmlElementGroupType_Sequence = 0,  ///< the members occur in table order
  XmlElementGroupType_Choice = 1,    ///< one member occurs
  XmlElementGroupType_All = 2,       ///< the members occur in any order
};

/// Whether a class has a tag. Generated tables contain the numbers; any other value counts as having no tag.
enum XmlElementType : int {
  XmlElementType_Element = 0,  ///< a tag of its own; its children are the children of that tag
  XmlElementType_Pseudo = 1,   ///< no tag: its content is among the children of the enclosing element, and its
                               ///< attributes are written on that element
};

/// The properties of a generated class as a whole. Built once for each class, shared by its instances and by threads,
/// and never changed.
class QUILLON9_API CParentElementInfo {
 public:
  /// \p typeName and \p typeNamespace are copied.
  CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType, char const* typeName,
                     char const* typeNamespace, int textPropertyIndex, bool rejectUnknownAttributes,
                     bool typeAttributeWanted);
  virtual ~CParentElementInfo();

  XmlElementGroupType m_groupType;  ///< which driver handles the content
  XmlElementType m_elementType;     ///< has a tag of its own, or none
  std::string m_typeName;           ///< name of the type in its schema, the text of xsi:type
  std::string m_typeNamespace;      ///< namespace of that type, for the prefix of xsi:type
  int m_textPropertyIndex;          ///< property that holds the text of the element; -1 for none
  /// Whether an attribute that no descriptor takes is a failure. A class without a tag also gets the attributes of the
  /// enclosing element, and the class of that element gets those of its groups: each of the two has false where the
  /// other has attributes.
  bool m_rejectUnknownAttributes;
  bool m_typeAttributeWanted;  ///< the class may need xsi:type
};

}  // namespace Quillon9Data

namespace Quillon9 {

class CheckingWriter;
class CUnknownContent;
class FailedScans;
class FlagSet;
struct FormAccess;  // for internal use
struct ObjectForm;  // for internal use
class PlainClasses;

/// Base of every generated class. Reads and writes any class by the description that the class gives of itself through
/// five operations, one record and two tables.
///
/// The record and the tables describe the class and not an instance. The generated code builds them, usually on first
/// use under m_csInit, with plain new (the tables with array new), and never changes them; CleanMetaData() frees them.
/// The library asks for them again whenever it needs them, from any thread and without a lock.
class QUILLON9_API CXmlGeneratedClass : public CXmlObjectBase {
 public:
  CXmlGeneratedClass();
  ~CXmlGeneratedClass() override;

  /// Store \p value in the property with the number \p index, or, when \p read is true, copy the property into
  /// \p value: its current value, or the reference to its object or collection. A property that is not set leaves
  /// \p value invalid.
  virtual void AccessProperty(int index, bool read, QnVariant& value) = 0;
  /// The record of the class; never null, owned by the class.
  virtual Quillon9Data::CParentElementInfo* GetClassInfo() const = 0;
  /// The descriptors of the elements in schema order, terminated by a null pointer.
  virtual Quillon9Data::CElementInfo** GetClassElementInfo() const = 0;
  /// The descriptors of the attributes in schema order, terminated by a null pointer.
  virtual Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const = 0;
  /// Prepare the members for a read. Every read calls this first; afterwards AccessProperty() must be able to supply
  /// the objects and collections that mandatory and repeated members fill.
  virtual void Init() = 0;

  /// Call AccessProperty() with read true, for const code.
  void ReadProperty(int index, QnVariant& value) const;
  /// The number of entries in the element table, without its null pointer.
  int GetClassElementInfoCount() const;
  /// Whether any descriptor of the element table recognises \p element. For generated code.
  bool IsElementInList(CXmlSerializationContext const& ctx, CXmlElement* element) const;
  /// Whether a choice may stay empty: one of its members is optional, or repeated with a minimum of 0. Fetches the
  /// collections of repeated members with ReadProperty().
  bool DoesElementContainOptionalElements() const;

  /// The attributes, elements, comments and processing instructions that this object has kept although its class does
  /// not know them; null for none. A read replaces them; only one that asks for it by
  /// CXmlSerializationContext::SetKeepUnknown() keeps any. They live as long as this object, until the next read or
  /// DropUnknownContent().
  ///@{
  CUnknownContent* GetUnknownContent();
  CUnknownContent const* GetUnknownContent() const;
  ///@}
  /// Forget them, so that they are not written. Objects inside this one keep theirs.
  void DropUnknownContent();

  /// The form of the document that this object was read from as its document element; null for none. A read replaces
  /// it, and only one that asks for it by CXmlSerializationContext::SetKeepForm() keeps any. It lives as long as this
  /// object, until the next read or one of the following two.
  CDocumentForm const* GetDocumentForm() const override;
  /// Give this object \p form, of which it keeps a copy.
  void SetDocumentForm(CDocumentForm form);
  /// Forget the form, so that the arguments of a writing operation decide.
  void DropDocumentForm();

  /// Look for faults in the record and the tables of the class which reading and writing show late or not at all. The
  /// section "Checked tables" of docs/generated-classes.md lists them. Nothing is changed. The properties of this object
  /// are read where an entry needs a collection and where two optional entries share an index. A library that was built
  /// with QUILLON9_CHECK_TABLES calls this when an object of the class is read or written for the first time.
  ///
  /// A table without the null pointer at its end is reported only if the next 65,536 pointers in memory are not null.
  /// Otherwise the behaviour is undefined, as it is when such a class is read or written.
  /// \throws CQnException "The tables of the class [%s] are wrong:%s", where the name is that of the type in the record,
  ///         or of the C++ class if that is empty, and a line follows for each fault; what AccessProperty() throws
  ///         outside the family of CQnException.
  void CheckTables() const;

  /// Free what a generated class built, and set the references to null. Safe to call twice. No object of the class may
  /// still be in use.
  static void CleanMetaData(Quillon9Data::CParentElementInfo*& classInfo, Quillon9Data::CElementInfo**& elements,
                            Quillon9Data::CAttributeInfo**& attributes);

  /// For generated code that builds its tables on first use: lock it, test again, build, unlock. The library never
  /// locks it. It is not recursive, so code that holds it must not ask for the tables of another class unless they
  /// exist.
  static CQNCriticalSection m_csInit;

 protected:
  // These wrap failures: an exception leaves them with the cause as inner exception, as CQnException "Failed to convert
  // attributes to XML", CQnValidationException "Failed to convert the element [%s] to XML" or CQnValidationException
  // "Failed to process the element [%s]", with one line for each class, including those without a tag.
  void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const override;
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;
  /// Write what stands between the tags: the members, then the text.
  /// \throws what the write drivers throw.
  virtual void ContentToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx, bool inChoice) const;

  /// Fill the members from \p cursor and its siblings as the read drivers below do, for a context with a failure sink: go
  /// on after each failure as far as the sink says so. Returns the first child that was not taken. The attributes have
  /// been read.
  /// \throws what the read drivers throw, when the sink ends the read.
  virtual CXmlElement* ReadMembersWithSink(CXmlElement* parent, CXmlElement* cursor,
                                           CXmlSerializationContext const& ctx, bool inChoice);

  /// Read xsi:nil, an attribute of \p element: "true" or "false", in any case.
  /// \throws CQnValidationException "Unexpected Attribute [%s] found." if this class is not nillable; "Unexpected Value
  ///         for Attribute [%s] found.".
  virtual void ReadNilAttribute(CXmlElement const& element, CXmlAttribute const& attribute,
                                CXmlSerializationContext const& ctx);

  /// Offer every attribute of \p parent to the attribute descriptors. With \p reject, an attribute that no descriptor
  /// takes is a failure, unless \p ctx ignores unknown attributes.
  /// \throws CQnValidationException "Unexpected Attribute [%s] found.", also, whatever \p ctx says, for xsi:nil on a
  ///         class that is not nillable; "Unexpected Value for Attribute [%s] found."; what the descriptors throw.
  void ProcessAttributesFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent, bool reject);

  /// The read drivers, one for each content model: fill the members from \p cursor and its siblings. They return the
  /// first child that was not taken, or the original cursor if the group could not be satisfied (what earlier members
  /// took stays stored).
  /// \throws CQnValidationException for a child that is left over and for a choice that found nothing; CQnException for
  ///         an all group whose table contains a member of another group; what the descriptors throw.
  ///@{
  CXmlElement* ProcessElementSeqFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent, CXmlElement* cursor,
                                        Quillon9Data::XmlElementType type);
  CXmlElement* ProcessElementAllFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent, CXmlElement* cursor,
                                        Quillon9Data::XmlElementType type);
  CXmlElement* ProcessElementChoiceFromXml(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                           CXmlElement* cursor, Quillon9Data::XmlElementType type, bool inChoice);
  ///@}
  /// What they do with \p cursor, the first child of \p parent that was not taken, or null.
  /// \throws CQnValidationException "Failed read all the elements held within the element [%s]. The unexpected element
  ///         [%s] remains un processed", unless there is none or \p ctx ignores unknown elements.
  void RejectLeftOver(CXmlSerializationContext const& ctx, CXmlElement const* parent, CXmlElement const* cursor) const;

  /// The write drivers.
  /// \throws CQnValidationException for a choice with nothing set; what the descriptors throw.
  ///@{
  void ProcessAttributesToXml(CXmlSerializationContext const& ctx, Quillon9Data::CElementInfo** elements,
                              Quillon9Data::CAttributeInfo** attributes, CXmlWriter* writer) const;
  void ProcessElementSeqToXml(CXmlSerializationContext const& ctx, Quillon9Data::CElementInfo** elements,
                              CXmlWriter* writer) const;
  void ProcessElementAllToXml(CXmlSerializationContext const& ctx, Quillon9Data::CElementInfo** elements,
                              CXmlWriter* writer) const;
  void ProcessElementChoiceToXml(CXmlSerializationContext const& ctx, Quillon9Data::CElementInfo** elements,
                                 CXmlWriter* writer, bool inChoice) const;
  ///@}

 private:
  friend struct FormAccess;

  CXmlElement* ReadAndKeepUnknown(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                  bool inChoice);
  CXmlElement* ReadElement(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice);
  CXmlElement* ReadMembers(Quillon9Data::CParentElementInfo const& info, CXmlElement* parent, CXmlElement* cursor,
                           CXmlSerializationContext const& ctx, bool inChoice);
  CXmlElement* ReadMembersReported(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                   bool inChoice);
  CXmlElement* ReadMembersWithScans(Quillon9Data::CParentElementInfo const& info, CXmlElement* parent,
                                    CXmlElement* cursor, CXmlSerializationContext const& ctx, bool inChoice);
  CXmlElement* ReadSequenceGroup(CXmlSerializationContext const& ctx, CXmlElement* parent, CXmlElement* cursor,
                                 Quillon9Data::XmlElementType type);
  CXmlElement* ReadGroup(Quillon9Data::CParentElementInfo const& info, CXmlElement* parent, CXmlElement* cursor,
                         CXmlSerializationContext const& ctx, bool inChoice);
  bool ReadAttribute(CXmlSerializationContext const& ctx, Quillon9Data::CAttributeInfo** table, FlagSet& found,
                     CXmlAttribute* attribute, bool reject, CXmlElement const* parent);
  void ReadGroupAttributes(CXmlSerializationContext const& ctx, FailedScans& scans, CXmlElement* parent,
                           Quillon9Data::CAttributeInfo** table, FlagSet& found, bool reject);
  bool OfferToChoiceMembers(CXmlSerializationContext const& ctx, FailedScans* scans, CXmlElement* parent,
                            CXmlElement** cursor, Quillon9Data::XmlElementType type);

  // What the functions for writing do for a writer that only checks.
  void CheckElement(CheckingWriter& writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                    bool inChoice) const;
  void CheckStart(CheckingWriter& writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                  bool inChoice) const;
  void CheckAttributes(CheckingWriter& writer, CXmlSerializationContext const& ctx,
                       Quillon9Data::CElementInfo** elements, Quillon9Data::CAttributeInfo** attributes) const;
  void CheckContent(CheckingWriter& writer, CXmlSerializationContext const& ctx, bool inChoice) const;
  void CheckMembers(CheckingWriter& writer, CXmlSerializationContext const& ctx) const;
  void CheckChoice(CheckingWriter& writer, CXmlSerializationContext const& ctx, bool inChoice) const;
  void RequireChoice(CXmlSerializationContext const& ctx, bool inChoice) const;

  void WriteElement(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                    bool inChoice) const;
  /// This object as a nillable one, or null. \p plainClasses may be null.
  INillable const* AsNillable(PlainClasses* plainClasses) const;
  void WriteStart(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                  bool inChoice) const;
  void WriteWithUnknown(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                        bool inChoice) const;

  struct FormDeleter {  // apart, so that objects without a form are destroyed quickly
    void operator()(ObjectForm* form) const noexcept;
  };
  std::unique_ptr<ObjectForm, FormDeleter> m_form;  // null where nothing is kept that the schema does not say
};

}  // namespace Quillon9
