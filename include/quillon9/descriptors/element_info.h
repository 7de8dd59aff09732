#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/restrictions.h"

namespace Quillon9 {

class CFacetFilter;

}  // namespace Quillon9

/// The descriptors of element content. A generated class lists one for each element that its schema declares; the
/// drivers of CXmlGeneratedClass walk the list, and each descriptor decides whether the element under the cursor
/// belongs to it and how to move it into the property and back.
///
/// A class name consists of: group (`Seq`, `All`, `Choice`), content (`Prim` a value, `Enum` an enumeration, `Cls` an
/// object of a known class, `AbsCls` an object whose class is determined from the element, `Untpd` any element),
/// occurrence (`Mnd` once, `Opt` at most once, `Col` repeated, held in a collection).
///
/// Descriptors are immutable, belong to the tables of their class and serve all its instances in all threads.
namespace Quillon9Data {

using Quillon9::CPrimitiveRestrictions;
using Quillon9::CWhitespaceUtils;
using Quillon9::CXmlElement;
using Quillon9::CXmlGeneratedClass;
using Quillon9::CXmlObjectBase;
using Quillon9::CXmlSerializationContext;
using Quillon9::CXmlWriter;
using Quillon9::ItemType;
using Quillon9::QnVariant;

/// Create an object of the class with this number and give it this element name. Never returns null. Generated code.
using ClassFactory = CSmartPtr<CXmlObjectBase> (*)(int classId, char const* elementName);
/// Create an object of the class that suits the element, for instance by its xsi:type; return null when no class does.
/// Generated code. A descriptor calls it only for elements of its own name; the members of a substitution group, which
/// have other names, are a choice, or a collection that knows their names.
using ElementFactory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);
/// The two directions of converting a generated enumeration.
///@{
using EnumToText = char const* (*)(int value);
using EnumFromText = int (*)(char const* text);
///@}

/// Base of all element descriptors: what a descriptor stores, and the steps that the derived classes share.
class QUILLON9_API CElementInfo {
 public:
  /// For primitive members. \p name, \p ns and \p restrictions are copied; \p format is not copied and must outlive the
  /// descriptor (tables pass literals or null).
  CElementInfo(char const* name, char const* ns, int index, ItemType type, char const* format,
               CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions);
  /// For all other members.
  CElementInfo(char const* name, char const* ns, int index);
  CElementInfo(CElementInfo const&) = delete;
  CElementInfo& operator=(CElementInfo const&) = delete;
  virtual ~CElementInfo();

  /// Write the property. Returns whether anything was written.
  /// \throws CQnException for a broken facet; what the child object throws.
  virtual bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                            CXmlWriter* writer) const = 0;
  /// Take the element under \p cursor, a child of \p parent, if it belongs to this descriptor, and move the cursor past
  /// it. A null cursor means that no child is left. Returns true if the driver may go on to the next descriptor, even
  /// if an optional element is absent; false if this descriptor is not satisfied. Despite returning false, it has moved
  /// the cursor in three cases: a collection in a holder without a tag whose count is outside its limits, the
  /// collections of all groups, and a mandatory primitive of a holder without a tag that looked for its element after
  /// ignored ones. \p holderNamespace and \p holderType are those of \p holder.
  /// \throws CQnValidationException for a missing mandatory element or a count outside its limits;
  ///         CQnInvalidValueException for a text that does not convert; CQnException for a factory or a holder that
  ///         supplies no object or collection; what the child object throws.
  virtual bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                              CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) = 0;
  /// The check of an all group after its last element. Returns whether \p found satisfies this descriptor. \p required
  /// makes a missing mandatory element a failure, instead of only returning false.
  virtual bool Validate(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, bool found,
                        bool required) const = 0;
  /// Write the attributes of a child without a tag on the open element. Does nothing here.
  virtual void PseudoChildAttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                         CXmlWriter* writer) const;
  /// Whether ElementFromXml() uses the namespace of the holder, which is otherwise not requested from the holder. True
  /// here; of the classes below, true for those of untyped content.
  virtual bool ReadsHolderNamespace() const { return true; }
  /// Whether ElementFromXml() may take \p element, which is not null, as the first of its elements. A read that goes on
  /// after failures skips an element that no descriptor may take. True here, which is right for any descriptor: it only
  /// makes such a read report more failures.
  virtual bool MayBegin(CXmlSerializationContext const& ctx, CXmlElement const* element) const;
  /// Whether ElementFromXml() may be called again after it has returned true, to add further elements to those that it
  /// has taken before. A read that goes on does so after it has skipped an unexpected element. False here.
  virtual bool IsRepeated() const;

  /// Whether \p element, which may be null, has this name and, unless \p ctx ignores namespaces, this namespace.
  bool IsThisElement(CXmlSerializationContext const& ctx, CXmlElement const* element) const;
  /// \throws CQnException for a broken facet, "Cannot CheckRestriction for type: " and the type's name when this is not
  ///         a primitive descriptor, and "Invalid Type %d" for a value whose type has no name; CQnInvalidValueException
  ///         for a kind without facets or a bound that does not parse.
  void CheckRestriction(QnVariant const& value) const;
  /// The namespace that a new untyped element gets under the wildcard \p restriction before anything is read into it:
  /// \p ns for "##any", the placeholder "DefaultNamespace" for "##other" with an empty \p ns, \p targetNamespace for
  /// "##targetNamespace", empty for everything else. Of a list that begins with "##", only the first token counts.
  static std::string GetAnyDefaultNamespace(char const* restriction, char const* ns, char const* targetNamespace);

  /// Write the property, by content kind. Returns whether anything was written. A value that is not valid, a null
  /// object and an empty collection write nothing.
  /// \throws what ElementToXml() throws; CQnException for an enumerator without text.
  ///@{
  bool ElementToXmlPrim(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                        CXmlWriter* writer) const;
  bool ElementToXmlPrimOpt(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                           CXmlWriter* writer) const;
  bool ElementToXmlEnum(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer,
                        EnumToText toText) const;
  bool ElementToXmlEnumOpt(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer,
                           EnumToText toText) const;
  bool ElementToXmlCls(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer,
                       bool inChoice) const;
  bool ElementToXmlCol(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer) const;
  ///@}

  /// Call the accessors of \p holder with the index of this property.
  /// \throws what the holder's AccessProperty() throws.
  ///@{
  void AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const;
  void ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const;
  ///@}
  /// Access to the protected operations of \p object, which must not be null.
  ///@{
  CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                           CXmlSerializationContext const& ctx, bool inChoice) const;
  void AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, CXmlSerializationContext const& ctx) const;
  ///@}

 protected:
  /// Whether \p element, which may be null, is known to be this one: a shortcut for IsThisElement().
  bool IsKnown(CXmlElement const* element) const;
  /// Move \p cursor to this mandatory element of a holder with a tag. Returns false, with the cursor unchanged, when
  /// its absence is ignored. Elements before it are skipped where unknown elements are ignored.
  /// \throws CQnValidationException "Failed to find a required element [%s]".
  bool SeekRequiredElement(CXmlSerializationContext const& ctx, CXmlElement** cursor) const;
  /// \throws CQnValidationException "Failed to find a required element [%s]", always.
  [[noreturn]] void ThrowRequiredElement() const;

  /// Validate() for the mandatory members of an all group.
  /// \throws CQnValidationException "Failed to find the mandatory element [%s]" when it is \p required and not \p
  ///         found.
  bool ValidateMandatory(bool found, bool required) const;

  // The steps of reading. Those that return bool report whether they took the element and moved \p cursor.

  /// Convert the text of the element under \p cursor, check its facets if \p ctx asks for that, store it and move on.
  /// Always returns true.
  bool TakePrimitive(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement** cursor) const;
  /// The same without facets.
  bool TakePrimitive(CXmlGeneratedClass* holder, CXmlElement** cursor) const;
  /// The same with \p fromText, which gets the text exactly as the document contains it.
  bool TakeEnum(CXmlGeneratedClass* holder, CXmlElement** cursor, EnumFromText fromText) const;
  /// Let \p child, an object with a tag, read the element under \p cursor, and move on.
  void ReadChild(CXmlSerializationContext const& ctx, CXmlObjectBase* child, CXmlElement** cursor, bool inChoice) const;
  /// The same for a child that an element factory created; it is stored before the cursor moves.
  void ReadAndStoreChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlObjectBase* child,
                         CXmlElement** cursor) const;
  /// Let \p child, an object without a tag, read from \p cursor on, which may be null.
  bool ReadPseudoChild(CXmlSerializationContext const& ctx, CXmlObjectBase* child, CXmlElement* parent,
                       CXmlElement** cursor) const;
  /// Whether an untyped member takes elements of this name.
  bool IsUntypedName(CXmlElement const* element) const;
  /// Let \p held, a CElement, read the element under \p cursor, which is not null.
  bool ReadUntyped(CXmlSerializationContext const& ctx, CXmlObjectBase* held, CXmlElement* parent,
                   CXmlElement** cursor) const;
  /// Read the element under \p cursor, which is not null, into a new CElement. Returns null if that did not take it.
  CSmartPtr<CXmlObjectBase> ReadNewUntyped(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                           CXmlElement** cursor, char const* holderNamespace,
                                           std::string const& restriction, std::string const& targetNamespace) const;
  /// Let the untyped \p collection read from \p cursor on. Returns the first element that it did not take.
  CXmlElement* ReadUntypedCollection(CXmlSerializationContext const& ctx, Quillon9::CXmlCollectionBase* collection,
                                     CXmlElement* parent, CXmlElement* cursor) const;

  /// Write the element with the content \p text, which is that of a value of the kind \p type.
  void WriteText(CXmlWriter* writer, std::string_view text, ItemType type) const;

  // The counts of collections.

  /// \throws CQnValidationException for a count outside the limits of the collection, unless \p ctx ignores that.
  void ValidateCountOnWriting(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder) const;
  /// Whether the count is within its limits. In a holder with a tag, a wrong count throws CQnValidationException.
  static bool JudgeCount(Quillon9::CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                         XmlElementType holderType);
  /// Whether a collection of a choice, which read up to \p next, is the chosen member.
  static bool AcceptChosen(Quillon9::CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                           CXmlElement* next, CXmlElement** cursor, XmlElementType holderType);

  // The objects of the holder.

  /// Create a child object. Never returns null.
  CSmartPtr<CXmlObjectBase> MakeChild(ClassFactory classFactory, int classId) const;
  /// The child object or the collection that the holder keeps for this property.
  ///@{
  CSmartPtr<CXmlObjectBase> FetchChild(CXmlGeneratedClass* holder) const;
  CSmartPtr<Quillon9::CXmlCollectionBase> FetchCollection(CXmlGeneratedClass* holder) const;
  CSmartPtr<Quillon9::CXmlCollectionBase> ReadCollection(CXmlGeneratedClass const* holder) const;
  /// The same, without taking a reference: \p value, which is still empty, keeps the collection alive.
  Quillon9::CXmlCollectionBase* LookAtCollection(CXmlGeneratedClass const* holder, QnVariant& value) const;
  ///@}
  /// Store \p child, which may be null, in the property.
  void StoreChild(CXmlGeneratedClass* holder, CXmlObjectBase* child) const;
  /// PseudoChildAttributeToXml() of members that hold an object, and of those that hold a collection of objects.
  ///@{
  void PseudoObjectAttributesToXml(XmlElementType childType, CXmlSerializationContext const& ctx,
                                   CXmlGeneratedClass const* holder, CXmlWriter* writer) const;
  void PseudoItemsAttributesToXml(XmlElementType childType, CXmlSerializationContext const& ctx,
                                  CXmlGeneratedClass const* holder, CXmlWriter* writer) const;
  ///@}

  std::string m_elementName;                         ///< local name
  std::string m_namespace;                           ///< empty for none
  int m_propertyIndex;                               ///< for AccessProperty()
  CPrimitiveRestrictions m_restrictions;             ///< facets of a primitive member
  ItemType m_itemType = Quillon9::ItemType_invalid;  ///< kind of a primitive member
  char const* m_format = nullptr;                    ///< not owned
  /// Applied to the text of a primitive member.
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule = CWhitespaceUtils::WhitespaceRule_None;
  bool m_primitive;  ///< set by the constructor for primitive members

 private:
  bool WriteBySchema(QnVariant const& value, CXmlWriter& writer) const;
  void CheckBySchema(QnVariant const& value, std::string_view text) const;

  friend struct DescriptorAccess;
  std::unique_ptr<Quillon9::CFacetFilter const> m_filter;  // null for other members, and for rare facets
  Quillon9::detail::LazySchemaFacets m_schemaFacets;
  std::uint64_t const m_number;  // which no other member ever has; readers use it to recognise members
};

// ---- The three groups

/// A member of a sequence.
class QUILLON9_API CElementInfoSeq : public CElementInfo {
 public:
  using CElementInfo::CElementInfo;
  ~CElementInfoSeq() override;
  /// \throws CQnException "Not implemented, should never be called": only all groups are validated at the end.
  bool Validate(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, bool found,
                bool required) const override;
};

/// A member of an all group. Its members implement Validate().
class QUILLON9_API CElementInfoAll : public CElementInfo {
 public:
  using CElementInfo::CElementInfo;
  ~CElementInfoAll() override;
};

/// A member of a choice.
class QUILLON9_API CElementInfoChoice : public CElementInfo {
 public:
  using CElementInfo::CElementInfo;
  ~CElementInfoChoice() override;
  /// \throws CQnException "Not implemented, should never be called".
  bool Validate(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, bool found,
                bool required) const override;
};

// The operations that the members override. The last two write the attributes of a child, or of the items of a
// collection, that have no tag on the open element.
#define QN_ELEMENT_OVERRIDES                                                                                   \
  bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer) \
      const override;                                                                                          \
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,    \
                      CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) override;
#define QN_TYPED_OVERRIDES        \
  friend struct DescriptorAccess; \
  QN_ELEMENT_OVERRIDES            \
  bool ReadsHolderNamespace() const override { return false; }
#define QN_UNTYPED_OVERRIDES \
  QN_ELEMENT_OVERRIDES       \
  bool ReadsHolderNamespace() const override { return true; }
#define QN_VALIDATE_OVERRIDE                                                                                      \
  bool Validate(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, bool found, bool required) \
      const override;
#define QN_PSEUDO_OBJECT_OVERRIDE                                                                       \
  void PseudoChildAttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, \
                                 CXmlWriter* writer) const override {                                   \
    PseudoObjectAttributesToXml(m_childType, ctx, holder, writer);                                      \
  }
#define QN_PSEUDO_ITEMS_OVERRIDE                                                                        \
  void PseudoChildAttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, \
                                 CXmlWriter* writer) const override {                                   \
    PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);                                       \
  }

// The members, by content kind; within each kind first those of a sequence, then of an all group, then of a choice.
// This table shows which members exist and how they differ:
//
//            element absent                              a mandatory one missing            property stored
//   Seq      Opt: true; Mnd: see there                   fails at once                      after the read
//   All      false                                       fails at the end, by Validate()    after the read
//   Choice   false (there is no Mnd)                     fails in the driver                before the read
//
// In a holder without a tag a missing mandatory element is not a failure: the whole group may be absent, so the result
// is false. On writing, Mnd and Opt behave alike: a value that is not valid and a null object write nothing.

// ---- Values. Facets are checked on writing, and on reading where the context asks for that.

/// A value, mandatory, in a sequence.
class QUILLON9_API CElementInfoSeqPrimMnd : public CElementInfoSeq {
 public:
  /// The arguments of CElementInfo for primitive members.
  CElementInfoSeqPrimMnd(char const* name, char const* ns, int index, ItemType type, char const* format,
                         CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions)
      : CElementInfoSeq(name, ns, index, type, format, rule, restrictions) {}
  QN_TYPED_OVERRIDES
};

/// A value, optional, in a sequence.
class QUILLON9_API CElementInfoSeqPrimOpt : public CElementInfoSeq {
 public:
  /// The arguments of CElementInfoSeqPrimMnd.
  CElementInfoSeqPrimOpt(char const* name, char const* ns, int index, ItemType type, char const* format,
                         CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions)
      : CElementInfoSeq(name, ns, index, type, format, rule, restrictions) {}
  QN_TYPED_OVERRIDES
};

/// A value, mandatory, in an all group.
class QUILLON9_API CElementInfoAllPrimMnd : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqPrimMnd.
  CElementInfoAllPrimMnd(char const* name, char const* ns, int index, ItemType type, char const* format,
                         CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions)
      : CElementInfoAll(name, ns, index, type, format, rule, restrictions) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE
};

/// A value, optional, in an all group.
class QUILLON9_API CElementInfoAllPrimOpt : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqPrimMnd.
  CElementInfoAllPrimOpt(char const* name, char const* ns, int index, ItemType type, char const* format,
                         CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions)
      : CElementInfoAll(name, ns, index, type, format, rule, restrictions) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE
};

/// A value, optional, in a choice.
class QUILLON9_API CElementInfoChoicePrimOpt : public CElementInfoChoice {
 public:
  /// The arguments of CElementInfoSeqPrimMnd.
  CElementInfoChoicePrimOpt(char const* name, char const* ns, int index, ItemType type, char const* format,
                            CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions)
      : CElementInfoChoice(name, ns, index, type, format, rule, restrictions) {}
  QN_TYPED_OVERRIDES
};

// ---- Enumerations, held as the number of the enumerator. \p fromText gets the text exactly as the document contains
// it and decides what to do with an unknown one. Writing throws CQnException for a number without text.

/// An enumerator, mandatory, in a sequence.
class QUILLON9_API CElementInfoSeqEnumMnd : public CElementInfoSeq {
 public:
  /// \p toText and \p fromText, functions of the enumeration, are kept and must not be null.
  CElementInfoSeqEnumMnd(char const* name, char const* ns, int index, EnumToText toText, EnumFromText fromText)
      : CElementInfoSeq(name, ns, index), m_fromText(fromText), m_toText(toText) {}
  QN_TYPED_OVERRIDES

 private:
  EnumFromText m_fromText;
  EnumToText m_toText;
};

/// An enumerator, optional, in a sequence.
class QUILLON9_API CElementInfoSeqEnumOpt : public CElementInfoSeq {
 public:
  /// The arguments of CElementInfoSeqEnumMnd.
  CElementInfoSeqEnumOpt(char const* name, char const* ns, int index, EnumToText toText, EnumFromText fromText)
      : CElementInfoSeq(name, ns, index), m_toText(toText), m_fromText(fromText) {}
  QN_TYPED_OVERRIDES

 private:
  EnumToText m_toText;
  EnumFromText m_fromText;
};

/// An enumerator, mandatory, in an all group.
class QUILLON9_API CElementInfoAllEnumMnd : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqEnumMnd.
  CElementInfoAllEnumMnd(char const* name, char const* ns, int index, EnumToText toText, EnumFromText fromText)
      : CElementInfoAll(name, ns, index), m_toText(toText), m_fromText(fromText) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE

 private:
  EnumToText m_toText;
  EnumFromText m_fromText;
};

/// An enumerator, optional, in an all group.
class QUILLON9_API CElementInfoAllEnumOpt : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqEnumMnd.
  CElementInfoAllEnumOpt(char const* name, char const* ns, int index, EnumToText toText, EnumFromText fromText)
      : CElementInfoAll(name, ns, index), m_toText(toText), m_fromText(fromText) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE

 private:
  EnumToText m_toText;
  EnumFromText m_fromText;
};

/// An enumerator, optional, in a choice.
class QUILLON9_API CElementInfoChoiceEnumOpt : public CElementInfoChoice {
 public:
  /// The arguments of CElementInfoSeqEnumMnd.
  CElementInfoChoiceEnumOpt(char const* name, char const* ns, int index, EnumToText toText, EnumFromText fromText)
      : CElementInfoChoice(name, ns, index), m_toText(toText), m_fromText(fromText) {}
  QN_TYPED_OVERRIDES

 private:
  EnumToText m_toText;
  EnumFromText m_fromText;
};

// ---- Objects of a known class, with a tag or without.

/// An object of a known class, mandatory, in a sequence. The child already exists in its owner: \p classFactory and
/// \p classId are stored but not used. \p requiresContent says that a child without a tag counts as present only if it
/// took an element.
class QUILLON9_API CElementInfoSeqClsMnd : public CElementInfoSeq {
 public:
  /// \p childType is the element type in the record of the child's class.
  CElementInfoSeqClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId, bool requiresContent)
      : CElementInfoSeq(name, ns, index),
        m_childType(childType),
        m_requiresContent(requiresContent),
        m_classFactory(classFactory),
        m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  bool TakeElementChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement** cursor,
                        XmlElementType holderType);
  bool TakePseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                       CXmlElement** cursor, XmlElementType holderType);

  XmlElementType m_childType;
  bool m_requiresContent;
  [[maybe_unused]] ClassFactory m_classFactory;
  [[maybe_unused]] int m_classId;
};

/// An object of a known class, optional, in a sequence. The child is created when its element is present, and stored
/// when it has been read completely.
class QUILLON9_API CElementInfoSeqClsOpt : public CElementInfoSeq {
 public:
  /// \p childType is the element type in the record of the child's class; \p classFactory is kept and must not be null.
  CElementInfoSeqClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId)
      : CElementInfoSeq(name, ns, index), m_childType(childType), m_classFactory(classFactory), m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

/// An object of a known class, mandatory, in an all group. As in a sequence, but \p requiresContent applies to a child
/// with a tag: without it the element may be missing.
class QUILLON9_API CElementInfoAllClsMnd : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqClsMnd.
  CElementInfoAllClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId, bool requiresContent)
      : CElementInfoAll(name, ns, index),
        m_childType(childType),
        m_classFactory(classFactory),
        m_classId(classId),
        m_requiresContent(requiresContent) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  [[maybe_unused]] ClassFactory m_classFactory;
  [[maybe_unused]] int m_classId;
  bool m_requiresContent;
};

/// An object of a known class, optional, in an all group.
class QUILLON9_API CElementInfoAllClsOpt : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqClsOpt.
  CElementInfoAllClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId)
      : CElementInfoAll(name, ns, index), m_childType(childType), m_classFactory(classFactory), m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

/// An object of a known class, optional, in a choice. The child is stored before it is read, and the property is set to
/// null when the child took nothing. A child with a tag that is itself a choice may stay empty here, on reading and on
/// writing.
class QUILLON9_API CElementInfoChoiceClsOpt : public CElementInfoChoice {
 public:
  /// The arguments of CElementInfoSeqClsOpt.
  CElementInfoChoiceClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                           ClassFactory classFactory, int classId)
      : CElementInfoChoice(name, ns, index), m_childType(childType), m_classFactory(classFactory), m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

// ---- Objects whose class is determined from the element: abstract types and substitution groups.

/// An object whose class is determined from the element, mandatory, in a sequence. When the element is absent or no
/// class suits it, reading throws CQnValidationException "Failed to find a suitable substitution element for [%s]" in a
/// holder with a tag. No option excuses this or skips elements before it.
class QUILLON9_API CElementInfoSeqAbsClsMnd : public CElementInfoSeq {
 public:
  /// \p childType is the element type in the records of the classes; \p elementFactory is kept and must not be null.
  CElementInfoSeqAbsClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory)
      : CElementInfoSeq(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ElementFactory m_elementFactory;
};

/// An object whose class is determined from the element, optional, in a sequence.
class QUILLON9_API CElementInfoSeqAbsClsOpt : public CElementInfoSeq {
 public:
  /// The arguments of CElementInfoSeqAbsClsMnd.
  CElementInfoSeqAbsClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory)
      : CElementInfoSeq(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ElementFactory m_elementFactory;
};

/// An object whose class is determined from the element, mandatory, in an all group. It can be written but not read:
/// ElementFromXml() throws CQnException for every child of the holder.
class QUILLON9_API CElementInfoAllAbsClsMnd : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqAbsClsMnd; \p classId is stored but not used.
  CElementInfoAllAbsClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory, int classId)
      : CElementInfoAll(name, ns, index),
        m_childType(childType),
        m_elementFactory(elementFactory),
        m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  [[maybe_unused]] ElementFactory m_elementFactory;
  [[maybe_unused]] int m_classId;
};

/// An object whose class is determined from the element, optional, in an all group. Like the mandatory form it can be
/// written but not read.
class QUILLON9_API CElementInfoAllAbsClsOpt : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqAbsClsMnd.
  CElementInfoAllAbsClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory)
      : CElementInfoAll(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}
  QN_TYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  [[maybe_unused]] ElementFactory m_elementFactory;
};

/// An object whose class is determined from the element, optional, in a choice. When no class suits the element, the
/// property is null and the next member is tried.
class QUILLON9_API CElementInfoChoiceAbsClsOpt : public CElementInfoChoice {
 public:
  /// The arguments of CElementInfoSeqAbsClsMnd.
  CElementInfoChoiceAbsClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                              ElementFactory elementFactory)
      : CElementInfoChoice(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ElementFactory m_elementFactory;
};

// ---- Untyped content, held as CElement. A \p name of "AnyElement" takes an element of any local name, any other name
// only elements of that name; \p ns has no effect, nor has the option that ignores namespaces. The namespace is checked
// by the \p restriction of the CElement, with \p targetNamespace (see CXmlObjectHelper::IsNamespaceValid for its form).

/// Any element, mandatory, in a sequence. The CElement already exists in its owner, with a restriction of its own; the
/// one passed here is not used. When no element is left, reading throws CQnValidationException "Failed to find a
/// required element [%s]", even in a holder without a tag; for an element that the CElement does not take, it throws
/// "Failed to find the required element from namespace [%s]", only in a holder with a tag.
class QUILLON9_API CElementInfoSeqUntpdMnd : public CElementInfoSeq {
 public:
  /// \p restriction and \p targetNamespace are copied.
  CElementInfoSeqUntpdMnd(char const* name, char const* ns, int index, char const* restriction,
                          char const* targetNamespace)
      : CElementInfoSeq(name, ns, index), m_namespaceRestriction(restriction), m_targetNamespace(targetNamespace) {}
  QN_UNTYPED_OVERRIDES

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

/// Any element, optional, in a sequence. Each attempt creates a new CElement, which is stored if it took the element.
/// \throws CQnInvalidNamespaceException from every read with an element left when the namespace of
///         GetAnyDefaultNamespace() does not satisfy the restriction: for "##other" with an empty target namespace in a
///         holder that has a namespace.
class QUILLON9_API CElementInfoSeqUntpdOpt : public CElementInfoSeq {
 public:
  /// The arguments of CElementInfoSeqUntpdMnd.
  CElementInfoSeqUntpdOpt(char const* name, char const* ns, int index, char const* restriction,
                          char const* targetNamespace)
      : CElementInfoSeq(name, ns, index), m_namespaceRestriction(restriction), m_targetNamespace(targetNamespace) {}
  QN_UNTYPED_OVERRIDES

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

/// Any element, mandatory, in an all group. As in a sequence, but absence is checked at the end.
class QUILLON9_API CElementInfoAllUntpdMnd : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqUntpdMnd.
  CElementInfoAllUntpdMnd(char const* name, char const* ns, int index, char const* restriction,
                          char const* targetNamespace)
      : CElementInfoAll(name, ns, index), m_namespaceRestriction(restriction), m_targetNamespace(targetNamespace) {}
  QN_UNTYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

/// Any element, optional, in an all group.
class QUILLON9_API CElementInfoAllUntpdOpt : public CElementInfoAll {
 public:
  /// The arguments of CElementInfoSeqUntpdMnd.
  CElementInfoAllUntpdOpt(char const* name, char const* ns, int index, char const* restriction,
                          char const* targetNamespace)
      : CElementInfoAll(name, ns, index), m_namespaceRestriction(restriction), m_targetNamespace(targetNamespace) {}
  QN_UNTYPED_OVERRIDES
  QN_VALIDATE_OVERRIDE

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

/// Any element, optional, in a choice. The property is null after an attempt that took nothing.
class QUILLON9_API CElementInfoChoiceUntpdOpt : public CElementInfoChoice {
 public:
  /// The arguments of CElementInfoSeqUntpdMnd.
  CElementInfoChoiceUntpdOpt(char const* name, char const* ns, int index, char const* restriction,
                             char const* targetNamespace)
      : CElementInfoChoice(name, ns, index), m_namespaceRestriction(restriction), m_targetNamespace(targetNamespace) {}
  QN_UNTYPED_OVERRIDES

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

// ---- Repeated members: the property is a collection, which takes its run of siblings and knows its limits.

/// A repeated member of a sequence. The count is checked after reading and before writing.
class QUILLON9_API CElementInfoSeqCol : public CElementInfoSeq {
 public:
  /// The name, the namespace and the index of the property, as for CElementInfo.
  CElementInfoSeqCol(char const* name, char const* ns, int index) : CElementInfoSeq(name, ns, index) {}
  bool IsRepeated() const override { return true; }
  QN_TYPED_OVERRIDES
};

/// A repeated member of an all group. Abstract: an all group has no repeated members, so no table contains one.
class QUILLON9_API CElementInfoAllCol : public CElementInfoAll {
 public:
  /// The name, the namespace and the index of the property, as for CElementInfo.
  CElementInfoAllCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  QN_TYPED_OVERRIDES
};

/// A repeated member of a choice. A collection that took nothing is not the chosen member; the count is not checked on
/// writing.
class QUILLON9_API CElementInfoChoiceCol : public CElementInfoChoice {
 public:
  /// The name, the namespace and the index of the property, as for CElementInfo.
  CElementInfoChoiceCol(char const* name, char const* ns, int index) : CElementInfoChoice(name, ns, index) {}
  bool IsRepeated() const override { return true; }
  QN_TYPED_OVERRIDES
};

// Collections of values and of enumerators have only the behaviour of their group; those of objects store whether the
// items have tags of their own, and untyped ones check the name.

/// A collection of values, in a sequence.
class QUILLON9_API CElementInfoSeqPrimCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  ~CElementInfoSeqPrimCol() override;
};

/// A collection of enumerators, in a sequence.
class QUILLON9_API CElementInfoSeqEnumCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  ~CElementInfoSeqEnumCol() override;
};

/// A collection of objects of a known class, in a sequence.
class QUILLON9_API CElementInfoSeqClsCol : public CElementInfoSeqCol {
 public:
  /// \p childType is that of the record of the items' class.
  CElementInfoSeqClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoSeqCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoSeqClsCol() override;
  QN_PSEUDO_ITEMS_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// A collection of objects whose class is determined from the element, in a sequence.
class QUILLON9_API CElementInfoSeqAbsClsCol : public CElementInfoSeqCol {
 public:
  /// \p childType is that of the record of the items' classes.
  CElementInfoSeqAbsClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoSeqCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoSeqAbsClsCol() override;
  QN_PSEUDO_ITEMS_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// A collection of any elements, in a sequence. Under the name "AnyElement" it takes everything that is left, so it is
/// the last member; under any other name it takes the run of siblings with that name and the namespace of the first,
/// for which the collection must be a CElementCol (CQnException otherwise). A CElementCol restricts no namespace and
/// has no limits.
class QUILLON9_API CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                      CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) override;
};

/// Abstract: a collection of no kind. It derives from the group class and can neither read nor write.
class QUILLON9_API CElementInfoSeqNonCol : public CElementInfoSeq {
 public:
  /// The name, the namespace and the index of the property, as for CElementInfo.
  CElementInfoSeqNonCol(char const* name, char const* ns, int index) : CElementInfoSeq(name, ns, index) {}
  ~CElementInfoSeqNonCol() override;
};

/// A collection of values, in an all group. Abstract, like its base.
class QUILLON9_API CElementInfoAllPrimCol : public CElementInfoAllCol {
 public:
  using CElementInfoAllCol::CElementInfoAllCol;
  ~CElementInfoAllPrimCol() override;
};

/// A collection of enumerators, in an all group. Unlike the other collections, it does not derive from a `Col` class.
class QUILLON9_API CElementInfoAllEnumCol : public CElementInfoAll {
 public:
  /// The name, the namespace and the index of the property, as for CElementInfo.
  CElementInfoAllEnumCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  ~CElementInfoAllEnumCol() override;
};

/// A collection of objects of a known class, in an all group. Abstract, like its base.
class QUILLON9_API CElementInfoAllClsCol : public CElementInfoAllCol {
 public:
  /// The arguments of CElementInfoSeqClsCol.
  CElementInfoAllClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoAllCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoAllClsCol() override;
  QN_PSEUDO_ITEMS_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// A collection of objects whose class is determined from the element, in an all group. Abstract, like its base.
class QUILLON9_API CElementInfoAllAbsClsCol : public CElementInfoAllCol {
 public:
  /// The arguments of CElementInfoSeqAbsClsCol.
  CElementInfoAllAbsClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoAllCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoAllAbsClsCol() override;
  QN_PSEUDO_ITEMS_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// A collection of any elements, in an all group. Abstract, like its base.
class QUILLON9_API CElementInfoAllUntpdCol : public CElementInfoAllCol {
 public:
  using CElementInfoAllCol::CElementInfoAllCol;
  ~CElementInfoAllUntpdCol() override;
};

/// A collection of no kind, in an all group. Abstract, as in a sequence.
class QUILLON9_API CElementInfoAllNonCol : public CElementInfoAll {
 public:
  /// The name, the namespace and the index of the property, as for CElementInfo.
  CElementInfoAllNonCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  ~CElementInfoAllNonCol() override;
};

/// A collection of values, in a choice.
class QUILLON9_API CElementInfoChoicePrimCol : public CElementInfoChoiceCol {
 public:
  using CElementInfoChoiceCol::CElementInfoChoiceCol;
  ~CElementInfoChoicePrimCol() override;
};

/// A collection of enumerators, in a choice.
class QUILLON9_API CElementInfoChoiceEnumCol : public CElementInfoChoiceCol {
 public:
  using CElementInfoChoiceCol::CElementInfoChoiceCol;
  ~CElementInfoChoiceEnumCol() override;
};

/// A collection of objects of a known class, in a choice.
class QUILLON9_API CElementInfoChoiceClsCol : public CElementInfoChoiceCol {
 public:
  /// The arguments of CElementInfoSeqClsCol.
  CElementInfoChoiceClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoChoiceCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoChoiceClsCol() override;
  QN_PSEUDO_ITEMS_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// A collection of objects whose class is determined from the element, in a choice.
class QUILLON9_API CElementInfoChoiceAbsClsCol : public CElementInfoChoiceCol {
 public:
  /// The arguments of CElementInfoSeqAbsClsCol.
  CElementInfoChoiceAbsClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoChoiceCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoChoiceAbsClsCol() override;
  QN_PSEUDO_ITEMS_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// A collection of any elements, in a choice.
class QUILLON9_API CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol {
 public:
  using CElementInfoChoiceCol::CElementInfoChoiceCol;
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                      CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) override;
};

#undef QN_PSEUDO_ITEMS_OVERRIDE
#undef QN_PSEUDO_OBJECT_OVERRIDE
#undef QN_VALIDATE_OVERRIDE
#undef QN_TYPED_OVERRIDES
#undef QN_UNTYPED_OVERRIDES
#undef QN_ELEMENT_OVERRIDES

}  // namespace Quillon9Data
