#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Writes the text of the open element between its children while something else writes the children. The writer asks
/// for the text in front of each child.
class MixedTexts {
 public:
  /// The attributes of the open element are complete, and its content begins. \p places has the size of the text in
  /// front of each child; further children follow all text. Everything is borrowed.
  MixedTexts(CXmlWriter& writer, std::string_view text, std::vector<std::size_t> const& places);
  /// The writer no longer asks.
  ~MixedTexts();
  MixedTexts(MixedTexts const&) = delete;
  MixedTexts& operator=(MixedTexts const&) = delete;

  /// Write the text in front of the next child.
  void BeforeChild();
  /// Write the rest of the text, after the children.
  void Finish() { WriteUpTo(m_text.size()); }

 private:
  void WriteUpTo(std::size_t place);

  CXmlWriter& m_writer;
  std::string_view m_text;
  std::vector<std::size_t> const& m_places;
  std::size_t m_written = 0;
  std::size_t m_child = 0;
  CXmlWriter::CXmlWriterContext* m_element;
  MixedTexts* m_outer;
};

}  // namespace Quillon9
