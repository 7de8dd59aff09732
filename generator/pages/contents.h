#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "schema/components.h"

namespace Quillon9Generator::Pages {

/// A component that has a place of its own on a page.
struct Entry {
  enum class Kind { Element, Attribute, ComplexType, SimpleType, Group };

  Kind kind = Kind::Element;
  Schema::Component const* component = nullptr;
  Schema::QualifiedName const* name = nullptr;
  std::string page;    ///< "urn-orders.html"
  std::string anchor;  ///< "type-Items"
};

/// The kind in words: "complex type".
char const* KindText(Entry::Kind kind);

/// The entries of one namespace.
struct Chapter {
  std::string const* ns = nullptr;
  std::string page;             ///< its entries, or a table of contents
  bool isDivided = false;       ///< the entries are on other pages
  std::vector<Entry*> entries;  ///< by kind, then by name
};

/// Which entries there are, and on which pages.
class Contents {
 public:
  explicit Contents(Schema::SchemaSet const& set);

  /// Those namespaces that have entries, in the order of the schemas.
  std::vector<Chapter> const& Chapters() const { return m_chapters; }
  /// The entry of \p component; null for a local component, a built-in one, and one that has been redefined.
  Entry const* Find(Schema::Component const* component) const;

 private:
  template <class Component>
  void Add(Entry::Kind kind, char const* prefix, std::vector<Component const*> const& components);
  void MakeChapters(Schema::SchemaSet const& set);
  void Divide(Chapter& chapter);
  /// \p wanted, or that with a number at its end, which no other page has, with the extension.
  std::string NewPage(std::string const& wanted);

  std::deque<Entry> m_entries;
  std::map<Schema::Component const*, Entry const*> m_found;
  std::vector<Chapter> m_chapters;
  std::set<std::string> m_pages;
};

}  // namespace Quillon9Generator::Pages
