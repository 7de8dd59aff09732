#include "code/text.h"

#include <algorithm>

namespace Quillon9Generator::Code {

namespace {

/// The size of the character at the start of \p text if it changes the direction of writing, which compilers warn of
/// and which would show other code than they see; else 0.
std::size_t DirectionMarkSize(std::string_view text) {
  if (text.size() < 3 || text[0] != '\xE2') return 0;
  bool const is =
      (text[1] == '\x80' && ((text[2] >= '\xAA' && text[2] <= '\xAE') || text[2] == '\x8E' || text[2] == '\x8F')) ||
      (text[1] == '\x81' && text[2] >= '\xA6' && text[2] <= '\xA9');
  return is ? 3 : 0;
}

/// The size of the control character at the start of \p text, those from U+0080 to U+009F included; 0 for another.
std::size_t ControlSize(std::string_view text) {
  auto const first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7F) return 1;
  return first == 0xC2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0 ? 2 : 0;
}

/// \p word as it may stand in a comment: a backslash or `@` would begin a command of a documentation tool, and a
/// backslash or `??/` at the end of a line would continue the comment.
std::string HarmlessWord(std::string_view word) {
  std::string result;
  for (std::size_t i = 0; i < word.size(); ++i) {
    char const c = word[i];
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) continue;
    if (std::size_t const mark = DirectionMarkSize(word.substr(i)); mark != 0) {
      i += mark - 1;
      continue;
    }
    if (c == '\\' && i + 1 == word.size()) {
      result += "&#92;";
      continue;
    }
    if (c == '\\' || c == '@') result += '\\';
    if (c == '/' && result.size() >= 2 && result.compare(result.size() - 2, 2, "??") == 0) result += ' ';
    result += c;
  }
  return result;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::vector<std::string> Words(std::string_view line) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && IsBlank(line[i])) ++i;
    std::size_t const begin = i;
    while (i < line.size() && !IsBlank(line[i])) ++i;
    if (i == begin) continue;
    std::string word = HarmlessWord(line.substr(begin, i - begin));
    if (!word.empty()) words.push_back(std::move(word));
  }
  return words;
}

std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    std::size_t const end = text.find('\n');
    lines.push_back(text.substr(0, end));
    if (end == text.npos) break;
    text.remove_prefix(end + 1);
  }
  return lines;
}

void AppendEscape(std::string& literal, unsigned char octet) {
  literal += '\\';
  for (int const shift : {6, 3, 0}) literal += static_cast<char>('0' + ((octet >> shift) & 7));
}

}  // namespace

std::string Literal(std::string_view text) {
  std::string literal = "\"";
  bool afterQuestion = false;
  for (char const c : text) {
    auto const octet = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\' || (c == '?' && afterQuestion)) {
      literal += '\\';
      literal += c;
    } else if (c == '\n') {
      literal += "\\n";
    } else if (c == '\t') {
      literal += "\\t";
    } else if (octet < 0x20 || octet >= 0x7F) {
      AppendEscape(literal, octet);  // always three digits, so that a digit may follow
    } else {
      literal += c;
    }
    afterQuestion = c == '?';
  }
  return literal + '"';
}

std::string HarmlessText(std::string_view text) {
  std::string result;
  for (std::string const& word : Words(text)) result += (result.empty() ? "" : " ") + word;
  return result;
}

std::size_t Width(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string VisibleText(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::size_t const escaped = std::max(DirectionMarkSize(text.substr(i)), ControlSize(text.substr(i)));
    if (text[i] == '\\') result += '\\';
    if (escaped == 0) result += text[i];
    for (std::size_t k = 0; k < escaped; ++k) AppendEscape(result, static_cast<unsigned char>(text[i + k]));
    if (escaped > 1) i += escaped - 1;
  }
  return result;
}

std::string ShortenedText(std::string const& text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most != 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;  // inside of a character
  return text.substr(0, most) + "...";
}

std::vector<std::string> BracedList(std::string const& head, std::vector<std::string> const& items) {
  std::string const indent = "    ";
  std::vector<std::string> lines{head + '{'};
  for (std::size_t i = 0; i < items.size(); ++i) {
    std::string const item = items[i] + (i + 1 < items.size() ? "," : "};");
    std::string const blank = i == 0 ? "" : " ";
    if (lines.back().size() + blank.size() + item.size() > kColumns) {
      lines.push_back(indent + item);
    } else {
      lines.back() += blank + item;
    }
  }
  if (items.empty()) lines.back() += "};";
  return lines;
}

void Text::Line(std::string_view line) {
  if (!line.empty()) m_text.append(m_indent, ' ').append(line);
  m_text += '\n';
}

void Text::Blank() {
  auto const endsWith = [this](std::string_view end) {
    return m_text.size() >= end.size() && m_text.compare(m_text.size() - end.size(), end.size(), end) == 0;
  };
  if (!m_text.empty() && !endsWith("\n\n") && !endsWith("{\n") && !endsWith(" public:\n")) m_text += '\n';
}

bool Text::Enter(std::string const& name) {
  if (name == m_namespace) return false;
  Blank();
  if (!m_namespace.empty()) Line("}  // namespace " + m_namespace);
  if (!m_namespace.empty() && !name.empty()) Line("");
  if (!name.empty()) Line("namespace " + name + " {");
  m_namespace = name;
  return true;
}

void Text::Call(std::string_view head, std::vector<std::string> const& arguments, std::string_view tail, char open) {
  std::string const close = (open == '{' ? "}" : ")") + std::string(tail);
  std::string line = std::string(head) + open;
  for (std::size_t i = 0; i < arguments.size(); ++i) line += (i != 0 ? ", " : "") + arguments[i];
  line += close;
  if (Fits(line.size()) || arguments.empty()) return Line(line);

  auto const pack = [&](std::string first, std::size_t indent) {
    std::vector<std::string> lines{std::move(first)};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      bool const last = i + 1 == arguments.size();
      std::string const piece = arguments[i] + (last ? close : ",");
      std::string& current = lines.back();
      bool const starts = current.size() == indent || current.back() == open;
      if (Fits(current.size() + (starts ? 0 : 1) + piece.size()) && !(starts && lines.size() == 1 && indent == 4)) {
        current += (starts ? "" : " ") + piece;
      } else {
        lines.push_back(std::string(indent, ' ') + piece);
      }
    }
    return lines;
  };
  std::string const opening = std::string(head) + open;
  std::vector<std::string> lines = pack(opening, opening.size());
  auto const tooLong = [this](std::string const& text) { return !Fits(text.size()); };
  if (std::any_of(lines.begin(), lines.end(), tooLong) || lines.front() == opening) lines = pack(opening, 4);
  for (std::string const& each : lines) Line(each);
}

void Text::Function(std::string_view signature, std::string_view body) {
  std::string const line = std::string(signature) + (body.empty() ? " {}" : " { " + std::string(body) + " }");
  if (Fits(line.size()) || body.empty()) return Line(line);
  std::size_t const parameters = signature.find('(') + 1;
  if (Fits(signature.size() + 2)) {
    Line(std::string(signature) + " {");
  } else {
    Line(signature.substr(0, parameters));
    Line("    " + std::string(signature.substr(parameters)) + " {");
  }
  Indent(2);
  std::size_t const open = body.find('(');
  if (Fits(body.size()) || open == body.npos || body.substr(body.size() - 2) != ");") {
    Line(body);
  } else {
    Call(body.substr(0, open), {std::string(body.substr(open + 1, body.size() - open - 3))}, ";");
  }
  Outdent(2);
  Line("}");
}

void Text::Comment(std::string_view documentation) {
  std::string line = "///";
  bool any = false;
  bool paragraph = false;  // an empty line is due
  auto const finish = [&] {
    if (line.size() > 3) Line(line);
    line = "///";
  };
  for (std::string_view const source : Lines(documentation)) {
    std::vector<std::string> const words = Words(source);
    if (words.empty()) {
      finish();
      paragraph = any;
    }
    for (std::string const& word : words) {
      if (paragraph) Line("///");
      paragraph = false;
      any = true;
      if (line.size() > 3 && m_indent + Width(line) + 1 + Width(word) > kColumns) finish();
      line += ' ';
      line += word;
    }
  }
  finish();
}

}  // namespace Quillon9Generator::Code
