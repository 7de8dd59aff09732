#pragma once

#include <cstddef>

#include "fastinfoset/writer_tables.h"
#include "quillon9/fastinfoset/vocabulary.h"

namespace Quillon9 {

/// The only friend of a vocabulary and its index maps: what writers do with them and callers must not.
struct VocabularyAccess {
  /// Replace the indices in \p tables by those of \p vocabulary.
  static void CopyIndexes(CFIVocabulary const& vocabulary, WriterTables& tables) {
    tables.prefixes = vocabulary.m_prefixNameIndex;
    tables.namespaces = vocabulary.m_namespaceNameIndex;
    tables.localNames = vocabulary.m_localNameIndex;
    tables.elementNames = vocabulary.m_elementNameIndex;
    tables.attributeNames = vocabulary.m_attributeNameIndex;
    tables.chunks = vocabulary.m_characterChunkIndex;
    tables.attributeValues = vocabulary.m_attributeValueIndex;
  }
  /// Whether emptying the map takes little time, and keeping its memory little memory.
  static bool IsSmall(CFIIndexMap const& map) { return map.IsSmall(); }
  /// Empty the map and keep its memory.
  static void Clear(CFIIndexMap& map) { map.Clear(); }
  /// Remove all entries but the first \p size ones.
  static void ShrinkTo(CFIIndexMap& map, std::size_t size) { map.ShrinkTo(size); }
};

}  // namespace Quillon9
