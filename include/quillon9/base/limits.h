#pragma once

#include <cstdint>

#include "quillon9/export.h"

namespace Quillon9 {

/// Process-wide bounds on what a hostile document may cost. Set them before threads run, like ASCIIOnly(bool); they are
/// plain values without a lock. A document beyond a bound fails with a CQnException that names the bound.
class QUILLON9_API CLimits {
 public:
  /// Deepest nesting of elements, where the document element counts 1. Default 1,000: reading and writing bound objects
  /// recurses and takes up to 1.2 KiB of stack a level, so this depth leaves room in 8 MiB for the caller and for
  /// builds with sanitizers. On a smaller stack "The element nesting exceeds the stack of the thread" ends the
  /// recursion of bound objects before it reaches the limit, while 64 KiB are left.
  ///@{
  static std::uint32_t GetMaxElementDepth();
  static void SetMaxElementDepth(std::uint32_t depth);
  ///@}

  /// Most memory that one input may turn into, in bytes: for the tree, and for it together with the objects that one
  /// operation makes from the tree. Both counts are approximate; docs/limits.md lists the rules. The bound is the
  /// larger of two values: the size, and the growth times the octets of the input as they arrive (for compressed input,
  /// the compressed octets). It never exceeds the total. Defaults: 256 MiB, 100 and 4 GiB.
  ///
  /// The size admits harmless documents that arrive in few octets: a gzip wrapper shrinks repetitive text to a
  /// thirtieth, and Fast Infoset shrinks elements to two octets. It does not depend on the form, so a document within
  /// it can be read in each form. The growth admits large documents, whose trees have up to 20 times the size of their
  /// text, and up to 50 times as CElement. The total keeps large inputs from multiplying.
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

  /// Most bytes that one compressed input may expand to. Default 1 GiB: a few megabytes of gzip can hold 4 GiB.
  ///@{
  static std::uint32_t GetMaxDecompressedSize();
  static void SetMaxDecompressedSize(std::uint32_t bytes);
  ///@}

  /// Whether a document may have a document type declaration. Default true. With false, XML text and Fast Infoset that
  /// have one fail with "The document has a document type declaration, which is not allowed", before any of its
  /// declarations is read. So neither entities nor default attributes can occur.
  ///@{
  static bool GetAllowDocumentType();
  static void SetAllowDocumentType(bool allow);
  ///@}

  /// How many attributes the document type of XML text may declare for one element; a repeated declaration counts
  /// again. Default 1,000, where large schemas declare a hundred: the parser goes through all of them at each start tag
  /// of that element, so without a bound the time would be quadratic in the size of the input. A document beyond it
  /// fails with "The document type declares more than %u attributes for the element [%s]".
  ///@{
  static std::uint32_t GetMaxDeclaredAttributes();
  static void SetMaxDeclaredAttributes(std::uint32_t count);
  ///@}

  /// Whether the library reads plain XML text by itself instead of by expat, which is several times as fast. Default
  /// true. Results and failures are the same in either case: expat reads everything that is not certainly well-formed.
  /// It always reads documents of 1 GiB or more, documents whose document type declaration has a part in brackets,
  /// documents in an encoding other than UTF-8, those of a CXmlDocument with an ElementFilter or with SchemaType_DTD,
  /// and those with characters beyond ASCII where the locale is not in UTF-8 and ASCIIOnly() is off. With false, it
  /// reads all text.
  ///@{
  static bool GetUseFastReader();
  static void SetUseFastReader(bool use);
  ///@}
};

}  // namespace Quillon9
