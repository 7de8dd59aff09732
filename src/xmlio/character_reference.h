#pragma once

#include <cstddef>
#include <string_view>

namespace Quillon9 {

/// What a reference stands for that needs no declaration: one of the five predefined entities or a character (XML 1.0,
/// W3C, sections 4.1 and 4.6).
class CharacterReference {
 public:
  /// Read the reference whose ampersand is at \p at. Return its end, or null if it is another one or none.
  char const* Read(char const* at, char const* end);
  /// The character in UTF-8.
  std::string_view Text() const { return {m_bytes, m_size}; }

 private:
  bool SetEntity(std::string_view name);
  bool SetNumber(std::string_view digits, unsigned base);
  bool SetCharacter(unsigned long code);

  char m_bytes[4] = {};
  std::size_t m_size = 0;
};

}  // namespace Quillon9
