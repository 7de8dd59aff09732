#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.h"

namespace Quillon9 {

/// Where something is in an input of at most 4 GiB.
struct InputPosition {
  std::uint32_t offset = 0;  ///< in bytes
  std::uint32_t line = 0;    ///< from 1; 0 where there are no lines
  std::uint32_t column = 0;  ///< in characters, from 1
};

/// The elements of a document in the order of their start tags, with their names, places and numbers among their
/// siblings. Its memory is in proportion to their number, and an element costs constant time.
class DocumentOutline {
 public:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  /// Open a child of the innermost open element. \p name is as the document spells it.
  void Start(std::string_view name, InputPosition const& at);
  /// Close the innermost open element. Does nothing if there is none.
  void End(InputPosition const& at);

  std::size_t GetSize() const { return m_elements.size(); }
  /// The innermost open element; kNone if there is none.
  std::uint32_t GetOpen() const { return m_open; }
  InputPosition const& StartOf(std::uint32_t element) const { return m_elements[element].start; }
  InputPosition const& EndOf(std::uint32_t element) const { return m_elements[element].end; }
  /// The path from the root, for example `/order/item[3]`, where a number says which of the siblings of the name it is.
  /// Long names are cut, and the middle of a long path may be missing. Empty for kNone.
  std::string PathOf(std::uint32_t element) const;
  /// \p name, cut if it is long.
  static std::string Shown(std::string const& name);

 private:
  struct Element {
    std::uint32_t parent;
    std::uint32_t name;
    std::uint32_t number;  // among its siblings of this name, from 1
    bool hasTwin;          // one of them follows
    InputPosition start;
    InputPosition end;
  };
  struct Name {
    std::string shown;
    std::uint32_t last = kNone;  // the last child of this name of an open element
  };
  struct Hash {
    std::size_t operator()(std::string const& text) const { return SeededHash::OfText(text); }
  };
  struct Change {
    std::uint32_t name;
    std::uint32_t last;
  };

  std::uint32_t IdOf(std::string_view name);
  void AppendStep(std::string& path, std::uint32_t element) const;

  std::vector<Element> m_elements;
  std::vector<Name> m_names;
  std::unordered_map<std::string, std::uint32_t, Hash> m_ids;
  // What Name::last was before the first child of each name of the open elements; one start in it for each of them.
  std::vector<Change> m_changes;
  std::vector<std::size_t> m_changeStarts;
  std::uint32_t m_open = kNone;
};

}  // namespace Quillon9
