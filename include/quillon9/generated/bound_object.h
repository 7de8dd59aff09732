#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/export.h"
#include "quillon9/generated/bound_content.h"
#include "quillon9/generated/class_tables.h"
#include "quillon9/generated/property_ref.h"

namespace Quillon9 {

struct BoundAccess;  // for internal use

namespace detail {

/// \p T, in a place from which a template argument is not deduced.
template <class T>
struct Same {
  using Type = T;  ///< the same
};

/// Keep an object until the process ends, because destructors of a program's globals may still look at it.
QUILLON9_API CXmlObjectBase const& KeepForever(CSmartPtr<CXmlObjectBase> const& object);

/// An empty collection, which all constant objects share that have none of their own.
template <class Collection>
Collection const& EmptyCollection() {
  static constexpr CElementRow kRow;
  static auto const* const empty =
      static_cast<Collection const*>(&KeepForever(NewCollection<Collection>::ForRow(&kRow)));
  return *empty;
}

}  // namespace detail

/// Base of the classes that `quillon9 generate` writes. It implements everything that CXmlGeneratedClass asks of a
/// class by two things that the class supplies: its constant rows, in a CClassTables, and the place of each property.
///
/// What docs/generated-classes.md says of all generated classes holds, except that writing a mandatory object that is
/// not set fails, a group that has consumed an element must complete, and a choice with two alternatives set fails on
/// writing. An optional collection does not exist until it is first needed. All text is UTF-8, in any locale.
class QUILLON9_API CBoundObject : public CXmlGeneratedClass {
 public:
  ~CBoundObject() override;

  /// What is known about no class in particular: it is abstract, and has no elements.
  static CClassTables s_class;

  /// What the class knows about itself.
  CClassTables const& GetClassTables() const { return *m_tables; }
  /// Whether the element is written with xsi:type. True after reading an element that has it, and where an object of a
  /// derived class is set or added; a program changes it for a document element.
  ///@{
  bool GetTypeAttribute() const { return m_writesType; }
  void SetTypeAttribute(bool written) { m_writesType = written; }
  ///@}

  /// The runs of text and the elements of this object, in the order in which they are written. Text is that of a class
  /// with mixed content. It stands where the document had it, or where it was appended; text that was set in one piece
  /// follows the elements.
  ///
  /// A text keeps its place by the number of elements in front of it, whatever the program adds and removes: what stood
  /// after the second element stands after the second one, and an element that is added at the end follows all text.
  CBoundContent Content() const;

  using CXmlGeneratedClass::GetBase;
  CXmlObjectBase* GetBase() override { return this; }
  /// The namespace of the global element that CreateRoot() or ReadRoot() made this object for, or that it has become by
  /// standing where the head of a substitution group is declared; or else the one that the row of the class names.
  std::string GetTargetNamespace() const override;
  /// The namespace that the row of the class names.
  std::string GetNamespace() const override;
  void AccessProperty(int index, bool read, QnVariant& value) override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void Init() override;
  /// True.
  bool HoldsUtf8Text() const override;
  /// What the row of the class says.
  ValueRules GetDefaultValueRules() const override;

  /// The object with this value of type xs:ID in an attribute, an element or its text: this one or one below it, the
  /// first in the order of the members; null for none. What stands in wildcards is not searched. Goes through all
  /// objects; CIdIndex is faster for more than a few.
  ///@{
  CBoundObject* FindById(std::string_view id);
  CBoundObject const* FindById(std::string_view id) const { return const_cast<CBoundObject*>(this)->FindById(id); }
  ///@}

 protected:
  /// \p tables is kept and belongs to the most derived class; \p elementName is copied.
  CBoundObject(CClassTables const& tables, char const* elementName);

  /// The property with this number, those of the base class included; none for a number that the class does not have.
  virtual CPropertyRef Property(int index) = 0;

  void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const override;
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  void ContentToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx, bool inChoice) const override;
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;
  /// Also takes 1 and 0, and white space around the value.
  /// \throws CQnValidationException also "The element [%s] is nil, but not empty".
  void ReadNilAttribute(CXmlElement const& element, CXmlAttribute const& attribute,
                        CXmlSerializationContext const& ctx) override;
  CXmlElement* ReadMembersWithSink(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                   bool inChoice) override;

  // What the accessors of generated classes call. \p property is the number of \p member.

  /// Set a value: check its facets and its fixed value, unset the other alternatives of a choice, and store it. An
  /// empty std::optional is stored without a check.
  /// \throws CQnException "Invalid Value for %s [%s]" for a broken facet, also of totalDigits and fractionDigits;
  ///         CQnInvalidValueException "The value [%s] of [%s] is not the fixed value [%s]".
  template <class T>
  void Assign(int property, T& member, typename detail::Same<T>::Type value) {
    PrepareValue(property, CPropertyRef(value, KindOf(property)));
    member = std::move(value);
  }
  /// A mandatory object, which is created where it is missing.
  /// \throws CQnInvalidStateException "The type [%s] is abstract".
  template <class T>
  T& Object(int property, CSmartPtr<T>& member) {
    if (member.Get() == nullptr) member = static_cast<T*>(NewObject(property).Get());
    return *member;
  }
  /// The same for a constant object.
  /// \throws CQnInvalidStateException "The element [%s] is not set".
  template <class T>
  T const& Object(int property, CSmartPtr<T> const& member) const {
    if (member.Get() == nullptr) ThrowNotSet(property);
    return *member;
  }
  /// Put a new object into \p member and unset the other alternatives of a choice.
  /// \throws CQnInvalidStateException "The type [%s] is abstract".
  template <class T>
  T& Create(int property, CSmartPtr<T>& member) {
    CSmartPtr<CXmlObjectBase> const made = NewObject(property);
    Select(property);
    member = static_cast<T*>(made.Get());
    return *member;
  }
  /// Share \p value, and unset the other alternatives of a choice. An object without an element name gets that of the
  /// member. One of a derived class will be written with xsi:type.
  /// \throws CQnInvalidParamException for a null \p value where the member is mandatory, and for an object with another
  ///         element name; CQnInvalidNamespaceException for a CElement that the wildcard does not allow.
  template <class T>
  void Hold(int property, CSmartPtr<T>& member, CSmartPtr<typename detail::Same<T>::Type> value) {
    PrepareObject(property, value.Get());
    member = std::move(value);
  }
  /// A collection, which is created where it is missing.
  template <class T>
  T& Collection(int property, CSmartPtr<T>& member) {
    if (member.Get() == nullptr) member = static_cast<T*>(NewCollection(property, CPropertyRef(member)).Get());
    return *member;
  }
  /// The same for a constant object: an empty collection where it is missing.
  template <class T>
  T const& Collection(int, CSmartPtr<T> const& member) const {
    return member.Get() != nullptr ? *member : detail::EmptyCollection<T>();
  }
  /// Replace the text of mixed content, which then follows the elements.
  void ReplaceMixed(std::string& member, std::string value);
  /// Append to the text of mixed content, after the elements that are there now.
  void AppendMixed(std::string& member, std::string_view text);
  /// The member with this \p index among \p members, counted from 0; none for a number outside. Compilers make of it
  /// what they make of a switch.
  template <class... Members>
  static CPropertyRef Pick(int index, Members&&... members) {
    CPropertyRef picked;
    int number = 0;
    static_cast<void>(((index == number++ && (picked = CPropertyRef(std::forward<Members>(members)), true)) || ...));
    return picked;
  }
  /// Which alternative of a choice is set: 1 for the first, 0 for none. \p row is the place of the beginning of the
  /// choice among the element rows of the class that has \p tables: this class or a base.
  int Alternative(CClassTables const& tables, int row) const;
  /// Give the text the value that an empty element has, if the schema says one.
  void SetDefaultText();
  /// Unset the other alternatives of each choice that \p property is in.
  void Select(int property);

 private:
  friend struct BoundAccess;

  std::string_view MixedText() const;
  CPropertyRef ConstProperty(int index) const { return const_cast<CBoundObject*>(this)->Property(index); }
  ItemType KindOf(int property) const;
  void ResolvePrefixes(CXmlElement const& element, CXmlSerializationContext const& ctx);
  void DeclarePrefixes(CXmlWriter& writer) const;
  void KeepPrefixes(CXmlElement const& element);
  void CheckText(CXmlElement const& element, CXmlSerializationContext const& ctx);
  void RequireRemovedUnset(CXmlWriter const& writer) const;
  void PrepareValue(int property, CPropertyRef const& value);
  void PrepareObject(int property, CXmlObjectBase* object);
  CSmartPtr<CXmlObjectBase> NewObject(int property) const;
  CSmartPtr<CXmlObjectBase> NewCollection(int property, CPropertyRef const& member) const;
  [[noreturn]] void ThrowNotSet(int property) const;

  CClassTables const* m_tables;
  char const* m_elementNamespace = nullptr;  // of the global element that it was made for; null unless that is known
  bool m_writesType = false;
  bool m_isNew = false;  // made for a read, so that there is nothing to empty
};

/// Adds the state of nil to \p Base, which is CBoundObject or a class that derives from it.
template <class Base>
class CNillable : public Base, public INillable {
 public:
  /// Whether the element is written with xsi:nil and without content.
  bool IsNil() const override { return m_isNil; }
  /// Set that. The members keep what they hold.
  void SetNil(bool nil) override { m_isNil = nil; }
  /// Make it not nil, and empty the members.
  void Init() override {
    m_isNil = false;
    Base::Init();
  }

 protected:
  using Base::Base;

 private:
  bool m_isNil = false;
};

}  // namespace Quillon9
