#pragma once

#include "quillon9/export.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// What finished output is wrapped in.
enum CompressionType : int {
  CompressionType_None = 0,  ///< nothing: the bytes as they are
  CompressionType_GZip = 1,  ///< gzip (RFC 1952), for streams and files
  CompressionType_ZLib = 2,  ///< zlib (RFC 1950), for streams only
};

/// Compresses output and inflates input, whole buffers at a time. Each call has its own state. Any thread.
class QUILLON9_API CQnZip {
 public:
  virtual ~CQnZip();

  /// Compress the bytes of \p data in place, at the fastest level. Empty data, and any other \p type than the two
  /// that compress, leave it as it is.
  /// \throws CQnException as Compress(); \p data is then left without bytes.
  static void CompressData(CBinaryData& data, CompressionType type);

  /// Replace the buffer \p data, which comes from new[], by one that holds the compressed bytes, and \p size by
  /// their number. The buffer stays as long as the old one was. Any other \p type than the two that compress
  /// changes nothing.
  /// \throws CQnException "Failed to compress data. [Error Code: %d]" with the code of zlib: 0 or -5 when the
  /// result would be longer than what was given, as it is for very short data and for what is compressed already.
  ///         "The data is too long [%lu bytes]" above 4,294,967,295 bytes. Buffer and size are unchanged then.
  static void Compress(unsigned char** data, unsigned long* size, CompressionType type);

  /// Replace the buffer \p data, which comes from new[], by a new one with the inflated bytes, and \p size by
  /// their number, if the bytes begin with a complete gzip or zlib stream; what follows it is dropped. All else, a
  /// stream that is damaged or cut off included, stays as it is without a failure. To find that plain text is not
  /// compressed costs two bytes' look.
  /// \throws CQnException "The decompressed data exceeds the limit of %u bytes"
  /// (CLimits::GetMaxDecompressedSize())
  ///         or, for what looks like a compressed stream, "The data is too long [%lu bytes]" above 4,294,967,295
  ///         bytes. Buffer and size are unchanged then, and also after std::bad_alloc.
  static void Decompress(unsigned char** data, unsigned long* size);
};

}  // namespace Quillon9
