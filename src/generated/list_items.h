#pragma once

#include <algorithm>
#include <string_view>

namespace Quillon9 {

/// What separates the items of a list (W3C XML Schema Part 2, 4.3.6).
constexpr std::string_view kListBlanks = " \t\r\n";

/// Goes through the items of a list. Keeps a view of its text.
class ListItems {
 public:
  explicit ListItems(std::string_view text) : m_rest(text) {}

  /// Go to the next item; false if there is none.
  bool Next() {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kListBlanks), m_rest.size()));
    m_item = m_rest.substr(0, m_rest.find_first_of(kListBlanks));
    m_rest.remove_prefix(m_item.size());
    return !m_item.empty();
  }
  std::string_view Text() const { return m_item; }

 private:
  std::string_view m_rest;
  std::string_view m_item;
};

}  // namespace Quillon9
