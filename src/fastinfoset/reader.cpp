#include "fastinfoset/reader.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

#include "base/fast_paths.h"
#include "fastinfoset/algorithms.h"
#include "fastinfoset/restricted_alphabet.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/document.h"
#include "values/rules_in_use.h"
#include "xmlio/converted_text.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

constexpr std::uint32_t kBehindCharacterChunks = 0xC0;

char const* Characters(std::uint8_t const* octets) { return reinterpret_cast<char const*>(octets); }

/// Return element \p index of a table, counted from 1.
template <class Value>
Value const& EntryOf(std::vector<Value> const& table, unsigned long index) {
  if (index == 0 || index > table.size()) ThrowFastInfosetFailure("Invalid Index beyond its table.");
  return table[index - 1];
}

/// Return the minimum size of the text that \p length octets of an encoding algorithm decode to. Each bit becomes
/// "true" or "false", except for half of the first octet and the unused bits of the last one; eight octets of a number
/// become at least one digit, and a space unless they are the last.
std::uint64_t LeastTextSize(unsigned long algorithm, std::uint64_t length) {
  constexpr std::uint64_t kEightTimesTrue = 32;
  if (algorithm != fi::kBoolean) return length > 8 ? length / 4 - 1 : 0;
  return length > 1 ? (length - 1) * kEightTimesTrue - kEightTimesTrue / 2 : 0;
}

[[noreturn]] void ThrowInvalidElement() { ThrowFastInfosetFailure("Invalid Encoding of Element type."); }

}  // namespace

CFastInfosetReader::CFastInfosetReader(CFastInfosetContext const& options, CXmlDocument& document)
    : m_options(options),
      m_document(document),
      m_source(document.GetInputData(), document.GetInputSize()),
      m_keepsMarkup(XmlNodeAccess::KeepsMarkup(document)) {}

CFastInfosetReader::~CFastInfosetReader() = default;

bool CFastInfosetReader::Parse() {
  if (!ReadHeader()) return false;
  if (m_options.GetUseGeneratedVocabulary()) {
    m_vocabulary.emplace(m_options.GetVocabulary());
  } else {
    m_vocabulary.emplace();
  }
  ReadOptionalData();
  ReadChildren();
  return true;
}

// A missing last terminator is not a failure once the element is complete, and anything after a terminator is ignored.
void CFastInfosetReader::ReadChildren() {
  bool hasElement = false;
  while (!m_doubleTerminator && !(hasElement && m_source.GetLeft() == 0)) {
    std::uint32_t const octet = m_source.Octet();
    if (octet == fi::kTerminator || octet == fi::kDoubleTerminator) break;
    if (octet < fi::kCharacterChunk) {
      if (hasElement) ThrowFastInfosetFailure("Invalid Document type with more than one Element.");
      ElementBit2(octet);
      hasElement = true;
    } else if (octet == fi::kProcessingInstruction) {
      ProcessingInstruction();
    } else if (octet == fi::kComment) {
      Comment();
    } else if ((octet & fi::kTopSixBits) == fi::kDocumentTypeDeclaration) {
      if (hasElement) ThrowFastInfosetFailure("Invalid Document type with Document Type Declaration behind Element.");
      DocumentTypeDeclarationBit7(octet);
    }
  }
  if (!hasElement) ThrowFastInfosetFailure("Invalid Document type without Element.");
}

// Iterative, because the document determines the depth of the nesting: the document keeps the open elements.
void CFastInfosetReader::ElementBit2(std::uint32_t octet) {
  if (m_outline != nullptr) return OutlineElement(octet);
  StartElement(octet);
  while (CXmlElement* const element = m_document.GetOpenElement()) ReadContent(element, m_source.Octet());
}

void CFastInfosetReader::StartElement(std::uint32_t octet) {
  bool const hasAttributes = (octet & fi::kHasAttributes) != 0;
  if ((octet & fi::kLiteralElementName) == fi::kHasNamespaceAttributes) {
    NamespaceAttributes();
    octet = m_source.Octet();
  }
  std::uint32_t const limit = CLimits::GetMaxElementDepth();
  if (m_document.GetOpenElementCount() >= limit) {
    ThrowFastInfosetFailure(FormatString("The element nesting exceeds the limit of %u levels", limit).c_str(),
                            FailureKind_Limit);
  }
  CXmlName const* const name = ElementNameBit3(octet);
  CXmlElement* const element =
      m_document.GetDocumentElement() == nullptr ? m_document.AddDocElement(name) : m_document.AddChildElement(name);
  if (hasAttributes) Attributes(element);
}

void CFastInfosetReader::ReadContent(CXmlElement* element, std::uint32_t octet) {
  if (octet < fi::kCharacterChunk) {
    StartElement(octet);
  } else if (octet < kBehindCharacterChunks) {
    ReadCharacterChunk(element, octet);
  } else if (octet == fi::kTerminator) {
    XmlNodeAccess::CloseElement(m_document);
  } else if (octet == fi::kDoubleTerminator) {
    XmlNodeAccess::CloseElement(m_document);
    m_doubleTerminator = m_document.GetOpenElement() == nullptr;
    if (!m_doubleTerminator) XmlNodeAccess::CloseElement(m_document);
  } else if (octet == fi::kProcessingInstruction) {
    ProcessingInstruction();
  } else if (octet == fi::kComment) {
    Comment();
  } else if ((octet & fi::kTopSixBits) == fi::kUnexpandedEntityReference) {
    UnexpandedEntityReferenceBit7(octet);
  } else {
    ThrowInvalidElement();
  }
}

// An infoset has line feeds as line ends, so that its carriage returns are from references.
void CFastInfosetReader::AppendText(CXmlElement* element, std::string const& text) {
  std::string_view const shown = text.c_str();
  if (!RulesInUse::AreSchema()) return m_document.AppendTextExcludingCR(element, shown.data(), shown.size());
  m_document.CountContent(shown.size());
  XmlNodeAccess::AppendText(*element, shown);
}

void CFastInfosetReader::ReadCharacterChunk(CXmlElement* element, std::uint32_t octet) {
  auto& table = m_vocabulary->GetCharacterChunksTable().GetVector();
  if ((octet & fi::kIndexBit3) != 0) {
    std::string const& text = EntryOf(table, m_source.Integer1To2pw20Bit4(octet));
    AppendText(element, text);
    return;
  }
  bool const addToTable = (octet & fi::kAddToTableBit3) != 0;
  EncodedString const source = EncodedCharacterStringBit5(octet);
  if (source.IsUtf8() && !addToTable) {  // for most text: one copy instead of two
    char const* const utf8 = Characters(source.m_octets);
    m_document.CountContent(source.m_length);
    AppendConverted(*element, m_toLocal, {utf8, strnlen(utf8, source.m_length)});
    return;
  }
  std::string text;
  Decode(source, text);
  AppendText(element, text);
  if (addToTable && table.size() < CFIVocabulary::kMaxEntries) table.push_back(std::move(text));
}

void CFastInfosetReader::NamespaceAttributes() {
  std::uint32_t octet = m_source.Octet();
  for (; (octet & fi::kTopSixBits) == fi::kNamespaceAttribute; octet = m_source.Octet()) NamespaceAttributeBit7(octet);
  if (octet != fi::kTerminator) ThrowInvalidElement();
}

void CFastInfosetReader::NamespaceAttributeBit7(std::uint32_t octet) {
  auto& prefixes = m_vocabulary->GetPrefixNamesTable().GetVector();
  auto& namespaces = m_vocabulary->GetNamespaceNamesTable().GetVector();
  std::string prefix;
  std::string namespaceUri;
  if ((octet & fi::kHasPrefix) != 0) prefix = EntryOf(prefixes, IdentifyingStringOrIndex(prefixes));
  if ((octet & fi::kHasNamespaceName) != 0) namespaceUri = EntryOf(namespaces, IdentifyingStringOrIndex(namespaces));
  m_document.SetNamespaceAlias(std::move(prefix), std::move(namespaceUri));
}

void CFastInfosetReader::Attributes(CXmlElement* element) {
  std::uint32_t octet = m_source.Octet();
  for (; octet < fi::kCharacterChunk; octet = m_source.Octet()) AtrributeBit2(element, octet);
  if (octet == fi::kDoubleTerminator) {
    XmlNodeAccess::CloseElement(m_document);  // it ends the attributes and the element, not the parent
  } else if (octet != fi::kTerminator) {
    ThrowInvalidElement();
  }
}

void CFastInfosetReader::AtrributeBit2(CXmlElement* element, std::uint32_t octet) {
  CXmlName const* const name = AttributeNameBit2(octet);
  m_document.AddElementAttribute(element, name,
                                 NonIdentifyingStringOrIndexBit1(m_vocabulary->GetAttributeValuesTable().GetVector()));
}

CXmlName const* CFastInfosetReader::AttributeNameBit2(std::uint32_t octet) {
  auto& table = m_vocabulary->GetAttributeNamesTable().GetVector();
  if ((octet & fi::kLiteralAttributeName) == fi::kLiteralAttributeName) return ReadQName(octet, table);
  return NameInTable(table, m_source.Integer1To2pw20Bit2(octet), m_attributeNames);
}

CXmlName const* CFastInfosetReader::ElementNameBit3(std::uint32_t octet) {
  auto& table = m_vocabulary->GetElementNamesTable().GetVector();
  if ((octet & fi::kLiteralElementName) == fi::kLiteralElementName) return ReadQName(octet, table);
  return NameInTable(table, m_source.Integer1To2pw20Bit3(octet), m_elementNames);
}

/// Return the name for entry \p index of \p table, which \p shared caches.
CXmlName const* CFastInfosetReader::NameInTable(Names const& table, std::size_t index, SharedNames& shared) {
  CFIVocabulary::CQNameParts const& parts = EntryOf(table, index);
  if (shared.size() < table.size()) shared.resize(table.size());
  CXmlName const*& name = shared[index - 1];
  if (!kInfosetNames.IsOn() || name == nullptr) {
    NotePrefix(parts, table);
    name = SharedName(parts);
  }
  kInfosetNames.Verify([&] { return name == SharedName(parts); });
  return name;
}

CXmlName const* CFastInfosetReader::SharedName(CFIVocabulary::CQNameParts const& parts) {
  static auto const& none = *new std::string;
  auto const& namespaces = m_vocabulary->GetNamespaceNamesTable().GetVector();
  return m_document.ShareName(parts.m_namespace != 0 ? EntryOf(namespaces, parts.m_namespace) : none,
                              EntryOf(m_vocabulary->GetLocalNamesTable().GetVector(), parts.m_localName));
}

/// Return the name, which is added to \p table unless the table is full.
CXmlName const* CFastInfosetReader::ReadQName(std::uint32_t octet, Names& table) {
  bool const hasPrefix = (octet & fi::kHasPrefix) != 0;
  bool const hasNamespace = (octet & fi::kHasNamespaceName) != 0;
  if (hasPrefix && !hasNamespace) ThrowFastInfosetFailure("Invalid QName type Prefix without Namespace.");
  CFIVocabulary::CQNameParts name;
  if (hasPrefix) name.m_prefix = IdentifyingStringOrIndex(m_vocabulary->GetPrefixNamesTable().GetVector());
  if (hasNamespace) name.m_namespace = IdentifyingStringOrIndex(m_vocabulary->GetNamespaceNamesTable().GetVector());
  name.m_localName = IdentifyingStringOrIndex(m_vocabulary->GetLocalNamesTable().GetVector());
  m_vocabulary->AddQNameToVector(name.m_prefix, name.m_namespace, name.m_localName, table);
  NotePrefix(name, table);
  return SharedName(name);
}

/// Some writers declare a prefix only by the names of elements that have it. That of an attribute may mean another
/// namespace in its value.
void CFastInfosetReader::NotePrefix(CFIVocabulary::CQNameParts const& parts, Names const& table) {
  if (&table != &m_vocabulary->GetElementNamesTable().GetVector()) return;
  if (parts.m_prefix == 0 || parts.m_namespace == 0) return;
  std::string const& prefix = EntryOf(m_vocabulary->GetPrefixNamesTable().GetVector(), parts.m_prefix);
  std::string const& uri = EntryOf(m_vocabulary->GetNamespaceNamesTable().GetVector(), parts.m_namespace);
  constexpr std::size_t kLongest = 256;  // since a few octets may repeat them
  if (prefix.size() + uri.size() > kLongest) return;
  XmlNodeAccess::NoteNamespace(m_document, prefix, uri, NamespaceDeclarations::Kind::Name);
}

/// Return the index of the string, which is added to \p table if it is spelled out.
std::uint32_t CFastInfosetReader::IdentifyingStringOrIndex(Strings& table) {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) != 0) {
    std::uint32_t const index = m_source.Integer1To2pw20Bit2(octet);
    EntryOf(table, index);
    return index;
  }
  std::uint64_t const length = m_source.NonEmptyOctetStringBit2Length(octet);
  char const* const utf8 = Characters(m_source.Move(length));
  m_toLocal.Append(table.emplace_back(), {utf8, length});
  return static_cast<std::uint32_t>(table.size());
}

std::string CFastInfosetReader::NonIdentifyingStringOrIndexBit1(Strings& table) {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) != 0) {
    std::uint32_t const index = m_source.Integer0To2pw20Bit2(octet);
    return index != 0 ? EntryOf(table, index) : std::string();
  }
  std::string text;
  Decode(EncodedCharacterStringBit3(octet), text);
  if ((octet & fi::kAddToTableBit1) != 0) m_vocabulary->AddValueToVector(text, table);
  return text;
}

CFastInfosetReader::EncodedString CFastInfosetReader::EncodedCharacterStringBit3(std::uint32_t octet) {
  EncodedString string{static_cast<EncodedString::Kind>(octet >> 4 & 0x03), 0, nullptr, 0};
  if ((octet & fi::kRestrictedAlphabetBit3) != 0) {  // set for an encoding algorithm, too
    std::uint32_t const next = m_source.Octet();
    string.m_index = ((octet & 0x0F) << 4 | next >> 4) + 1;
    octet = next;
  }
  string.m_length = m_source.NonEmptyOctetStringBit5Length(octet);
  string.m_octets = m_source.Move(string.m_length);
  return string;
}

CFastInfosetReader::EncodedString CFastInfosetReader::EncodedCharacterStringBit5(std::uint32_t octet) {
  EncodedString string{static_cast<EncodedString::Kind>(octet >> 2 & 0x03), 0, nullptr, 0};
  if ((octet & fi::kRestrictedAlphabetBit5) != 0) {
    std::uint32_t const next = m_source.Octet();
    string.m_index = ((octet & 0x03) << 6 | next >> 2) + 1;
    octet = next;
  }
  string.m_length = m_source.NonEmptyOctetStringBit7Length(octet);
  string.m_octets = m_source.Move(string.m_length);
  return string;
}

/// Fail before octets are decoded if their text would be too long in any case.
void CFastInfosetReader::CheckLeastTextSize(EncodedString const& source) const {
  std::uint64_t const least = LeastTextSize(source.m_index, source.m_length);
  if (least > m_document.GetContentLeft()) m_document.CountContent(least);
}

void CFastInfosetReader::Decode(EncodedString const& source, std::string& target) const {
  if (source.IsUtf8()) {
    m_toLocal.Append(target, {Characters(source.m_octets), source.m_length});
    return;
  }
  switch (source.m_kind) {
    case EncodedString::Kind::kUtf8: return;
    case EncodedString::Kind::kUtf16: {
      std::size_t const length = std::min<std::size_t>(source.m_length, INT_MAX);
      target += CEncoder::Utf16ToLocalCodePage(source.m_octets, static_cast<int>(length));
      return;
    }
    case EncodedString::Kind::kRestrictedAlphabet: {
      auto const& alphabet = EntryOf(m_vocabulary->GetRestrictedAlphabets(), source.m_index);
      AppendRestrictedAlphabetText(target, source.m_octets, source.m_length, alphabet, m_document.GetContentLeft() + 1);
      return;
    }
    case EncodedString::Kind::kEncodingAlgorithm:
      CheckLeastTextSize(source);
      target += DecodedText(source.m_index, source.m_octets, source.m_length);
      return;
  }
}

}  // namespace Quillon9
