#include "losses.h"

#include <algorithm>
#include <climits>
#include <vector>

#include "base/text_arguments.h"
#include "infoset_parser.h"
#include "infoset_strings.h"

namespace Quillon9Tool {

using Quillon9::CEncoder;
using Quillon9::CFIVocabulary;
using Quillon9::StartsWith;

namespace {

/// Return XML text in UTF-16 as one byte for each unit, "?" for units above 0xFF, none of which is a markup delimiter.
/// Return other text unchanged.
std::string_view OneBytePerUnit(std::string_view xml, std::string& buffer) {
  if (xml.size() < 2) return xml;
  auto const byteAt = [xml](std::size_t at) { return static_cast<unsigned char>(xml[at]); };
  bool const isBig = (byteAt(0) == 0xFE && byteAt(1) == 0xFF) || (byteAt(0) == 0 && byteAt(1) == '<');
  bool const isLittle = (byteAt(0) == 0xFF && byteAt(1) == 0xFE) || (byteAt(0) == '<' && byteAt(1) == 0);
  if (!isBig && !isLittle) return xml;
  buffer.reserve(xml.size() / 2);
  for (std::size_t at = 0; at + 1 < xml.size(); at += 2) {
    unsigned char const high = byteAt(at + (isBig ? 0 : 1));
    buffer += high == 0 ? xml[at + (isBig ? 1 : 0)] : '?';
  }
  return buffer;
}

/// Return the rest of \p text after the first \p end.
std::string_view After(std::string_view text, std::string_view end) {
  std::size_t const found = text.find(end);
  return found == std::string_view::npos ? std::string_view() : text.substr(found + end.size());
}

/// Return the strings into which the library reads a document's \p table.
std::vector<std::string>* StringsOf(CFIVocabulary& vocabulary, Table table) {
  switch (table) {
    case Table::Prefixes: return &vocabulary.GetPrefixNamesTable().GetVector();
    case Table::NamespaceNames: return &vocabulary.GetNamespaceNamesTable().GetVector();
    case Table::LocalNames: return &vocabulary.GetLocalNamesTable().GetVector();
    case Table::AttributeValues: return &vocabulary.GetAttributeValuesTable().GetVector();
    case Table::Texts: return &vocabulary.GetCharacterChunksTable().GetVector();
    case Table::RestrictedAlphabets:
    case Table::EncodingAlgorithms:
    case Table::OtherNcNames:
    case Table::OtherUris:
    case Table::OtherStrings:
    case Table::ElementNames:
    case Table::AttributeNames:
    case Table::None: break;
  }
  return nullptr;
}

void AddToVocabulary(Part const& part, InfosetParser const& parser, CFIVocabulary& vocabulary) {
  if (auto const* const name = parser.FindName(part.nameTable, part.nameEntry)) {
    auto& table =
        part.nameTable == Table::ElementNames ? vocabulary.GetElementNamesTable() : vocabulary.GetAttributeNamesTable();
    table.GetVector().push_back({name->prefix, name->namespaceName, name->localName});
  } else if (std::vector<std::string>* const strings = StringsOf(vocabulary, part.table); strings && part.string) {
    std::string const text = Decoded(*part.string, parser, std::string::npos);
    auto const length = static_cast<int>(std::min<std::size_t>(text.size(), INT_MAX));
    strings->push_back(CEncoder::Utf8ToLocalCodePage(reinterpret_cast<unsigned char const*>(text.data()), length));
  }
}

void AddPrefix(Part const& part, InfosetParser const& parser, std::map<std::string, std::string>& prefixes) {
  auto const* const name = parser.FindName(part.nameTable, part.nameEntry);
  if (name == nullptr) return;
  auto const* const prefix = parser.FindString(Table::Prefixes, name->prefix);
  auto const* const uri = parser.FindString(Table::NamespaceNames, name->namespaceName);
  if (prefix != nullptr && uri != nullptr) prefixes.emplace(prefix->string.octets, uri->string.octets);
}

bool IsFloat(Part const& part) {
  bool const isValue = part.what == What::AttributeValue || part.what == What::Text;
  return isValue && part.string && part.string->encoding == Encoding::Algorithm &&
         part.string->number == kFloatAlgorithm;
}

void Count(Part const& part, Losses& losses) {
  if (part.what == What::Comment) ++losses.comments;
  if (part.what == What::ProcessingInstruction) ++losses.processingInstructions;
  if (part.what == What::DocumentType) ++losses.documentTypes;
  if (part.what == What::EntityReference) ++losses.entityReferences;
  if (part.what == What::AdditionalData || part.what == What::Notation || part.what == What::UnparsedEntity) {
    ++losses.declarations;
  }
  if (IsFloat(part)) ++losses.floats;
}

}  // namespace

Losses FindLosses(std::string_view xml) {
  Losses losses;
  std::string buffer;
  std::string_view rest = OneBytePerUnit(xml, buffer);
  bool isFirst = true;
  while (!rest.empty()) {
    std::size_t const mark = rest.find('<');
    if (mark == std::string_view::npos) break;
    rest.remove_prefix(mark);
    if (StartsWith(rest, "<!--")) {
      ++losses.comments;
      rest = After(rest.substr(4), "-->");
    } else if (StartsWith(rest, "<?")) {
      bool const isDeclaration = isFirst && StartsWith(rest, "<?xml") && rest.find_first_of(" \t\r\n") == 5;
      if (!isDeclaration) ++losses.processingInstructions;
      rest = After(rest, "?>");
    } else if (StartsWith(rest, "<![CDATA[")) {
      rest = After(rest, "]]>");
    } else {
      if (StartsWith(rest, "<!DOCTYPE")) ++losses.documentTypes;
      rest.remove_prefix(1);
    }
    isFirst = false;
  }
  return losses;
}

InfosetFindings FindInInfoset(std::string_view octets) {
  InfosetFindings findings;
  InfosetParser parser(octets, [&](Part const& part) {
    Count(part, findings.losses);
    AddPrefix(part, parser, findings.prefixes);
    if (part.what == What::VocabularyComponents) findings.vocabulary.emplace();
    if (part.what == What::VocabularyEntry) AddToVocabulary(part, parser, *findings.vocabulary);
  });
  try {
    parser.Parse();
  } catch (InfosetError const&) {  // the library will report what is wrong
  }
  if (auto const uri = parser.GetExternalVocabulary()) findings.externalVocabulary = *uri;
  return findings;
}

}  // namespace Quillon9Tool
