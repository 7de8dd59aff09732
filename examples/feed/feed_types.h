#pragma once

#include <map>
#include <optional>
#include <string>

#include "../support/meta_data.h"
#include "quillon9/quillon9.h"

/// The classes of feed.xsd: the Atom Syndication Format (RFC 4287). Elements and attributes of any name and namespace
/// that the schema does not declare are kept in place as generic content.
///
/// Texts are in the code page of the process locale. Values that may be absent are optional, objects that may be absent
/// are null. What getters return belongs to its object, and a read replaces it. There are setters for what the program
/// edits. Objects live in CSmartPtr; only one thread at a time may use a graph of them.
namespace Atom {

static_assert(QUILLON9_VERSION_MAJOR == 1, "these classes were written for another major version of the library");

/// The namespace of Atom.
extern char const kNamespace[];

/// The tables that the objects of one class share.
using Support::CMetaData;

/// The numbers under which the tables know the properties of the classes.
enum Property {
  Property_any,
  Property_anyAttribute,
  Property_author,
  Property_base,
  Property_category,
  Property_content,
  Property_contributor,
  Property_email,
  Property_entry,
  Property_generator,
  Property_href,
  Property_hreflang,
  Property_icon,
  Property_id,
  Property_label,
  Property_lang,
  Property_length,
  Property_link,
  Property_logo,
  Property_member,
  Property_name,
  Property_published,
  Property_rel,
  Property_rights,
  Property_scheme,
  Property_source,
  Property_src,
  Property_subtitle,
  Property_summary,
  Property_term,
  Property_text,
  Property_title,
  Property_type,
  Property_updated,
  Property_uri,
  Property_version
};

/// The common base of all classes.
class CAtomObject : public Quillon9::CXmlGeneratedClass {
 public:
  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;

 protected:
  CAtomObject(char const* elementName, CMetaData& metaData) : m_metaData(metaData) { SetElementName(elementName); }

 private:
  CMetaData& m_metaData;
};

/// One child of a container: a choice of objects, including the generic Quillon9::CElement. It has no tag.
class CMember : public CAtomObject {
 public:
  explicit CMember(CMetaData& metaData) : CAtomObject("member", metaData) {}

  /// Return the member of the choice that is set; meaningless if the object is null.
  Property GetProperty() const { return m_property; }
  Quillon9::CXmlObjectBase* GetObject() const { return m_object; }
  /// Share \p object with the caller.
  void Set(Property property, Quillon9::CXmlObjectBase* object);

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override { m_object = nullptr; }

 private:
  Property m_property = Property_any;
  CSmartPtr<Quillon9::CXmlObjectBase> m_object;
};

/// The children of a container. They come in any order and number, so the schema has a repeated choice: this holds one
/// round of it after the other, in document order.
class CMemberCol : public Quillon9::CXmlCollection {
 public:
  /// Iterates over the members.
  class Iterator {
   public:
    explicit Iterator(Quillon9::CNode* node) : m_node(node) {}
    CMember& operator*() const { return static_cast<CMember&>(*m_node->m_item); }
    Iterator& operator++() {
      m_node = m_node->m_next;
      return *this;
    }
    bool operator!=(Iterator const& other) const { return m_node != other.m_node; }

   private:
    Quillon9::CNode* m_node;
  };

  /// \p choice describes the members.
  explicit CMemberCol(CMetaData& choice) : CXmlCollection("member", "", 0, -1), m_choice(choice) {}

  Iterator begin() const { return Iterator(GetFirstNode()); }
  Iterator end() const { return Iterator(nullptr); }
  /// Append \p object, which becomes shared with the caller. Its class must be the one that the schema has for \p
  /// property.
  void Add(Property property, Quillon9::CXmlObjectBase* object);

 protected:
  void ToXml_Int(Quillon9::CXmlWriter* writer, bool isRoot, char const* ns,
                 Quillon9::CXmlSerializationContext const& ctx, bool inChoice) const override;
  Quillon9::CXmlElement* FromXml_Int(Quillon9::CXmlElement* parent, Quillon9::CXmlElement* cursor,
                                     Quillon9::CXmlSerializationContext const& ctx, bool inChoice) override;

 private:
  CMetaData& m_choice;
};

/// Abstract base of the classes with a tag. Their texts are stored in one place, by property.
class CCommonType : public CAtomObject {
 public:
  std::optional<std::string> GetXmlBase() const { return Get(Property_base); }
  std::optional<std::string> GetXmlLang() const { return Get(Property_lang); }
  /// Return the attributes that the schema does not declare.
  Quillon9::CAttributeCol* GetAnyAttribute() const { return m_anyAttribute; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  CCommonType(char const* elementName, CMetaData& metaData);
  std::optional<std::string> Get(Property property) const;
  void Set(Property property, std::optional<std::string> value);

 private:
  std::map<int, std::string> m_texts;
  CSmartPtr<Quillon9::CAttributeCol> const m_anyAttribute;
};

/// A text, such as an IRI or a name.
class CSimpleType : public CCommonType {
 public:
  explicit CSimpleType(char const* elementName);

  std::string GetText() const { return Get(Property_text).value_or(""); }

 protected:
  using CCommonType::CCommonType;
};

class CGeneratorType : public CSimpleType {
 public:
  explicit CGeneratorType(char const* elementName);

  std::optional<std::string> GetUri() const { return Get(Property_uri); }
  std::optional<std::string> GetVersion() const { return Get(Property_version); }
};

class CDateType : public CCommonType {
 public:
  explicit CDateType(char const* elementName);

  Quillon9::CDateTime const& GetDateTime() const { return m_dateTime; }
  void SetDateTime(Quillon9::CDateTime const& value) { m_dateTime = value; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  Quillon9::CDateTime m_dateTime;
};

/// Abstract base for text and elements of any kind. The text is kept in one piece and written after the elements.
class COpenType : public CSimpleType {
 public:
  Quillon9::CElementCol* GetAny() const { return m_any; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  COpenType(char const* elementName, CMetaData& metaData);

 private:
  CSmartPtr<Quillon9::CElementCol> const m_any;
};

/// A title, a summary or the content of an entry. Depending on the type, it is plain text, escaped HTML, an XHTML
/// element, or content of that media type.
class CTextType : public COpenType {
 public:
  explicit CTextType(char const* elementName);

  /// Absent means "text".
  std::optional<std::string> GetType() const { return Get(Property_type); }
  /// Return where the content is, if it is not here. Only content has this.
  std::optional<std::string> GetSrc() const { return Get(Property_src); }
  /// Replace the content with the plain text \p value.
  void SetPlainText(std::string value);
};

class CCategoryType : public COpenType {
 public:
  explicit CCategoryType(char const* elementName);

  std::string GetTerm() const { return Get(Property_term).value_or(""); }
  std::optional<std::string> GetScheme() const { return Get(Property_scheme); }
  std::optional<std::string> GetLabel() const { return Get(Property_label); }
};

class CLinkType : public COpenType {
 public:
  explicit CLinkType(char const* elementName);

  std::string GetHref() const { return Get(Property_href).value_or(""); }
  /// Absent means "alternate".
  std::optional<std::string> GetRel() const { return Get(Property_rel); }
  std::optional<std::string> GetType() const { return Get(Property_type); }
  std::optional<std::string> GetHreflang() const { return Get(Property_hreflang); }
  std::optional<std::string> GetTitle() const { return Get(Property_title); }
  /// Return the number of octets, as text.
  std::optional<std::string> GetLength() const { return Get(Property_length); }
};

/// Abstract base of the classes that consist of members.
class CContainerType : public CCommonType {
 public:
  /// The collection belongs to this object for its whole life: reading empties and fills it.
  CMemberCol* GetMember() const { return m_member; }
  /// Return the first member \p property, or null if there is none.
  template <class Type>
  Type* Find(Property property) const {
    for (CMember& member : *m_member) {
      if (member.GetProperty() == property) return dynamic_cast<Type*>(member.GetObject());
    }
    return nullptr;
  }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  CContainerType(char const* elementName, CMetaData& metaData, CMetaData& choice);

 private:
  CSmartPtr<CMemberCol> const m_member;
};

class CPersonType : public CContainerType {
 public:
  explicit CPersonType(char const* elementName);
};

/// What an entry that was copied from another feed says about that feed.
class CSourceType : public CContainerType {
 public:
  explicit CSourceType(char const* elementName);
};

class CEntryType : public CContainerType {
 public:
  explicit CEntryType(char const* elementName);
};

/// A whole feed, the type of the document element.
class CFeedType : public CContainerType {
 public:
  explicit CFeedType(char const* elementName = "feed");
};

/// Creates the objects that the tables identify by number.
class CClassFactory : public Quillon9::CClassfactoryBase {
 public:
  enum ClassId {
    ClassId_Simple,
    ClassId_Generator,
    ClassId_Date,
    ClassId_Text,
    ClassId_Category,
    ClassId_Link,
    ClassId_Person,
    ClassId_Source,
    ClassId_Entry
  };

  /// \throws Quillon9::CQnInvalidParamException for an unknown number.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateObject(int classId, char const* elementName);
};

}  // namespace Atom
