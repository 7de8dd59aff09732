#pragma once

#include <cstddef>
#include <cstdint>

#include "fastinfoset/constants.h"
#include "quillon9/base/failures.h"

namespace Quillon9 {

/// Fail with "Failed to parse FastInfoset. " and \p reason.
/// \throws CQnException of \p kind, always.
[[noreturn]] void ThrowFastInfosetFailure(char const* reason, FailureKind kind = FailureKind_Parse);

/// Reads the octets of a Fast Infoset document in sequence, and the forms of integers and lengths in Rec. ITU-T X.891,
/// C.21 to C.28. A form is named after the bit of the current octet on which it begins, bit 1 being the most
/// significant. The caller passes that octet; the following ones are read from here.
///
/// Every read is checked against the end. The octets are borrowed.
class COctetSource {
 public:
  COctetSource(std::uint8_t const* data, std::size_t size) : m_begin(data), m_position(data), m_end(data + size) {}

  std::uint8_t const* GetBegin() const { return m_begin; }
  std::uint8_t const* GetPosition() const { return m_position; }
  std::size_t GetOffset() const { return static_cast<std::size_t>(m_position - m_begin); }
  std::size_t GetLeft() const { return static_cast<std::size_t>(m_end - m_position); }

  /// Skip \p count octets and return the first of them.
  /// \throws CQnException "Failed to parse FastInfoset. Unexpected End of File."; so do all functions below.
  std::uint8_t const* Move(std::uint64_t count) {
    if (count > GetLeft()) ThrowEndOfFile();
    std::uint8_t const* const first = m_position;
    m_position += count;
    return first;
  }
  /// Return the next octet.
  std::uint32_t Octet() { return *Move(1); }

  /// \name Integers
  /// \throws CQnException "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the [second,
  ///         third or fourth] bit of an octet.", and "0 To 2^20" for the form with 0.
  /// @{
  std::uint32_t Integer1To2pw20Bit2(std::uint32_t octet);
  std::uint32_t Integer1To2pw20Bit3(std::uint32_t octet);
  std::uint32_t Integer1To2pw20Bit4(std::uint32_t octet);
  std::uint32_t Integer0To2pw20Bit2(std::uint32_t octet);
  /// @}

  /// \name Lengths of octet strings
  /// \throws CQnException "Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the [second or fifth] bit
  ///         of an octet."
  /// @{
  std::uint64_t NonEmptyOctetStringBit2Length(std::uint32_t octet);
  std::uint64_t NonEmptyOctetStringBit5Length(std::uint32_t octet);
  std::uint64_t NonEmptyOctetStringBit7Length(std::uint32_t octet);
  /// @}

  /// Return the number of items of a sequence, 1 to 1,048,704, which begins with the next octet.
  std::uint32_t LengthOfSequence();

 private:
  [[noreturn]] static void ThrowEndOfFile();
  std::uint32_t Continue(fi::Form const& form, std::uint32_t leading, std::uint32_t count);
  std::uint64_t LongLength(fi::Form const& form, std::uint32_t count);

  std::uint8_t const* m_begin;
  std::uint8_t const* m_position;
  std::uint8_t const* m_end;
};

}  // namespace Quillon9
