#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/xmlio/content_item.h"
#include "quillon9/xmlio/markup.h"
#include "quillon9/xmlio/writer.h"
#include "text/utf8_text.h"

namespace Quillon9 {

/// Write the runs of text and the children of an element, with \p markup where it stands between them and inside of
/// text. \p writeChild gets the node of a child.
template <class Node, class WriteChild>
void WriteContentItems(CXmlWriter& writer, CContentList<Node> const& content, std::vector<CMarkup> const& markup,
                       WriteChild writeChild) {
  auto next = markup.begin();
  std::size_t child = 0;
  std::size_t passed = 0;
  auto const isHere = [&] { return next != markup.end() && next->childrenInFront <= child; };
  for (CContentItem<Node> const& item : content) {
    std::string_view run = item.GetText();
    while (isHere() && (!item.IsText() || next->textInFront < passed + run.size())) {
      std::size_t const place = std::max(next->textInFront, passed) - passed;
      std::size_t const size = item.IsText() ? Utf8Text::OutsideCharacters(run, place) : 0;
      writer.WriteString(std::string(run.substr(0, size)), ItemType_string);
      run.remove_prefix(size);
      passed += size;
      writer.WriteMarkup(*next++);
    }
    if (item.IsText()) {
      writer.WriteString(std::string(run), ItemType_string);
      passed += run.size();
    } else {
      writeChild(*item.GetElement());
      ++child;
    }
  }
  while (next != markup.end()) writer.WriteMarkup(*next++);
}

}  // namespace Quillon9
