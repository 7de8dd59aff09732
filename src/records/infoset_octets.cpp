#include "records/infoset_octets.h"

namespace Quillon9 {

namespace {

using InfosetOctets::Put;

// What is stored is the value minus the first one of the form, with its top bits in the octet of the pattern.
void Stored(std::string& to, fi::Form const& form, std::uint32_t leading, std::uint64_t value, int moreOctets) {
  auto const stored = static_cast<std::uint32_t>(value - form.m_first);
  int shift = moreOctets * 8;
  Put(to, leading | form.m_pattern | stored >> shift);
  while (shift != 0) Put(to, stored >> (shift -= 8));
}

void Length(std::string& to, std::uint32_t leading, std::uint64_t length, fi::Form const& medium,
            fi::Form const& large) {
  if (length < medium.m_first) return Put(to, leading | static_cast<std::uint32_t>(length - 1));
  fi::Form const& form = length < large.m_first ? medium : large;
  Put(to, leading | form.m_pattern);
  Stored(to, {0, form.m_first}, 0, length, &form == &medium ? 0 : 3);
}

}  // namespace

void InfosetOctets::LongInteger2(std::string& to, std::uint32_t leading, std::uint32_t value) {
  if (value < fi::kInteger2Large.m_first) return Stored(to, fi::kInteger2Medium, leading, value, 1);
  Stored(to, fi::kInteger2Large, leading, value, 2);
}

void InfosetOctets::LongInteger3(std::string& to, std::uint32_t leading, std::uint32_t value) {
  if (value < fi::kInteger3Large.m_first) return Stored(to, fi::kInteger3Medium, leading, value, 1);
  if (value < fi::kInteger3Huge.m_first) return Stored(to, fi::kInteger3Large, leading, value, 2);
  Put(to, leading | fi::kInteger3Huge.m_pattern);
  Stored(to, {0, fi::kInteger3Huge.m_first}, 0, value, 2);
}

void InfosetOctets::LongInteger4(std::string& to, std::uint32_t leading, std::uint32_t value) {
  if (value < fi::kInteger4Large.m_first) return Stored(to, fi::kInteger4Medium, leading, value, 1);
  if (value < fi::kInteger4Huge.m_first) return Stored(to, fi::kInteger4Large, leading, value, 2);
  Put(to, leading | fi::kInteger4Huge.m_pattern);
  Stored(to, {0, fi::kInteger4Huge.m_first}, 0, value, 2);
}

void InfosetOctets::Length2(std::string& to, std::uint32_t leading, std::uint64_t length) {
  Length(to, leading, length, fi::kLength2Medium, fi::kLength2Large);
}

void InfosetOctets::Length5(std::string& to, std::uint32_t leading, std::uint64_t length) {
  Length(to, leading, length, fi::kLength5Medium, fi::kLength5Large);
}

void InfosetOctets::Length7(std::string& to, std::uint32_t leading, std::uint64_t length) {
  Length(to, leading, length, fi::kLength7Medium, fi::kLength7Large);
}

std::size_t InfosetOctets::SizeOfLength2(unsigned char octet) {
  if ((octet & fi::kLength2Medium.m_pattern) == 0) return 1;
  return (octet & fi::kLength2Large.m_pattern) == fi::kLength2Large.m_pattern ? 5 : 2;
}

}  // namespace Quillon9
