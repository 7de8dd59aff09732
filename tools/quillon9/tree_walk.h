#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// Call \p start for \p root and everything below it in document order, and \p end for each of them after its contents;
/// and \p text for each run of text of an element with mixed content. Takes constant stack, however deep the tree is.
template <class Start, class Text, class End>
void WalkContent(Quillon9::CXmlElement const& root, Start start, Text text, End end) {
  struct Open {
    Quillon9::CXmlElement const* element;
    Quillon9::CContentList<Quillon9::CXmlElement const> content;
    std::size_t next;
  };
  std::vector<Open> open;
  auto const enter = [&](Quillon9::CXmlElement const& element) {
    start(element);
    open.push_back({&element, element.Content(), 0});
  };
  for (enter(root); !open.empty();) {
    Open& innermost = open.back();
    if (innermost.next == innermost.content.size()) {
      end(*innermost.element);
      open.pop_back();
      continue;
    }
    auto const& item = innermost.content[innermost.next++];
    if (!item.IsText()) {
      enter(*item.GetElement());
    } else if (innermost.content.size() > 1) {
      text(item.GetText());
    }
  }
}

/// The same without the text.
template <class Start, class End>
void Walk(Quillon9::CXmlElement const& root, Start start, End end) {
  std::vector<Quillon9::CXmlElement const*> open;
  Quillon9::CXmlElement const* next = &root;
  for (;;) {
    if (next != nullptr) {
      start(*next);
      open.push_back(next);
      next = next->GetFirstElement();
      continue;
    }
    Quillon9::CXmlElement const* const done = open.back();
    end(*done);
    open.pop_back();
    if (open.empty()) return;
    next = done->GetNextSiblingElement();
  }
}

inline bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

/// Return the text of \p element, which is not mixed; without \p keepSpace, nothing if it is only white space between
/// its children.
inline std::string const& TextOf(Quillon9::CXmlElement const& element, bool keepSpace) {
  static std::string const none;
  bool const isDropped = !keepSpace && element.GetFirstElement() != nullptr && IsBlank(element.GetText());
  return isDropped ? none : element.GetText();
}

}  // namespace Quillon9Tool
