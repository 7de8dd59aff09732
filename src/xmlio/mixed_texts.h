#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "quillon9/xmlio/markup.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Further items that stand between the children of an element and in its text.
class InsertedItems {
 public:
  /// The place of the next one, in the order of writing; null for none.
  virtual CMarkup const* Next() const = 0;
  /// Write it.
  virtual void WriteNext(CXmlWriter& writer) = 0;

 protected:
  ~InsertedItems() = default;
};

/// Writes the text of the open element, and inserted items, between its children while something else writes the
/// children. The writer asks for what stands in front of each child.
class MixedTexts {
 public:
  /// The attributes of the open element are complete, and its content begins. \p places has the size of the text in
  /// front of each child; further children follow all text. If there is one of these objects for the open element
  /// already, which has only items, the new one takes them. Everything is borrowed.
  MixedTexts(CXmlWriter& writer, std::string_view text, std::vector<std::size_t> const& places,
             InsertedItems* items = nullptr);
  /// The writer no longer asks.
  ~MixedTexts();
  MixedTexts(MixedTexts const&) = delete;
  MixedTexts& operator=(MixedTexts const&) = delete;

  /// The one for the open element of \p writer; null for none.
  static MixedTexts* Of(CXmlWriter& writer);

  /// Write what stands in front of the next child.
  void BeforeChild();
  /// Write \p text, which follows the children, and the items in front of it. Those inside stand at their places if
  /// \p hasItemsInside, and otherwise follow it.
  void WriteText(std::string const& text, ItemType type, bool hasItemsInside);
  /// Write the rest, after the children.
  void Finish();

 private:
  void WriteItems(std::size_t childrenInFront, std::size_t textInFront);
  void WriteUpTo(std::size_t place);

  CXmlWriter& m_writer;
  std::string_view m_text;
  std::vector<std::size_t> const& m_places;
  InsertedItems* m_items;
  std::size_t m_written = 0;
  std::size_t m_child = 0;
  CXmlWriter::CXmlWriterContext* m_element;
  MixedTexts* m_outer;
};

}  // namespace Quillon9
