#include "xmlio/expat_input.h"

#include <algorithm>
#include <string_view>

#include "xmlio/single_byte_encoding.h"

namespace Quillon9 {

namespace {

/// Expat copies the bytes of a call to a buffer of at most 1 GiB, so larger input is passed in slices. Otherwise there
/// is one call, because expat scans a token that spans calls again from its start in each of them.
constexpr std::size_t kLargestCall = 0x3FFF0000UL;
constexpr std::size_t kSlice = 0x10000000UL;

std::string_view StartOf(ExpatInput const& input) {
  return {reinterpret_cast<char const*>(input.data), std::min(input.size, std::size_t{3})};
}

}  // namespace

XML_Status ExpatInput::FeedTo(XML_Parser parser, bool isFinal) const {
  auto const* next = reinterpret_cast<char const*>(data);
  std::size_t left = size;
  std::size_t const perCall = left <= kLargestCall ? left : kSlice;
  XML_Status status;
  do {
    std::size_t const count = std::min(left, perCall);
    status = XML_Parse(parser, next, static_cast<int>(count), isFinal && count == left);
    next += count;
    left -= count;
  } while (status == XML_STATUS_OK && left > 0);
  return status;
}

bool ExpatInput::FillEncoding(XML_Char const* name, XML_Encoding& encoding) const {
  encoding.data = nullptr;
  encoding.convert = nullptr;
  encoding.release = nullptr;
  return !ShowsUnicode() && FillSingleByteTable(name, encoding.map);
}

// For expat, a byte order mark is a character of the first line.
InputPosition ExpatInput::PositionOf(XML_Parser parser) const {
  auto const offset = static_cast<std::uint32_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser), 0));
  auto const line = static_cast<std::uint32_t>(XML_GetCurrentLineNumber(parser));
  auto const before = static_cast<std::uint32_t>(XML_GetCurrentColumnNumber(parser));
  bool const countsMark = line == 1 && before > 0 && HasByteOrderMark();
  return {offset, line, countsMark ? before : before + 1};
}

bool ExpatInput::HasByteOrderMark() const {
  std::string_view const start = StartOf(*this);
  std::string_view const two = start.substr(0, 2);
  return start == "\xEF\xBB\xBF" || two == "\xFF\xFE" || two == "\xFE\xFF";
}

bool ExpatInput::ShowsUnicode() const {
  return HasByteOrderMark() || StartOf(*this).substr(0, 2).find('\0') != std::string_view::npos;
}

}  // namespace Quillon9
