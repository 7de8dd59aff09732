#pragma once

#include <zlib.h>

namespace Quillon9 {

/// Return whether the first bytes can be those of a gzip or zlib stream. This is what inflate() would check first, done
/// before allocating its memory.
inline bool HasCompressedHeader(unsigned char const* data, unsigned long size) {
  if (size < 2) return false;
  if (data[0] == 0x1F && data[1] == 0x8B) return true;
  bool const isDeflate = (data[0] & 0x0F) == Z_DEFLATED && (data[0] >> 4) + 8 <= MAX_WBITS;
  return isDeflate && (data[0] * 256 + data[1]) % 31 == 0;
}

}  // namespace Quillon9
