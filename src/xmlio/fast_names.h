#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/fast_paths.h"
#include "base/text_copy.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/markup_scan.h"

namespace Quillon9 {

/// A name as a document spells it, with what is known about it. Prefixes are names as well.
struct FastName {
  std::string_view text;               ///< in the input
  std::uint64_t hash = 0;              ///< of the text
  std::uint32_t colon = 0;             ///< where it is in the text; 0 for none
  std::uint32_t lastTag = 0;           ///< the number of the last start tag that has this as an attribute
  FastName* prefix = nullptr;          ///< what is in front of the colon, or FastNames::NoPrefix()
  FastName* declared = nullptr;        ///< the prefix that this declares as an attribute; null for other names
  std::string const* bound = nullptr;  ///< the namespace that this stands for as a prefix; null for none

  CXmlName const* shared = nullptr;  ///< the name in the tree while the prefix is bound to sharedUri; null if unknown
  std::string const* sharedUri = nullptr;
  CXmlName const* sharedAlone = nullptr;  ///< the name in the tree as an attribute without a prefix; null if unknown

  FastName* followers[2] = {};  ///< the names that came after this one, the latest first
  FastName* nextInBucket = nullptr;

  std::string_view LocalName() const { return colon == 0 ? text : text.substr(colon + 1); }
  /// Whether this is the name at \p at in an input that ends at \p end.
  bool IsAt(char const* at, char const* end) const {
    std::size_t const size = text.size();
    return static_cast<std::size_t>(end - at) > size && IsSameText({at, size}, text) &&
           !MarkupScan::Is(MarkupScan::kNamePart, at[size]);
  }
};

/// The names of one read of an input, each of which is checked only once.
class FastNames {
 public:
  /// Names beyond ASCII are refused unless \p takesAll. The input outlives this.
  explicit FastNames(bool takesAll);
  FastNames(FastNames const&) = delete;
  FastNames& operator=(FastNames const&) = delete;

  /// Read the name at \p at and move \p at to its end. Return null if there is none, or one that is refused or no QName.
  /// Some byte before \p end is no part of a name.
  FastName* Read(char const*& at, char const* end) {
    // Documents are repetitive: most names follow one that they followed before.
    for (FastName* const likely : m_last->followers) {
      if (!kFollowers.IsOn() || likely == nullptr || !likely->IsAt(at, end)) continue;
      kFollowers.Verify([&] { return Find(likely->text, likely->hash) == likely; });
      at += likely->text.size();
      return m_last = likely;
    }
    return ReadAnother(at);
  }
  /// The prefix of names that have none.
  FastName* NoPrefix() { return &m_noPrefix; }

 private:
  static constexpr std::size_t kFirstBuckets = 64;
  static constexpr std::size_t kChunk = 32;

  [[gnu::noinline]] FastName* ReadAnother(char const*& at);
  FastName* FindOrAdd(std::string_view text);
  FastName* Find(std::string_view text, std::uint64_t hash) const;
  FastName* Add(std::string_view text, std::uint64_t hash);
  void SetPrefix(FastName& name);
  FastName* Store(FastName const& name);
  void Grow();
  FastName*& BucketOf(std::uint64_t hash) { return m_buckets[hash & (m_buckets.size() - 1)]; }

  bool const m_takesAll;
  FastName m_noPrefix;
  FastName* m_last = &m_noPrefix;
  std::vector<FastName*> m_buckets;
  std::vector<std::vector<FastName>> m_chunks;  // their elements stay where they are
  std::size_t m_count = 0;
};

}  // namespace Quillon9
