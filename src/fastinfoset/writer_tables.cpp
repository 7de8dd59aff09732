#include "fastinfoset/writer_tables.h"

#include <utility>

#include "base/fast_paths.h"
#include "base/per_thread.h"
#include "fastinfoset/vocabulary_access.h"

namespace Quillon9 {

namespace {

struct SpareTables {
  std::unique_ptr<WriterTables> tables;
};

template <class Tables, class Visit>
void ForEachMap(Tables& tables, Visit visit) {
  for (auto* const map : {&tables.prefixes, &tables.namespaces, &tables.localNames, &tables.elementNames,
                          &tables.attributeNames, &tables.chunks, &tables.attributeValues}) {
    visit(*map);
  }
}

}  // namespace

std::unique_ptr<WriterTables> WriterTables::Take(CFIVocabulary const* vocabulary) {
  SpareTables* const spare = kSpareTables.IsOn() ? PerThread<SpareTables>::Find() : nullptr;
  std::unique_ptr<WriterTables> tables;
  if (spare != nullptr) tables = std::move(spare->tables);
  if (tables == nullptr) tables = std::make_unique<WriterTables>();
  if (vocabulary != nullptr) {
    VocabularyAccess::CopyIndexes(*vocabulary, *tables);
  } else {
    tables->prefixes.Insert(FI_DEFAULT_PREFIX);
    tables->namespaces.Insert(FI_DEFAULT_NAMESPACE);
  }
  return tables;
}

void WriterTables::Give(std::unique_ptr<WriterTables> tables) noexcept {
  SpareTables* const spare = kSpareTables.IsOn() ? PerThread<SpareTables>::Find() : nullptr;
  bool isSmall = spare != nullptr;
  ForEachMap(*tables, [&](CFIIndexMap const& map) { isSmall = isSmall && VocabularyAccess::IsSmall(map); });
  if (!isSmall) return;
  ForEachMap(*tables, [](CFIIndexMap& map) { VocabularyAccess::Clear(map); });
  tables->knownNames = {};
  tables->limits = {};
  spare->tables = std::move(tables);
}

WriterTables::Mark WriterTables::GetMark() const {
  Mark mark;
  std::size_t* size = mark.sizes.data();
  ForEachMap(*this, [&](CFIIndexMap const& map) { *size++ = map.size(); });
  mark.limits = limits;
  return mark;
}

void WriterTables::ReturnTo(Mark const& mark) {
  std::size_t const* size = mark.sizes.data();
  ForEachMap(*this, [&](CFIIndexMap& map) { VocabularyAccess::ShrinkTo(map, *size++); });
  knownNames = {};
  limits = mark.limits;
}

}  // namespace Quillon9
