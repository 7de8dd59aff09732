#include "infoset_octets.h"

#include <iterator>

namespace Quillon9Tool {

namespace {

/// One form of a number: the bits of its first octet that identify it, their pattern, the bits that belong to the
/// number, how many octets follow, and the first number that it holds.
struct Form {
  std::uint32_t m_mask;
  std::uint32_t m_pattern;
  std::uint32_t m_bits;
  std::uint32_t m_moreOctets;
  std::uint32_t m_first;
};

constexpr std::uint64_t kMostIndex = 1U << 20;

constexpr Form kIndex2[] = {{0x40, 0x00, 0x3F, 0, 1}, {0x60, 0x40, 0x1F, 1, 65}, {0x70, 0x60, 0x0F, 2, 8257}};
constexpr Form kIndex3[] = {
    {0x20, 0x00, 0x1F, 0, 1}, {0x38, 0x20, 0x07, 1, 33}, {0x38, 0x28, 0x07, 2, 2081}, {0x3F, 0x30, 0x00, 3, 526369}};
constexpr Form kIndex4[] = {
    {0x10, 0x00, 0x0F, 0, 1}, {0x1C, 0x10, 0x03, 1, 17}, {0x1C, 0x14, 0x03, 2, 1041}, {0x1F, 0x18, 0x00, 3, 263185}};
constexpr Form kLength2[] = {{0x40, 0x00, 0x3F, 0, 1}, {0x7F, 0x40, 0x00, 1, 65}, {0x7F, 0x60, 0x00, 4, 321}};
constexpr Form kLength5[] = {{0x08, 0x00, 0x07, 0, 1}, {0x0F, 0x08, 0x00, 1, 9}, {0x0F, 0x0C, 0x00, 4, 265}};
constexpr Form kLength7[] = {{0x02, 0x00, 0x01, 0, 1}, {0x03, 0x02, 0x00, 1, 3}, {0x03, 0x03, 0x00, 4, 259}};
constexpr Form kItems[] = {{0x80, 0x00, 0x7F, 0, 1}, {0xF0, 0x80, 0x0F, 2, 129}};

struct Forms {
  Form const* m_begin;
  Form const* m_end;
};

Forms FormsOf(Number number) {
  switch (number) {
    case Number::Index2: return {std::begin(kIndex2), std::end(kIndex2)};
    case Number::Index3: return {std::begin(kIndex3), std::end(kIndex3)};
    case Number::Index4: return {std::begin(kIndex4), std::end(kIndex4)};
    case Number::Length2: return {std::begin(kLength2), std::end(kLength2)};
    case Number::Length5: return {std::begin(kLength5), std::end(kLength5)};
    case Number::Length7: return {std::begin(kLength7), std::end(kLength7)};
    case Number::Items: break;
  }
  return {std::begin(kItems), std::end(kItems)};
}

bool IsIndex(Number number) { return number == Number::Index2 || number == Number::Index3 || number == Number::Index4; }

}  // namespace

std::string_view InfosetOctets::Take(std::uint64_t count) {
  if (count > GetLeft()) throw InfosetError("the document ends in the middle");
  std::string_view const octets = m_octets.substr(m_position, static_cast<std::size_t>(count));
  m_position += octets.size();
  return octets;
}

std::uint64_t InfosetOctets::Read(Number number, std::uint32_t octet) {
  Forms const forms = FormsOf(number);
  Form const* form = forms.m_begin;
  while (form != forms.m_end && (octet & form->m_mask) != form->m_pattern) ++form;
  std::uint64_t value = 0;
  if (form != forms.m_end) {
    value = octet & form->m_bits;
    for (char const more : Take(form->m_moreOctets)) value = value << 8 | static_cast<unsigned char>(more);
    value += form->m_first;
  }
  if (value == 0 || (IsIndex(number) && value > kMostIndex)) {
    throw InfosetError(IsIndex(number) ? "no index has this form" : "no length has this form");
  }
  return value;
}

std::size_t InfosetOctets::SizeWithLength2(std::size_t length) {
  if (length < kLength2[1].m_first) return length + 1;
  return length + (length < kLength2[2].m_first ? 2 : 5);
}

}  // namespace Quillon9Tool
