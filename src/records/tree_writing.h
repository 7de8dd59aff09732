#pragma once

#include <string>

#include "quillon9/fwd.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Writes trees and single elements with checked names, which the writers leave to their callers.
class TreeWriting {
 public:
  /// \p writer is borrowed. \p isText says that it writes text, with namespaces escaped.
  TreeWriting(CXmlWriter& writer, bool isText) : m_writer(writer), m_isText(isText) {}

  /// The default namespace of the document. Text cannot have elements without a namespace then.
  void SetDefaultNamespace(std::string const& uri);
  void AddNamespace(std::string const& prefix, std::string const& uri) { m_writer.AddNamespace(prefix, uri); }
  /// \throws as RequireElementName(), and what CXmlWriter throws.
  void Start(std::string const& localName, std::string const& namespaceUri);
  void WriteAttribute(std::string const& localName, std::string const& namespaceUri, std::string const& value,
                      ItemType type);
  /// Write the element, its attributes and its content, and the prefixes of its document if \p keepsPrefixes is true.
  void Write(CXmlElement const& element, bool keepsPrefixes);

  /// Check that an element or attribute of this name can be written as text.
  /// \throws CQnInvalidParamException "The name [%s] is not a name in XML", also for attributes and prefixes; "The
  ///         element [%s] has no namespace, which cannot be written where there is a default namespace".
  ///@{
  static void RequireElementName(std::string const& localName, std::string const& namespaceUri,
                                 bool hasDefaultNamespace);
  /// \throws also CQnInvalidParamException "The attribute [%s] would declare a namespace".
  static void RequireAttributeName(std::string const& localName, std::string const& namespaceUri);
  static void RequireName(std::string const& name);
  ///@}

 private:
  void WriteContentOf(CXmlElement const& element);
  void DeclarePrefixesOf(CXmlDocument const& document);

  CXmlWriter& m_writer;
  bool m_isText;
  bool m_hasDefaultNamespace = false;
  std::string m_value;
};

}  // namespace Quillon9
