#pragma once

#include <cstddef>
#include <string>

#include "quillon9/values/binary_data.h"

namespace Quillon9::Testing {

/// Octets from a notation: hexadecimal pairs, blanks, and 'text' taken literally.
inline std::string Octets(std::string const& notation) {
  std::string octets;
  for (std::size_t at = 0; at < notation.size();) {
    if (notation[at] == ' ') {
      ++at;
    } else if (notation[at] == '\'') {
      std::size_t const end = notation.find('\'', at + 1);
      octets += notation.substr(at + 1, end - at - 1);
      at = end + 1;
    } else {
      octets += static_cast<char>(std::stoi(notation.substr(at, 2), nullptr, 16));
      at += 2;
    }
  }
  return octets;
}

inline std::string Bytes(CBinaryData const& data) {
  return std::string(data.GetData(), data.GetData() + data.GetLength());
}

/// For messages and comparison: two digits an octet.
inline std::string Hex(std::string const& octets) {
  return CBinaryData::GetAsHexString(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
}

}  // namespace Quillon9::Testing
