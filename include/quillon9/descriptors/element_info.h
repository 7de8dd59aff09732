#pragma once

#include <cstdint>
#include <memory>
#include <string>

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
/// is its own and how it gets into the property and back.
///
/// A class name reads: group (`Seq`, `All`, `Choice`), content (`Prim` a value, `Enum` an enumeration, `Cls` an
/// object of a known class, `AbsCls` one whose class is found from the element, `Untpd` any element), occurrence (`Mnd`
/// once, `Opt` at most once, `Col` repeated, held in a collection).
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

/// Makes an object of the class with this number, bearing this element name. Never null. Generated code.
using ClassFactory = CSmartPtr<CXmlObjectBase> (*)(int classId, char const* elementName);
/// Makes an object of the class that suits the element, by its xsi:type for instance; null when none does. Generated
/// code. A descriptor asks for elements of its own name only; the members of a substitution group, which have other
/// names, are a choice, or a collection that knows their names.
using ElementFactory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);
/// The two directions of a generated enumeration.
///@{
using EnumToText = char const* (*)(int value);
using EnumFromText = int (*)(char const* text);
///@}

struct ChildTypes;  // for the library itself

/// Root of the family: what a descriptor stores, and the steps that its members share.
class QUILLON9_API CElementInfo {
 public:
  /// For primitive members. \p name and \p ns are copied, \p restrictions too; \p format is kept as it is and must
  /// outlive the descriptor (tables pass literals or null).
  CElementInfo(char const* name, char const* ns, int index, ItemType type, char const* format,
               CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions);
  /// For all other members.
  CElementInfo(char const* name, char const* ns, int index);
  CElementInfo(CElementInfo const&) = delete;
  CElementInfo& operator=(CElementInfo const&) = delete;
  virtual ~CElementInfo();

  /// Write the property. True when something was written.
  /// \throws CQnException for a broken facet; what the child object throws.
  virtual bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                            CXmlWriter* writer) const = 0;
  /// Take the element under \p cursor, a child of \p parent, when it is this descriptor's own, and move the cursor
  /// behind it. A null cursor means that no child is left. True means that the driver may go on to the next
  /// descriptor, an absent optional element included; false that this descriptor is not satisfied. Where false is
  /// returned, the cursor has moved all the same in three cases: a collection in a holder without a tag whose count is
  /// outside its limits, the collections of all groups, and a mandatory primitive of a holder without a tag that looked
  /// for its element behind ignored ones. \p holderNamespace and \p holderType are those of \p holder.
  /// \throws CQnValidationException for a missing mandatory element or a count outside its limits;
  ///         CQnInvalidValueException for a text that does not convert; CQnException for a factory or a holder that has
  ///         no object or collection to give; what the child object throws.
  virtual bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                              CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) = 0;
  /// The check of an all group after its last element: whether \p found satisfies this descriptor. \p required
  /// says that a missing mandatory element is a failure and not just false.
  virtual bool Validate(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, bool found,
                        bool required) const = 0;
  /// Write the attributes of a child without a tag on the open element. Does nothing here.
  virtual void PseudoChildAttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                         CXmlWriter* writer) const;
  /// Whether ElementFromXml() looks at the namespace of the holder, which is not asked for it otherwise. True here; of
  /// the classes below, true for those of untyped content.
  virtual bool ReadsHolderNamespace() const { return true; }
  /// The number that this member has and no other one ever had, for what readers remember.
  std::uint64_t GetNumber() const { return m_number; }

  /// Whether \p element, which may be null, has this name and, unless \p ctx ignores namespaces, this namespace.
  bool IsThisElement(CXmlSerializationContext const& ctx, CXmlElement const* element) const;
  /// \throws CQnException for a broken facet, "Cannot CheckRestriction for type: " and the type's name when this is no
  ///         primitive descriptor, and "Invalid Type %d" for a value without a name; CQnInvalidValueException for a
  ///         kind without facets or a bound that does not parse.
  void CheckRestriction(QnVariant const& value) const;
  /// The namespace that a new untyped element takes under the wildcard \p restriction before anything is read into it:
  /// \p ns for "##any", the placeholder "DefaultNamespace" for "##other" with an empty \p ns, \p targetNamespace for
  /// "##targetNamespace", empty for everything else. Of a list that begins with "##" the first token counts.
  static std::string GetAnyDefaultNamespace(char const* restriction, char const* ns, char const* targetNamespace);

  /// How the members write their property, by content kind: true when something was written. A value that is not valid,
  /// a null object and an empty collection write nothing.
  /// \throws what ElementToXml() tells; CQnException for an enumerator without text.
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

  /// The holder's accessors with the index of this property.
  /// \throws what the holder's AccessProperty() throws.
  ///@{
  void AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const;
  void ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const;
  ///@}
  /// Ways in to the protected operations of \p object, which is not null.
  ///@{
  CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                           CXmlSerializationContext const& ctx, bool inChoice) const;
  void AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, CXmlSerializationContext const& ctx) const;
  ///@}

 protected:
  /// Whether \p element, which may be null, is known to be this one: IsThisElement() in a few steps.
  bool IsKnown(CXmlElement const* element) const;
  /// Move \p cursor to this mandatory element of a holder with a tag. False when its absence is ignored, with the
  /// cursor untouched. Elements in front of it are skipped where unknown ones are ignored.
  /// \throws CQnValidationException "Failed to find a required element [%s]".
  bool SeekRequiredElement(CXmlSerializationContext const& ctx, CXmlElement** cursor) const;
  /// \throws CQnValidationException "Failed to find a required element [%s]", always.
  [[noreturn]] void ThrowRequiredElement() const;

  /// The Validate() of the mandatory members of an all group.
  /// \throws CQnValidationException "Failed to find the mandatory element [%s]" when it is \p required and not \p
  ///         found.
  bool ValidateMandatory(bool found, bool required) const;

  // The steps of reading. Those with a result tell whether they took the element, and moved \p cursor.

  /// Convert the text of the element under \p cursor, store it, move on. Always true.
  bool TakePrimitive(CXmlGeneratedClass* holder, CXmlElement** cursor) const;
  /// The same by \p fromText, which gets the text as it stands in the document.
  bool TakeEnum(CXmlGeneratedClass* holder, CXmlElement** cursor, EnumFromText fromText) const;
  /// Let \p child, an object with a tag, read the element under \p cursor, and move on.
  void ReadChild(CXmlSerializationContext const& ctx, CXmlObjectBase* child, CXmlElement** cursor, bool inChoice) const;
  /// The same for a child that an element factory made, which is stored before the cursor moves.
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
  /// A new CElement with the element under \p cursor, which is not null; null when it did not take it.
  CSmartPtr<CXmlObjectBase> ReadNewUntyped(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                           CXmlElement** cursor, char const* holderNamespace,
                                           std::string const& restriction, std::string const& targetNamespace) const;
  /// The first element that the untyped \p collection did not take.
  CXmlElement* ReadUntypedCollection(CXmlSerializationContext const& ctx, Quillon9::CXmlCollectionBase* collection,
                                     CXmlElement* parent, CXmlElement* cursor) const;

  // The counts of collections.

  /// \throws CQnValidationException for a count outside the limits of the collection, unless \p ctx ignores that.
  void ValidateCountOnWriting(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder) const;
  /// Whether the count is within its limits. In a holder with a tag a wrong one is a CQnValidationException.
  static bool JudgeCount(Quillon9::CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                         XmlElementType holderType);
  /// Whether a collection of a choice that read up to \p next is the chosen member.
  static bool AcceptChosen(Quillon9::CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                           CXmlElement* next, CXmlElement** cursor, XmlElementType holderType);

  // The objects of the holder.

  /// A new child object. Never null.
  CSmartPtr<CXmlObjectBase> MakeChild(ClassFactory classFactory, int classId) const;
  /// The child object or the collection that the holder keeps for this property.
  ///@{
  CSmartPtr<CXmlObjectBase> FetchChild(CXmlGeneratedClass* holder) const;
  CSmartPtr<Quillon9::CXmlCollectionBase> FetchCollection(CXmlGeneratedClass* holder) const;
  CSmartPtr<Quillon9::CXmlCollectionBase> ReadCollection(CXmlGeneratedClass const* holder) const;
  /// The same, not counted: \p value, which holds nothing yet, keeps it.
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
  bool m_primitive;  ///< made by the constructor for primitive members

 private:
  std::unique_ptr<Quillon9::CFacetFilter const> m_filter;  // null for what is no primitive member, and for rare facets
  std::uint64_t const m_number;
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

// What the members override. The third and fourth let a child, or the items of a collection, that have no tag put their
// attributes on the open element.
#define QN_ELEMENT_OVERRIDES                                                                                   \
  bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer) \
      const override;                                                                                          \
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,    \
                      CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) override;
#define QN_TYPED_OVERRIDES \
  QN_ELEMENT_OVERRIDES     \
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

// The members, by content kind; in each kind first those of a sequence, then of an all group, then of a choice. Which
// ones there are, and how they differ:
//
//            element absent                              a mandatory one missing            property stored
//   Seq      Opt: true; Mnd: see there                   fails at once                      after the read
//   All      false                                       fails at the end, by Validate()    after the read
//   Choice   false (there is no Mnd)                     fails in the driver                before the read
//
// In a holder without a tag a missing mandatory element is no failure: the whole group may be absent, so the answer is
// false. On writing Mnd and Opt are alike: a value that is not valid and a null object write nothing.

// ---- Values. Facets are checked on writing only.

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

// ---- Enumerations, held as the number of the enumerator. The text reaches \p fromText as it stands in the document;
// what an unknown one does is its own affair. Writing throws CQnException for a number without text.

/// An enumerator, mandatory, in a sequence.
class QUILLON9_API CElementInfoSeqEnumMnd : public CElementInfoSeq {
 public:
  /// \p toText and \p fromText, functions of the enumeration, are kept and not null.
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

/// The child exists in its owner already: \p classFactory and \p classId are stored and not used. \p requiresContent
/// says of a child without a tag that it counts as present only when it took an element.
class QUILLON9_API CElementInfoSeqClsMnd : public CElementInfoSeq {
 public:
  /// \p childType is that of the record of the child's class.
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
  friend struct ChildTypes;
  bool TakeElementChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement** cursor,
                        XmlElementType holderType);
  bool TakePseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                       CXmlElement** cursor, XmlElementType holderType);

  XmlElementType m_childType;
  bool m_requiresContent;
  [[maybe_unused]] ClassFactory m_classFactory;
  [[maybe_unused]] int m_classId;
};

/// The child is made when its element is there, and stored when it has been read whole.
class QUILLON9_API CElementInfoSeqClsOpt : public CElementInfoSeq {
 public:
  /// \p childType is that of the record of the child's class; \p classFactory is kept and not null.
  CElementInfoSeqClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId)
      : CElementInfoSeq(name, ns, index), m_childType(childType), m_classFactory(classFactory), m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  friend struct ChildTypes;
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

/// As in a sequence; but \p requiresContent counts for a child with a tag: without it the element may be missing.
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
  friend struct ChildTypes;
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
  friend struct ChildTypes;
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

/// The child is stored before it is read, and null when it took nothing. A child with a tag that is itself a choice may
/// stay empty here, on reading and on writing.
class QUILLON9_API CElementInfoChoiceClsOpt : public CElementInfoChoice {
 public:
  /// The arguments of CElementInfoSeqClsOpt.
  CElementInfoChoiceClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                           ClassFactory classFactory, int classId)
      : CElementInfoChoice(name, ns, index), m_childType(childType), m_classFactory(classFactory), m_classId(classId) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  friend struct ChildTypes;
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

// ---- Objects whose class is found from the element: abstract types and substitution groups.

/// When the element is absent or no class suits it, reading throws CQnValidationException "Failed to find a suitable
/// substitution element for [%s]" in a holder with a tag. No option excuses it or skips elements in front of it.
class QUILLON9_API CElementInfoSeqAbsClsMnd : public CElementInfoSeq {
 public:
  /// \p childType is that of the records of the classes; \p elementFactory is kept and not null.
  CElementInfoSeqAbsClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory)
      : CElementInfoSeq(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}
  QN_TYPED_OVERRIDES
  QN_PSEUDO_OBJECT_OVERRIDE

 private:
  XmlElementType m_childType;
  ElementFactory m_elementFactory;
};

/// An object whose class is found from the element, optional, in a sequence.
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

/// Can be written, not read: ElementFromXml() throws CQnException, for every child of the holder, whatever it is.
class QUILLON9_API CElementInfoAllAbsClsMnd : public CElementInfoAll {
 public:
  /// As CElementInfoSeqAbsClsMnd's; \p classId is stored and not used.
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

/// As for Mnd: written, not read.
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

/// The property is null when no class suits the element, and the next member is asked.
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

// ---- Untyped content, held as CElement. A \p name of "AnyElement" takes an element of any local name, another name
// only elements of that name; \p ns takes no part, nor does the option that ignores namespaces. The namespace is judged
// by the \p restriction of the CElement, with \p targetNamespace (CXmlObjectHelper::IsNamespaceValid tells its form).

/// The CElement exists in its owner already, with a restriction of its own; the one given here is not used. Without an
/// element left reading throws CQnValidationException "Failed to find a required element [%s]", in a holder without a
/// tag too; for one it does not take "Failed to find the required element from namespace [%s]", only in a holder with a
/// tag.
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

/// A new CElement is made for each try, and stored when it took the element.
/// \throws CQnInvalidNamespaceException from every read with an element left when the namespace of
///         GetAnyDefaultNamespace() does not pass the restriction: for "##other" with an empty target namespace in a
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

/// As in a sequence, but absence is judged at the end.
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

/// The property is null after a try that took nothing.
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

/// The count is judged after reading and before writing.
class QUILLON9_API CElementInfoSeqCol : public CElementInfoSeq {
 public:
  /// The name, the namespace and the index of the property, as CElementInfo's.
  CElementInfoSeqCol(char const* name, char const* ns, int index) : CElementInfoSeq(name, ns, index) {}
  QN_TYPED_OVERRIDES
};

/// Abstract: an all group has no repeated members, so no table holds one.
class QUILLON9_API CElementInfoAllCol : public CElementInfoAll {
 public:
  /// The name, the namespace and the index of the property, as CElementInfo's.
  CElementInfoAllCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  QN_TYPED_OVERRIDES
};

/// A collection that took nothing is not this choice's member; the count is not judged on writing.
class QUILLON9_API CElementInfoChoiceCol : public CElementInfoChoice {
 public:
  /// The name, the namespace and the index of the property, as CElementInfo's.
  CElementInfoChoiceCol(char const* name, char const* ns, int index) : CElementInfoChoice(name, ns, index) {}
  QN_TYPED_OVERRIDES
};

// Collections of values and of enumerators have nothing but their group's behaviour; those of objects store whether the
// items have tags of their own, untyped ones look at the name.

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

/// A collection of objects whose class is found from the element, in a sequence.
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

/// Under the name "AnyElement" it takes everything that is left, so it stands last; under another one the run of
/// siblings with that name and the namespace of the first, for which the collection must be a CElementCol (CQnException
/// otherwise). A CElementCol restricts no namespace and has no limits.
class QUILLON9_API CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                      CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) override;
};

/// Abstract: a collection of no kind, which derives from the group class and can neither read nor write.
class QUILLON9_API CElementInfoSeqNonCol : public CElementInfoSeq {
 public:
  /// The name, the namespace and the index of the property, as CElementInfo's.
  CElementInfoSeqNonCol(char const* name, char const* ns, int index) : CElementInfoSeq(name, ns, index) {}
  ~CElementInfoSeqNonCol() override;
};

/// A collection of values, in an all group. Abstract, as its base.
class QUILLON9_API CElementInfoAllPrimCol : public CElementInfoAllCol {
 public:
  using CElementInfoAllCol::CElementInfoAllCol;
  ~CElementInfoAllPrimCol() override;
};

/// Not a `Col` class, unlike its sisters.
class QUILLON9_API CElementInfoAllEnumCol : public CElementInfoAll {
 public:
  /// The name, the namespace and the index of the property, as CElementInfo's.
  CElementInfoAllEnumCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  ~CElementInfoAllEnumCol() override;
};

/// A collection of objects of a known class, in an all group. Abstract, as its base.
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

/// A collection of objects whose class is found from the element, in an all group. Abstract, as its base.
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

/// A collection of any elements, in an all group. Abstract, as its base.
class QUILLON9_API CElementInfoAllUntpdCol : public CElementInfoAllCol {
 public:
  using CElementInfoAllCol::CElementInfoAllCol;
  ~CElementInfoAllUntpdCol() override;
};

/// Abstract, as in a sequence.
class QUILLON9_API CElementInfoAllNonCol : public CElementInfoAll {
 public:
  /// The name, the namespace and the index of the property, as CElementInfo's.
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

/// A collection of objects whose class is found from the element, in a choice.
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
