#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The form of C++ text: literals, comments, and lines of at most kColumns columns.
namespace Quillon9Generator::Code {

constexpr std::size_t kColumns = 120;

/// \p text, which is UTF-8, as a string literal with its quotes. Every octet that is not printable ASCII is an escape,
/// and no trigraph can arise.
std::string Literal(std::string_view text);

/// \p text as it may stand in a comment on one line.
std::string HarmlessText(std::string_view text);

/// \p text with escapes for control characters and for those that change the direction of writing, and with each
/// backslash doubled, so that it stays on its line and a terminal shows all of it.
std::string VisibleText(std::string_view text);

/// The number of columns of the UTF-8 text \p text, one for each character.
std::size_t Width(std::string_view text);

/// \p text, or about its first \p most octets and "..." if it is longer.
std::string ShortenedText(std::string const& text, std::size_t most);

/// The lines of `head{a, b, c};`, as few as possible.
std::vector<std::string> BracedList(std::string const& head, std::vector<std::string> const& items);

/// Collects the lines of a file.
class Text {
 public:
  /// Append \p line, which has no line feed, at the current indentation. An empty line stays empty.
  void Line(std::string_view line);
  /// Append an empty line, unless there is one already or a brace has just been opened.
  void Blank();
  /// Append `head(arguments)tail`, or with braces if \p open is one. Where it is too long for a line, it is broken between the arguments, as clang-format
  /// does: below the opening parenthesis, or else on lines of its own.
  void Call(std::string_view head, std::vector<std::string> const& arguments, std::string_view tail, char open = '(');
  /// Append a function on one line, or its body on a line of its own if that is too long.
  void Function(std::string_view signature, std::string_view body);
  /// Append \p documentation as lines that begin with `///`, each paragraph filled anew. What would end the comment or be a command of a
  /// documentation tool is made harmless. Nothing for an empty text.
  void Comment(std::string_view documentation);

  /// Let what follows be in the namespace \p name, after the end of the one that it was in; in none if it is empty.
  /// \returns whether that is another one.
  bool Enter(std::string const& name);

  /// Append \p text, whole lines, as they are.
  void Append(std::string_view text) { m_text += text; }
  /// Whether \p length columns fit after the current indentation.
  bool Fits(std::size_t length) const { return m_indent + length <= kColumns; }

  void Indent(int columns) { m_indent += static_cast<std::size_t>(columns); }
  void Outdent(int columns) { m_indent -= static_cast<std::size_t>(columns); }
  std::string const& Content() const { return m_text; }
  std::string Take() { return std::move(m_text); }

 private:
  std::string m_text;
  std::string m_namespace;
  std::size_t m_indent = 0;
};

}  // namespace Quillon9Generator::Code
