#pragma once

#include <cstdint>
#include <string_view>

#include "base/byte_blocks.h"

namespace Quillon9 {

/// Return whether \p text has nothing but white space. Control characters, which XML text does not contain, count as
/// white space, too.
inline bool IsBlankText(std::string_view text) {
  constexpr std::uint64_t kToHighBit = ByteBlocks::kOnes * (0x80 - 0x21);
  return !ByteBlocks::Any(text, ' ', [](std::uint64_t block) {
    return ((block & ~ByteBlocks::kHighBits) + kToHighBit) | block;  // high bits where a byte is above a blank
  });
}

}  // namespace Quillon9
