#include "plan/names.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <sstream>

#include "plan/transliteration.h"
#include "schema/lexical.h"

namespace Quillon9Generator::Plan {

namespace {

bool IsDigit(char32_t c) { return c >= '0' && c <= '9'; }
bool IsAsciiLetter(char32_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char Raised(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Punctuation and blanks: those of ASCII and Latin-1 but the three letters among them, and the block of general ones.
bool IsSeparator(char32_t c) {
  if (c < 0x80) return !IsDigit(c) && !IsAsciiLetter(c) && c != '_';
  if (c < 0xC0) return c != 0xAA && c != 0xB5 && c != 0xBA;
  return c == 0xD7 || c == 0xF7 || c == 0x387 || (c >= 0x2000 && c <= 0x206F) || (c >= 0x3000 && c <= 0x3003) ||
         c == 0xFEFF || c == 0xFFFD;
}

bool IsCombining(char32_t c) { return c >= 0x300 && c <= 0x36F; }

std::string TextOf(char32_t c) { return c < 0x80 ? std::string(1, static_cast<char>(c)) : Transliterate(c); }

std::string CamelOf(std::string_view utf8) {
  std::string result;
  bool raise = true;
  while (!utf8.empty()) {
    char32_t const c = Schema::TakeCharacter(utf8);
    if (IsCombining(c)) continue;
    if (c == '_') {
      if (result.empty() || result.back() != '_') result += '_';  // two together are reserved
      continue;
    }
    if (IsSeparator(c)) {
      raise = true;
      continue;
    }
    std::string text = TextOf(c);
    if (text.empty()) continue;
    if (raise) text.front() = Raised(text.front());
    raise = false;
    result += text;
  }
  return result;
}

// For a text of nothing but marks, such as "+" or "<=".
std::string CodesOf(std::string_view utf8) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string result;
  while (!utf8.empty()) {
    char32_t const c = Schema::TakeCharacter(utf8);
    result += 'U';
    for (int shift = c > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4) result += kDigits[c >> shift & 0xF];
  }
  return result;
}

// What <cerrno>, <climits>, <cmath>, <csignal>, <cstdio>, <cstdlib> and their kind define as macros without arguments,
// as far as a name of a schema in capitals could look like that.
constexpr std::string_view kMacros[] = {"BIG_ENDIAN",
                                        "BSD",
                                        "BUFSIZ",
                                        "BYTE_ORDER",
                                        "CHAR_BIT",
                                        "CHAR_MAX",
                                        "CHAR_MIN",
                                        "CLOCKS_PER_SEC",
                                        "DBL_MAX",
                                        "DBL_MIN",
                                        "DEBUG",
                                        "DOMAIN",
                                        "E2BIG",
                                        "EACCES",
                                        "EAGAIN",
                                        "EBADF",
                                        "EBUSY",
                                        "ECHO",
                                        "EDEADLK",
                                        "EDOM",
                                        "EEXIST",
                                        "EFAULT",
                                        "EFBIG",
                                        "EINTR",
                                        "EINVAL",
                                        "EIO",
                                        "EISDIR",
                                        "EMLINK",
                                        "EMPTY",
                                        "ENODEV",
                                        "ENOENT",
                                        "ENOMEM",
                                        "ENOSPC",
                                        "ENOTDIR",
                                        "ENOTTY",
                                        "EOF",
                                        "EPERM",
                                        "EPIPE",
                                        "ERANGE",
                                        "ERROR",
                                        "EXDEV",
                                        "EXIT_FAILURE",
                                        "EXIT_SUCCESS",
                                        "FALSE",
                                        "FILENAME_MAX",
                                        "FLT_MAX",
                                        "FLT_MIN",
                                        "FOPEN_MAX",
                                        "HUGE",
                                        "HUGE_VAL",
                                        "I",
                                        "IN",
                                        "INFINITY",
                                        "INT_MAX",
                                        "INT_MIN",
                                        "LC_ALL",
                                        "LC_TIME",
                                        "LITTLE_ENDIAN",
                                        "LONG_MAX",
                                        "LONG_MIN",
                                        "MAX",
                                        "MAXFLOAT",
                                        "MIN",
                                        "MSG_EOR",
                                        "M_E",
                                        "M_PI",
                                        "NAN",
                                        "NDEBUG",
                                        "NULL",
                                        "OPTIONAL",
                                        "OUT",
                                        "OVERFLOW",
                                        "PATH_MAX",
                                        "PI",
                                        "PIPE_BUF",
                                        "PLOSS",
                                        "RAND_MAX",
                                        "SCHAR_MAX",
                                        "SCHAR_MIN",
                                        "SEEK_CUR",
                                        "SEEK_END",
                                        "SEEK_SET",
                                        "SHRT_MAX",
                                        "SHRT_MIN",
                                        "SIGABRT",
                                        "SIGALRM",
                                        "SIGFPE",
                                        "SIGHUP",
                                        "SIGILL",
                                        "SIGINT",
                                        "SIGKILL",
                                        "SIGPIPE",
                                        "SIGQUIT",
                                        "SIGSEGV",
                                        "SIGTERM",
                                        "SING",
                                        "SIZE_MAX",
                                        "SSIZE_MAX",
                                        "STRICT",
                                        "TIME_UTC",
                                        "TLOSS",
                                        "TMP_MAX",
                                        "TRUE",
                                        "UCHAR_MAX",
                                        "UINT_MAX",
                                        "ULONG_MAX",
                                        "UNDERFLOW",
                                        "USHRT_MAX",
                                        "WCHAR_MAX",
                                        "WCHAR_MIN",
                                        "WEOF"};

bool IsMacro(std::string_view name) { return std::binary_search(std::begin(kMacros), std::end(kMacros), name); }

}  // namespace

std::string UpperCamel(std::string_view utf8) {
  std::string name = CamelOf(utf8);
  if (name.empty() || name == "_") name = CodesOf(utf8);
  if (name.empty()) return "Empty";
  return IsDigit(static_cast<unsigned char>(name.front())) ? "N" + name : name;
}

std::string NoMacro(std::string name) { return IsMacro(name) ? name + '_' : name; }

std::string FieldName(std::string_view cppName) {
  std::string_view const name = cppName.substr(std::min(cppName.find_first_not_of('_'), cppName.size() - 1));
  std::string field = "m_" + std::string(name);
  // An abbreviation at the start is lowered as a whole: m_urlPath for URLPath, m_id for ID.
  for (std::size_t i = 2; i < field.size() && Lowered(field[i]) != field[i]; ++i) {
    bool const beginsWord = i > 2 && i + 1 < field.size() && Raised(field[i + 1]) != field[i + 1];
    if (beginsWord) break;
    field[i] = Lowered(field[i]);
  }
  return field;
}

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), &Lowered);
  return text;
}

std::string NameScope::Take(std::string wanted, std::string_view suffix) {
  if (!IsFree(wanted)) wanted += suffix;
  std::string name = wanted;
  bool const endsInDigit = !wanted.empty() && IsDigit(static_cast<unsigned char>(wanted.back()));
  if (endsInDigit) wanted += '_';  // N1 and N12 would look alike otherwise
  if (!IsFree(name)) {
    int& number = m_numbers.emplace(wanted, 2).first->second;
    while (!IsFree(name)) name = wanted + std::to_string(number++);
  }
  m_taken.insert(name);
  return name;
}

std::vector<std::string> ItemsOf(std::string const& list) {
  std::istringstream text(list);
  return {std::istream_iterator<std::string>(text), {}};
}

}  // namespace Quillon9Generator::Plan
