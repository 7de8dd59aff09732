#include "xmlio/fast_names.h"

#include <utility>

#include "base/seeded_hash.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

namespace {

/// The prefix that is bound in each document.
constexpr std::string_view kXmlPrefix = "xml";
/// The attribute that declares the default namespace, and the prefix of those that declare others.
constexpr std::string_view kDeclaration = "xmlns";

std::string const& XmlNamespace() {
  static auto const& uri = *new std::string(CXmlWriter::XML_NAMESPACE);
  return uri;
}

}  // namespace

FastNames::FastNames(bool takesAll) : m_takesAll(takesAll), m_buckets(kFirstBuckets) {}

FastName* FastNames::ReadAnother(char const*& at) {
  char const* end = at;
  while (MarkupScan::Is(MarkupScan::kNamePart, *end)) ++end;
  FastName* const name = FindOrAdd({at, static_cast<std::size_t>(end - at)});
  if (name == nullptr) return nullptr;
  at = end;
  m_last->followers[1] = std::exchange(m_last->followers[0], name);
  return m_last = name;
}

FastName* FastNames::FindOrAdd(std::string_view text) {
  std::uint64_t const hash = SeededHash::OfText(text);
  FastName* const known = Find(text, hash);
  return known != nullptr ? known : Add(text, hash);
}

FastName* FastNames::Find(std::string_view text, std::uint64_t hash) const {
  FastName* name = m_buckets[hash & (m_buckets.size() - 1)];
  while (name != nullptr && (name->hash != hash || name->text != text)) name = name->nextInBucket;
  return name;
}

FastName* FastNames::Add(std::string_view text, std::uint64_t hash) {
  std::size_t const colon = MarkupScan::FindColon(text);
  if (colon == std::string_view::npos) return nullptr;
  if (!m_takesAll && !MarkupScan::IsAscii(text)) return nullptr;
  FastName name;
  name.text = text;
  name.hash = hash;
  name.colon = static_cast<std::uint32_t>(colon);
  SetPrefix(name);
  return Store(name);
}

void FastNames::SetPrefix(FastName& name) {
  std::string_view const prefix = name.text.substr(0, name.colon);
  name.prefix = prefix.empty() ? &m_noPrefix : FindOrAdd(prefix);
  if (prefix == kDeclaration) name.declared = FindOrAdd(name.LocalName());
  if (name.text == kDeclaration) name.declared = &m_noPrefix;
  if (name.text == kXmlPrefix) name.bound = &XmlNamespace();
}

FastName* FastNames::Store(FastName const& name) {
  if (m_count == m_buckets.size()) Grow();
  if (m_count % kChunk == 0) {
    m_chunks.emplace_back();
    m_chunks.back().reserve(kChunk);
  }
  ++m_count;
  m_chunks.back().push_back(name);
  FastName* const stored = &m_chunks.back().back();
  stored->nextInBucket = std::exchange(BucketOf(stored->hash), stored);
  return stored;
}

void FastNames::Grow() {
  m_buckets.assign(2 * m_buckets.size(), nullptr);
  for (std::vector<FastName>& chunk : m_chunks) {
    for (FastName& name : chunk) name.nextInBucket = std::exchange(BucketOf(name.hash), &name);
  }
}

}  // namespace Quillon9
