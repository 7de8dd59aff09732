#pragma once

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "quillon9/base/limits.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/date_time_span.h"

/// Helpers that the fuzz targets share: taking the octets of an input one after another, and ending a run when a
/// condition fails.
namespace Fuzzing {

/// Values and trees are in the code page of the locale; in this one every character survives. Set before main.
inline bool const kIsUtf8 = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;

/// Ends the process with a message unless \p holds.
inline void Require(bool holds, char const* what, std::string const& got = "", std::string const& expected = "") {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n  got      [%s]\n  expected [%s]\n", what, got.c_str(), expected.c_str());
  std::abort();
}

inline void RequireEqual(std::string const& got, std::string const& expected, char const* what) {
  Require(got == expected, what, got, expected);
}

/// One input. Options are octets from '@' on, so that seeds are readable: '@' sets no bit, 'A' the lowest, and so on.
class Input {
 public:
  Input(std::uint8_t const* data, std::size_t size) : m_data(data), m_size(size) {}

  /// The six low bits of the next octet; 0 at the end.
  unsigned Options() { return m_size > 0 ? (--m_size, *m_data++ & 0x3Fu) : 0; }
  /// The text before the next \p separator, or all that is left.
  std::string Field(char separator) {
    std::size_t length = 0;
    while (length < m_size && m_data[length] != static_cast<unsigned char>(separator)) ++length;
    std::string const field = std::string(reinterpret_cast<char const*>(m_data), length);
    std::size_t const taken = length < m_size ? length + 1 : length;
    m_data += taken;
    m_size -= taken;
    return field;
  }
  std::uint8_t const* Data() const { return m_data; }
  std::size_t Size() const { return m_size; }
  std::string Rest() const { return std::string(reinterpret_cast<char const*>(m_data), m_size); }

 private:
  std::uint8_t const* m_data;
  std::size_t m_size;
};

/// Limits what a document may hold or grow to.
inline void LimitContent(std::uint32_t bytes) {
  Quillon9::CLimits::SetMaxContentSize(bytes);
  Quillon9::CLimits::SetMaxContentGrowth(1);
  Quillon9::CLimits::SetMaxDecompressedSize(bytes);
}

inline std::string Bytes(Quillon9::CBinaryData const& data) {
  return std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength());
}

/// An all-zero duration has no text that a parser accepts; a duration whose text has two fractions holds their sum.
inline bool IsReadAgain(Quillon9::CDateTimeSpan const& duration) {
  return duration.ToString().back() != 'P' && duration.GetMilliSeconds() < 1000 && duration.GetMicroSeconds() < 1000;
}

}  // namespace Fuzzing
