#pragma once

#include <memory>
#include <string>

#include "quillon9/descriptors/element_info.h"

/// The descriptors of attributes. A generated class lists one for each attribute that its schema declares. They
/// are immutable, belong to the tables of their class and serve all its instances in all threads.
namespace Quillon9Data {

using Quillon9::CXmlAttribute;

/// Base of all attribute descriptors.
class QUILLON9_API CAttributeInfo {
 public:
  /// \p name, \p ns and \p defaultValue are copied. \p index is the number of the property in AccessProperty() of the
  /// class. A null or empty \p defaultValue means that there is no default.
  CAttributeInfo(char const* name, char const* ns, int index, bool optional, char const* defaultValue);
  CAttributeInfo(CAttributeInfo const&) = delete;
  CAttributeInfo& operator=(CAttributeInfo const&) = delete;
  virtual ~CAttributeInfo();

  /// Write the property, unless it is optional and not set, or equals its default while \p ctx leaves such values out.
  /// \throws CQnException for a broken facet, and for a required value that is not set (a required enumeration that is
  ///         not set is written as number 0 instead) or has no text.
  virtual void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                              CXmlWriter* writer) const = 0;
  /// Store \p attribute if it belongs to this descriptor; returns whether it does. Facets are checked only if
  /// \p ctx asks for that.
  /// \throws CQnInvalidValueException for a text that does not convert; CQnException for a broken facet.
  virtual bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                CXmlAttribute* attribute) = 0;
  /// The check after the last attribute. \p found says whether AttributeFromXml() took one.
  /// \throws CQnValidationException "Failed to find the required Attribute [%s]".
  virtual void Validate(CXmlSerializationContext const& ctx, bool found) const = 0;

  /// Whether \p attribute, which may be null, has this name and, unless \p ctx ignores namespaces, this namespace.
  bool IsThisAttribute(CXmlSerializationContext const& ctx, CXmlAttribute* attribute) const;

  /// Call the accessors of \p holder with the index of this property.
  /// \throws what the holder's AccessProperty() throws.
  ///@{
  void AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const;
  void ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const;
  ///@}

  /// Access to operations of \p object, which must not be null.
  ///@{
  static std::string GetTargetNamespace(CXmlObjectBase const* object);
  static void ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool isRoot, char const* ns,
                        CXmlSerializationContext const& ctx);
  ///@}
  /// \throws CQnInvalidNamespaceException as CXmlObjectHelper::TestNamespace() does.
  static void TestNamespace(std::string const& ns, std::string const& list, std::string const& target);

 protected:
  /// Whether \p text is the default of an optional attribute and must be left out.
  bool IsSuppressedDefault(CXmlSerializationContext const& ctx, std::string const& text) const;
  /// \throws CQnValidationException "Failed to find the required Attribute [%s]" unless it is optional or \p found.
  void ThrowIfRequiredAndMissing(bool found) const;

  friend struct DescriptorAccess;
  std::string m_attributeName;  ///< local name
  std::string m_namespace;      ///< empty for none
  int m_propertyIndex;          ///< for AccessProperty()
  bool m_optional;              ///< may be absent
  std::string m_defaultValue;   ///< empty for none
};

/// An attribute that holds a value of any ItemType. It matches by name and namespace exactly, even where the context
/// ignores namespaces; CAttributeInfoEnum does not.
class QUILLON9_API CAttributeInfoPrimitive : public CAttributeInfo {
 public:
  /// \p format is not copied and must outlive the descriptor; \p restrictions is copied.
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
  void CheckFacets(QnVariant const& value) const;
  void WriteBySchema(CXmlSerializationContext const& ctx, QnVariant const& value, CXmlWriter& writer) const;
  void CheckBySchema(QnVariant const& value, std::string_view text) const;

  friend struct DescriptorAccess;
  CPrimitiveRestrictions m_restrictions;
  ItemType m_itemType;
  char const* m_format;
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
  std::unique_ptr<Quillon9::CFacetFilter const> m_filter;  // null for rare facets
  Quillon9::detail::LazySchemaFacets m_schemaFacets;
};

/// An attribute that holds an enumerator. The generated function gets the text exactly as the document contains it.
class QUILLON9_API CAttributeInfoEnum : public CAttributeInfo {
 public:
  /// \p toText returns the text of a number, \p fromText the number of a text; \p fromText decides what to do with an
  /// unknown text, including whether to fail.
  CAttributeInfoEnum(char const* name, char const* ns, int index, bool optional, EnumToText toText,
                     EnumFromText fromText, char const* defaultValue);
  ~CAttributeInfoEnum() override;

  void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                        CXmlAttribute* attribute) override;
  void Validate(CXmlSerializationContext const& ctx, bool found) const override;

 private:
  friend struct DescriptorAccess;
  EnumFromText m_fromText;
  EnumToText m_toText;
};

/// An attribute wildcard, whose property is a CAttributeCol. It takes or refuses every attribute that is offered to it,
/// so it follows the declared attributes in the table.
class QUILLON9_API CAttributeInfoAny : public CAttributeInfo {
 public:
  /// \p restriction says which namespaces the attributes may have, together with \p targetNamespace (see
  /// CXmlObjectHelper::IsNamespaceValid() for its form).
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
