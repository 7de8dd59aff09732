#include "quillon9/fastinfoset/writer.h"

#include <iterator>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "base/byte_blocks.h"
#include "base/fast_paths.h"
#include "base/text_arguments.h"
#include "fastinfoset/algorithms.h"
#include "fastinfoset/constants.h"
#include "fastinfoset/octet_sink.h"
#include "fastinfoset/restricted_alphabet_packing.h"
#include "fastinfoset/writer_access.h"
#include "fastinfoset/writer_tables.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/markup.h"
#include "quillon9/xmlio/streams.h"
#include "text/utf8_scan.h"
#include "values/rules_in_use.h"
#include "xmlio/child_prefix.h"
#include "xmlio/namespace_scope.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

namespace {

constexpr std::string_view kXmlNamespace = CXmlWriter::XML_NAMESPACE;
constexpr unsigned char kUtf16 = 1;
constexpr unsigned long kAlphabets = 2;
constexpr unsigned long kAlgorithms = 10;

enum Kind : unsigned long { kDefaultEncoding = 0, kRestrictedAlphabet = 1, kEncodingAlgorithm = 2 };

std::string const& NoPrefix() {
  static auto const& none = *new std::string;
  return none;
}

using Encoding = CFastInfosetContext::EncodedCharacterString;

void AppendOctets(CFastInfosetContext const& options, Encoding encoding, std::string_view value, std::string& target) {
  if (encoding.m_kind == kEncodingAlgorithm) return AppendEncoded(encoding.m_index, value.data(), target);
  std::vector<std::string> const& alphabets = options.GetVocabulary().GetRestrictedAlphabets();
  AppendRestrictedAlphabetString(target, value, alphabets[encoding.m_index - 1]);
}

/// Whether a reader gets \p value as it is. An algorithm keeps the number of `007`, but not the text, which a facet of
/// XML Schema may demand.
bool ComesBack(CFastInfosetContext const& options, Encoding encoding, std::string_view value) {
  try {
    std::string octets;
    AppendOctets(options, encoding, value, octets);
    if (encoding.m_kind != kEncodingAlgorithm) return true;
    return DecodedText(encoding.m_index, reinterpret_cast<unsigned char const*>(octets.data()), octets.size()) == value;
  } catch (CQnException const&) {
    return false;
  }
}

// Return false for UTF-8 and true for another encoding; throw for an encoding that cannot be written. Under the rules
// of XML Schema, a value is written in UTF-8 if it would not come back from the other encoding.
bool IsEncoded(CFastInfosetContext const& options, Encoding encoding, std::string_view value, char const* unknownKind) {
  auto const invalid = [&](char const* what) {
    ThrowFastInfosetWriteFailure(FormatString("Invalid %s value [%d]", what, static_cast<int>(encoding.m_index)));
  };
  bool const isZero = encoding.m_index == 0;
  switch (encoding.m_kind) {
    case kDefaultEncoding:
      if (options.GetDefaultStringEncoding() != kUtf16) return false;
      ThrowFastInfosetWriteFailure("Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
    case kRestrictedAlphabet:
      if (isZero || encoding.m_index > kAlphabets) invalid("Restricted Alphabet");
      break;
    case kEncodingAlgorithm:
      if (isZero || encoding.m_index > kAlgorithms) invalid("Encoding Algorithm");
      break;
    default: ThrowFastInfosetWriteFailure(FormatString("Unknown encoding in %s.", unknownKind));
  }
  return !RulesInUse::AreSchema() || ComesBack(options, encoding, value);
}

// The slow answer of both memories of names: the index of the name in the scope of `context`, 0 if it has none.
unsigned long IndexOf(CFIIndexMap const& names, CXmlWriter::CXmlWriterContext const& context, std::string const& uri,
                      std::string const& localName) {
  bool const hasPrefix = !uri.empty() && uri != context.GetDefaultNamespace();
  std::string const* const prefix = hasPrefix ? context.FindPrefix(uri) : &NoPrefix();
  if (prefix == nullptr) return 0;
  std::string key;
  CFIIndexMap::MakeQNameKey(*prefix, uri, localName, key);
  return names.Find(key);
}

}  // namespace

CFastInfosetWriter::CFastInfosetWriter(CFastInfosetContext const& options, CBinaryStream& stream)
    : CXmlWriter("CFastInfosetWriter"),
      m_output(std::make_unique<COctetSink>(stream)),
      m_options(&options),
      m_tables(WriterTables::Take(options.GetUseGeneratedVocabulary() ? &options.GetVocabulary() : nullptr)),
      m_isAsciiUtf8(CEncoder::IsUtf8SameInLocalCodePage("a", 1)) {}

CFastInfosetWriter::~CFastInfosetWriter() {
  try {
    m_output->Flush();
  } catch (...) {  // out of memory: the document is incomplete in any case
  }
  WriterTables::Give(std::move(m_tables));
  if (m_pendingElement == nullptr) return;
  m_pendingElement->m_parent = nullptr;
  delete m_pendingElement;
}

void CFastInfosetWriter::Close() {
  if (m_pendingElement != nullptr) throw CQnException("An Element has not been closed.");
  CXmlWriter::Close();
  m_output->Flush();
}

void CFastInfosetWriter::WriteComment(std::string const&) {}

void CFastInfosetWriter::WritePI(std::string const&) {
  WriteElement(false);
  m_output->FlushIfFull();
}

void CFastInfosetWriter::WriteInlineSchema(std::string const&) {}

// ---- Records

void InfosetWriterAccess::HoldOctets(CFastInfosetWriter& writer) { writer.m_output->Hold(); }

std::string_view InfosetWriterAccess::HeldOctets(CFastInfosetWriter const& writer) { return writer.m_output->Held(); }

void InfosetWriterAccess::DropOctets(CFastInfosetWriter& writer) { writer.m_output->Drop(); }

void InfosetWriterAccess::LimitValues(CFastInfosetWriter& writer, WriterTables::ValueLimits const& limits) {
  writer.m_tables->limits = limits;
}

InfosetWriterAccess::Mark InfosetWriterAccess::GetMark(CFastInfosetWriter& writer) {
  writer.WriteElement(false);
  return {XmlWriterAccess::GetMark(writer), writer.m_tables->GetMark(), writer.m_mixed, writer.m_terminatorPending};
}

void InfosetWriterAccess::ReturnTo(CFastInfosetWriter& writer, Mark const& mark) {
  if (writer.m_pendingElement != nullptr) {
    writer.m_pendingElement->m_parent = nullptr;
    delete std::exchange(writer.m_pendingElement, nullptr);
  }
  writer.m_declared.clear();
  writer.m_mixed = mark.mixed;
  writer.m_terminatorPending = mark.terminatorPending;
  XmlWriterAccess::ReturnTo(writer, mark.elements);
  writer.m_tables->ReturnTo(mark.tables);
}

// ---- Document

void CFastInfosetWriter::WriteStartDocument(FInfoDecl decl) {
  auto const number = static_cast<unsigned>(decl);
  if (number > std::size(FI_DECLARATION_LIST)) {
    ThrowFastInfosetWriteFailure(FormatString("Invalid declaration value [%d]", static_cast<int>(decl)));
  }
  if (decl != FInfoDecl_None) m_output->Octets(FI_DECLARATION_LIST[number - 1]);
  for (unsigned const octet : fi::kHeader) m_output->Octet(octet);
  if (m_options->GetUseGeneratedVocabulary()) {
    m_output->Octet(fi::kInitialVocabulary);
    m_output->Octet(fi::kExternalVocabulary);
    m_output->Octet(0);
    std::string const& uri = m_options->GetExternalVocabularyURI();
    NonEmptyOctetUTF8StringBit2(0, uri.empty() ? QUILLON_URI : uri);
  } else {
    m_output->Octet(0);
  }
  m_output->Flush();
}

void CFastInfosetWriter::WriteEndDocument() {
  m_output->Octet(std::exchange(m_terminatorPending, false) ? fi::kDoubleTerminator : fi::kTerminator);
  m_output->Flush();
}

// ---- Elements

// Ends the list of attributes, if it is still open and there is one.
inline void CFastInfosetWriter::CloseTag() {
  if (!std::exchange(m_context->m_tagOpen, false)) return;
  if (m_context->m_attributesWritten) m_output->Octet(fi::kTerminator);
}

inline void CFastInfosetWriter::EndChild() {
  if (std::exchange(m_terminatorPending, false)) m_output->Octet(fi::kTerminator);
}

inline void CFastInfosetWriter::BeginChild() {
  if (m_context != nullptr && XmlWriterAccess::IsMixed(*m_context)) WriteTextBeforeChild();
  EndChild();
}

void CFastInfosetWriter::WriteStartElement(std::string const& localName, std::string const& namespaceUri) {
  WriteElement(false);
  BeginChild();
  if (m_context != nullptr) {
    ++m_context->m_childCount;
    CloseTag();
  }
  m_pendingElement = NewContext(localName, namespaceUri);
  m_output->FlushIfFull();
}

void CFastInfosetWriter::WritePendingElement(bool hasAttributes) {
  std::uint32_t leading = 0;
  if (hasAttributes) {
    m_pendingElement->m_attributesWritten = true;
    leading = fi::kHasAttributes;
  }
  bool const isRoot = m_context == nullptr;
  if (!m_declared.empty() || (isRoot && (!m_defaultNamespace.empty() || !m_namespaceMap.empty()))) {
    m_output->Octet(leading | fi::kHasNamespaceAttributes);
    WriteNamespaceAttributes(isRoot);
    leading = 0;
  }
  NameOfPending(leading);
  m_context = std::exchange(m_pendingElement, nullptr);
}

// An element with the name of its last neighbour at this depth has the same number, which saves a lookup.
void CFastInfosetWriter::NameOfPending(std::uint32_t leading) {
  CXmlWriterContext& pending = *m_pendingElement;
  unsigned long const number = kRememberedNumber.IsOn() ? XmlWriterAccess::NameNumber(pending) : 0;
  if (number != 0) {
    kRememberedNumber.Verify(
        [&] { return number == IndexOf(m_tables->elementNames, pending, pending.m_namespace, pending.m_elementName); });
    return m_output->Integer1To2pw20Bit3(leading, number);
  }
  std::string const& uri = pending.m_namespace;
  std::string const& prefix = pending.NeedsNoPrefix() ? NoPrefix() : PrefixOf(pending, uri);
  unsigned long const index = m_tables->elementNames.FindName(prefix, uri, pending.m_elementName);
  ElementName(leading, index, &prefix, uri, pending.m_elementName);
  XmlWriterAccess::SetNameNumber(pending, index);
}

void CFastInfosetWriter::WriteNamespaceAttributes(bool isRoot) {
  auto const declare = [this](std::string const& prefix, std::string const& uri) {
    m_output->Octet(fi::kNamespaceAttribute | fi::kHasPrefix | fi::kHasNamespaceName);
    IdentifyingString(prefix, m_tables->prefixes);
    IdentifyingString(uri, m_tables->namespaces);
  };
  if (isRoot && !m_defaultNamespace.empty()) {
    m_output->Octet(fi::kNamespaceAttribute | fi::kHasNamespaceName);
    IdentifyingString(m_defaultNamespace, m_tables->namespaces);
  }
  if (isRoot) {
    for (auto const& binding : m_namespaceMap) {
      if (!StartsWith(binding.first, kXmlNamespace)) declare(binding.second, binding.first);
    }
  }
  for (auto const& declaration : m_declared) declare(declaration.first, declaration.second);
  m_declared.clear();
  m_output->Octet(fi::kTerminator);
}

CXmlWriter::CXmlWriterContext* CFastInfosetWriter::StartedElement() const {
  return m_pendingElement != nullptr ? m_pendingElement : m_context;
}

bool CFastInfosetWriter::DeclarePrefix(std::string const& prefix, std::string const& uri) {
  if (m_pendingElement == nullptr) {  // its declarations are written
    RequireOpenTag();
    std::string const* const known = m_context->FindPrefix(uri);
    return known != nullptr && *known == prefix;
  }
  bool isNew = false;
  bool const isBound = BindPrefix(*m_pendingElement, prefix, uri, isNew);
  if (isBound && !isNew && !XmlWriterAccess::IsDeclared(*m_pendingElement, prefix)) {  // known by names only
    XmlWriterAccess::ScopeToChange(*m_pendingElement).AddAlias(prefix, uri);
    isNew = true;
  }
  if (isNew) m_declared.emplace_back(prefix, uri);
  return isBound;
}

void CFastInfosetWriter::PreserveSpace() {
  if (m_mixed == nullptr) m_mixed = StartedElement();
}

void CFastInfosetWriter::WriteMarkup(CMarkup const& markup) {
  WriteElement(false);
  EndChild();
  if (m_context != nullptr) CloseTag();
  m_output->Octet(markup.IsComment() ? fi::kComment : fi::kProcessingInstruction);
  if (!markup.IsComment()) NonEmptyOctetUTF8StringBit2(0, markup.target);
  std::string const text = markup.text.c_str();
  if (text.empty()) {
    m_output->Integer0To2pw20Bit2(fi::kIndexBit1, 0);
  } else {
    m_output->NonEmptyOctetStringBit5(0, Utf8(text));
  }
  m_output->FlushIfFull();
}

std::string const& CFastInfosetWriter::PrefixOf(CXmlWriterContext& context, std::string const& uri) {
  bool isNew = false;
  return FindOrBindPrefix(context, uri, isNew);
}

void CFastInfosetWriter::WriteString(std::string const& value, ItemType type) {
  std::string_view const text = value.c_str();
  WriteElement(false);
  if (m_context != nullptr) {
    CloseTag();
    if (m_mixed != nullptr && !text.empty()) EndChild();
  } else if (!text.empty()) {
    ThrowFastInfosetWriteFailure("There is no open element for the text.");
  }
  WriteText(text, type);
  m_output->FlushIfFull();
}

void CFastInfosetWriter::WriteEndElement() {
  WriteElement(false);
  RequireOpenElement();
  CloseTag();
  if (m_terminatorPending) m_output->Octet(fi::kDoubleTerminator);
  m_terminatorPending = !m_terminatorPending;
  if (m_context == m_mixed) m_mixed = nullptr;
  PopContext();
  m_output->FlushIfFull();
}

// An element that gets neither attributes nor children needs a context only if it fails and has to stay open.
void CFastInfosetWriter::WriteTextElement(std::string const& localName, std::string const& namespaceUri,
                                          std::string_view value, ItemType type, std::uint64_t member) {
  auto const inSteps = [&] { CXmlWriter::WriteTextElement(localName, namespaceUri, value, type, member); };
  bool const isPlain = &typeid(*this) == &typeid(CFastInfosetWriter);  // overrides none of the steps
  if (!kElementAtOnce.IsOn() || !isPlain) return inSteps();
  WriteElement(false);
  if (m_context == nullptr) return inSteps();
  std::string const* prefix = nullptr;
  unsigned long index = member != 0 ? m_tables->knownNames.Find(member, XmlWriterAccess::ScopeState(*m_context)) : 0;
  if (index == 0 && !FindPrefixOfChild(*m_context, namespaceUri, prefix)) return inSteps();
  if (index != 0) {
    kKnownNames.Verify([&] { return index == IndexOf(m_tables->elementNames, *m_context, namespaceUri, localName); });
  }
  BeginChild();
  ++m_context->m_childCount;
  CloseTag();
  XmlWriterAccess::RequireRoomForChild(*m_context);
  bool hasName = false;
  try {
    if (index == 0) index = FindNameOfChild(prefix, localName, namespaceUri, member);
    ElementName(0, index, prefix, namespaceUri, localName);
    hasName = true;
    WriteText(value, type);
  } catch (...) {
    LeaveOpen(localName, namespaceUri, hasName);
    throw;
  }
  m_terminatorPending = true;
  m_output->FlushIfFull();
}

// Write the value up to a zero byte. Most text is plain and enters no table, and is checked while it is written.
void CFastInfosetWriter::WriteText(std::string_view value, ItemType type) {
  if (value.empty() || value[0] == '\0') return;
  bool const isLong = value.size() >= m_options->GetElementMaxAddLength();
  if (isLong && IsPlain(type) && m_output->AsciiStringBit7(fi::kCharacterChunk, value)) return;
  auto const findZero = [](std::uint64_t block) { return ByteBlocks::Equal(block, 0); };
  if (ByteBlocks::Any(value, ' ', findZero)) value = value.data();
  NonIdentifyingStringOrIndexBit3(fi::kCharacterChunk, value, type);
}

// Return whether ASCII text of this type is written unchanged.
bool CFastInfosetWriter::IsPlain(ItemType type) const {
  return m_isAsciiUtf8 && m_options->GetEncoding(static_cast<unsigned long>(type)).m_kind == kDefaultEncoding &&
         m_options->GetDefaultStringEncoding() != kUtf16;
}

void CFastInfosetWriter::LeaveOpen(std::string const& localName, std::string const& namespaceUri, bool hasName) {
  CXmlWriterContext* const context = NewContext(localName, namespaceUri);
  context->m_tagOpen = !hasName;
  (hasName ? m_context : m_pendingElement) = context;
}

// Return the index of a child of the open element; 0 if its name is to be written in full.
unsigned long CFastInfosetWriter::FindNameOfChild(std::string const* prefix, std::string const& localName,
                                                  std::string const& namespaceUri, std::uint64_t member) {
  CFIIndexMap& map = m_tables->elementNames;
  unsigned long const index = map.FindName(prefix != nullptr ? *prefix : NoPrefix(), namespaceUri, localName);
  if (index != 0 && member != 0) m_tables->knownNames.Add(member, XmlWriterAccess::ScopeState(*m_context), index);
  return index;
}

// ---- Attributes

// An element that was written without attributes, before a processing instruction, can no longer get any.
void CFastInfosetWriter::OpenAttribute() {
  WriteElement(true);
  RequireOpenTag();
  if (!m_context->m_attributesWritten) throw CQnException("Attributes must be added before elements");
}

void CFastInfosetWriter::WriteAttributeString(std::string const& localName, std::string const& namespaceUri,
                                              std::string const& value, ItemType type) {
  OpenAttribute();
  std::string const& prefix = namespaceUri.empty() ? NoPrefix() : PrefixOf(*m_context, namespaceUri);
  QualifiedNameOrIndexBit2(prefix, namespaceUri, localName);
  NonIdentifyingStringOrIndexBit1(value.c_str(), type);
  m_output->FlushIfFull();
}

void CFastInfosetWriter::WriteAttributeNil() {
  OpenAttribute();
  WriteAttributeString("nil", SchemaInstanceNamespace(), "true", ItemType_boolean);
}

void CFastInfosetWriter::WriteAttributeType(std::string const& namespaceUri, std::string const& typeName,
                                            ItemType type) {
  OpenAttribute();
  if (namespaceUri.empty() || namespaceUri == m_context->GetDefaultNamespace()) {
    WriteAttributeString("type", SchemaInstanceNamespace(), typeName, type);
    return;
  }
  bool isNew = false;
  std::string const& prefix = FindOrBindPrefix(*m_context, namespaceUri, isNew);
  if (isNew) {
    QualifiedNameOrIndexBit2(prefix, namespaceUri, typeName);
  } else {
    // The prefix is that of the type, which is harmless: readers go by namespace and local name.
    QualifiedNameOrIndexBit2(prefix, SchemaInstanceNamespace(), "type");
  }
  NonIdentifyingStringOrIndexBit1((prefix + ":" + typeName).c_str(), type);
  m_output->FlushIfFull();
}

// ---- Names

void CFastInfosetWriter::QualifiedNameOrIndexBit2(std::string const& prefix, std::string const& uri,
                                                  std::string const& localName) {
  CFIIndexMap& map = m_tables->attributeNames;
  unsigned long const index = map.FindName(prefix, uri, localName);
  if (index != 0) {
    m_output->Integer1To2pw20Bit2(0, index);
  } else {
    LiteralName(fi::kLiteralAttributeName, prefix, uri, localName, map);
  }
}

// `index` is that of the name, 0 for none; `prefix` is null for a name without prefix.
void CFastInfosetWriter::ElementName(std::uint32_t leading, unsigned long index, std::string const* prefix,
                                     std::string const& uri, std::string const& localName) {
  if (index != 0) {
    m_output->Integer1To2pw20Bit3(leading, index);
  } else {
    LiteralName(leading | fi::kLiteralElementName, prefix != nullptr ? *prefix : NoPrefix(), uri, localName,
                m_tables->elementNames);
  }
}

void CFastInfosetWriter::LiteralName(std::uint32_t leading, std::string const& prefix, std::string const& uri,
                                     std::string const& localName, CFIIndexMap& map) {
  if (!prefix.empty()) leading |= fi::kHasPrefix;
  if (!prefix.empty() || !uri.empty()) leading |= fi::kHasNamespaceName;
  m_output->Octet(leading);
  if (!prefix.empty()) IdentifyingString(prefix, m_tables->prefixes);
  if (!uri.empty()) IdentifyingString(uri, m_tables->namespaces);
  IdentifyingString(localName, m_tables->localNames);
  CFIIndexMap::MakeQNameKey(prefix, uri, localName, m_scratch);
  AddToIndex(map, m_scratch);
}

void CFastInfosetWriter::IdentifyingString(std::string const& text, CFIIndexMap& map) {
  if (unsigned long const index = map.Find(text)) return m_output->Integer1To2pw20Bit2(fi::kIndexBit1, index);
  NonEmptyOctetUTF8StringBit2(0, text);
  AddToIndex(map, text);
}

// ---- Strings

// The result lives until the next string. Text that is already UTF-8 is not copied.
std::string_view CFastInfosetWriter::Utf8(std::string_view text) {
  if (m_isAsciiUtf8 && AsciiLength(reinterpret_cast<std::uint8_t const*>(text.data()), text.size()) == text.size()) {
    return text;
  }
  if (CEncoder::IsUtf8SameInLocalCodePage(text.data(), text.size())) return text;
  m_scratch.clear();
  AppendEncoded(fi::kCdata, text.data(), m_scratch);
  return m_scratch;
}

void CFastInfosetWriter::NonEmptyOctetUTF8StringBit2(std::uint32_t leading, std::string const& text) {
  m_output->NonEmptyOctetStringBit2(leading, Utf8(text.c_str()));
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit1(std::string_view value, ItemType type) {
  CFIIndexMap& map = m_tables->attributeValues;
  if (value.empty()) {
    m_output->Integer0To2pw20Bit2(fi::kIndexBit1, 0);
  } else if (value.size() >= m_options->GetAttributeMaxAddLength()) {
    EncodedCharacterStringBit3(0, value, type);
  } else if (unsigned long const index = map.Find(value); index != 0) {
    m_output->Integer1To2pw20Bit2(fi::kIndexBit1, index);
  } else {
    bool const isAdded = m_tables->Takes(map, value);
    EncodedCharacterStringBit3(isAdded ? fi::kAddToTableBit1 : 0, value, type);
    if (isAdded) m_tables->AddValue(map, value);
  }
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit3(std::uint32_t leading, std::string_view value, ItemType type) {
  CFIIndexMap& map = m_tables->chunks;
  bool isAdded = value.size() < m_options->GetElementMaxAddLength();
  if (isAdded) {
    if (unsigned long const index = map.Find(value)) {
      return m_output->Integer1To2pw20Bit4(leading | fi::kIndexBit3, index);
    }
    isAdded = m_tables->Takes(map, value);
  }
  if (isAdded) leading |= fi::kAddToTableBit3;
  EncodedCharacterStringBit5(leading, value, type);
  if (isAdded) m_tables->AddValue(map, value);
}

// Return the octets of a value under an alphabet or algorithm, which live until the next string.
std::string_view CFastInfosetWriter::Encoded(unsigned long kind, unsigned long index, std::string_view value) {
  m_scratch.clear();
  AppendOctets(*m_options, {kind, index}, value, m_scratch);
  return m_scratch;
}

void CFastInfosetWriter::EncodedCharacterStringBit3(std::uint32_t leading, std::string_view value, ItemType type) {
  auto const encoding = m_options->GetEncoding(static_cast<unsigned long>(type));
  if (!IsEncoded(*m_options, encoding, value, "EncodedCharacterStringBit5")) {
    m_output->NonEmptyOctetStringBit5(leading, Utf8(value));
    return;
  }
  bool const isAlphabet = encoding.m_kind == kRestrictedAlphabet;
  auto const stored = static_cast<std::uint32_t>(encoding.m_index - 1);
  m_output->Octet(leading | (isAlphabet ? fi::kRestrictedAlphabetBit3 : fi::kEncodingAlgorithmBit3) | stored >> 4);
  m_output->NonEmptyOctetStringBit5(stored << 4, Encoded(encoding.m_kind, encoding.m_index, value));
}

void CFastInfosetWriter::EncodedCharacterStringBit5(std::uint32_t leading, std::string_view value, ItemType type) {
  auto const encoding = m_options->GetEncoding(static_cast<unsigned long>(type));
  if (!IsEncoded(*m_options, encoding, value, "EncodedCharacterStringBit7")) {
    if (m_isAsciiUtf8 && m_output->AsciiStringBit7(leading, value)) return;
    m_output->NonEmptyOctetStringBit7(leading, Utf8(value));
    return;
  }
  bool const isAlphabet = encoding.m_kind == kRestrictedAlphabet;
  auto const stored = static_cast<std::uint32_t>(encoding.m_index - 1);
  m_output->Octet(leading | (isAlphabet ? fi::kRestrictedAlphabetBit5 : fi::kEncodingAlgorithmBit5) | stored >> 6);
  m_output->NonEmptyOctetStringBit7(stored << 2, Encoded(encoding.m_kind, encoding.m_index, value));
}

}  // namespace Quillon9
