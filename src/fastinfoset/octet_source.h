#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fastinfoset/constants.h"
#include "quillon9/base/failures.h"

namespace Quillon9 {

/// Fail with "Failed to parse FastInfoset. " and \p reason.
/// \throws CQnException of \p kind, always.
[[noreturn]] void ThrowFastInfosetFailure(char const* reason, FailureKind kind = FailureKind_Parse);

/// Delivers a document that is not in memory as a whole.
class OctetSupply {
 public:
  struct Octets {
    std::uint8_t const* begin;
    std::uint8_t const* end;
  };

  /// The octets from \p position on, of which \p left are known: at least \p count of them, unless the document ends
  /// before. Those in front of them are dropped.
  /// \throws what the input throws; nobody reads from it any more then.
  virtual Octets Supply(std::uint8_t const* position, std::size_t left, std::uint64_t count) = 0;

 protected:
  ~OctetSupply() = default;
};

/// Reads the octets of a Fast Infoset document in sequence, and the forms of integers and lengths in Rec. ITU-T X.891,
/// C.21 to C.28. A form is named after the bit of the current octet on which it begins, bit 1 being the most
/// significant. The caller passes that octet; the following ones are read from here.
///
/// Every read is checked against the end. The octets are borrowed: those of a supply until the next operation.
class COctetSource {
 public:
  COctetSource(std::uint8_t const* data, std::size_t size) : m_begin(data), m_position(data), m_end(data + size) {}

  /// All octets that \p supply, which is borrowed, delivers.
  explicit COctetSource(OctetSupply& supply) : m_supply(&supply) {}

  std::uint8_t const* GetPosition() const { return m_position; }
  std::size_t GetOffset() const { return m_passed + static_cast<std::size_t>(m_position - m_begin); }
  /// How many octets are there. A supply may have more.
  std::size_t GetLeft() const { return static_cast<std::size_t>(m_end - m_position); }

  /// Whether there are \p count more octets, after getting as many.
  bool Has(std::uint64_t count) { return count <= GetLeft() || Fill(count); }
  /// Skip one octet to \p most octets, which is not 0, and return them; nothing at the end of the document.
  std::string_view Piece(std::uint64_t most);
  /// Skip \p count octets and return the first of them.
  /// \throws CQnException "Failed to parse FastInfoset. Unexpected End of File."; so do all functions below.
  std::uint8_t const* Move(std::uint64_t count) {
    if (!Has(count)) ThrowEndOfFile();
    std::uint8_t const* const first = m_position;
    m_position += count;
    return first;
  }
  /// Return the next octet.
  std::uint32_t Octet() { return *Move(1); }
  /// Skip \p count octets, however many they are.
  void Skip(std::uint64_t count) {
    if (count > GetLeft()) return SkipPieces(count);
    m_position += count;
  }
  /// Fail at \p offset.
  [[noreturn]] void ThrowEndAt(std::size_t offset);

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
  bool Fill(std::uint64_t count);
  void SkipPieces(std::uint64_t count);
  std::uint32_t Continue(fi::Form const& form, std::uint32_t leading, std::uint32_t count);
  std::uint64_t LongLength(fi::Form const& form, std::uint32_t count);

  std::uint8_t const* m_begin = nullptr;
  std::uint8_t const* m_position = nullptr;
  std::uint8_t const* m_end = nullptr;
  OctetSupply* m_supply = nullptr;
  std::size_t m_passed = 0;  // octets in front of m_begin
};

}  // namespace Quillon9
