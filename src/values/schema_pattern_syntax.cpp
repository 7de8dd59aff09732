#include "values/schema_pattern_syntax.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

#include "base/stack_left.h"
#include "text/utf8_scan.h"
#include "values/number_text.h"
#include "values/pattern_engine.h"
#include "values/schema_pattern_text.h"
#include "values/unicode_blocks.h"

namespace Quillon9 {

namespace {

using Kind = PatternNode::Kind;
using Part = CharacterSet::Part;

constexpr int kMostLevels = 100;
constexpr int kShallow = 8;  // levels for which any stack is enough

CharacterRanges const& Blanks() {
  static auto const& ranges = *new CharacterRanges{{'\t', '\n'}, {'\r', '\r'}, {' ', ' '}};
  return ranges;
}

bool IsLetterOrDigit(char32_t c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsHexDigit(char32_t c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); }

bool IsCategory(std::string_view name) {
  static constexpr std::string_view kCategories[] = {
      "L",  "Lu", "Ll", "Lt", "Lm", "Lo", "M",  "Mn", "Mc", "Me", "N",  "Nd", "Nl", "No", "P",  "Pc", "Pd", "Ps",
      "Pe", "Pi", "Pf", "Po", "Z",  "Zs", "Zl", "Zp", "S",  "Sm", "Sc", "Sk", "So", "C",  "Cc", "Cf", "Co", "Cn"};
  return std::find(std::begin(kCategories), std::end(kCategories), name) != std::end(kCategories);
}

/// One character, or the parts of a set.
struct Item {
  explicit Item(char32_t c) : character(c) {}
  explicit Item(CharacterRanges ranges) { parts.push_back({std::move(ranges), "", false}); }
  Item(std::initializer_list<char const*> categories, bool isComplement) {
    for (char const* category : categories) parts.push_back({{}, category, isComplement});
  }

  char32_t character = 0;
  std::vector<Part> parts;
};

bool MatchesNothing(PatternNode const& node) {
  switch (node.kind) {
    case Kind::Sequence: return std::all_of(node.children.begin(), node.children.end(), MatchesNothing);
    case Kind::Choice: return std::any_of(node.children.begin(), node.children.end(), MatchesNothing);
    case Kind::Repeat: return node.least == 0 || node.isForNothing;
    default: return false;
  }
}

void Append(std::vector<Part>& parts, std::vector<Part> added) {
  std::move(added.begin(), added.end(), std::back_inserter(parts));
}

class PatternParser {
 public:
  PatternParser(std::string_view text, PatternSyntax syntax, CSchemaPattern::Faults& faults)
      : m_text(text), m_rest(text), m_isTranslated(syntax == PatternSyntax::Translated), m_faults(faults) {}

  PatternNode Parse() {
    std::size_t const legal = LegalUtf8Length(reinterpret_cast<std::uint8_t const*>(m_text.data()), m_text.size());
    if (legal < m_text.size()) FailAt(legal, "it is not UTF-8");
    SkipTranslated(kForEveryLength);
    PatternNode root = TakeChoice();
    if (!m_rest.empty()) Fail("a \")\" without \"(\"");
    return root;
  }

 private:
  bool IsNext(std::string_view start) const { return m_rest.substr(0, start.size()) == start; }
  bool IsNextOneOf(std::string_view characters) const {
    return !m_rest.empty() && characters.find(m_rest.front()) != std::string_view::npos;
  }
  bool Skip(std::string_view start) {
    if (!IsNext(start)) return false;
    m_rest.remove_prefix(start.size());
    return true;
  }
  void Expect(std::string_view mark) {
    if (!Skip(mark)) Fail("\"" + std::string(mark) + "\" is missing");
  }
  bool SkipTranslated(std::string_view start) { return m_isTranslated && Skip(start); }

  [[noreturn]] void Fail(std::string reason) { FailAt(m_text.size() - m_rest.size(), std::move(reason)); }
  [[noreturn]] void FailAt(std::size_t offset, std::string reason) {
    m_faults.error = std::move(reason);
    m_faults.offset = static_cast<int>(std::min<std::size_t>(offset, INT_MAX));
    ThrowInvalidPattern(std::string(m_text), m_faults.error.c_str(), m_faults.offset);
  }
  void Warn(std::string text) {
    if (m_faults.warning.empty()) m_faults.warning = std::move(text);
  }
  void Descend() {
    if (++m_level > kMostLevels) Fail("it is nested more than " + std::to_string(kMostLevels) + " levels deep");
    if (m_level > kShallow && ThreadNesting::OfThread().stack.IsShort())
      Fail("it is nested too deep for the stack of the thread");
  }

  char32_t TakeCharacter() {
    auto const* const bytes = reinterpret_cast<std::uint8_t const*>(m_rest.data());
    std::size_t const length = SequenceLength(bytes, m_rest.size());
    char32_t const character = DecodeSequence(bytes, length);
    m_rest.remove_prefix(length);
    return character;
  }

  // ---- Sequences and groups

  PatternNode TakeChoice() {
    Descend();
    PatternNode choice(Kind::Choice);
    do choice.children.push_back(TakeBranch());
    while (Skip("|"));
    --m_level;
    return choice;
  }

  PatternNode TakeBranch() {
    PatternNode sequence(Kind::Sequence);
    while (!m_rest.empty() && !IsNextOneOf("|)")) {
      PatternNode atom = TakeAtom();
      sequence.children.push_back(TakeQuantifier(std::move(atom)));
    }
    return sequence;
  }

  PatternNode TakeAtom() {
    if (m_isTranslated && IsNext("(?:(?!")) return SetNode(TakeDifference());
    if (SkipTranslated("(?=")) return TakeCondition();
    if (SkipTranslated("(?:") || Skip("(")) return TakeGroup();
    if (IsNext("[")) return SetNode(TakeClass());
    if (Skip(".")) return PatternNode(Kind::AnyInLine);
    if (SkipTranslated("\\z")) return PatternNode(Kind::End);
    if (Skip("\\")) return TakeEscapedAtom();
    if (IsNextOneOf("?*+{}]")) Fail("unexpected \"" + std::string(1, m_rest.front()) + "\"");
    return CharacterNode(TakeCharacter());
  }

  PatternNode TakeGroup() {
    PatternNode group = TakeChoice();
    Expect(")");
    return group;
  }

  PatternNode TakeCondition() {
    PatternNode condition(Kind::Condition);
    condition.children.push_back(TakeGroup());
    return condition;
  }

  PatternNode TakeEscapedAtom() {
    Item item = TakeEscape();
    if (item.parts.empty()) return CharacterNode(item.character);
    CharacterSet set;
    set.parts = std::move(item.parts);
    return SetNode(std::move(set));
  }

  static PatternNode CharacterNode(char32_t character) {
    PatternNode node(Kind::Character);
    node.character = character;
    return node;
  }

  static PatternNode SetNode(CharacterSet set) {
    PatternNode node(Kind::Set);
    node.set = std::make_unique<CharacterSet>(std::move(set));
    return node;
  }

  // ---- Repetitions

  PatternNode TakeQuantifier(PatternNode atom) {
    if (Skip("?")) return Repeated(std::move(atom), 0, 1);
    if (Skip("*")) return Repeated(std::move(atom), 0, PatternNode::kUnlimited);
    if (Skip("+")) return Repeated(std::move(atom), 1, PatternNode::kUnlimited);
    if (!Skip("{")) return atom;
    std::uint64_t const least = TakeNumber();
    std::uint64_t most = least;
    if (Skip(",")) most = IsNext("}") ? PatternNode::kUnlimited : TakeNumber();
    Expect("}");
    if (most < least) Fail("the counts in \"{}\" are in the wrong order");
    return Repeated(std::move(atom), least, most);
  }

  static PatternNode Repeated(PatternNode atom, std::uint64_t least, std::uint64_t most) {
    if (least == 1 && most == 1) return atom;
    PatternNode repeat(Kind::Repeat);
    repeat.least = least;
    repeat.most = most;
    repeat.isForNothing = MatchesNothing(atom);
    repeat.children.push_back(std::move(atom));
    return repeat;
  }

  // A number beyond the length of every text is as good as any other.
  std::uint64_t TakeNumber() {
    constexpr std::uint64_t kEnough = 1'000'000'000'000;
    if (!IsNextOneOf("0123456789")) Fail("a number is missing in \"{}\"");
    std::uint64_t number = 0;
    for (; IsNextOneOf("0123456789"); m_rest.remove_prefix(1)) {
      number = std::min(number * 10 + static_cast<std::uint64_t>(m_rest.front() - '0'), kEnough);
    }
    return number;
  }

  // ---- Sets of characters

  /// What TextForPcre() writes for a class from which another one is subtracted.
  CharacterSet TakeDifference() {
    if (!Skip("(?:(?!")) return TakeClass();
    Descend();
    auto subtracted = std::make_unique<CharacterSet>(TakeDifference());
    Expect(")");
    CharacterSet set = TakeClass();
    Expect(")");
    set.subtracted = std::move(subtracted);
    --m_level;
    return set;
  }

  CharacterSet TakeClass() {
    Expect("[");
    Descend();
    CharacterSet set;
    set.isComplement = Skip("^");
    while (!IsNext("]")) {
      if (m_rest.empty()) Fail("a \"]\" is missing");
      if (!set.parts.empty() && IsNext("-[")) {
        m_rest.remove_prefix(1);
        set.subtracted = std::make_unique<CharacterSet>(TakeClass());
        break;
      }
      Append(set.parts, TakeRange(set.parts.empty()));
    }
    if (set.parts.empty()) Fail("a class is empty");
    Expect("]");
    --m_level;
    return set;
  }

  std::vector<Part> TakeRange(bool isFirst) {
    if (IsNext("-")) return TakeHyphen(isFirst);
    Item first = TakeItem();
    bool const isRange = IsNext("-") && !IsNext("-]") && !IsNext("-[") && !IsNext("--[") && m_rest.size() > 1;
    if (!first.parts.empty()) {
      if (!isRange) return first.parts;
      m_rest.remove_prefix(1);
      Warn("a \"-\" in a class must be its first or last character");
      Append(first.parts, RangeOf('-', '-'));
      return first.parts;
    }
    if (!isRange) return RangeOf(first.character, first.character);
    m_rest.remove_prefix(1);
    if (IsNext("-")) Fail("\"-\" cannot be the end of a range");
    Item const last = TakeItem();
    if (!last.parts.empty()) Fail("a set of characters cannot be the end of a range");
    if (last.character < first.character) Fail("the characters of a range are in the wrong order");
    return RangeOf(first.character, last.character);
  }

  static std::vector<Part> RangeOf(char32_t first, char32_t last) { return Item(CharacterRanges{{first, last}}).parts; }

  /// A hyphen for itself, which may stand at the start or the end of a class.
  std::vector<Part> TakeHyphen(bool isFirst) {
    m_rest.remove_prefix(1);
    if (!isFirst && !IsNext("]") && !IsNext("-[")) Fail("a \"-\" in a class must be its first or last character");
    return RangeOf('-', '-');
  }

  Item TakeItem() {
    if (Skip("\\")) return TakeEscape();
    if (m_rest.empty()) Fail("a \"]\" is missing");
    if (IsNext("[")) Fail("unexpected \"[\" in a class");
    return Item(TakeCharacter());
  }

  Item TakeEscape() {
    if (m_rest.empty()) Fail("nothing stands after \"\\\"");
    if (SkipTranslated("x{")) return Item(TakeCode());
    char32_t const c = TakeCharacter();
    switch (c) {
      case 'n': return Item('\n');
      case 'r': return Item('\r');
      case 't': return Item('\t');
      case 's': return Item(Blanks());
      case 'S': return Item(Complement(Blanks()));
      case 'i': return Item(NameStartCharacters());
      case 'I': return Item(Complement(NameStartCharacters()));
      case 'c': return Item(NameCharacters());
      case 'C': return Item(Complement(NameCharacters()));
      case 'd': return Item({"Nd"}, false);
      case 'D': return Item({"Nd"}, true);
      case 'w': return Item({"L", "M", "N", "S"}, false);
      case 'W': return Item({"P", "Z", "C"}, false);
      case 'p': return TakeProperty(false);
      case 'P': return TakeProperty(true);
      default: return TakeEscapedCharacter(c);
    }
  }

  Item TakeEscapedCharacter(char32_t c) {
    std::string const escape = c < 0x80 ? std::string("\"\\") + static_cast<char>(c) + "\"" : "an escape beyond ASCII";
    if (IsLetterOrDigit(c) || c >= 0x80) Fail("there is no " + escape);
    static constexpr std::string_view kEscaped = "\\|.?*+(){}-[]^";
    if (kEscaped.find(static_cast<char>(c)) == std::string_view::npos) Warn(escape + " needs no \"\\\"");
    return Item(c);
  }

  char32_t TakeCode() {
    char32_t code = 0;
    for (; !m_rest.empty() && IsHexDigit(static_cast<unsigned char>(m_rest.front())); m_rest.remove_prefix(1)) {
      char const digit = m_rest.front();
      code = std::min<char32_t>(code * 16 + static_cast<char32_t>(IsDigit(digit) ? digit - '0' : digit - 'A' + 10),
                                0x110000);
    }
    if (code == 0x110000 || (code >= 0xD800 && code < 0xE000)) Fail("there is no such character");
    Expect("}");
    return code;
  }

  Item TakeProperty(bool isComplement) {
    std::size_t const end = m_rest.find('}');
    if (!Skip("{") || end == std::string_view::npos) Fail("\"\\p\" needs a name in \"{}\"");
    std::string const name(m_rest.substr(0, end - 1));
    if (name.substr(0, 2) == "Is") {
      CharacterRanges block = UnicodeBlock(std::string_view(name).substr(2));
      if (block.empty()) Fail("there is no block \"" + name + "\"");
      m_rest.remove_prefix(end);
      return Item(isComplement ? Complement(block) : std::move(block));
    }
    if (!IsCategory(name)) Fail("there is no category \"" + name + "\"");
    m_rest.remove_prefix(end);
    return Item({name.c_str()}, isComplement);
  }

  std::string_view m_text;
  std::string_view m_rest;
  bool m_isTranslated;
  CSchemaPattern::Faults& m_faults;
  int m_level = -1;  // the whole is no group
};

}  // namespace

PatternNode ParsePattern(std::string_view text, PatternSyntax syntax, CSchemaPattern::Faults& faults) {
  return PatternParser(text, syntax, faults).Parse();
}

}  // namespace Quillon9
