#pragma once

#include "quillon9/export.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// How finished output is compressed.
enum CompressionType : int {
  CompressionType_None = 0,  ///< not compressed
  CompressionType_GZip = 1,  ///< gzip (RFC 1952), for streams and files
  CompressionType_ZLib = 2,  ///< zlib (RFC 1950), for streams only
};

/// Compresses output and inflates input, one whole buffer at a time. Each call has its own state, so any thread may
/// call.
class QUILLON9_API CQnZip {
 public:
  virtual ~CQnZip();

  /// Compress the bytes of \p data in place, at the fastest level. Empty data, and any \p type other than GZip and
  /// ZLib, leave it unchanged.
  /// \throws CQnException as Compress() does; \p data is empty afterwards.
  static void CompressData(CBinaryData& data, CompressionType type);

  /// Replace the buffer \p data, which must come from new[], with one that holds the compressed bytes, and \p size with
  /// their number. The new buffer is as long as the old one. Any \p type other than GZip and ZLib changes nothing.
  /// \throws CQnException "Failed to compress data. [Error Code: %d]" with the zlib code: 0 or -5 if the result would
  ///         be longer than the input, as it is for very short data and for data that is already compressed. "The data
  ///         is too long [%lu bytes]" above 4,294,967,295 bytes. Buffer and size are unchanged then.
  static void Compress(unsigned char** data, unsigned long* size, CompressionType type);

  /// Replace the buffer \p data, which must come from new[], with a new one that holds the inflated bytes, and \p size
  /// with their number, if the bytes begin with a complete gzip or zlib stream. Anything after that stream is dropped.
  /// All other data, including a damaged or truncated stream, stays unchanged without a failure. For plain text, this
  /// looks at two bytes only.
  /// \throws CQnException "The decompressed data exceeds the limit of %u bytes" (CLimits::GetMaxDecompressedSize()) or,
  ///         for data that looks like a compressed stream, "The data is too long [%lu bytes]" above 4,294,967,295
  ///         bytes. Buffer and size are unchanged then, and also after std::bad_alloc.
  static void Decompress(unsigned char** data, unsigned long* size);
};

}  // namespace Quillon9
