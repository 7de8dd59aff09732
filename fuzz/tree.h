#pragma once

#include <set>
#include <string>
#include <utility>

#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fastinfoset/writer.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"

/// The form in which the fuzz targets compare trees, and the round trip through either format.
namespace Fuzzing {

using Quillon9::CXmlAttribute;
using Quillon9::CXmlElement;

inline void AppendToken(std::string& out, char mark, std::string const& token) {
  out += mark;
  out += std::to_string(token.size());
  out += ':';
  out += token;
}

/// Appends a form that distinguishes any two trees, byte for byte.
inline void AppendTree(std::string& out, CXmlElement const& element) {
  AppendToken(out, '<', element.GetNamespaceURI());
  AppendToken(out, ' ', element.GetLocalName());
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    AppendToken(out, '@', attribute->GetNamespaceURI());
    AppendToken(out, ' ', attribute->GetLocalName());
    AppendToken(out, '=', attribute->GetValue());
  }
  AppendToken(out, '"', element.GetText());
  for (CXmlElement const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    AppendTree(out, *child);
  }
  out += '>';
}

inline std::string TreeText(CXmlElement const& element) {
  std::string text;
  AppendTree(text, element);
  return text;
}

/// Whether a predicate holds for all elements of a tree.
template <class Predicate>
bool All(CXmlElement const& element, Predicate const& holds) {
  if (!holds(element)) return false;
  for (CXmlElement const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    if (!All(*child, holds)) return false;
  }
  return true;
}

inline bool HasNone(std::string const& text, std::string const& characters) {
  return text.find_first_of(characters) == std::string::npos;
}

/// Writers drop carriage returns and end a text at a zero byte; attributes lose tabs to the parser. Namespace names are
/// written unescaped, and so are texts that begin like CDATA sections; the parser accepts no namespace with '|'. If a
/// name is not UTF-8, which Fast Infoset allows, nothing may remain to be written.
inline bool IsWrittenWhole(CXmlElement const& element) {
  if (element.GetLocalName().empty()) return false;
  std::string const lost("\r\0", 2);
  std::string const inAttributes("\t\r\0", 3);
  std::string const inNames("|<>&\"' \t\n\r\0", 11);
  if (!HasNone(element.GetText(), lost) || !HasNone(element.GetNamespaceURI(), inNames)) return false;
  if (element.GetText().compare(0, 9, "<![CDATA[") == 0) return false;
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    if (attribute->GetLocalName().empty()) return false;
    if (!HasNone(attribute->GetValue(), inAttributes) || !HasNone(attribute->GetNamespaceURI(), inNames)) return false;
  }
  return true;
}

inline bool IsName(std::string const& name) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    char const c = name[i];
    bool const isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (!isLetter && (i == 0 || c < '-' || c > '9' || c == '/')) return false;
  }
  return !name.empty() && name != "xmlns";
}

inline bool IsPrintable(std::string const& text) {
  for (char const c : text) {
    if ((c < ' ' || c > '~') && c != '\n' && c != '\t') return false;
  }
  return true;
}

/// Fast Infoset can carry names, characters and pairs of attributes that no parser of text accepts; this accepts only
/// those that are certainly valid.
inline bool FitsText(CXmlElement const& element) {
  auto const fits = [](std::string const& uri, std::string const& name) {
    bool const isReserved = uri == "http://www.w3.org/2000/xmlns/";
    return IsName(name) && IsPrintable(uri) && !isReserved;
  };
  if (!fits(element.GetNamespaceURI(), element.GetLocalName()) || !IsPrintable(element.GetText())) return false;
  std::set<std::pair<std::string, std::string>> names;
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    if (!fits(attribute->GetNamespaceURI(), attribute->GetLocalName())) return false;
    if (!IsPrintable(attribute->GetValue())) return false;
    if (!names.emplace(attribute->GetNamespaceURI(), attribute->GetLocalName()).second) return false;
  }
  return true;
}

inline void WriteTree(Quillon9::CXmlWriter& writer, CXmlElement const& element) {
  writer.WriteStartElement(element.GetLocalName(), element.GetNamespaceURI());
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    writer.WriteAttributeString(attribute->GetLocalName(), attribute->GetNamespaceURI(), attribute->GetValue(),
                                Quillon9::ItemType_string);
  }
  writer.WriteString(element.GetText(), Quillon9::ItemType_string);
  for (CXmlElement const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    WriteTree(writer, *child);
  }
  writer.WriteEndElement();
}

inline std::string AsText(CXmlElement const& element) {
  Quillon9::CTextStream stream(Quillon9::XmlEncoding_UTF8);
  Quillon9::CXmlTextWriter writer(stream);
  writer.SetFormat(false);
  writer.Open();
  writer.WriteStartDocument();
  WriteTree(writer, element);
  writer.Close();
  return Bytes(stream.GetEncodedStream());
}

inline std::string AsFastInfoset(CXmlElement const& element, Quillon9::CXmlSerializationContext const& context) {
  Quillon9::CBinaryStream stream;
  Quillon9::CFastInfosetWriter writer(*context.GetFIContext(), stream);
  writer.Open();
  writer.WriteStartDocument(Quillon9::FInfoDecl_None);
  WriteTree(writer, element);
  writer.WriteEndDocument();
  writer.Close();
  return Bytes(stream.GetBinaryStream());
}

/// The output of \p write for a tree that was read, which must not fail.
template <class Write>
std::string Written(Write const& write, std::string const& tree, char const* what) {
  try {
    return write();
  } catch (Quillon9::CQnException const& failure) {
    Require(false, what, failure.GetFullMessage(), tree);
  }
  return "";
}

/// Requires that reading \p bytes gives the tree \p expected.
inline void RequireTree(std::string const& bytes, Quillon9::CXmlSerializationContext const& context,
                        std::string const& expected, char const* what) {
  LimitContent(1u << 26);  // new prefixes may make it larger
  Quillon9::CXmlDocument document(context);
  try {
    document.LoadXmlStream(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size());
  } catch (Quillon9::CQnException const& failure) {
    Require(false, what, failure.GetFullMessage() + "\n" + bytes, expected);
  }
  RequireEqual(TreeText(*document.GetDocumentElement()), expected, what);
}

/// Requires that a tree that was read can be written in a format and read again to the same tree.
inline void RequireTextAgain(CXmlElement const& root, Quillon9::CXmlSerializationContext const& context) {
  std::string const tree = TreeText(root);
  std::string const text = Written([&] { return AsText(root); }, tree, "a tree is written as text");
  RequireTree(text, context, tree, "a tree written as text is read again");
}

inline void RequireFastInfosetAgain(CXmlElement const& root, Quillon9::CXmlSerializationContext const& context) {
  std::string const tree = TreeText(root);
  std::string const octets =
      Written([&] { return AsFastInfoset(root, context); }, tree, "a tree is written as Fast Infoset");
  RequireTree(octets, context, tree, "a tree written as Fast Infoset is read again");
}

}  // namespace Fuzzing
