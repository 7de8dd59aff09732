#include "pages/contents.h"

#include <algorithm>
#include <string_view>
#include <tuple>

namespace Quillon9Generator::Pages {

namespace {

/// A page with more entries would be slow to show.
constexpr std::size_t kMostEntries = 300;
/// Names of files have limits; the end of an address says more than its beginning.
constexpr std::size_t kLongestName = 80;
/// Each reference has the anchor, so that long ones would add up in a hostile schema.
constexpr std::size_t kLongestAnchor = 200;

char Lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsLetter(char c) { return c >= 'a' && c <= 'z'; }

/// The name of the page for the namespace \p ns, without an extension: letters, digits and `-` of ASCII.
std::string PageName(std::string_view ns) {
  if (ns.empty()) return "no-namespace";
  if (std::size_t const scheme = ns.find("://"); scheme != ns.npos) ns.remove_prefix(scheme + 3);
  if (ns.size() > kLongestName) ns.remove_prefix(ns.size() - kLongestName);
  std::string name;
  for (char const each : ns) {
    char const c = Lowered(each);
    bool const isKept = IsLetter(c) || (c >= '0' && c <= '9');
    if (isKept) name += c;
    if (!isKept && !name.empty() && name.back() != '-') name += '-';
  }
  if (!name.empty() && name.back() == '-') name.pop_back();
  return name.empty() ? "namespace" : name;
}

}  // namespace

char const* KindText(Entry::Kind kind) {
  switch (kind) {
    case Entry::Kind::Element: return "element";
    case Entry::Kind::Attribute: return "attribute";
    case Entry::Kind::ComplexType: return "complex type";
    case Entry::Kind::SimpleType: return "simple type";
    case Entry::Kind::Group: return "group";
  }
  return "";
}

Contents::Contents(Schema::SchemaSet const& set) : m_pages{"index"} {
  Add(Entry::Kind::Element, "element-", set.elements);
  Add(Entry::Kind::Attribute, "attribute-", set.attributes);
  Add(Entry::Kind::ComplexType, "type-", set.complexTypes);
  Add(Entry::Kind::SimpleType, "type-", set.simpleTypes);
  Add(Entry::Kind::Group, "group-", set.groups);
  MakeChapters(set);
  for (Chapter& chapter : m_chapters) {
    if (chapter.isDivided) Divide(chapter);
  }
}

template <class Component>
void Contents::Add(Entry::Kind kind, char const* prefix, std::vector<Component const*> const& components) {
  for (Component const* each : components) {
    std::string const number = std::to_string(m_entries.size());  // no name begins with a digit
    std::string const& name = each->name.local.size() <= kLongestAnchor ? each->name.local : number;
    Entry const& entry = m_entries.emplace_back(Entry{kind, each, &each->name, {}, prefix + name});
    m_found[each] = &entry;
  }
}

void Contents::MakeChapters(Schema::SchemaSet const& set) {
  std::map<std::string_view, std::vector<Entry*>> entriesOf;
  for (Entry& entry : m_entries) entriesOf[entry.name->ns].push_back(&entry);
  for (std::string const& ns : set.targetNamespaces) {
    auto const found = entriesOf.find(ns);
    if (found == entriesOf.end()) continue;
    Chapter chapter{&ns, NewPage(PageName(ns)), found->second.size() > kMostEntries, std::move(found->second)};
    std::sort(chapter.entries.begin(), chapter.entries.end(), [](Entry const* a, Entry const* b) {
      return std::tie(a->kind, a->name->local) < std::tie(b->kind, b->name->local);
    });
    for (Entry* entry : chapter.entries) entry->page = chapter.page;
    m_chapters.push_back(std::move(chapter));
  }
}

void Contents::Divide(Chapter& chapter) {
  std::string const stem = chapter.page.substr(0, chapter.page.rfind('.'));
  std::map<char, std::string> pages;
  for (Entry* entry : chapter.entries) {
    char const first = Lowered(entry->name->local.front());
    std::string& page = pages[IsLetter(first) ? first : '_'];
    if (page.empty()) page = NewPage(stem + "-" + (IsLetter(first) ? std::string(1, first) : "other"));
    entry->page = page;
  }
}

std::string Contents::NewPage(std::string const& wanted) {
  std::string name = wanted;
  for (int number = 2; !m_pages.insert(name).second; ++number) name = wanted + "-" + std::to_string(number);
  return name + ".html";
}

Entry const* Contents::Find(Schema::Component const* component) const {
  auto const found = m_found.find(component);
  return found != m_found.end() ? found->second : nullptr;
}

}  // namespace Quillon9Generator::Pages
