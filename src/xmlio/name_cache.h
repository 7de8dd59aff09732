#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

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
        if (likely == nullptr || std::strcmp(likely->whole.c_str(), whole) != 0) continue;
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

  /// Seeded, because the document chooses the names: its author cannot know which ones collide.
  struct Hash {
    std::size_t operator()(std::string_view text) const {
      std::size_t hash = Seed();
      for (; text.size() >= sizeof hash; text.remove_prefix(sizeof hash)) hash = Mix(hash, Word(text, sizeof hash));
      return Mix(hash, Word(text, text.size()) ^ (text.size() << 56));
    }
    static std::size_t Word(std::string_view text, std::size_t size) {
      std::size_t word = 0;
      std::memcpy(&word, text.data(), size);
      return word;
    }
    static std::size_t Mix(std::size_t hash, std::size_t word) {
      __extension__ using Wide = unsigned __int128;
      Wide const product = static_cast<Wide>(hash ^ word) * (0x9E3779B97F4A7C15U ^ Seed());
      return static_cast<std::size_t>(product) ^ static_cast<std::size_t>(product >> 64);
    }
    static std::size_t Seed() {
      static std::size_t const seed = (std::size_t{std::random_device()()} << 32 | std::random_device()()) | 1;
      return seed;
    }
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
