#pragma once

#include <cstdint>
#include <string>

#include "fastinfoset/constants.h"

namespace Quillon9 {

/// Writes the forms of integers and lengths in Rec. ITU-T X.891, C.22 to C.28, as COctetSource reads them.
namespace InfosetOctets {

/// The highest index that Integer2() can write.
inline constexpr std::uint32_t kMostIndex = fi::kInteger2Large.m_first + 0xFFFFF;

inline void Put(std::string& to, std::uint32_t octet) { to += static_cast<char>(static_cast<unsigned char>(octet)); }

/// Append \p leading, and \p value on the second, third or fourth bit. The long forms have more than one octet.
///@{
void LongInteger2(std::string& to, std::uint32_t leading, std::uint32_t value);
void LongInteger3(std::string& to, std::uint32_t leading, std::uint32_t value);
void LongInteger4(std::string& to, std::uint32_t leading, std::uint32_t value);
inline void Integer2(std::string& to, std::uint32_t leading, std::uint32_t value) {
  if (value >= fi::kInteger2Medium.m_first) return LongInteger2(to, leading, value);
  Put(to, leading | (value - 1));
}
inline void Integer3(std::string& to, std::uint32_t leading, std::uint32_t value) {
  if (value >= fi::kInteger3Medium.m_first) return LongInteger3(to, leading, value);
  Put(to, leading | (value - 1));
}
inline void Integer4(std::string& to, std::uint32_t leading, std::uint32_t value) {
  if (value >= fi::kInteger4Medium.m_first) return LongInteger4(to, leading, value);
  Put(to, leading | (value - 1));
}
///@}
/// The same for the length of an octet string, on the second, fifth or seventh bit.
///@{
void Length2(std::string& to, std::uint32_t leading, std::uint64_t length);
void Length5(std::string& to, std::uint32_t leading, std::uint64_t length);
void Length7(std::string& to, std::uint32_t leading, std::uint64_t length);
///@}
/// How many octets a length on the second bit takes.
std::size_t SizeOfLength2(unsigned char octet);

}  // namespace InfosetOctets

}  // namespace Quillon9
