#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#include "fastinfoset/known_names.h"
#include "quillon9/fastinfoset/vocabulary.h"

namespace Quillon9 {

/// The indices of what a writer has written, which begin with those of a vocabulary. A thread keeps small tables for its
/// next writer, because most of the time of a small document would go into their growth.
struct WriterTables {
  CFIIndexMap prefixes;
  CFIIndexMap namespaces;
  CFIIndexMap localNames;
  CFIIndexMap elementNames;
  CFIIndexMap attributeNames;
  CFIIndexMap chunks;
  CFIIndexMap attributeValues;
  CKnownNames knownNames;

  /// How much of the values of elements and attributes enters a table. Usually everything does, until a table is full.
  struct ValueLimits {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t entries = kNone;     ///< of each table
    std::size_t octetsLeft = kNone;  ///< of further values in both
  };
  ValueLimits limits;

  /// Whether \p value is to enter \p values, one of the tables of values.
  bool Takes(CFIIndexMap const& values, std::string_view value) const {
    return values.size() < limits.entries && value.size() <= limits.octetsLeft;
  }
  /// Add it.
  void AddValue(CFIIndexMap& values, std::string_view value);

  /// The sizes of the tables, for ReturnTo().
  struct Mark {
    std::array<std::size_t, 7> sizes{};
    ValueLimits limits;
  };
  Mark GetMark() const;
  /// Remove what was added after \p mark.
  void ReturnTo(Mark const& mark);

  /// Return tables with the entries of \p vocabulary, or only the built-in ones for null.
  static std::unique_ptr<WriterTables> Take(CFIVocabulary const* vocabulary);
  /// Keep \p tables for the next call of Take() in this thread, or delete them.
  static void Give(std::unique_ptr<WriterTables> tables) noexcept;
};

/// Add \p text unless the table is full.
inline void AddToIndex(CFIIndexMap& map, std::string_view text) {
  if (map.size() < CFIVocabulary::kMaxEntries) map.Insert(text);
}

inline void WriterTables::AddValue(CFIIndexMap& values, std::string_view value) {
  AddToIndex(values, value);
  if (limits.octetsLeft != ValueLimits::kNone) limits.octetsLeft -= value.size();
}

}  // namespace Quillon9
