#pragma once

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

  /// Return tables with the entries of \p vocabulary, or only the built-in ones for null.
  static std::unique_ptr<WriterTables> Take(CFIVocabulary const* vocabulary);
  /// Keep \p tables for the next call of Take() in this thread, or delete them.
  static void Give(std::unique_ptr<WriterTables> tables) noexcept;
};

/// Add \p text unless the table is full.
inline void AddToIndex(CFIIndexMap& map, std::string_view text) {
  if (map.size() < CFIVocabulary::kMaxEntries) map.Insert(text);
}

}  // namespace Quillon9
