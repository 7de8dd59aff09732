#pragma once

#include <string>

#include "quillon9/binding/generated_class.h"
#include "quillon9/binding/smart_ptr.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/whitespace.h"

/// The descriptors of element content. A generated class lists one for each element that its schema declares; the
/// drivers of CXmlGeneratedClass walk the list, and each descriptor decides whether the element under the cursor
/// is its own and how it gets into the property and back.
///
/// A class name reads: group (`Seq`, `All`, `Choice`), content (`Prim` a value, `Enum` an enumeration, `Cls` an
/// object of a known class, `AbsCls` one whose class is found from the element), occurrence (`Mnd` once, `Opt` at
/// most once, `Col` repeated, held in a collection).
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
/// Makes an object of the class that suits the element, by its name or its xsi:type; null when none does.
/// Generated.
using ElementFactory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);
/// The two directions of a generated enumeration.
using EnumToText = char const* (*)(int value);
using EnumFromText = int (*)(char const* text);

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

  // How the members write their property, by content kind: true when something was written. A value that is not valid,
  // a null object and an empty collection write nothing. They throw what ElementToXml() tells; for an enumerator
  // without text CQnException.
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

  // The holder's accessors with the index of this property, and ways in to protected operations of objects.
  void AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const;
  void ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const;
  CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                           CXmlSerializationContext const& ctx, bool inChoice) const;
  void AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, CXmlSerializationContext const& ctx) const;

 protected:
  /// Move \p cursor to this mandatory element of a holder with a tag. False when its absence is ignored, with the
  /// cursor untouched. Elements in front of it are skipped where unknown ones are ignored.
  /// \throws CQnValidationException "Failed to find a required element [%s]".
  bool SeekRequiredElement(CXmlSerializationContext const& ctx, CXmlElement** cursor) const;
  [[noreturn]] void ThrowRequiredElement() const;

  /// Convert the text of the element under \p cursor, store it, move on. Always true.
  bool TakePrimitive(CXmlGeneratedClass* holder, CXmlElement** cursor) const;
  /// Let \p child, an object with a tag, read the element under \p cursor, and move on.
  void ReadChild(CXmlSerializationContext const& ctx, CXmlObjectBase* child, CXmlElement** cursor) const;
  /// The same for a child that an element factory made, which is stored before the cursor moves.
  void ReadAndStoreChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlObjectBase* child,
                         CXmlElement** cursor) const;
  /// A new child object. Never null.
  CSmartPtr<CXmlObjectBase> MakeChild(ClassFactory classFactory, int classId) const;
  /// The child object or the collection that the holder keeps for this property.
  CSmartPtr<CXmlObjectBase> FetchChild(CXmlGeneratedClass* holder) const;
  CSmartPtr<Quillon9::CXmlCollectionBase> FetchCollection(CXmlGeneratedClass* holder) const;
  CSmartPtr<Quillon9::CXmlCollectionBase> ReadCollection(CXmlGeneratedClass const* holder) const;
  void StoreChild(CXmlGeneratedClass* holder, CXmlObjectBase* child) const;
  /// PseudoChildAttributeToXml() of members that hold an object, and of those that hold a collection of objects.
  void PseudoObjectAttributesToXml(XmlElementType childType, CXmlSerializationContext const& ctx,
                                   CXmlGeneratedClass const* holder, CXmlWriter* writer) const;
  void PseudoItemsAttributesToXml(XmlElementType childType, CXmlSerializationContext const& ctx,
                                  CXmlGeneratedClass const* holder, CXmlWriter* writer) const;

  std::string m_elementName;
  std::string m_namespace;
  int m_propertyIndex;
  CPrimitiveRestrictions m_restrictions;
  ItemType m_itemType = Quillon9::ItemType_invalid;
  char const* m_format = nullptr;
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule = CWhitespaceUtils::WhitespaceRule_None;
  bool m_primitive;
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

// The two operations that every concrete member overrides; the third that members with objects override.
#define QN_ELEMENT_OVERRIDES                                                                                   \
  bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer) \
      const override;                                                                                          \
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,    \
                      CXmlElement** cursor, char const* holderNamespace, XmlElementType holderType) override;
#define QN_PSEUDO_CHILD_OVERRIDE                                                                        \
  void PseudoChildAttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, \
                                 CXmlWriter* writer) const override;

// ---- Primitive members: an invalid value writes nothing, for Mnd too. Facets are checked on writing only.

class QUILLON9_API CElementInfoSeqPrimMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqPrimMnd(char const* name, char const* ns, int index, ItemType type, char const* format,
                         CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions);
  ~CElementInfoSeqPrimMnd() override;
  QN_ELEMENT_OVERRIDES
};

class QUILLON9_API CElementInfoSeqPrimOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqPrimOpt(char const* name, char const* ns, int index, ItemType type, char const* format,
                         CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions);
  ~CElementInfoSeqPrimOpt() override;
  QN_ELEMENT_OVERRIDES
};

// ---- Members with an object of a known class. A null object writes nothing, for Mnd too.

/// The child exists in its owner already: \p classFactory and \p classId are stored and not used. \p requiresContent
/// says of a child without a tag that it counts as present only when it took an element.
class QUILLON9_API CElementInfoSeqClsMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId, bool requiresContent);
  ~CElementInfoSeqClsMnd() override;
  QN_ELEMENT_OVERRIDES
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  bool TakeElementChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement** cursor,
                        XmlElementType holderType);
  bool TakePseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                       CXmlElement** cursor, XmlElementType holderType);
  bool TakeRequiredPseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                               CXmlElement** cursor);

  XmlElementType m_childType;
  bool m_requiresContent;
  [[maybe_unused]] ClassFactory m_classFactory;
  [[maybe_unused]] int m_classId;
};

/// The child is made when its element is there, and stored when it has been read whole.
class QUILLON9_API CElementInfoSeqClsOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                        ClassFactory classFactory, int classId);
  ~CElementInfoSeqClsOpt() override;
  QN_ELEMENT_OVERRIDES
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
  ClassFactory m_classFactory;
  int m_classId;
};

// ---- Members whose object is made by an element factory: abstract types and substitution groups.

/// When the element is absent or no class suits it, reading throws CQnValidationException "Failed to find a suitable
/// substitution element for [%s]" in a holder with a tag. No option excuses it or skips elements in front of it.
class QUILLON9_API CElementInfoSeqAbsClsMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqAbsClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory);
  ~CElementInfoSeqAbsClsMnd() override;
  QN_ELEMENT_OVERRIDES
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
  ElementFactory m_elementFactory;
};

class QUILLON9_API CElementInfoSeqAbsClsOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqAbsClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                           ElementFactory elementFactory);
  ~CElementInfoSeqAbsClsOpt() override;
  QN_ELEMENT_OVERRIDES
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
  ElementFactory m_elementFactory;
};

// ---- Repeated members: the property is a collection, which takes its run of siblings and knows its limits.

/// The count is judged after reading and before writing.
class QUILLON9_API CElementInfoSeqCol : public CElementInfoSeq {
 public:
  CElementInfoSeqCol(char const* name, char const* ns, int index) : CElementInfoSeq(name, ns, index) {}
  ~CElementInfoSeqCol() override;
  QN_ELEMENT_OVERRIDES
};

/// A collection that took nothing is not this choice's member; the count is not judged on writing.
class QUILLON9_API CElementInfoChoiceCol : public CElementInfoChoice {
 public:
  CElementInfoChoiceCol(char const* name, char const* ns, int index) : CElementInfoChoice(name, ns, index) {}
  ~CElementInfoChoiceCol() override;
  QN_ELEMENT_OVERRIDES
};

/// Abstract: an all group has no repeated members, so no table holds one.
class QUILLON9_API CElementInfoAllCol : public CElementInfoAll {
 public:
  CElementInfoAllCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  ~CElementInfoAllCol() override;
  QN_ELEMENT_OVERRIDES
};

// Collections of values and of enumerators have nothing but their group's behaviour; those of objects store
// whether the items have tags of their own: items without put their attributes on the open element.

class QUILLON9_API CElementInfoSeqPrimCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  ~CElementInfoSeqPrimCol() override;
};

class QUILLON9_API CElementInfoSeqEnumCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  ~CElementInfoSeqEnumCol() override;
};

class QUILLON9_API CElementInfoSeqClsCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoSeqCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoSeqClsCol() override;
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
};

class QUILLON9_API CElementInfoSeqAbsClsCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqAbsClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoSeqCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoSeqAbsClsCol() override;
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// Abstract: a collection of no kind, which derives from the group class and can neither read nor write.
class QUILLON9_API CElementInfoSeqNonCol : public CElementInfoSeq {
 public:
  CElementInfoSeqNonCol(char const* name, char const* ns, int index) : CElementInfoSeq(name, ns, index) {}
  ~CElementInfoSeqNonCol() override;
};

class QUILLON9_API CElementInfoChoicePrimCol : public CElementInfoChoiceCol {
 public:
  using CElementInfoChoiceCol::CElementInfoChoiceCol;
  ~CElementInfoChoicePrimCol() override;
};

class QUILLON9_API CElementInfoChoiceEnumCol : public CElementInfoChoiceCol {
 public:
  using CElementInfoChoiceCol::CElementInfoChoiceCol;
  ~CElementInfoChoiceEnumCol() override;
};

class QUILLON9_API CElementInfoChoiceClsCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoChoiceCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoChoiceClsCol() override;
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
};

class QUILLON9_API CElementInfoChoiceAbsClsCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceAbsClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoChoiceCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoChoiceAbsClsCol() override;
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
};

// The repeated members of an all group, all abstract.

class QUILLON9_API CElementInfoAllPrimCol : public CElementInfoAllCol {
 public:
  using CElementInfoAllCol::CElementInfoAllCol;
  ~CElementInfoAllPrimCol() override;
};

class QUILLON9_API CElementInfoAllClsCol : public CElementInfoAllCol {
 public:
  CElementInfoAllClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoAllCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoAllClsCol() override;
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
};

class QUILLON9_API CElementInfoAllAbsClsCol : public CElementInfoAllCol {
 public:
  CElementInfoAllAbsClsCol(char const* name, char const* ns, int index, XmlElementType childType)
      : CElementInfoAllCol(name, ns, index), m_childType(childType) {}
  ~CElementInfoAllAbsClsCol() override;
  QN_PSEUDO_CHILD_OVERRIDE

 private:
  XmlElementType m_childType;
};

/// Not a `Col` class, unlike its sisters.
class QUILLON9_API CElementInfoAllEnumCol : public CElementInfoAll {
 public:
  CElementInfoAllEnumCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  ~CElementInfoAllEnumCol() override;
};

class QUILLON9_API CElementInfoAllNonCol : public CElementInfoAll {
 public:
  CElementInfoAllNonCol(char const* name, char const* ns, int index) : CElementInfoAll(name, ns, index) {}
  ~CElementInfoAllNonCol() override;
};

#undef QN_PSEUDO_CHILD_OVERRIDE
#undef QN_ELEMENT_OVERRIDES

}  // namespace Quillon9Data
