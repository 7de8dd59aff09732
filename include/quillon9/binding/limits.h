#pragma once

#include <cstdint>

#include "quillon9/export.h"

namespace Quillon9 {

/// Process-wide bounds on what a hostile document may cost. Set them before threads run, as ASCIIOnly(bool) is;
/// they are plain values without a lock. A document beyond a bound fails with a CQnException that names it.
class QUILLON9_API CLimits {
 public:
  /// Deepest nesting of elements, the document element counting 1. Default 1,000: reading, writing and destroying
  /// bound objects recurses once a level, and this depth fits the stack of a small thread.
  static std::uint32_t GetMaxElementDepth();
  static void SetMaxElementDepth(std::uint32_t depth);

  /// Most bytes that one compressed input may grow to. Default 1 GiB: a few megabytes of gzip can hold 4 GiB. Also
  /// the most bytes that the references of one Fast Infoset document to long texts in its tables may repeat.
  static std::uint32_t GetMaxDecompressedSize();
  static void SetMaxDecompressedSize(std::uint32_t bytes);
};

}  // namespace Quillon9
