#include "fastinfoset/octet_sink.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/streams.h"

namespace Quillon9 {

void ThrowFastInfosetWriteFailure(std::string const& reason) {
  throw CQnException("Failed to write FastInfoset. " + reason);
}

void COctetSink::Flush() {
  if (m_size == 0 || m_stream == nullptr) return;
  m_stream->Append(reinterpret_cast<unsigned char const*>(m_octets.get()), m_size);
  m_size = 0;
}

void COctetSink::Grow(std::size_t more) {
  std::size_t const capacity = std::max(2 * m_capacity, m_size + more + kBlockSize);
  std::unique_ptr<char[]> larger(new char[capacity]);
  if (m_size != 0) std::memcpy(larger.get(), m_octets.get(), m_size);
  m_octets = std::move(larger);
  m_capacity = capacity;
}

// Write the value minus the form's first one, with its top bits in the octet of the pattern.
void COctetSink::Stored(fi::Form const& form, std::uint32_t leading, unsigned long value, int moreOctets) {
  auto const stored = static_cast<std::uint32_t>(value - form.m_first);
  int shift = moreOctets * 8;
  Octet(leading | form.m_pattern | stored >> shift);
  while (shift != 0) Octet(stored >> (shift -= 8));
}

void COctetSink::Integer1To2pw20Bit2(std::uint32_t leading, unsigned long value) {
  if (value < fi::kInteger2Medium.m_first) {
    Octet(leading | static_cast<std::uint32_t>(value - 1));
  } else if (value < fi::kInteger2Large.m_first) {
    Stored(fi::kInteger2Medium, leading, value, 1);
  } else {
    Stored(fi::kInteger2Large, leading, value, 2);
  }
}

// Write an integer that needs more than one octet.
void COctetSink::LongIntegerBit3(std::uint32_t leading, unsigned long value) {
  if (value < fi::kInteger3Large.m_first) {
    Stored(fi::kInteger3Medium, leading, value, 1);
  } else if (value < fi::kInteger3Huge.m_first) {
    Stored(fi::kInteger3Large, leading, value, 2);
  } else {
    // Documents have always contained one more here than the form's first value requires.
    Octet(leading | fi::kInteger3Huge.m_pattern);
    Stored({0, fi::kInteger3Huge.m_first - 1}, 0, value, 2);
  }
}

// Write an integer that needs more than one octet.
void COctetSink::LongIntegerBit4(std::uint32_t leading, unsigned long value) {
  if (value < fi::kInteger4Large.m_first) {
    Stored(fi::kInteger4Medium, leading, value, 1);
  } else if (value < fi::kInteger4Huge.m_first) {
    Stored(fi::kInteger4Large, leading, value, 2);
  } else {
    Octet(leading | fi::kInteger4Huge.m_pattern);
    Stored({0, fi::kInteger4Huge.m_first}, 0, value, 2);
  }
}

void COctetSink::Integer0To2pw20Bit2(std::uint32_t leading, unsigned long value) {
  if (value == 0) {
    Octet(leading | fi::kIndexZeroBit2);
  } else {
    Integer1To2pw20Bit2(leading, value);
  }
}

void COctetSink::OctetString(std::uint32_t leading, std::string_view octets, fi::Form const& medium,
                             fi::Form const& large) {
  std::size_t const length = octets.size();
  if (length == 0) ThrowFastInfosetWriteFailure("An octet string may not be empty.");
  if (length < medium.m_first) {
    Octet(leading | static_cast<std::uint32_t>(length - 1));
  } else if (length < large.m_first) {
    Octet(leading | medium.m_pattern);
    Stored({0, medium.m_first}, 0, length, 0);
  } else {
    if (length - large.m_first > UINT32_MAX) {
      ThrowFastInfosetWriteFailure(FormatString("An octet string is too long [%zu octets]", length));
    }
    Octet(leading | large.m_pattern);
    Stored({0, large.m_first}, 0, length, 3);
  }
  Octets(octets);
}

void COctetSink::NonEmptyOctetStringBit2(std::uint32_t leading, std::string_view octets) {
  OctetString(leading, octets, fi::kLength2Medium, fi::kLength2Large);
}

void COctetSink::NonEmptyOctetStringBit5(std::uint32_t leading, std::string_view octets) {
  OctetString(leading, octets, fi::kLength5Medium, fi::kLength5Large);
}

void COctetSink::NonEmptyOctetStringBit7(std::uint32_t leading, std::string_view octets) {
  OctetString(leading, octets, fi::kLength7Medium, fi::kLength7Large);
}

}  // namespace Quillon9
