#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/fast_paths.h"
#include "base/seeded_hash.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// Finds the name that the parser passes as one text, "uri|local" in UTF-8, among those that the document has used:
/// each is split, converted and stored only once, which saves much of the time of reading.
class CNameCache {
 public:
  /// Return the name \p whole, or null if it has not occurred yet.
  CXmlName const* Find(char const* whole) {
    // Documents are repetitive: most names follow one that they followed before.
    if (m_last != nullptr) {
      for (Entry* const likely : m_last->followers) {
        if (!kFollowers.IsOn() || likely == nullptr || std::strcmp(likely->whole.c_str(), whole) != 0) continue;
        kFollowers.Verify([&] { return m_entries.at(whole).get() == likely; });
        m_last = likely;
        return likely->name;
      }
    }
    return FindInMap(whole);
  }

  CXmlName const* Add(char const* whole, CXmlName const* name) {
    auto entry = std::make_unique<Entry>(Entry{whole, name, {}});
    std::string_view const key = entry->whole;
    return Follow(m_entries.emplace(key, std::move(entry)).first->second);
  }

 private:
  [[gnu::noinline]] CXmlName const* FindInMap(char const* whole) {
    auto const found = m_entries.find(std::string_view(whole));
    return found != m_entries.end() ? Follow(found->second) : nullptr;
  }

  struct Entry {
    std::string whole;
    CXmlName const* name;
    Entry* followers[2];  ///< the names that came after this one, the latest first
  };

  struct Hash {  // the document chooses the names
    std::size_t operator()(std::string_view text) const { return SeededHash::OfText(text); }
  };

  CXmlName const* Follow(std::unique_ptr<Entry> const& entry) {
    if (m_last != nullptr) m_last->followers[1] = std::exchange(m_last->followers[0], entry.get());
    m_last = entry.get();
    return m_last->name;
  }

  std::unordered_map<std::string_view, std::unique_ptr<Entry>, Hash> m_entries;
  Entry* m_last = nullptr;
};

}  // namespace Quillon9
