#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quillon9 {

/// A pattern for a fixed number of ASCII characters, as codes and numbers of documents have them: "[A-Z]{3}",
/// "\d{3}-[A-Z]{2}". Immutable, for any thread.
class CFixedPattern {
 public:
  /// Parse the pattern \p text. Returns nothing when it contains more than letters, digits, blanks, some marks, "\d",
  /// classes of letters, digits, "\p{Nd}" and blanks, and a number of repetitions, or when it is for more than 64 characters.
  /// TestRegEx() accepts every pattern that this function accepts, and gives the same answers for values in ASCII.
  static std::optional<CFixedPattern> Parse(std::string_view text);

  bool Matches(std::string_view value) const;

 private:
  /// One bit for each ASCII character.
  struct CharacterSet {
    std::uint64_t m_bits[2] = {0, 0};

    void Add(unsigned char character) { m_bits[character / 64] |= std::uint64_t{1} << character % 64; }
    void AddRange(char first, char last) {
      for (int c = first; c <= last; ++c) Add(static_cast<unsigned char>(c));
    }
    bool Has(unsigned char character) const {
      return character < 128 && (m_bits[character / 64] >> character % 64 & 1) != 0;
    }
  };

  static std::optional<CharacterSet> TakeSet(std::string_view& text);
  static std::optional<CharacterSet> TakeClass(std::string_view& text);

  std::vector<CharacterSet> m_sets;  // one for each character of a value
};

}  // namespace Quillon9
