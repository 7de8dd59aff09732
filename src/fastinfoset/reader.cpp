#include "fastinfoset/reader.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

#include "base/byte_blocks.h"
#include "base/fast_paths.h"
#include "base/text_copy.h"
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
/// The bits that tell the form of an integer on the fourth bit.
constexpr std::uint32_t kInteger4Form = 0x1C;
/// The bits that tell the form of a length on the seventh bit.
constexpr std::uint32_t kLength7Form = 0x03;
/// The bits of a chunk that is not in UTF-8.
constexpr std::uint32_t kEncodingBit5 = 0x0C;

char const* Characters(std::uint8_t const* octets) { return reinterpret_cast<char const*>(octets); }

bool IsPlain(std::string_view text) { return !ByteBlocks::Any(text, ' ', FindUnplain); }

/// Return the minimum size of the text that \p length octets of an encoding algorithm decode to. Each bit becomes
/// "true" or "false", except for half of the first octet and the unused bits of the last one; eight octets of a number
/// become at least one digit, and a space unless they are the last.
std::uint64_t LeastTextSize(unsigned long algorithm, std::uint64_t length) {
  constexpr std::uint64_t kEightTimesTrue = 32;
  if (algorithm != fi::kBoolean) return length > 8 ? length / 4 - 1 : 0;
  return length > 1 ? (length - 1) * kEightTimesTrue - kEightTimesTrue / 2 : 0;
}

/// A chunk in one of the usual forms, whose text is usually plain.
struct PlainChunk {
  std::string_view text;
  std::size_t octets = 0;  ///< of the chunk
  bool isAdded = false;    ///< to the table
};

/// Read \p chunk from the \p left octets at \p at, if there is one.
[[gnu::always_inline]] inline bool FindPlainChunk(std::uint8_t const* at, std::size_t left, ReadStrings const& table,
                                                  PlainChunk& chunk) {
  if (left < 2 || at[0] < fi::kCharacterChunk || at[0] >= kBehindCharacterChunks) return false;
  std::uint32_t const octet = at[0];
  if ((octet & fi::kIndexBit3) == 0) {
    if ((octet & kEncodingBit5) != 0 || (octet & kLength7Form) == fi::kLength7Large.m_pattern) return false;
    bool const isShort = (octet & fi::kLength7Medium.m_pattern) == 0;
    std::size_t const head = isShort ? 1 : 2;
    std::size_t const size = isShort ? (octet & 0x01) + 1 : at[1] + fi::kLength7Medium.m_first;
    chunk = {{Characters(at + head), size}, head + size, (octet & fi::kAddToTableBit3) != 0};
    return chunk.octets <= left;
  }
  bool const isShort = (octet & fi::kInteger4Medium.m_pattern) == 0;
  if (!isShort && (octet & kInteger4Form) != fi::kInteger4Medium.m_pattern) return false;
  std::size_t const index = isShort ? (octet & 0x0F) + 1 : ((octet & 0x03) << 8 | at[1]) + fi::kInteger4Medium.m_first;
  if (index > table.GetSize() || !table.At(index).IsPlain()) return false;
  chunk = {table.At(index).GetView(), isShort ? std::size_t{1} : 2, false};
  return true;
}

}  // namespace

void ThrowBeyondTable() { ThrowFastInfosetFailure("Invalid Index beyond its table."); }

CFastInfosetReader::CFastInfosetReader(CFastInfosetContext const& options, CXmlDocument& document)
    : InfosetParser(COctetSource(document.GetInputData(), document.GetInputSize())),
      m_options(options),
      m_document(document),
      m_keepsMarkup(XmlNodeAccess::KeepsMarkup(document)) {}

CFastInfosetReader::~CFastInfosetReader() = default;

bool CFastInfosetReader::Parse() {
  if (!ReadHeader()) return false;
  StartTables();
  m_maxDepth = CLimits::GetMaxElementDepth();
  ReadOptionalData();
  while (ReadChild()) {
  }
  return true;
}

void CFastInfosetReader::StartTables() {
  if (!m_options.GetUseGeneratedVocabulary()) {
    m_prefixes.AddBorrowed(FI_DEFAULT_PREFIX);
    m_namespaces.AddBorrowed(FI_DEFAULT_NAMESPACE);
    return;
  }
  CFIVocabulary const& vocabulary = m_options.GetVocabulary();
  m_prefixes.Begin(vocabulary.GetPrefixNamesTable().GetVector());
  m_namespaces.Begin(vocabulary.GetNamespaceNamesTable().GetVector());
  m_localNames.Begin(vocabulary.GetLocalNamesTable().GetVector());
  m_chunks.Begin(vocabulary.GetCharacterChunksTable().GetVector());
  m_attributeValues.Begin(vocabulary.GetAttributeValuesTable().GetVector());
  m_elementNames.Begin(vocabulary.GetElementNamesTable().GetVector());
  m_attributeNames.Begin(vocabulary.GetAttributeNamesTable().GetVector());
}

// Iterative, because the document determines the depth of the nesting: the document keeps the open elements.
void CFastInfosetReader::ElementBit2(std::uint32_t octet) {
  if (m_outline != nullptr) return OutlineElement(octet);
  StartElement(octet);
  bool const hasTextElements =
      kElementAtOnce.IsOn() && kInfosetNames.IsOn() && m_toLocal.KeepsAscii() && !XmlNodeAccess::HasFilter(m_document);
  while (CXmlElement* const element = m_document.GetOpenElement()) {
    std::uint32_t const next = m_source.Octet();
    CXmlName const* const name = hasTextElements && next < m_firstNames.size() ? m_firstNames[next] : nullptr;
    if (name == nullptr || !ReadTextElement(*element, *name)) ReadContent(element, next);
  }
}

void CFastInfosetReader::StartElement(std::uint32_t octet) {
  bool const hasAttributes = (octet & fi::kHasAttributes) != 0;
  if ((octet & fi::kLiteralElementName) == fi::kHasNamespaceAttributes) {
    NamespaceAttributes();
    octet = m_source.Octet();
  }
  if (m_document.GetOpenElementCount() >= m_maxDepth) ThrowNestedTooDeep(m_maxDepth);
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
    if (m_document.GetOpenElement() == nullptr) return NoteDoubleTerminator();
    XmlNodeAccess::CloseElement(m_document);
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

// An element without attributes whose content is one plain text, as most elements are, is closed without ever having
// been open. Returns false, with nothing read, if the element may be another one.
bool CFastInfosetReader::ReadTextElement(CXmlElement& parent, CXmlName const& name) {
  if (m_document.GetOpenElementCount() >= m_maxDepth) return false;
  PlainChunk chunk;
  if (!FindPlainChunk(m_source.GetPosition(), m_source.GetLeft(), m_chunks, chunk)) return false;
  CXmlElement* const element = XmlNodeAccess::AddTextChild(m_document, parent, name, chunk.text);
  if (element == nullptr) return false;
  if (chunk.isAdded && m_chunks.GetSize() < CFIVocabulary::kMaxEntries) m_chunks.AddBorrowed(chunk.text, true);
  m_source.Move(chunk.octets);
  std::uint32_t const end = m_source.GetLeft() != 0 ? *m_source.GetPosition() : 0;
  if (end == fi::kTerminator) {
    m_source.Move(1);
  } else if (end == fi::kDoubleTerminator) {
    m_source.Move(1);
    XmlNodeAccess::CloseElement(m_document);
  } else {
    XmlNodeAccess::Open(m_document, element);
  }
  return true;
}

// An infoset has line feeds as line ends, so that its carriage returns are from references.
void CFastInfosetReader::AppendText(CXmlElement* element, std::string_view text) {
  std::string_view const shown = text.substr(0, text.find('\0'));
  if (!RulesInUse::AreSchema()) return m_document.AppendTextExcludingCR(element, text.data(), text.size());
  m_document.CountContent(shown.size());
  XmlNodeAccess::AppendText(*element, shown);
}

void CFastInfosetReader::ReadCharacterChunk(CXmlElement* element, std::uint32_t octet) {
  if ((octet & fi::kIndexBit3) != 0) {
    AppendText(element, m_chunks.At(m_source.Integer1To2pw20Bit4(octet)).GetView());
    return;
  }
  bool const addToTable = (octet & fi::kAddToTableBit3) != 0;
  EncodedString const source = EncodedCharacterStringBit5(octet);
  std::string_view const utf8(Characters(source.m_octets), source.m_length);
  bool const isPlain = source.IsUtf8() && addToTable && m_toLocal.KeepsAscii() && IsPlain(utf8);
  if (source.IsUtf8() && (!addToTable || isPlain)) {  // for most text: one copy instead of two
    m_document.CountContent(source.m_length);
    AppendConverted(*element, m_toLocal, {utf8.data(), strnlen(utf8.data(), utf8.size())});
    if (isPlain && m_chunks.GetSize() < CFIVocabulary::kMaxEntries) m_chunks.AddBorrowed(utf8, true);
    return;
  }
  std::string text;
  Decode(source, text);
  AppendText(element, text);
  if (addToTable && m_chunks.GetSize() < CFIVocabulary::kMaxEntries) m_chunks.AddOwned(std::move(text));
}

void CFastInfosetReader::NamespaceAttributes() {
  std::uint32_t octet = m_source.Octet();
  for (; (octet & fi::kTopSixBits) == fi::kNamespaceAttribute; octet = m_source.Octet()) NamespaceAttributeBit7(octet);
  if (octet != fi::kTerminator) ThrowInvalidElement();
}

void CFastInfosetReader::NamespaceAttributeBit7(std::uint32_t octet) {
  std::string prefix;
  std::string namespaceUri;
  if ((octet & fi::kHasPrefix) != 0) prefix = m_prefixes.At(IdentifyingStringOrIndex(m_prefixes)).GetView();
  if ((octet & fi::kHasNamespaceName) != 0) {
    namespaceUri = m_namespaces.At(IdentifyingStringOrIndex(m_namespaces)).GetView();
  }
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
  m_document.AddElementAttribute(element, name, NonIdentifyingStringOrIndexBit1(m_attributeValues));
}

CXmlName const* CFastInfosetReader::AttributeNameBit2(std::uint32_t octet) {
  if ((octet & fi::kLiteralAttributeName) == fi::kLiteralAttributeName) return ReadQName(octet, m_attributeNames);
  return NameInTable(m_attributeNames, m_source.Integer1To2pw20Bit2(octet));
}

CXmlName const* CFastInfosetReader::ElementNameBit3(std::uint32_t octet) {
  if ((octet & fi::kLiteralElementName) == fi::kLiteralElementName) return ReadQName(octet, m_elementNames);
  return NameInTable(m_elementNames, m_source.Integer1To2pw20Bit3(octet));
}

CXmlName const* CFastInfosetReader::NameInTable(ReadNames& table, std::uint32_t index) {
  ReadName& name = table.At(index);
  if (!kInfosetNames.IsOn() || !name.isNoted) {
    if (HasPrefixToNote(name, table)) NotePrefix(name);
    if (!kInfosetNames.IsOn() || name.shared == nullptr) name.shared = SharedName(name);
    SetNoted(name, table);
  }
  kInfosetNames.Verify([&] { return name.shared == SharedName(name); });
  return name.shared;
}

CXmlName const* CFastInfosetReader::SharedName(ReadName const& name) {
  std::string_view const uri =
      name.namespaceName != 0 ? m_namespaces.At(name.namespaceName).GetView() : std::string_view();
  return m_document.ShareName(uri, m_localNames.At(name.localName).GetView());
}

/// Return the name, which is added to \p table unless the table is full.
CXmlName const* CFastInfosetReader::ReadQName(std::uint32_t octet, ReadNames& table) {
  bool const hasPrefix = (octet & fi::kHasPrefix) != 0;
  bool const hasNamespace = (octet & fi::kHasNamespaceName) != 0;
  if (hasPrefix && !hasNamespace) ThrowPrefixWithoutNamespace();
  std::uint32_t const prefix = hasPrefix ? IdentifyingStringOrIndex(m_prefixes) : 0;
  std::uint32_t const uri = hasNamespace ? IdentifyingStringOrIndex(m_namespaces) : 0;
  ReadName const parts(prefix, uri, IdentifyingStringOrIndex(m_localNames));
  ReadName last = parts;
  ReadName& name = table.GetSize() < CFIVocabulary::kMaxEntries ? table.Add(parts) : last;
  bool const hasPrefixToNote = HasPrefixToNote(name, table);
  if (hasPrefixToNote) NotePrefix(name);
  name.shared = SharedName(name);
  if (!hasPrefixToNote) SetNoted(name, table);
  return name.shared;
}

void CFastInfosetReader::SetNoted(ReadName& name, ReadNames const& table) {
  name.isNoted = true;
  std::size_t const index = &table == &m_elementNames ? table.IndexOf(name) : m_firstNames.size();
  if (index < m_firstNames.size()) m_firstNames[index] = name.shared;
}

/// Some writers declare a prefix only by the names of elements that have it. That of an attribute may mean another
/// namespace in its value.
bool CFastInfosetReader::HasPrefixToNote(ReadName const& name, ReadNames const& table) const {
  return name.prefix != 0 && name.namespaceName != 0 && &table == &m_elementNames;
}

/// Note the prefix where the entry is spelled out and where it is first referred to.
void CFastInfosetReader::NotePrefix(ReadName const& name) {
  std::string_view const prefix = m_prefixes.At(name.prefix).GetView();
  std::string_view const uri = m_namespaces.At(name.namespaceName).GetView();
  constexpr std::size_t kLongest = 256;  // since a few octets may repeat them
  if (prefix.size() + uri.size() > kLongest) return;
  XmlNodeAccess::NoteNamespace(m_document, prefix, uri, NamespaceDeclarations::Kind::Name);
}

/// Return the index of the string, which is added to \p table if it is spelled out.
std::uint32_t CFastInfosetReader::IdentifyingStringOrIndex(ReadStrings& table) {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) != 0) {
    std::uint32_t const index = m_source.Integer1To2pw20Bit2(octet);
    table.At(index);
    return index;
  }
  std::uint64_t const length = m_source.NonEmptyOctetStringBit2Length(octet);
  std::string_view const utf8(Characters(m_source.Move(length)), length);
  AddToTable(Local(utf8), table);
  return static_cast<std::uint32_t>(table.GetSize());
}

/// Return the text until the next one is read.
std::string_view CFastInfosetReader::NonIdentifyingStringOrIndexBit1(ReadStrings& table) {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) != 0) {
    std::uint32_t const index = m_source.Integer0To2pw20Bit2(octet);
    return index != 0 ? table.At(index).GetView() : std::string_view();
  }
  EncodedString const source = EncodedCharacterStringBit3(octet);
  std::string_view text;
  if (source.IsUtf8()) {
    text = Local({Characters(source.m_octets), source.m_length});
  } else {
    m_text.clear();
    Decode(source, m_text);
    text = m_text;
  }
  bool const isAdded = (octet & fi::kAddToTableBit1) != 0 && table.GetSize() < CFIVocabulary::kMaxEntries;
  return isAdded ? AddToTable(text, table) : text;
}

/// Add a text of the input or m_text, and return where it is from now on.
std::string_view CFastInfosetReader::AddToTable(std::string_view text, ReadStrings& table) {
  if (text.data() == m_text.data()) return table.AddOwned(m_text);
  table.AddBorrowed(text);
  return text;
}

/// Return the converted text until the next call.
std::string_view CFastInfosetReader::Local(std::string_view utf8) {
  if (m_toLocal.IsSameExcludingCR(utf8)) return utf8;
  m_text.clear();
  m_toLocal.Append(m_text, utf8);
  return m_text;
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
  if (source.m_kind == EncodedString::Kind::kEncodingAlgorithm) CheckLeastTextSize(source);
  AppendDecoded(source, m_options.GetVocabulary(), m_document.GetContentLeft() + 1, target);
}

}  // namespace Quillon9
