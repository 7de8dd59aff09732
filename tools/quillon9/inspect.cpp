#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "commands.h"
#include "failure.h"
#include "files.h"
#include "infoset_parser.h"
#include "infoset_strings.h"
#include "utf8.h"

namespace Quillon9Tool {

using Quillon9::CBinaryData;
using Quillon9::FormatString;

namespace {

constexpr std::size_t kOctetsInRow = 8;
constexpr std::size_t kDeepestIndent = 32;
constexpr std::size_t kPreviewCharacters = 40;
/// Enough for that many characters in any encoding, and for whole elements of every algorithm.
constexpr std::size_t kPreviewOctets = 240;

// ---- Words

char const* LabelOf(What what) {
  switch (what) {
    case What::Declaration: return "declaration";
    case What::Header: return "Fast Infoset, version 1";
    case What::Components: return "components of the header";
    case What::ItemCount: return "items";
    case What::AdditionalDataId: return "additional data, of kind";
    case What::AdditionalData: return "additional data";
    case What::VocabularyComponents: return "initial vocabulary";
    case What::ExternalVocabulary: return "external vocabulary";
    case What::VocabularyEntry: return "entry";
    case What::Notation: return "notation";
    case What::UnparsedEntity: return "unparsed entity";
    case What::EncodingScheme: return "character encoding scheme";
    case What::Standalone: return "standalone";
    case What::Version: return "version";
    case What::Element: return "element";
    case What::ElementName: return "element name";
    case What::NamespaceAttribute: return "namespace attribute";
    case What::Attribute: return "attribute";
    case What::Prefix: return "prefix";
    case What::NamespaceName: return "namespace name";
    case What::LocalName: return "local name";
    case What::AttributeValue: return "value";
    case What::Text: return "text";
    case What::Comment: return "comment";
    case What::ProcessingInstruction: return "processing instruction";
    case What::DocumentType: return "document type declaration";
    case What::EntityReference: return "unexpanded entity reference";
    case What::Target: return "target";
    case What::Name: return "name";
    case What::NotationName: return "name of the notation";
    case What::SystemId: return "system identifier";
    case What::PublicId: return "public identifier";
    case What::String: return "string";
    case What::EndOfList: return "end of the list";
    case What::EndOfAttributes: return "end of the attributes";
    case What::EndOfAttributesAndElement: return "end of the attributes and of the element";
    case What::EndOfElement: return "end of the element";
    case What::EndOfTwoElements: return "end of the element and of one in it";
    case What::EndOfElementAndDocument: return "end of the element and of the document";
    case What::EndOfDocument: return "end of the document";
    case What::AfterDocument: break;
  }
  return "after the document, not read";
}

char const* LabelOf(Group group) {
  switch (group) {
    case Group::Header: return "header";
    case Group::Vocabulary: return "initial vocabulary";
    case Group::Marks: return "beginnings and ends of elements and attributes";
    case Group::NamesInFull: return "names in full";
    case Group::NamesByIndex: return "names by index";
    case Group::ValuesInFull: return "attribute values in full";
    case Group::ValuesByIndex: return "attribute values by index";
    case Group::TextInFull: return "text in full";
    case Group::TextByIndex: return "text by index";
    case Group::Other: break;
  }
  return "everything else";
}

/// The words for a table and for an entry of it.
struct TableWords {
  char const* m_many;
  char const* m_one;
};

TableWords WordsFor(Table table) {
  switch (table) {
    case Table::RestrictedAlphabets: return {"restricted alphabets", "alphabet"};
    case Table::EncodingAlgorithms: return {"encoding algorithms", "algorithm"};
    case Table::Prefixes: return {"prefixes", "prefix"};
    case Table::NamespaceNames: return {"namespace names", "namespace"};
    case Table::LocalNames: return {"local names", "local name"};
    case Table::OtherNcNames: return {"other names", "other name"};
    case Table::OtherUris: return {"other URIs", "other URI"};
    case Table::AttributeValues: return {"attribute values", "attribute value"};
    case Table::Texts: return {"texts", "text"};
    case Table::OtherStrings: return {"other strings", "other string"};
    case Table::ElementNames: return {"element names", "element name"};
    case Table::AttributeNames: return {"attribute names", "attribute name"};
    case Table::None: break;
  }
  return {"", ""};
}

/// Return the names of the bits that are set in \p flags: the first name is that of \p bit, each further one that of
/// the next lower bit.
std::string FlagNames(std::uint32_t flags, std::uint32_t bit, std::initializer_list<char const*> names) {
  std::string text;
  for (char const* const name : names) {
    if ((flags & bit) != 0) text += (text.empty() ? ": " : ", ") + std::string(name);
    bit >>= 1;
  }
  return text.empty() ? ": none" : text;
}

// ---- Printing

/// Prints the parts of a document and, at the end, their totals.
class Inspector {
 public:
  Inspector(std::string_view octets, bool full)
      : m_octets(octets), m_full(full), m_parser(octets, [this](Part const& part) { Print(part); }) {}

  /// \throws InfosetError
  void Run() {
    m_console.Write("offset    octets                       construct\n");
    try {
      m_parser.Parse();
    } catch (InfosetError const&) {
      m_console.Finish();
      throw;
    }
    PrintSizes();
    PrintTables();
    PrintSavings();
    m_console.Finish();
  }
  std::size_t GetPosition() const { return m_parser.GetPosition(); }

 private:
  void Print(Part const& part) {
    std::size_t const group = static_cast<std::size_t>(part.group);
    m_sizes[group] += part.size;
    ++m_counts[group];
    if (part.isIndex) {
      ++m_references;
      m_referenceOctets += part.size;
      m_saved += part.saved;
    }
    std::string const indent(2 * std::min(part.level, kDeepestIndent), ' ');
    m_console.Write(Row(part, 0) + indent + Description(part) + Growth(part) + '\n');
    if (!m_full) return;
    for (std::size_t at = kOctetsInRow; at < part.size; at += kOctetsInRow) {
      std::string row = Row(part, at);
      row.erase(row.find_last_not_of(' ') + 1);
      m_console.Write(row + '\n');
    }
  }

  /// Return the offset and octets of \p part from \p at on, padded to the column of the construct.
  std::string Row(Part const& part, std::size_t at) const {
    std::string row = FormatString("%08zX  ", part.offset + at);
    std::size_t const count = std::min(part.size - at, kOctetsInRow);
    for (std::size_t i = 0; i < count; ++i) {
      row += FormatString("%02X ", static_cast<unsigned>(static_cast<unsigned char>(m_octets[part.offset + at + i])));
    }
    row.append(3 * (kOctetsInRow - count), ' ');
    row += part.size > kOctetsInRow && !m_full ? ".. " : "   ";
    return row + "  ";
  }

  std::string Description(Part const& part) const {
    std::string text = LabelOf(part.what);
    if (part.string) return text + StringText(part);
    if (part.isIndex) return text + IndexText(part);
    switch (part.what) {
      case What::Components:
        return text + FlagNames(part.octet, 0x40,
                                {"additional data", "initial vocabulary", "notations", "unparsed entities",
                                 "character encoding scheme", "standalone", "version"});
      case What::ItemCount: return std::string(ItemsOf(part)) + ": " + std::to_string(part.count);
      case What::VocabularyComponents:
        return text + FlagNames(part.octet, 0x1000,
                                {"external vocabulary", "restricted alphabets", "encoding algorithms", "prefixes",
                                 "namespace names", "local names", "other names", "other URIs", "attribute values",
                                 "texts", "other strings", "element names", "attribute names"});
      case What::Standalone: return text + ((part.octet & 0x01) != 0 ? ": yes" : ": no");
      case What::Element: return text + ((part.octet & 0x40) != 0 ? ", attributes follow" : "");
      default: return text;
    }
  }

  static char const* ItemsOf(Part const& part) {
    return part.table == Table::None ? "pieces of additional data" : WordsFor(part.table).m_many;
  }

  std::string StringText(Part const& part) const {
    std::string const encoding = EncodingName(*part.string);
    std::string const before = encoding.empty() ? " " : " (" + encoding + ") ";
    if (m_full) return before + Quoted(Decoded(*part.string, m_parser, std::string::npos));
    return before + Quoted(Decoded(*part.string, m_parser, kPreviewOctets), kPreviewCharacters);
  }

  std::string IndexText(Part const& part) const {
    if (part.table == Table::ElementNames || part.table == Table::AttributeNames) {
      bool const hasAttributes = part.what == What::Element && (part.octet & 0x40) != 0;
      std::string const name = Escaped(NameText(m_parser, part.table, part.index));
      return FormatString(" #%u%s", part.index, name.empty() ? "" : " ") + name +
             (hasAttributes ? ", attributes follow" : "");
    }
    if (part.index == 0) return " #0 \"\"";
    auto const* const entry = m_parser.FindString(part.table, part.index);
    std::string number = FormatString(" #%u", part.index);
    if (entry == nullptr) return number;
    return number + ' ' + Quoted(Decoded(entry->string, m_parser, kPreviewOctets), kPreviewCharacters);
  }

  /// Return what \p part adds to the tables.
  std::string Growth(Part const& part) const {
    std::string text;
    if (part.entry != 0) text = FormatString("  -> %s #%u", WordsFor(part.table).m_one, part.entry);
    if (part.nameEntry == 0) return text;
    text += FormatString("%s%s #%u ", text.empty() ? "  -> " : ", ", WordsFor(part.nameTable).m_one, part.nameEntry);
    return text + Escaped(NameText(m_parser, part.nameTable, part.nameEntry));
  }

  void PrintSizes() {
    m_console.Write(FormatString("\n%-48s%10s%10s%9s\n", "size by kind", "parts", "octets", ""));
    for (std::size_t group = 0; group < kGroups; ++group) {
      if (m_counts[group] != 0) PrintSize(LabelOf(static_cast<Group>(group)), m_counts[group], m_sizes[group]);
    }
    std::size_t parts = 0;
    for (std::size_t const count : m_counts) parts += count;
    PrintSize("all", parts, m_octets.size());
  }

  void PrintSize(char const* label, std::size_t parts, std::size_t octets) {
    double const share = 100.0 * static_cast<double>(octets) / static_cast<double>(m_octets.size());
    m_console.Write(FormatString("  %-46s%10zu%10zu%7.1f %%\n", label, parts, octets, share));
  }

  void PrintTables() {
    m_console.Write("\nentries in the tables at the end\n");
    for (std::size_t i = 0; i < kTables; ++i) {
      auto const table = static_cast<Table>(i);
      bool const isName = table == Table::ElementNames || table == Table::AttributeNames;
      std::size_t const entries = isName ? m_parser.GetNames(table).size() : m_parser.GetStrings(table).size();
      if (entries != 0) m_console.Write(FormatString("  %-46s%10zu\n", WordsFor(table).m_many, entries));
    }
    if (m_parser.GetExternalVocabulary()) m_console.Write("  what the external vocabulary holds is not known\n");
  }

  void PrintSavings() {
    m_console.Write(FormatString("\nreferences by index: %zu, in %zu octets", m_references, m_referenceOctets));
    if (m_parser.GetExternalVocabulary()) return m_console.Write("\n");
    std::ptrdiff_t const inFull = static_cast<std::ptrdiff_t>(m_referenceOctets) + m_saved;
    double const whole = static_cast<double>(m_octets.size()) + static_cast<double>(m_saved);
    m_console.Write(FormatString(" instead of %td; they make the document %.1f %% shorter\n", inFull,
                                 100.0 * static_cast<double>(m_saved) / whole));
  }

  std::string_view m_octets;
  bool m_full;
  InfosetParser m_parser;
  Console m_console;
  std::array<std::size_t, kGroups> m_counts{};
  std::array<std::size_t, kGroups> m_sizes{};
  std::size_t m_references = 0;
  std::size_t m_referenceOctets = 0;
  std::ptrdiff_t m_saved = 0;
};

}  // namespace

void Inspect(InspectOptions const& options) {
  CBinaryData const bytes = ReadInput(options.input);
  Named(InputName(options.input), [&] {
    if (!InfosetParser::Recognises(View(bytes))) throw Quillon9::CQnException("this is no Fast Infoset document");
    Inspector inspector(View(bytes), options.full);
    try {
      inspector.Run();
    } catch (InfosetError const& error) {
      throw Quillon9::CQnException(
          FormatString("at octet %zu (%zX): %s", inspector.GetPosition(), inspector.GetPosition(), error.what()));
    }
  });
}

}  // namespace Quillon9Tool
