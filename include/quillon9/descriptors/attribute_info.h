#pragma once

#include <memory>
#include <string>

#include "quillon9/descriptors/element_info.h"

/// The descriptors of attributes. A generated class lists one for each attribute that its schema declares. They
/// are immutable, belong to the tables of their class and serve all its instances in all threads.
namespace Quillon9Data {

using Quillon9::CXmlAttribute;

/// Root of the family.
class QUILLON9_API CAttributeInfo {
 public:
  /// \p name, \p ns and \p defaultValue are copied. \p index is what AccessProperty() of the class knows the property
  /// by. A null or empty \p defaultValue means that there is none.
  CAttributeInfo(char const* name, char const* ns, int index, bool optional, char const* defaultValue);
  CAttributeInfo(CAttributeInfo const&) = delete;
  CAttributeInfo& operator=(CAttributeInfo const&) = delete;
  virtual ~CAttributeInfo();

  /// Write the property, unless it is optional and not set, or equal to its default while \p ctx leaves these out.
  /// \throws CQnException for a broken facet, and for a required value that is not set (a required enumeration that is
  ///         not set is written as number 0 instead) or has no text.
  virtual void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                              CXmlWriter* writer) const = 0;
  /// Store \p attribute when it is this descriptor's own; true when it was. Facets are not checked on reading.
  /// \throws CQnInvalidValueException for a text that does not convert.
  virtual bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                CXmlAttribute* attribute) = 0;
  /// The check after the last attribute. \p found: AttributeFromXml() took one.
  /// \throws CQnValidationException "Failed to find the required Attribute [%s]".
  virtual void Validate(CXmlSerializationContext const& ctx, bool found) const = 0;

  /// Whether \p attribute, which may be null, has this name and, unless \p ctx ignores namespaces, this namespace.
  bool IsThisAttribute(CXmlSerializationContext const& ctx, CXmlAttribute* attribute) const;

  /// The holder's accessors with the index of this property.
  /// \throws what the holder's AccessProperty() throws.
  ///@{
  void AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const;
  void ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const;
  ///@}

  /// Ways in to operations of \p object, which is not null.
  ///@{
  static std::string GetTargetNamespace(CXmlObjectBase const* object);
  static void ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool isRoot, char const* ns,
                        CXmlSerializationContext const& ctx);
  ///@}
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace() does.
  static void TestNamespace(std::string const& ns, std::string const& list, std::string const& target);

 protected:
  /// Whether \p text, the default of an optional attribute, is to be left out.
  bool IsSuppressedDefault(CXmlSerializationContext const& ctx, std::string const& text) const;
  /// \throws CQnValidationException "Failed to find the required Attribute [%s]" unless it is optional or \p found.
  void ThrowIfRequiredAndMissing(bool found) const;

  std::string m_attributeName;  ///< local name
  std::string m_namespace;      ///< empty for none
  int m_propertyIndex;          ///< for AccessProperty()
  bool m_optional;              ///< its absence is no failure
  std::string m_defaultValue;   ///< empty for none
};

/// An attribute that holds a value of some ItemType. It matches by name and namespace exactly, even where the
/// context ignores namespaces; its enumeration sister does not.
class QUILLON9_API CAttributeInfoPrimitive : public CAttributeInfo {
 public:
  /// \p format is kept as it is and must outlive the descriptor; \p restrictions is copied.
  CAttributeInfoPrimitive(char const* name, char const* ns, int index, bool optional, ItemType type, char const* format,
                          CWhitespaceUtils::WhitespaceRule rule, CPrimitiveRestrictions const& restrictions,
                          char const* defaultValue);
  ~CAttributeInfoPrimitive() override;

  void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                        CXmlAttribute* attribute) override;
  void Validate(CXmlSerializationContext const& ctx, bool found) const override;

  /// \throws CQnException for a broken facet.
  void CheckRestriction(QnVariant value) const;

 private:
  CPrimitiveRestrictions m_restrictions;
  ItemType m_itemType;
  char const* m_format;
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
  std::unique_ptr<Quillon9::CFacetFilter const> m_filter;  // null for rare facets
};

/// An attribute that holds an enumerator. The generated function sees the text as it stood in the document.
class QUILLON9_API CAttributeInfoEnum : public CAttributeInfo {
 public:
  /// \p toText gives the text of a number, \p fromText the number of a text; what \p fromText does with an unknown
  /// text, failures included, is its own affair.
  CAttributeInfoEnum(char const* name, char const* ns, int index, bool optional, EnumToText toText,
                     EnumFromText fromText, char const* defaultValue);
  ~CAttributeInfoEnum() override;

  void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                        CXmlAttribute* attribute) override;
  void Validate(CXmlSerializationContext const& ctx, bool found) const override;

 private:
  EnumFromText m_fromText;
  EnumToText m_toText;
};

/// An attribute wildcard, whose property is a CAttributeCol. It takes or refuses every attribute that is offered to it,
/// so it stands behind the declared ones in the table.
class QUILLON9_API CAttributeInfoAny : public CAttributeInfo {
 public:
  /// \p restriction says which namespaces the attributes may have, with \p targetNamespace
  /// (CXmlObjectHelper::IsNamespaceValid() tells its form).
  CAttributeInfoAny(char const* name, char const* ns, int index, bool optional, char const* restriction,
                    char const* targetNamespace, char const* defaultValue);
  ~CAttributeInfoAny() override;

  /// \throws CQnException "Serialization Data Error : The collection should be a CAttributeCol, it was not!" when the
  ///         property holds anything else.
  void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                      CXmlWriter* writer) const override;
  /// Always true.
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace(); CQnException as above when the property
  ///         holds anything but a CAttributeCol.
  bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                        CXmlAttribute* attribute) override;
  /// Does nothing.
  void Validate(CXmlSerializationContext const& ctx, bool found) const override;

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

}  // namespace Quillon9Data
