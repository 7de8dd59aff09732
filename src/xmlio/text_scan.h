#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "xmlio/document_outline.h"
#include "xmlio/expat_input.h"

namespace Quillon9 {

/// Finds the places of elements and attributes in the input of a read, which nothing keeps while the tree is built: it
/// parses the input once more. Names come as the document spells them, in UTF-8.
class TextScan {
 public:
  /// The bytes are borrowed.
  explicit TextScan(ExpatInput const& input) : m_input(input) {}

  /// Add the elements to \p outline, up to a fault of the document or the offset \p stopAt. The elements that are open
  /// there stay so.
  /// \throws std::bad_alloc.
  void Outline(DocumentOutline& outline, std::uint64_t stopAt = ~std::uint64_t{0});

  /// After Outline(): where the attributes in the start tag at \p tag begin, in order. \p withDeclarations says whether
  /// those that declare namespaces are among them. Empty if there is no start tag, as in the replacement of an entity.
  std::vector<InputPosition> AttributesAt(InputPosition const& tag, bool withDeclarations) const;
  /// After Outline(): the name that begins at \p at, cut if it is long.
  std::string NameAt(InputPosition const& at) const;

 private:
  enum class Form { kUtf8, kUtf16LE, kUtf16BE, kSingleByte };
  class Parse;
  class Cursor;

  /// The character at the offset \p at, which ends at \p end. 0 at the end of the input.
  std::uint32_t CharacterAt(std::size_t at, std::size_t& end) const;
  std::uint32_t Utf8At(std::size_t at, std::size_t& end) const;
  std::uint32_t Utf16At(std::size_t at, std::size_t& end) const;

  ExpatInput m_input;
  Form m_form = Form::kUtf8;
  std::array<int, 256> m_table{};  // the characters of the bytes of kSingleByte
};

}  // namespace Quillon9
