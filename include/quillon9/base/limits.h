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

  /// What one input may become in memory, in bytes: the tree, and with it the objects that one operation makes from
  /// the tree. Both count about what they take; docs/limits.md lists the rules. The bound is the larger of the size and
  /// of the growth times the octets of the input as they arrive, compressed ones as compressed; but never more than the
  /// total. Defaults 256 MiB, 100 and 4 GiB.
  ///
  /// The size admits what arrives in few octets although it is harmless: repetitive text shrinks to a thirtieth in a
  /// gzip wrapper, and elements shrink to two octets in Fast Infoset. It does not depend on the form, so that what is
  /// within it can be read in each of them. The growth admits large documents, whose trees have up to 20 times the
  /// size of their text, and up to 100 times as CElement. The total keeps large inputs from multiplying.
  ///
  /// A document beyond the bound fails with "The content of the document exceeds the limit of %llu bytes".
  ///@{
  static std::uint64_t GetMaxContentSize();
  static void SetMaxContentSize(std::uint64_t bytes);
  static std::uint32_t GetMaxContentGrowth();
  static void SetMaxContentGrowth(std::uint32_t factor);
  static std::uint64_t GetMaxContentTotal();
  static void SetMaxContentTotal(std::uint64_t bytes);
  ///@}

  /// Most bytes that one compressed input may grow to. Default 1 GiB: a few megabytes of gzip can hold 4 GiB.
  ///@{
  static std::uint32_t GetMaxDecompressedSize();
  static void SetMaxDecompressedSize(std::uint32_t bytes);
  ///@}

  /// Whether a document may have a document type declaration. Default true. With false, XML text and Fast Infoset that
  /// have one fail with "The document has a document type declaration, which is not allowed", before any of its
  /// declarations is read: no entities and no default attributes are left to reckon with.
  ///@{
  static bool GetAllowDocumentType();
  static void SetAllowDocumentType(bool allow);
  ///@}

  /// How many attributes the document type of XML text may declare for one element; a repeated declaration counts
  /// again. Default 1,000, where large schemas declare a hundred: the parser goes through all of them at each start tag
  /// of that element, so that without a bound the time grows with the square of the input. A document beyond it fails
  /// with "The document type declares more than %u attributes for the element [%s]".
  ///@{
  static std::uint32_t GetMaxDeclaredAttributes();
  static void SetMaxDeclaredAttributes(std::uint32_t count);
  ///@}
};

}  // namespace Quillon9
