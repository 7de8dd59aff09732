#pragma once

#include <string>

#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {

/// The only friend of the descriptors: reads what their constructors stored.
struct DescriptorAccess {
  /// \name Of all
  /// @{
  static std::string const& Name(CElementInfo const& entry) { return entry.m_elementName; }
  static std::string const& Name(CAttributeInfo const& entry) { return entry.m_attributeName; }
  template <class Entry>
  static std::string const& Namespace(Entry const& entry) {
    return entry.m_namespace;
  }
  template <class Entry>
  static int PropertyIndex(Entry const& entry) {
    return entry.m_propertyIndex;
  }
  static bool IsOptional(CAttributeInfo const& entry) { return entry.m_optional; }
  /// @}

  /// \name Of a value
  /// @{
  template <class Entry>
  static ItemType ItemTypeOf(Entry const& entry) {
    return entry.m_itemType;
  }
  template <class Entry>
  static CWhitespaceUtils::WhitespaceRule WhitespaceRuleOf(Entry const& entry) {
    return entry.m_whitespaceRule;
  }
  /// @}

  /// \name Of an enumeration
  /// @{
  template <class Entry>
  static EnumToText ToText(Entry const& entry) {
    return entry.m_toText;
  }
  template <class Entry>
  static EnumFromText FromText(Entry const& entry) {
    return entry.m_fromText;
  }
  /// @}

  /// \name Of an object
  /// @{
  template <class Member>
  static XmlElementType ChildType(Member const& member) {
    return member.m_childType;
  }
  template <class Member>
  static bool RequiresContent(Member const& member) {
    return member.m_requiresContent;
  }
  template <class Member>
  static ClassFactory ClassFactoryOf(Member const& member) {
    return member.m_classFactory;
  }
  template <class Member>
  static ElementFactory ElementFactoryOf(Member const& member) {
    return member.m_elementFactory;
  }
  /// @}
};

}  // namespace Quillon9Data
