#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/base/instance_monitor.h"
#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/collection.h"
#include "quillon9/binding/node_iterator.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/content_item.h"
#include "quillon9/xmlio/markup.h"

/// Content without generated classes: a generic element, its attributes and its children. Wildcards of generated
/// classes are read into it, programs build it by hand, and any bound object can be converted to it.
///
/// A namespace restriction is "##any", "##other", "##local", "##targetNamespace", a URI or a blank-separated list of
/// these; CXmlObjectHelper::IsNamespaceValid() documents what they admit. Any number of threads may call const
/// operations while no thread changes anything; reference counts are always atomic. A `char const*` is borrowed and
/// copied, and a null one counts as an empty text unless documented otherwise.
namespace Quillon9 {

namespace detail {

/// Counts the owners of an object that none of them changes. Any thread may call these.
template <class Object>
class SharedRecord {
 public:
  /// A new object has no owner.
  SharedRecord() = default;
  /// Neither has a copy of one.
  SharedRecord(SharedRecord const&) : SharedRecord() {}
  SharedRecord& operator=(SharedRecord const&) = delete;

  /// One more owner.
  void AddRef() const { m_owners.fetch_add(1, std::memory_order_relaxed); }
  /// One owner less; the last one deletes the object.
  void Release() const {
    if (m_owners.fetch_sub(1, std::memory_order_acq_rel) == 1) delete static_cast<Object const*>(this);
  }
  /// Whether there is only one owner, which may then change the object.
  bool HasOneOwner() const { return m_owners.load(std::memory_order_acquire) == 1; }

 protected:
  ~SharedRecord() = default;

 private:
  mutable std::atomic<int> m_owners{0};
};

/// Which namespaces elements or attributes may have.
struct GenericRules : SharedRecord<GenericRules> {
  /// Takes over the texts.
  GenericRules(std::string itsRestriction, std::string itsTarget)
      : restriction(std::move(itsRestriction)), target(std::move(itsTarget)) {}

  std::string const restriction;  ///< as CXmlObjectHelper::IsNamespaceValid() takes it
  std::string const target;       ///< the target namespace
};

/// What many elements of a document have in common, so that they hold it together: names and rules. Attributes and
/// collections have one, too, of which they use a part.
struct GenericNames : SharedRecord<GenericNames> {
  /// Takes over the texts, and shares the rules.
  GenericNames(std::string itsName, std::string itsNamespace, CSmartPtr<GenericRules const> const& itsRules)
      : name(std::move(itsName)), ns(std::move(itsNamespace)), rules(itsRules), hadNoNamespace(ns.empty()) {}

  std::string name;                     ///< the local name
  std::string ns;                       ///< the namespace
  CSmartPtr<GenericRules const> rules;  ///< null for an attribute
  std::string defaultNamespace;         ///< that the element declares; mostly none
  bool hadNoNamespace;                  ///< when the element was made
};

/// An owner of such a record.
using GenericNamesPtr = CSmartPtr<GenericNames const>;

}  // namespace detail

/// One attribute: a name, a value, a namespace.
class QUILLON9_API CAttribute : public CXmlObjectBase {
 public:
  /// Construct from a name, a value and a namespace.
  CAttribute(char const* name, char const* value, char const* ns);
  ~CAttribute() override;
  /// A new attribute with the same name, value and namespace.
  CSmartPtr<CAttribute> Clone() const;

  /// The local name. The reference is valid until this object changes or ends.
  ///@{
  std::string const& GetName() const { return m_names->name; }
  void SetName(std::string name);
  ///@}
  /// The value, without any escaping.
  ///@{
  std::string const& GetValue() const { return m_value; }
  void SetValue(std::string value) { m_value = std::move(value); }
  ///@}
  /// Set the namespace. It is not checked against the restriction of a collection that holds this attribute.
  void SetNamespace(std::string ns);

  using CXmlObjectBase::GetBase;
  /// This object as a CXmlObjectBase.
  CXmlObjectBase* GetBase() override { return this; }
  /// Both are the namespace of the attribute.
  std::string GetTargetNamespace() const override { return m_names->ns; }
  std::string GetNamespace() const override { return m_names->ns; }

  /// Notifications of changes. Nothing calls them.
  ///@{
  void FireOnChangeName(char const*) {}
  void FireOnChangeNamespace(char const*) {}
  ///@}

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  /// \throws CQnException "This should be done by the collection", always.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

 private:
  friend class CAttributeCol;
  CAttribute(detail::GenericNamesPtr names, char const* value);

  detail::GenericNamesPtr m_names;
  std::string m_value;
};

namespace detail {

/// Shares ownership of an object, or is empty until the object is first needed. Threads that ask for it at the same
/// time get the same object.
template <class Object>
class MadeOnDemand {
 public:
  MadeOnDemand() = default;
  ~MadeOnDemand() { Release(); }
  MadeOnDemand(MadeOnDemand const&) = delete;
  MadeOnDemand& operator=(MadeOnDemand const&) = delete;

  /// The object, or null.
  Object* Get() const { return m_object.load(std::memory_order_acquire); }
  /// Share \p made unless another thread was faster; returns the object that is then held.
  Object* Keep(CSmartPtr<Object> const& made) const {
    Object* held = nullptr;
    if (!m_object.compare_exchange_strong(held, made.Get(), std::memory_order_acq_rel)) return held;
    made->AddRef();
    return made.Get();
  }
  /// Become empty, and return the reference that was held here. Only for a thread that has sole use of this.
  CSmartPtr<Object> Release() {
    Object* const object = Get();
    if (object == nullptr) return nullptr;
    m_object.store(nullptr, std::memory_order_relaxed);
    CSmartPtr<Object> reference(object);
    object->Release();
    return reference;
  }

 private:
  mutable std::atomic<Object*> m_object{nullptr};
};

}  // namespace detail

/// The attributes of a CElement, the content of an attribute wildcard, or the additional root attributes of a context.
class QUILLON9_API CAttributeCol : public CXmlCollection {
 public:
  /// An iterator over the items. Valid as long as its item is in the collection.
  using iterator = detail::NodeIterator<CAttribute>;

  /// \p ns is the namespace of attributes that are added without one. If it is empty and \p restriction begins with a
  /// URI, that URI takes its place. Nothing is checked here.
  CAttributeCol(char const* ns, char const* restriction, char const* targetNamespace);
  ~CAttributeCol() override;
  /// A collection with copies of the attributes and the same three namespaces.
  CSmartPtr<CAttributeCol> Clone() const;

  /// Append \p attribute, whatever its namespace is; the collection shares ownership with the caller.
  /// \throws CQnInvalidParamException "The attribute to add may not be NULL".
  CSmartPtr<CAttribute> Add(CAttribute* attribute);
  /// Append a new attribute, in the collection's namespace unless \p ns is given.
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace() when the restriction refuses the
  ///         namespace.
  ///@{
  CSmartPtr<CAttribute> Add(char const* name);
  CSmartPtr<CAttribute> Add(char const* name, char const* value);
  CSmartPtr<CAttribute> Add(char const* name, char const* value, char const* ns);
  ///@}

  /// The attribute at \p index; null when there is none. O(index).
  CSmartPtr<CAttribute> Item(int index) const;
  /// The first attribute of this name, and in this namespace unless \p ns is null; null when there is none.
  CSmartPtr<CAttribute> Find(char const* name, char const* ns = nullptr) const;
  /// The items in order, for range-for.
  ///@{
  iterator begin() const { return iterator(GetFirstNode()); }
  iterator end() const { return iterator(); }
  ///@}

  /// Let \p prefix stand for \p ns in the values of the attributes and in the text of their element, as in
  /// xsi:type="p:T". A write declares it there, unless it stands for another namespace that is in use; the value of
  /// xsi:type gets another prefix then. An empty prefix stands for the namespace of an xsi:type without one. Generated
  /// classes that derive from CBoundObject note the prefixes of what they read.
  void SetPrefix(std::string const& prefix, std::string ns);
  /// These prefixes and their namespaces; null for none.
  std::map<std::string, std::string> const* GetPrefixes() const { return m_prefixes.get(); }
  /// Declare them in the element that was started last, before its first attribute. For writers of elements.
  void WritePrefixes(CXmlWriter& writer) const;

  using CXmlObjectBase::GetBase;
  /// This object as a CXmlObjectBase.
  CXmlObjectBase* GetBase() override { return this; }
  /// Both are the namespace of attributes that are added without one.
  std::string GetTargetNamespace() const override { return Namespace(); }
  std::string GetNamespace() const override { return Namespace(); }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  /// Append every attribute of \p parent and return \p cursor.
  /// \throws CQnInvalidNamespaceException "Invalid Attribute [%s]. The attributes namespace is Inappropriate."; the
  ///         attributes before it stay.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

 private:
  friend class CElement;
  explicit CAttributeCol(detail::GenericNamesPtr const& names);
  std::string const& Namespace() const;
  void Take(CXmlElement const& parent, CXmlAttribute const& attribute);

  detail::GenericNamesPtr m_names;  // those of the element that made this collection, or its own
  std::unique_ptr<std::map<std::string, std::string>> m_prefixes;
};

class CElementCol;

/// An element of any name: text, attributes, children. All text is held in one piece and written after the children,
/// unless the element keeps where the text stands between the children: see IsMixed().
///
/// To read a whole document into a CElement, use FromXml(char const*) of this class, or CopyXmlElement() with the root
/// of a CXmlDocument. The reading operations of CXmlObjectBase (FromXmlStream(), FromXmlFile(), FromXmlElement(), and
/// its FromXml() through a pointer to the base) pass an object the children of the root, so a CElement takes the first
/// child of the root, with its content, and nothing when there is none.
///
/// An element that is nested deeper than CLimits::GetMaxElementDepth() cannot be read, copied, written or tested for
/// its namespaces (CQnException "The element nesting exceeds the limit of %u levels"). The name of the base,
/// GetElementName(), has no effect here. During destruction, the events of inner collections come after those of the
/// outer ones.
class QUILLON9_API CElement : public CXmlObjectBase, public CInstanceMonitor {
 public:
  // A null name, restriction or target namespace throws CQnInvalidNamespaceException "Element Name must have a value",
  // "Namespace Restriction must have a value" or "Target Namespace must have a value".

  /// Construct in no namespace, restricted by "##any".
  explicit CElement(char const* name);
  /// Construct in the namespace \p ns, restricted to it.
  /// \throws CQnInvalidNamespaceException "Invalid Namespace [%s]" when \p ns is one of the four wildcards.
  CElement(char const* name, char const* ns);
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace() when \p restriction refuses \p ns.
  CElement(char const* name, char const* ns, char const* restriction, char const* targetNamespace);
  /// Construct a generic copy of what \p source writes as a document. \p defaultNamespace, unless null, is declared on
  /// this element when it is written.
  /// \throws CQnInvalidParamException "The object to copy from may not be NULL"; what writing \p source and parsing the
  ///         result throw.
  template <class = void>  // so that a literal null is a null name, instead of ambiguous
  CElement(CXmlObjectBase* source, char const* defaultNamespace) : CElement("") {
    CopyObject(source, defaultNamespace);
  }
  /// Uses constant stack, however deep the children are nested.
  ~CElement() override;

  /// Read the document \p text, UTF-8 unless it declares another encoding: the element takes the name, the content and
  /// the namespace of the root, if its restriction admits that namespace. Existing content stays, in front of the new
  /// content.
  /// \throws CQnException for unreadable input; CQnValidationException "Invalid Element [%s] found in element [%s]".
  void FromXml(char const* text);
  /// Become a copy of \p element and everything below it, replacing the existing content. The restriction of this
  /// element stays and is not applied. The value of an attribute "xmlns" becomes the default namespace.
  /// \throws CQnInvalidParamException "The element to copy from may not be NULL".
  void CopyXmlElement(CXmlElement const* element);
  /// The same with the options of \p ctx, of which only GetKeepMixedContent() and GetKeepPrefixes() count. With the
  /// latter, a copy of the document element of a document notes its prefixes with CAttributeCol::SetPrefix(), so that it
  /// declares them when it is written, in place of each element below it.
  void CopyXmlElement(CXmlElement const* element, CXmlSerializationContext const& ctx);
  /// Create a copy without the default namespace.
  /// \throws CQnInvalidNamespaceException as the constructor, where CopyXmlElement() brought a namespace that the
  ///         restriction refuses.
  CSmartPtr<CElement> Clone() const;

  /// The local name. The reference is valid until this object changes or ends.
  ///@{
  std::string const& GetName() const { return m_names->name; }
  void SetName(std::string name);
  ///@}
  /// Set the namespace.
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace() when the restriction refuses \p ns; the
  ///         old namespace stays.
  void SetNamespace(std::string ns);
  /// The text directly inside the element, in one piece, without any escaping.
  ///@{
  std::string const& GetText() const { return m_text; }
  void SetText(std::string text) {
    m_text = std::move(text);
    m_isMixed = 0;
  }
  ///@}
  /// Whether the element keeps where its text stands between its children, and is written that way, without layout
  /// inside. True after AppendText(), and after reading mixed content under
  /// CXmlSerializationContext::SetKeepMixedContent(); false after SetText(), which puts all text after the children.
  ///
  /// When a child is removed, the texts around it become neighbours. A child that is added at the end follows all
  /// text; another one that was not there stands directly in front of the next child.
  bool IsMixed() const { return m_isMixed != 0; }
  /// Append text after everything that is in the element now, and keep it there.
  void AppendText(std::string_view text);
  /// The runs of text and the children in the order in which they are written. The runs are parts of GetText().
  CContentList<CElement> Content() const;
  /// The comments and processing instructions between the children and in the text, in the order in which they are
  /// written; none unless this element was read from a tree that keeps them: see
  /// CXmlSerializationContext::SetKeepUnknown(). They keep their places in the text and by the number of children in
  /// front, and a copy has them too.
  std::vector<CMarkup> const& GetMarkup() const;
  /// Forget them. The children keep theirs.
  void DropMarkup() { m_markup.reset(); }
  /// The default namespace that this element declares when it is written; none when empty. An element that has one can
  /// only be written as text, is written without its attributes, and does not pass the context on to its children. The
  /// reference is valid until this object changes or ends.
  ///@{
  std::string const& GetDefaultNamespace() const { return m_names->defaultNamespace; }
  void SetDefaultNamespace(std::string ns);
  ///@}
  /// The namespaces that SetNamespace() and reading admit; see CXmlObjectHelper::IsNamespaceValid() for the form.
  std::string const& GetNamespaceRestriction() const { return m_names->rules->restriction; }

  /// The attributes and the children (see CElementCol::Add() for the namespace of new ones), which live as long as this
  /// element; never null. Both admit every namespace, whatever the restriction of this element is.
  ///@{
  CAttributeCol* GetAttributes() const { return m_attributes.Get() != nullptr ? m_attributes.Get() : MakeAttributes(); }
  CElementCol* GetElements() const { return m_elements.Get() != nullptr ? m_elements.Get() : MakeElements(); }
  ///@}
  /// The first attribute, or child, of this name, and in this namespace unless \p ns is null; null when there is none.
  ///@{
  CSmartPtr<CAttribute> FindAttribute(char const* name, char const* ns = nullptr) const;
  CSmartPtr<CElement> FindElement(char const* name, char const* ns = nullptr) const;
  ///@}

  /// Test whether this element, its attributes and everything below would be valid under these restrictions. Nothing is
  /// stored.
  /// \throws CQnInvalidNamespaceException as a pointer to a new object, which the catcher deletes: "The namespace %s in
  ///         the class %s is invalid against restriction %s" with the name, the namespace and \p restriction, and the
  ///         cause as inner exception.
  void SetNamespaceRestrictions(char const* restriction, char const* targetNamespace);

  using CXmlObjectBase::GetBase;
  /// This object as a CXmlObjectBase.
  CXmlObjectBase* GetBase() override { return this; }
  /// Both are the namespace of the element.
  std::string GetTargetNamespace() const override { return m_names->ns; }
  std::string GetNamespace() const override { return m_names->ns; }

  /// Notifications of changes. Nothing calls them.
  ///@{
  void FireOnChangeName(char const*) {}
  void FireOnChangeNamespace(char const*) {}
  void FireOnChangeText(char const*) {}
  ///@}

 protected:
  /// \throws CQnException "An element with a default namespace can only be written as text".
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  /// Take the element \p cursor, after the existing content, and return its next sibling; return \p cursor itself,
  /// untouched, when it is null or the restriction refuses its namespace.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

 private:
  friend class CElementCol;
  friend struct MixedAccess;
  // The operations of the base, which read the first child of the root. They are private so that they are not mistaken
  // for the one above.
  void FromXml(char const* text, CXmlSerializationContext const& ctx) override;
  void FromXml(wchar_t const* text, CXmlSerializationContext const& ctx) override;

  explicit CElement(detail::GenericNamesPtr names);
  void Init(char const* name, char const* ns, char const* restriction, char const* targetNamespace);
  void CopyObject(CXmlObjectBase* source, char const* defaultNamespace);
  CAttributeCol* MakeAttributes() const;
  CElementCol* MakeElements() const;
  void KeepFirstNamespace(std::string const& newNamespace);
  void TakeNames(CXmlElement const& element);
  bool HasMixedParts() const;
  void CopyWhole(CXmlElement const* element, bool keepsMixed);
  void CopyFrom(CXmlElement const& element, bool keepsMixed);
  void KeepPlaces(CXmlElement const& source);
  void KeepPrefixes(CXmlElement const& element);
  void KeepMarkup(CXmlElement const& source);
  void WriteWithMarkup(CXmlWriter* writer, char const* ns, CXmlSerializationContext const& ctx) const;
  void WriteChildrenAndText(CXmlWriter* writer, char const* ns, CXmlSerializationContext const& ctx,
                            bool inChoice) const;
  void WriteContent(CXmlWriter* writer, char const* ns, CXmlSerializationContext const& ctx, bool inChoice) const;
  void WriteApart(CXmlTextWriter& writer, bool inChoice) const;
  void WriteApartTo(CXmlWriter& writer, bool inChoice) const;

  // The size of an element determines much of what generic content takes, so these are in the order that leaves no gaps.
  static constexpr std::uint32_t kNoPlace = ~std::uint32_t{0} >> 1;
  std::uint32_t m_isMixed : 1;
  std::uint32_t m_place : 31;  // in a mixed element around this one: the size of the text in front
  detail::GenericNamesPtr m_names;
  std::string m_text;
  // Created on first use, because most elements of a document have no attributes or no children.
  detail::MadeOnDemand<CAttributeCol> m_attributes;
  detail::MadeOnDemand<CElementCol> m_elements;
  std::unique_ptr<std::vector<CMarkup>> m_markup;  // null for none
};

/// The children of a CElement, or the content of a repeated element wildcard.
class QUILLON9_API CElementCol : public CXmlCollection {
 public:
  /// An iterator over the items. Valid as long as its item is in the collection.
  using iterator = detail::NodeIterator<CElement>;

  /// \p restriction is used to check \p ns. If \p ns is empty and \p restriction is a wildcard, it is also the
  /// namespace of elements that are added by name ("##any" literally: not a namespace that a document has). Elements of
  /// any namespace can be held regardless. The two numbers have no effect: there are no limits.
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace().
  CElementCol(char const* ns, char const* restriction, char const* targetNamespace, int minOccurs, int maxOccurs);
  ~CElementCol() override;
  /// A collection with clones of the elements and the same namespaces.
  /// \throws CQnInvalidNamespaceException as CElement::Clone().
  CSmartPtr<CElementCol> Clone() const;

  /// Append \p element; the collection shares ownership with the caller.
  /// \throws CQnInvalidParamException "The element to add may not be NULL".
  CSmartPtr<CElement> Add(CElement* element);
  /// Append a new element in the collection's namespace. For the children of an element without a namespace this is
  /// literally "##any", so use Add(name, "") there.
  /// \throws CQnInvalidStateException "A Namespace has not been set for this Collection".
  CSmartPtr<CElement> Add(char const* name);
  /// Append a new element.
  CSmartPtr<CElement> Add(char const* name, char const* ns);

  /// The element at \p index; null when there is none. O(index).
  CSmartPtr<CElement> Item(int index) const;
  /// The first element of this name, and in this namespace unless \p ns is null; null when there is none.
  CSmartPtr<CElement> Find(char const* name, char const* ns = nullptr) const;
  /// The items in order, for range-for.
  ///@{
  iterator begin() const { return iterator(GetFirstNode()); }
  iterator end() const { return iterator(); }
  ///@}

  using CXmlObjectBase::GetBase;
  /// This object as a CXmlObjectBase.
  CXmlObjectBase* GetBase() override { return this; }
  /// Both are the target namespace.
  std::string GetTargetNamespace() const override { return m_names->rules->target; }
  std::string GetNamespace() const override { return m_names->rules->target; }

 protected:
  /// \throws CQnValidationException for a count outside its limits.
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  /// Append \p cursor and every sibling after it, whatever their names are, and return the first that was not taken.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

 public:
  /// Append the run of siblings from \p cursor on, which may be null, that have this name and this namespace; return
  /// the first other element. For descriptors.
  virtual CXmlElement* FromXmlLockElementName_Int(std::string name, std::string ns, CXmlElement* parent,
                                                  CXmlElement* cursor, CXmlSerializationContext const& ctx);

 private:
  friend class CElement;
  explicit CElementCol(detail::GenericNamesPtr const& names);
  std::string const& Namespace() const;
  /// Append an element that takes \p cursor, and return the element after it; return \p cursor if it took nothing.
  CXmlElement* Take(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx);

  detail::GenericNamesPtr m_names;  // those of the element that made this collection, or its own
};

}  // namespace Quillon9
