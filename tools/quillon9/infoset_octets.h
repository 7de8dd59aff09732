#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace Quillon9Tool {

/// The octets are not a Fast Infoset document; what() says why.
class InfosetError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The kinds of numbers, by what they count and by the bit of their first octet on which they begin.
enum class Number { Index2, Index3, Index4, Length2, Length5, Length7, Items };

/// Reads the octets of a Fast Infoset document in sequence, with the forms that numbers have in it (Rec. ITU-T X.891,
/// C.21 to C.28). Every read is checked against the end. The octets are borrowed.
class InfosetOctets {
 public:
  explicit InfosetOctets(std::string_view octets) : m_octets(octets) {}

  std::size_t GetPosition() const { return m_position; }
  std::size_t GetLeft() const { return m_octets.size() - m_position; }
  /// Return the octets from here on.
  std::string_view GetRest() const { return m_octets.substr(m_position); }

  /// Skip \p count octets and return them.
  /// \throws InfosetError at the end.
  std::string_view Take(std::uint64_t count);
  /// Skip the next octet and return it.
  std::uint32_t Next() { return static_cast<unsigned char>(Take(1)[0]); }
  /// Return the number that begins in \p octet, which has been read already, and continues in the octets that follow.
  /// \throws InfosetError for a form that does not exist.
  std::uint64_t Read(Number number, std::uint32_t octet);
  /// Return how many octets a string of \p length octets takes together with its length in the form Length2.
  static std::size_t SizeWithLength2(std::size_t length);

 private:
  std::string_view m_octets;
  std::size_t m_position = 0;
};

}  // namespace Quillon9Tool
