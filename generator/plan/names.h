#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Quillon9Generator::Plan {

/// \p c in lower case, if it is a letter of ASCII.
constexpr char Lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// \p text with the letters of ASCII in lower case.
std::string LowerCase(std::string text);

/// A name of a schema as a part of a C++ name: each letter after a character that C++ names cannot have is raised, and
/// the first one too; letters beyond ASCII are transliterated; a leading digit gets N in front. Never empty.
std::string UpperCamel(std::string_view utf8);

/// \p name, or with "_" at its end where a macro of the standard headers has that name.
std::string NoMacro(std::string name);

/// The name of the data member for the accessors Get\p cppName(): m_shipTo for ShipTo.
std::string FieldName(std::string_view cppName);

/// The names of one scope. They are given away in the order in which they are asked for.
class NameScope {
 public:
  /// Names that \p outer has are taken here too. It must outlive the scope; null for none.
  explicit NameScope(NameScope const* outer = nullptr) : m_outer(outer) {}

  /// Nobody gets \p name.
  void Reserve(std::string name) { m_taken.insert(std::move(name)); }
  bool IsFree(std::string const& name) const {
    return m_taken.count(name) == 0 && (m_outer == nullptr || m_outer->IsFree(name));
  }

  /// \p wanted if it is free; else, if \p suffix is not empty, with that at its end; else that with 2, 3, ...
  std::string Take(std::string wanted, std::string_view suffix = {});

 private:
  NameScope const* m_outer;
  std::set<std::string> m_taken;
  std::map<std::string, int> m_numbers;  ///< the number after the last that a name got
};

/// The items of a list.
std::vector<std::string> ItemsOf(std::string const& list);

}  // namespace Quillon9Generator::Plan
