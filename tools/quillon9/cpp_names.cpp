#include "cpp_names.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string_view>

#include "failure.h"
#include "plan/names.h"

namespace Quillon9Tool {

namespace {

// Those that begin with a small letter, as all do.
constexpr std::string_view kKeywords[] = {
    "alignas",     "alignof",  "and",        "and_eq",    "asm",       "auto",         "bitand",
    "bitor",       "bool",     "break",      "case",      "catch",     "char",         "char16_t",
    "char32_t",    "char8_t",  "class",      "co_await",  "co_return", "co_yield",     "compl",
    "concept",     "const",    "const_cast", "consteval", "constexpr", "constinit",    "continue",
    "decltype",    "default",  "delete",     "do",        "double",    "dynamic_cast", "else",
    "enum",        "explicit", "export",     "extern",    "false",     "float",        "for",
    "friend",      "goto",     "if",         "inline",    "int",       "long",         "mutable",
    "namespace",   "new",      "noexcept",   "not",       "not_eq",    "nullptr",      "operator",
    "or",          "or_eq",    "private",    "protected", "public",    "register",     "reinterpret_cast",
    "requires",    "return",   "short",      "signed",    "sizeof",    "static",       "static_assert",
    "static_cast", "struct",   "switch",     "template",  "this",      "thread_local", "throw",
    "true",        "try",      "typedef",    "typeid",    "typename",  "union",        "unsigned",
    "using",       "virtual",  "void",       "volatile",  "wchar_t",   "while",        "xor",
    "xor_eq"};

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

bool IsCppName(std::string const& name) {
  if (name.empty() || !IsLetter(name.front())) return false;
  if (!std::all_of(name.begin(), name.end(), [](char c) { return IsLetter(c) || IsDigit(c); })) return false;
  // The implementation may define names like these as macros.
  bool const isReserved =
      (name.front() == '_' && name.size() > 1 && name[1] >= 'A' && name[1] <= 'Z') || name.find("__") != name.npos;
  return !isReserved && std::find(std::begin(kKeywords), std::end(kKeywords), name) == std::end(kKeywords);
}

bool IsCppNamespace(std::string const& name) {
  for (std::size_t begin = 0;;) {
    std::size_t const end = name.find("::", begin);
    std::string const part = name.substr(begin, end == name.npos ? end : end - begin);
    // Inside such a namespace, generated code would look for the names of the library in the wrong one; and headers in
    // a folder quillon9 would hide those of the library.
    if (!IsCppName(part) || Quillon9Generator::Plan::LowerCase(part) == "quillon9" || part == "std") return false;
    if (end == name.npos) return true;
    begin = end + 2;
  }
}

std::string NamespaceFor(std::string const& path) {
  std::string name;
  bool raise = true;
  for (char const c : Quillon9Generator::Plan::UpperCamel(std::filesystem::path(path).stem().string())) {
    if (c != '_') name += raise && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    raise = c == '_';
  }
  if (!IsCppNamespace(name)) throw UsageError("give --namespace: none can be made from " + path);
  return name;
}

}  // namespace Quillon9Tool
