#include "pages/pages.h"

#include <algorithm>
#include <map>

#include "pages/contents.h"
#include "pages/entries.h"
#include "pages/html.h"

namespace Quillon9Generator::Pages {

namespace {

constexpr char kHome[] = "<p><a href=\"index.html\">All namespaces</a></p>\n";

std::string NamespaceText(std::string const& ns) { return ns.empty() ? "no namespace" : ns; }

/// References to those of \p entries that have this kind, below a heading; empty for none.
std::string ListOf(Entry::Kind kind, char const* heading, std::vector<Entry*> const& entries) {
  std::string list;
  for (Entry const* entry : entries) {
    if (entry->kind == kind) list += "<li>" + LinkTo(*entry) + "</li>\n";
  }
  if (list.empty()) return list;
  return "<h3>" + std::string(heading) + "</h3>\n<ul class=\"contents\">\n" + list + "</ul>\n";
}

std::string ContentsOf(Chapter const& chapter) {
  return ListOf(Entry::Kind::Element, "Elements", chapter.entries) +
         ListOf(Entry::Kind::Attribute, "Attributes", chapter.entries) +
         ListOf(Entry::Kind::ComplexType, "Complex types", chapter.entries) +
         ListOf(Entry::Kind::SimpleType, "Simple types", chapter.entries) +
         ListOf(Entry::Kind::Group, "Groups", chapter.entries);
}

std::string Index(Contents const& contents, Schema::SchemaSet const& set) {
  std::string body = "<table>\n<tr><th>Namespace</th><th>Components</th></tr>\n";
  std::string elements;
  for (Chapter const& chapter : contents.Chapters()) {
    std::string const link = "<a href=\"" + chapter.page + "\">" + Escaped(NamespaceText(*chapter.ns)) + "</a>";
    body += "<tr><td>" + link + "</td><td>" + std::to_string(chapter.entries.size()) + "</td></tr>\n";
    elements += ListOf(Entry::Kind::Element, ("Elements of " + link).c_str(), chapter.entries);
  }
  body += "</table>\n" + elements + "<h3>Files</h3>\n<ul>\n";
  for (std::string const* file : set.files) {
    body += "<li>" + Escaped(file->substr(file->rfind('/') + 1));
    for (Schema::Component const& document : set.documents) {
      if (document.place.file == file) body += '\n' + Paragraphs(document.documentation);
    }
    body += "</li>\n";
  }
  return Document("Schemas", "Schemas", body + "</ul>\n");
}

std::string Section(Entry const& entry, std::string const& text, Entries const& entries) {
  return "<section id=\"" + Escaped(entry.anchor) + "\">\n" + text + entries.Users(entry) + "</section>\n";
}

void AddChapter(std::vector<Page>& pages, Chapter const& chapter, std::map<Entry const*, std::string>& texts,
                Entries const& entries) {
  std::string const title = NamespaceText(*chapter.ns);
  std::string const heading = "<span class=\"kind\">namespace</span> " + Escaped(title);
  std::map<std::string, std::string> bodies;  // by page
  bodies[chapter.page] = kHome + ContentsOf(chapter);
  for (Entry const* entry : chapter.entries) {
    std::string& body = bodies[entry->page];
    if (body.empty()) body = std::string(kHome) + "<p><a href=\"" + chapter.page + "\">Contents</a></p>\n";
    body += Section(*entry, texts[entry], entries);
    texts.erase(entry);
  }
  for (auto const& [page, body] : bodies) pages.push_back({page, Document(title, heading, body)});
}

}  // namespace

std::vector<Page> Write(Schema::SchemaSet const& set) {
  Contents const contents(set);
  Entries entries(contents);
  std::map<Entry const*, std::string> texts;  // all before the first page, which has references from everywhere
  for (Chapter const& chapter : contents.Chapters()) {
    for (Entry const* entry : chapter.entries) texts[entry] = entries.Print(*entry);
  }
  std::vector<Page> pages{{"index.html", Index(contents, set)}};
  for (Chapter const& chapter : contents.Chapters()) AddChapter(pages, chapter, texts, entries);
  return pages;
}

}  // namespace Quillon9Generator::Pages
