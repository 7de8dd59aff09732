#pragma once

#include <cstdint>

#include "quillon9/export.h"

namespace Quillon9 {

/// Process-wide bounds on what a hostile document may cost. Set them before threads run, as ASCIIOnly(bool) is;
/// they are plain values without a lock. A document beyond a bound fails with a CQnException that names it.
class QUILLON9_API CLimits {
 public:
  /// Deepest nesting of elements, the document element counting 1. Default 1,000: reading and writing bound objects
  /// recurses, which takes up to 1.2 KiB of stack a level, so that this depth leaves room in 8 MiB for the caller, and
  /// for builds with sanitizers. On a smaller stack "The element nesting exceeds the stack of the thread" ends the
  /// recursion of bound objects before the limit does, while 64 KiB are left.
  ///@{
  static std::uint32_t GetMaxElementDepth();
  static void SetMaxElementDepth(std::uint32_t depth);
  ///@}

  /// What one input may deliver into the tree, in bytes: names and namespaces of each node, values, texts, namespace
  /// declarations, and 64 for each node. The bound is the larger of this size and the growth times the size of the
  /// input (decompressed). Defaults 64 MiB and 100: real documents deliver 20 times their size at most, but a namespace
  /// of a megabyte over ten thousand elements, default attributes of a DTD, and references to the tables of Fast
  /// Infoset repeat without end. A document beyond it fails with "The content of the document exceeds the limit of %llu
  /// bytes".
  ///@{
  static std::uint64_t GetMaxContentSize();
  static void SetMaxContentSize(std::uint64_t bytes);
  static std::uint32_t GetMaxContentGrowth();
  static void SetMaxContentGrowth(std::uint32_t factor);
  ///@}

  /// Most bytes that one compressed input may grow to. Default 1 GiB: a few megabytes of gzip can hold 4 GiB.
  ///@{
  static std::uint32_t GetMaxDecompressedSize();
  static void SetMaxDecompressedSize(std::uint32_t bytes);
  ///@}
};

}  // namespace Quillon9
