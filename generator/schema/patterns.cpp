#include "schema/patterns.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "schema/lexical.h"

namespace Quillon9Generator::Schema {

namespace {

using Ranges = CharacterRanges;

Ranges const& Blanks() {
  static auto const& ranges = *new Ranges{{'\t', '\n'}, {'\r', '\r'}, {' ', ' '}};
  return ranges;
}

Ranges Complement(Ranges const& ranges) {
  Ranges result;
  char32_t next = 0;
  auto const addBelow = [&result, &next](char32_t end) {
    if (next < 0xD800 && next < end) result.emplace_back(next, std::min<char32_t>(end, 0xD800) - 1);
    next = std::max<char32_t>(next, 0xE000);  // surrogates are not characters
    if (end > next) result.emplace_back(next, end - 1);
  };
  for (auto const& [first, last] : ranges) {
    addBelow(first);
    next = last + 1;
  }
  addBelow(0x110000);
  return result;
}

std::string Code(char32_t c) {
  char text[16];
  std::snprintf(text, sizeof text, "\\x{%X}", static_cast<unsigned>(c));
  return text;
}

bool IsLetterOrDigit(char32_t c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string Literal(char32_t c, std::string_view escaped) {
  if (c < ' ' || c > '~') return Code(c);
  std::string text(1, static_cast<char>(c));
  return escaped.find(text) != std::string_view::npos ? "\\" + text : text;
}

std::string OutsideClass(char32_t c) { return Literal(c, "\\^$.|?*+()[]{}"); }
std::string InClass(char32_t c) { return Literal(c, "\\^-[]"); }

std::string InClass(Ranges const& ranges) {
  std::string text;
  for (auto const& [first, last] : ranges) {
    text += InClass(first);
    if (first != last) text += "-" + InClass(last);
  }
  return text;
}

/// Reads one regular expression of XML Schema and writes it for PCRE.
class PatternTranslator {
 public:
  explicit PatternTranslator(std::string_view text) : m_rest(text) {}

  std::optional<std::string> Translate() {
    std::string result = TakeAlternatives();
    if (!m_failed && !m_rest.empty()) Fail("a \")\" without \"(\"");
    if (m_failed) return std::nullopt;
    return result;
  }

  /// What is wrong with the pattern. A pattern that is too large is not wrong.
  PatternFaults const& Faults() const { return m_faults; }

  /// Whether there are several ways through the pattern, of which PCRE might take one that ends early.
  bool HasSeveralWays() const { return m_severalWays; }

 private:
  static constexpr int kMostLevels = 100;
  static constexpr int kMostRepetitions = 65535;  // PCRE's limit

  /// One character, or the inside of a class.
  struct Item {
    char32_t character = 0;
    std::string inside;  ///< not empty: a set, as what stands in a class
  };

  bool Skip(char c) {
    if (m_rest.empty() || m_rest.front() != c) return false;
    m_rest.remove_prefix(1);
    return true;
  }
  bool IsNext(char c) const { return !m_rest.empty() && m_rest.front() == c; }
  /// Stop without a fault of the pattern if the reason is empty.
  void Fail(std::string reason) {
    if (!m_failed) m_faults.error = std::move(reason);
    m_failed = true;
    m_rest = {};
  }
  void Expect(char c) {
    if (!Skip(c)) Fail(std::string("\"") + c + "\" is missing");
  }
  void Warn(std::string text) {
    if (m_faults.warning.empty()) m_faults.warning = std::move(text);
  }

  std::string TakeAlternatives() {
    if (++m_level > kMostLevels) Fail("");
    std::string result = TakeBranch();
    while (Skip('|')) {
      m_severalWays = true;
      result += "|" + TakeBranch();
    }
    --m_level;
    return result;
  }

  std::string TakeBranch() {
    std::string result;
    while (!m_rest.empty() && !IsNext('|') && !IsNext(')')) {
      result += TakeAtom();
      result += TakeQuantifier();
    }
    return result;
  }

  std::string TakeAtom() {
    if (Skip('(')) {
      std::string const inner = TakeAlternatives();
      Expect(')');
      return "(?:" + inner + ")";
    }
    if (Skip('[')) return TakeClass();
    if (Skip('.')) return "[^\\n\\r]";
    if (Skip('\\')) {
      Item const item = TakeEscape();
      return item.inside.empty() ? OutsideClass(item.character) : "[" + item.inside + "]";
    }
    if (m_rest.find_first_of("?*+{}]") == 0) Fail("unexpected \"" + std::string(1, m_rest.front()) + "\"");
    return m_rest.empty() ? "" : OutsideClass(TakeCharacter(m_rest));
  }

  std::string TakeQuantifier() {
    static constexpr std::string_view kSigns = "?*+";
    for (char const sign : kSigns) {
      if (!Skip(sign)) continue;
      m_severalWays = true;
      return std::string(1, sign);
    }
    return Skip('{') ? TakeCounts() : "";
  }

  std::string TakeCounts() {
    int const least = TakeNumber();
    int most = least;
    bool const unlimited = Skip(',') && IsNext('}');
    if (!unlimited && !IsNext('}')) most = TakeNumber();
    Expect('}');
    if (most < least) Fail("the counts in \"{}\" are in the wrong order");
    if (!unlimited && least == most) return least == 1 ? "" : "{" + std::to_string(least) + "}";
    m_severalWays = true;
    return "{" + std::to_string(least) + "," + (unlimited ? "" : std::to_string(most)) + "}";
  }

  int TakeNumber() {
    int number = 0;
    if (m_rest.find_first_of("0123456789") != 0) Fail("a number is missing in \"{}\"");
    while (m_rest.find_first_of("0123456789") == 0 && number <= kMostRepetitions) {
      number = number * 10 + (m_rest.front() - '0');
      m_rest.remove_prefix(1);
    }
    if (number > kMostRepetitions) Fail("");
    return number;
  }

  std::string TakeClass() {
    if (++m_level > kMostLevels) Fail("");
    std::string result = Skip('^') ? "[^" : "[";
    std::string subtracted;
    bool empty = true;
    while (!m_failed && !IsNext(']')) {
      if (m_rest.empty()) Fail("a \"]\" is missing");
      if (!empty && m_rest.substr(0, 2) == "-[") {
        m_rest.remove_prefix(2);
        subtracted = TakeClass();
        break;
      }
      result += TakeRange(empty);
      empty = false;
    }
    if (empty) Fail("a class is empty");
    Expect(']');
    --m_level;
    result += "]";
    return subtracted.empty() ? result : "(?:(?!" + subtracted + ")" + result + ")";
  }

  std::string TakeRange(bool isFirst) {
    if (IsNext('-')) return TakeHyphen(isFirst);
    Item const first = TakeItem();
    bool const isRange = IsNext('-') && m_rest.size() > 1 && m_rest[1] != ']' && m_rest[1] != '[';
    if (!first.inside.empty()) {
      if (!isRange) return first.inside;
      m_rest.remove_prefix(1);
      Warn("a \"-\" in a class must be its first or last character");
      return first.inside + "\\-";
    }
    if (!isRange || m_rest.substr(0, 3) == "--[") return InClass(first.character);
    m_rest.remove_prefix(1);
    if (IsNext('-')) Fail("\"-\" cannot be the end of a range");
    Item const last = TakeItem();
    if (!last.inside.empty()) Fail("a set of characters cannot be the end of a range");
    if (last.character < first.character) Fail("the characters of a range are in the wrong order");
    return InClass(first.character) + "-" + InClass(last.character);
  }

  /// A hyphen for itself, which may stand at the start or the end of a class.
  std::string TakeHyphen(bool isFirst) {
    m_rest.remove_prefix(1);
    if (!isFirst && !IsNext(']') && m_rest.substr(0, 2) != "-[") {
      Fail("a \"-\" in a class must be its first or last character");
    }
    return "\\-";
  }

  Item TakeItem() {
    if (Skip('\\')) return TakeEscape();
    if (m_rest.empty() || IsNext('[')) {
      Fail(m_rest.empty() ? "a \"]\" is missing" : "unexpected \"[\" in a class");
      return {};
    }
    return {TakeCharacter(m_rest), ""};
  }

  Item TakeEscape() {
    if (m_rest.empty()) {
      Fail("nothing stands after \"\\\"");
      return {};
    }
    char32_t const c = TakeCharacter(m_rest);
    switch (c) {
      case 'n': return {'\n', ""};
      case 'r': return {'\r', ""};
      case 't': return {'\t', ""};
      case 's': return {0, InClass(Blanks())};
      case 'S': return {0, InClass(Complement(Blanks()))};
      case 'i': return {0, InClass(NameStartCharacters())};
      case 'I': return {0, InClass(Complement(NameStartCharacters()))};
      case 'c': return {0, InClass(NameCharacters())};
      case 'C': return {0, InClass(Complement(NameCharacters()))};
      case 'd': return {0, "\\p{Nd}"};
      case 'D': return {0, "\\P{Nd}"};
      case 'w': return {0, "\\p{L}\\p{M}\\p{N}\\p{S}"};
      case 'W': return {0, "\\p{P}\\p{Z}\\p{C}"};
      case 'p': return {0, TakeProperty(false)};
      case 'P': return {0, TakeProperty(true)};
      default: break;
    }
    std::string const escape = c < 0x80 ? std::string("\"\\") + static_cast<char>(c) + "\"" : "an escape beyond ASCII";
    if (IsLetterOrDigit(c) || c >= 0x80) Fail("there is no " + escape);
    static constexpr std::string_view kEscaped = "\\|.?*+(){}-[]^";
    if (c < 0x80 && kEscaped.find(static_cast<char>(c)) == std::string_view::npos) Warn(escape + " needs no \"\\\"");
    return {c, ""};
  }

  std::string TakeProperty(bool complement) {
    std::size_t const end = m_rest.find('}');
    if (!Skip('{') || end == std::string_view::npos) return Fail("\"\\p\" needs a name in \"{}\""), "x";
    std::string const name(m_rest.substr(0, end - 1));
    m_rest.remove_prefix(end);
    if (name.substr(0, 2) == "Is") {
      auto const block = UnicodeBlockRange(std::string_view(name).substr(2));
      if (!block) return Fail("there is no block \"" + name + "\""), "x";
      return InClass(complement ? Complement({*block}) : Ranges{*block});
    }
    static constexpr std::string_view kCategories =
        " L Lu Ll Lt Lm Lo M Mn Mc Me N Nd Nl No P Pc Pd Ps Pe Pi Pf Po Z Zs Zl Zp S Sm Sc Sk So C Cc Cf Co Cn ";
    if (name.empty() || kCategories.find(" " + name + " ") == std::string_view::npos) {
      return Fail("there is no category \"" + name + "\""), "x";
    }
    return (complement ? "\\P{" : "\\p{") + name + "}";
  }

  std::string_view m_rest;
  int m_level = 0;
  bool m_failed = false;
  bool m_severalWays = false;
  PatternFaults m_faults;
};

struct Step {
  std::string text;
  bool severalWays = false;
};

std::optional<Step> CombineStep(std::vector<std::string> const& alternatives) {
  Step step;
  step.severalWays = alternatives.size() > 1;
  for (std::string const& alternative : alternatives) {
    PatternTranslator translator(alternative);
    std::optional<std::string> const text = translator.Translate();
    if (!text) return std::nullopt;
    if (&alternative != &alternatives.front()) step.text += "|";
    step.text += *text;
    step.severalWays = step.severalWays || translator.HasSeveralWays();
  }
  return step;
}

}  // namespace

PatternFaults CheckPattern(std::string_view pattern) {
  PatternTranslator translator(pattern);
  translator.Translate();
  return translator.Faults();
}

std::optional<std::string> CombinePatterns(std::vector<std::vector<std::string>> const& steps) {
  std::string conditions;
  std::optional<Step> last;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (std::find(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(i), steps[i]) - steps.begin() !=
        static_cast<std::ptrdiff_t>(i)) {
      continue;  // a step that repeats an earlier one adds nothing
    }
    if (last) conditions += "(?=(?:" + last->text + ")\\z)";
    last = CombineStep(steps[i]);
    if (!last) return std::nullopt;
  }
  if (!last) return "";
  if (conditions.empty() && !last->severalWays && !last->text.empty()) return last->text;
  return conditions + "(?:" + last->text + ")\\z";
}

}  // namespace Quillon9Generator::Schema
