#include "fastinfoset/octet_source.h"

#include <algorithm>
#include <string>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

void ThrowFastInfosetFailure(char const* reason, FailureKind kind) {
  throw OfKind(kind, CQnException(std::string("Failed to parse FastInfoset. ") + reason));
}

void COctetSource::ThrowEndOfFile() { ThrowFastInfosetFailure("Unexpected End of File."); }

bool COctetSource::Fill(std::uint64_t count) {
  if (m_supply == nullptr) return false;
  OctetSupply::Octets const octets = m_supply->Supply(m_position, GetLeft(), count);
  m_passed = GetOffset();
  m_begin = m_position = octets.begin;
  m_end = octets.end;
  return count <= GetLeft();
}

std::string_view COctetSource::Piece(std::uint64_t most) {
  if (!Has(1)) return {};
  std::size_t const size = std::min<std::uint64_t>(most, GetLeft());
  return {reinterpret_cast<char const*>(Move(size)), size};
}

void COctetSource::SkipPieces(std::uint64_t count) {
  if (m_supply == nullptr) ThrowEndOfFile();
  std::size_t const start = GetOffset();
  while (count > 0) {
    std::size_t const size = Piece(count).size();
    if (size == 0) ThrowEndAt(start);
    count -= size;
  }
}

void COctetSource::ThrowEndAt(std::size_t offset) {
  m_begin = m_position = m_end;
  m_passed = offset;
  ThrowEndOfFile();
}

/// Return the value of \p form whose leading bits are \p leading and whose other bits are the next \p count octets.
std::uint32_t COctetSource::Continue(fi::Form const& form, std::uint32_t leading, std::uint32_t count) {
  std::uint8_t const* const octets = Move(count);
  for (std::uint32_t i = 0; i < count; ++i) leading = leading << 8 | octets[i];
  return leading + form.m_first;
}

/// Return the length stored in the next \p count octets. It may exceed 32 bits.
std::uint64_t COctetSource::LongLength(fi::Form const& form, std::uint32_t count) {
  return std::uint64_t{Continue({}, 0, count)} + form.m_first;
}

std::uint32_t COctetSource::Integer1To2pw20Bit2(std::uint32_t octet) {
  if ((octet & 0x40) == 0) return (octet & 0x3F) + 1;
  if ((octet & 0x60) == fi::kInteger2Medium.m_pattern) return Continue(fi::kInteger2Medium, octet & 0x1F, 1);
  if ((octet & 0x70) == fi::kInteger2Large.m_pattern) return Continue(fi::kInteger2Large, octet & 0x0F, 2);
  ThrowFastInfosetFailure("Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.");
}

std::uint32_t COctetSource::Integer1To2pw20Bit3(std::uint32_t octet) {
  if ((octet & 0x20) == 0) return (octet & 0x1F) + 1;
  if ((octet & 0x38) == fi::kInteger3Medium.m_pattern) return Continue(fi::kInteger3Medium, octet & 0x07, 1);
  if ((octet & 0x38) == fi::kInteger3Large.m_pattern) return Continue(fi::kInteger3Large, octet & 0x07, 2);
  if ((octet & 0x3F) == fi::kInteger3Huge.m_pattern) return Continue(fi::kInteger3Huge, Octet() & 0x0F, 2);
  ThrowFastInfosetFailure("Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.");
}

std::uint32_t COctetSource::Integer1To2pw20Bit4(std::uint32_t octet) {
  if ((octet & 0x10) == 0) return (octet & 0x0F) + 1;
  if ((octet & 0x1C) == fi::kInteger4Medium.m_pattern) return Continue(fi::kInteger4Medium, octet & 0x03, 1);
  if ((octet & 0x1C) == fi::kInteger4Large.m_pattern) return Continue(fi::kInteger4Large, octet & 0x03, 2);
  if ((octet & 0x1F) == fi::kInteger4Huge.m_pattern) return Continue(fi::kInteger4Huge, Octet() & 0x0F, 2);
  ThrowFastInfosetFailure("Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.");
}

std::uint32_t COctetSource::Integer0To2pw20Bit2(std::uint32_t octet) {
  if ((octet & 0x7F) == fi::kIndexZeroBit2) return 0;
  if ((octet & 0x70) != 0x70) return Integer1To2pw20Bit2(octet);
  ThrowFastInfosetFailure("Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet.");
}

// The bits between the pattern of a length's form and the end of the octet must be zeros.

std::uint64_t COctetSource::NonEmptyOctetStringBit2Length(std::uint32_t octet) {
  if ((octet & 0x40) == 0) return (octet & 0x3F) + 1;
  if ((octet & 0x7F) == fi::kLength2Medium.m_pattern) return LongLength(fi::kLength2Medium, 1);
  if ((octet & 0x7F) == fi::kLength2Large.m_pattern) return LongLength(fi::kLength2Large, 4);
  ThrowFastInfosetFailure("Invalid NonEmptyOctetString type  on the second bit of an octet.");
}

std::uint64_t COctetSource::NonEmptyOctetStringBit5Length(std::uint32_t octet) {
  if ((octet & 0x08) == 0) return (octet & 0x07) + 1;
  if ((octet & 0x0F) == fi::kLength5Medium.m_pattern) return LongLength(fi::kLength5Medium, 1);
  if ((octet & 0x0F) == fi::kLength5Large.m_pattern) return LongLength(fi::kLength5Large, 4);
  ThrowFastInfosetFailure("Invalid NonEmptyOctetString type  on the fifth bit of an octet.");
}

std::uint64_t COctetSource::NonEmptyOctetStringBit7Length(std::uint32_t octet) {
  if ((octet & 0x02) == 0) return (octet & 0x01) + 1;
  bool const isLarge = (octet & 0x03) == fi::kLength7Large.m_pattern;
  return isLarge ? LongLength(fi::kLength7Large, 4) : LongLength(fi::kLength7Medium, 1);
}

std::uint32_t COctetSource::LengthOfSequence() {
  constexpr fi::Form kLarge = {0x80, 129};
  std::uint32_t const octet = Octet();
  return octet < kLarge.m_pattern ? octet + 1 : Continue(kLarge, octet & 0x0F, 2);
}

}  // namespace Quillon9
