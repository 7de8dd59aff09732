#pragma once

#include <zlib.h>

#include "quillon9/xmlio/compression.h"

namespace Quillon9 {

/// Begin to compress with \p stream, at the fastest level. \p type is GZip or ZLib. Returns what zlib returns.
inline int InitDeflate(z_stream* stream, CompressionType type) {
  constexpr int kFastLevel = Z_BEST_SPEED;
  constexpr int kGZipWindowBits = MAX_WBITS + 16;
  constexpr int kMemoryLevel = 8;
  if (type == CompressionType_ZLib) return deflateInit(stream, kFastLevel);
  return deflateInit2(stream, kFastLevel, Z_DEFLATED, kGZipWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY);
}

}  // namespace Quillon9
