// Reads feeds and prints each as a list, changes an entry, writes the feed and reads it back, and shows that content
// unknown to the classes is preserved. A document that is not an Atom feed is read, printed and written as generic
// content. Comments and processing instructions are not kept.
//
//   feed [document...]

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include "atom.h"
#include "quillon9/quillon9.h"

using namespace Atom;
using namespace Quillon9;

namespace {

constexpr char kNamespace[] = "http://www.w3.org/2005/Atom";

/// Options with text in UTF-8, as the generated classes have it, so that no character depends on the locale.
CXmlSerializationContext Utf8Context() {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  return ctx;
}

// ---- The children of feeds, entries, sources and persons, of which one is set in each round

CXmlObjectBase const* FirstOf(std::initializer_list<CXmlObjectBase const*> alternatives) {
  for (CXmlObjectBase const* const object : alternatives) {
    if (object != nullptr) return object;
  }
  return nullptr;
}

CXmlObjectBase const* ChildIn(CFeedType::CChoice const& round) {
  return FirstOf({round.GetAuthor(), round.GetCategory(), round.GetContributor(), round.GetEntry(),
                  round.GetGenerator(), round.GetIcon(), round.GetId(), round.GetLink(), round.GetLogo(),
                  round.GetRights(), round.GetSubtitle(), round.GetTitle(), round.GetUpdated(), round.GetAny()});
}

CXmlObjectBase const* ChildIn(CEntryType::CChoice const& round) {
  return FirstOf({round.GetAuthor(), round.GetCategory(), round.GetContent(), round.GetContributor(), round.GetId(),
                  round.GetLink(), round.GetPublished(), round.GetRights(), round.GetSource(), round.GetSummary(),
                  round.GetTitle(), round.GetUpdated(), round.GetAny()});
}

CXmlObjectBase const* ChildIn(CSourceType::CChoice const& round) {
  return FirstOf({round.GetAuthor(), round.GetCategory(), round.GetContributor(), round.GetGenerator(), round.GetIcon(),
                  round.GetId(), round.GetLink(), round.GetLogo(), round.GetRights(), round.GetSubtitle(),
                  round.GetTitle(), round.GetUpdated(), round.GetAny()});
}

CXmlObjectBase const* ChildIn(CPersonType::CChoice const& round) {
  return FirstOf({round.GetName(), round.GetUri(), round.GetEmail(), round.GetAny()});
}

// ---- Documents as lists

struct Line {
  int depth;
  std::string name;
  std::string value;
  bool isGeneric;  // not described by the classes
};
using Lines = std::vector<Line>;

std::string NameOf(std::string const& name, std::string const& ns) { return ns.empty() ? name : "{" + ns + "}" + name; }

/// The library writes the times of a feed in its own form: a fraction loses its trailing zeros.
std::string Normalized(Line const& line) {
  bool const isTime = line.name == NameOf("updated", kNamespace) || line.name == NameOf("published", kNamespace);
  try {
    return isTime ? CDateTime(CWhitespaceUtils::Collapse(line.value).c_str()).ToString() : line.value;
  } catch (CQnException const&) {
    return line.value;  // not a time, in generic content
  }
}

bool operator==(Line const& a, Line const& b) {
  return a.depth == b.depth && a.name == b.name && (a.value == b.value || Normalized(a) == Normalized(b));
}

bool IsBlank(std::string const& text) { return CWhitespaceUtils::Collapse(text).empty(); }

/// Return the text of an element with children or without; text that only separates them does not count.
std::string Significant(std::string const& text, bool hasChildren) { return hasChildren && IsBlank(text) ? "" : text; }

void AppendAttributes(Lines& lines, int depth, CAttributeCol const& attributes) {
  std::size_t const first = lines.size();
  for (CAttribute const& attribute : attributes) {
    lines.push_back({depth, "@" + NameOf(attribute.GetName(), attribute.GetNamespace()), attribute.GetValue(), true});
  }
  // The order of attributes has no meaning, and declared ones are written first.
  std::sort(lines.begin() + static_cast<std::ptrdiff_t>(first), lines.end(),
            [](Line const& a, Line const& b) { return a.name < b.name; });
}

void Append(Lines& lines, int depth, CElement const& element) {
  lines.push_back({depth, NameOf(element.GetName(), element.GetNamespace()),
                   Significant(element.GetText(), element.GetElements()->GetCount() > 0), true});
  AppendAttributes(lines, depth + 1, *element.GetAttributes());
  for (CElement const& child : *element.GetElements()) Append(lines, depth + 1, child);
}

/// Return what the list shows of \p open besides its children.
std::string Shown(COpenType const& open) {
  if (auto const* const link = dynamic_cast<CLinkType const*>(&open)) {
    return link->GetRel().value_or("alternate") + ", " + link->GetHref();
  }
  if (auto const* const category = dynamic_cast<CCategoryType const*>(&open)) return category->GetTerm();
  auto const& text = dynamic_cast<CTextType const&>(open);
  std::string const type = text.GetType().value_or("text");
  return (type == "text" ? "" : "[" + type + "] ") + text.GetSrc().value_or("") +
         Significant(text.GetText(), !text.GetAny().empty());
}

template <class Object>
void AppendElement(Lines& lines, int depth, Object const& object, std::string const& value) {
  lines.push_back({depth, object.GetElementName(), value, false});
  AppendAttributes(lines, depth + 1, object.GetAnyAttribute());
}

void AppendAny(Lines& lines, int depth, CXmlObjectBase const& object);

template <class Container>
void AppendContainer(Lines& lines, int depth, Container const& object) {
  AppendElement(lines, depth, object, "");
  for (auto const& round : object.GetChoice()) AppendAny(lines, depth + 1, *ChildIn(round));
}

void Append(Lines& lines, int depth, CFeedType const& feed) { AppendContainer(lines, depth, feed); }
void Append(Lines& lines, int depth, CEntryType const& entry) { AppendContainer(lines, depth, entry); }
void Append(Lines& lines, int depth, CSourceType const& source) { AppendContainer(lines, depth, source); }
void Append(Lines& lines, int depth, CPersonType const& person) { AppendContainer(lines, depth, person); }
void Append(Lines& lines, int depth, CDateType const& date) {
  AppendElement(lines, depth, date, date.GetValue().ToString());
}
void Append(Lines& lines, int depth, CSimpleType const& simple) {
  AppendElement(lines, depth, simple, simple.GetValue());
}
void Append(Lines& lines, int depth, COpenType const& open) {
  AppendElement(lines, depth, open, Shown(open));
  for (CElement const& element : open.GetAny()) Append(lines, depth + 1, element);
}

/// Append \p object if it is of this class.
template <class Class>
bool AppendIf(Lines& lines, int depth, CXmlObjectBase const& object) {
  auto const* const known = dynamic_cast<Class const*>(&object);
  if (known != nullptr) Append(lines, depth, *known);
  return known != nullptr;
}

template <class... Classes>
void AppendAs(Lines& lines, int depth, CXmlObjectBase const& object) {
  (AppendIf<Classes>(lines, depth, object) || ...);
}

void AppendAny(Lines& lines, int depth, CXmlObjectBase const& object) {
  AppendAs<CEntryType, CSourceType, CPersonType, CDateType, CSimpleType, COpenType, CElement>(lines, depth, object);
}

template <class Object>
Lines ListOf(Object const& object) {
  Lines lines;
  Append(lines, 0, object);
  return lines;
}

/// A plus marks generic content.
void Print(Lines const& lines) {
  for (Line const& line : lines) {
    std::string const value = CWhitespaceUtils::Collapse(line.value);  // puts a text of several lines on one line
    std::printf("%c %*s%s%s%s\n", line.isGeneric ? '+' : ' ', 2 * line.depth, "", line.name.c_str(),
                value.empty() ? "" : ": ", value.c_str());
  }
}

/// Return whether both have the same contents. Print the first lines that differ.
bool Compare(char const* what, Lines const& before, Lines const& after) {
  auto const [left, right] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  bool const same = left == before.end() && right == after.end();
  auto const generic = std::count_if(before.begin(), before.end(), [](Line const& line) { return line.isGeneric; });
  bool const hasBound = generic != static_cast<std::ptrdiff_t>(before.size());
  std::printf("%s: %zu names and values%s: %s.\n", what, before.size(),
              hasBound ? FormatString(", %td of them generic", generic).c_str() : "",
              same ? "all the same" : "not the same");
  if (left != before.end()) std::printf("  was %s [%s]\n", left->name.c_str(), left->value.c_str());
  if (right != after.end()) std::printf("  now %s [%s]\n", right->name.c_str(), right->value.c_str());
  return same;
}

/// Report the elements whose text stands between their children: all of it is kept in one piece and written after them.
void PrintMixed(CElement const& element) {
  if (element.GetElements()->GetCount() > 0 && !IsBlank(element.GetText())) {
    std::printf("Mixed content: where the text of <%s> stood between its elements is lost.\n",
                element.GetName().c_str());
  }
  for (CElement const& child : *element.GetElements()) PrintMixed(child);
}

// ---- Writing

bool HasElementWithoutNamespace(CElement const& element) {
  if (element.GetNamespace().empty()) return true;
  CElementCol const& children = *element.GetElements();
  return std::any_of(children.begin(), children.end(), HasElementWithoutNamespace);
}

/// Return the options to write a feed like \p document: with Atom as the default namespace, unless an element is in no
/// namespace, because the library never undeclares the default; and with the original prefixes for some namespaces. All
/// other prefixes are generated.
CXmlSerializationContext ContextFor(CXmlDocument const& document, CElement const& root) {
  CXmlSerializationContext ctx = Utf8Context();
  if (HasElementWithoutNamespace(root)) {
    ctx.GetNamespaceAliases()->Add("atom", kNamespace);
  } else {
    ctx.SetDefaultNamespaceURI(kNamespace);
  }
  for (char const* prefix : {"dc", "georss", "thr", "tide"}) {
    std::string const ns = document.LookupNamespaceFromAlias(prefix);
    if (!ns.empty() && ns != kNamespace) ctx.GetNamespaceAliases()->Add(prefix, ns.c_str());
  }
  return ctx;
}

/// Write without line ends and tabs, which would become part of texts next to elements.
std::string Write(CXmlObjectBase const& object, CXmlSerializationContext const& ctx) {
  return object.ToXml(true, false, EOLType_LF, ctx);
}

CSmartPtr<CElement> GenericOf(CXmlDocument const& document) {
  CSmartPtr<CElement> element = new CElement("");
  element->CopyXmlElement(document.GetDocumentElement());
  return element;
}

CSmartPtr<CElement> ReadGeneric(std::string const& text) {
  CXmlSerializationContext const ctx = Utf8Context();
  CXmlDocument document(ctx);
  document.LoadXml(text.c_str());
  return GenericOf(document);
}

// ---- The steps

/// Give \p entry another title and time, adding them if it has none.
void Change(CEntryType& entry) {
  using EChoice = CEntryType::CChoice::EChoice;
  auto const find = [&](EChoice choice) {
    auto& rounds = entry.GetChoice();
    auto const isIt = [&](CEntryType::CChoice const& round) { return round.GetChoice() == choice; };
    auto const found = std::find_if(rounds.begin(), rounds.end(), isIt);
    return found != rounds.end() ? &*found : &rounds.Add();
  };
  find(EChoice::Title)->CreateTitle().SetText("Corrected & shortened");
  find(EChoice::Updated)->CreateUpdated().SetValue("2024-05-05T06:00:00Z");
}

/// Print where two texts differ, in whole tags.
void PrintChange(std::string const& before, std::string const& after) {
  if (before == after) return;
  std::size_t const shorter = std::min(before.size(), after.size());
  std::size_t first = 0;
  while (first < shorter && before[first] == after[first]) ++first;
  std::size_t last = 0;
  while (last < shorter - first && before[before.size() - last - 1] == after[after.size() - last - 1]) ++last;
  first = before.rfind('<', first - 1);
  last = before.size() - before.find('>', before.size() - last) - 1;
  std::printf("was: %s\n", before.substr(first, before.size() - last - first).c_str());
  std::printf("now: %s\n", after.substr(first, after.size() - last - first).c_str());
}

/// Return whether the changed \p feed is read back unaltered. Without an entry nothing is changed.
bool ChangeAndReadAgain(CFeedType& feed, CXmlSerializationContext const& ctx) {
  auto const hasEntry = [](CFeedType::CChoice const& round) { return round.GetEntry() != nullptr; };
  auto const round = std::find_if(feed.GetChoice().begin(), feed.GetChoice().end(), hasEntry);
  if (round == feed.GetChoice().end()) return true;
  std::string const before = Write(feed, ctx);
  Change(*round->GetEntry());
  std::string const after = Write(feed, ctx);
  std::printf("\nThe first entry is changed:\n");
  PrintChange(before, after);
  CSmartPtr<CFeedType> const again = ReadFeed(XmlText(after));
  bool const same = Write(*again, ctx) == after;
  std::printf("Read and written again: %s.\n", same ? "the same text" : "another text");
  return Compare("Read again", ListOf(feed), ListOf(*again)) && same;
}

bool ProcessFeed(CXmlDocument const& document, CElement const& original) {
  CSmartPtr<CFeedType> const feed = CreateFeed();
  feed->FromXmlElement(document.GetDocumentElement());
  Print(ListOf(*feed));
  PrintMixed(original);
  CXmlSerializationContext const ctx = ContextFor(document, original);
  bool const ok =
      Compare("Written and read as generic content", ListOf(original), ListOf(*ReadGeneric(Write(*feed, ctx))));
  return ChangeAndReadAgain(*feed, ctx) && ok;
}

bool ProcessOther(CElement const& original) {
  std::printf("No Atom feed: no class is for <%s>, all is generic.\n", original.GetName().c_str());
  Print(ListOf(original));
  PrintMixed(original);
  std::string const text = Write(original, Utf8Context());
  return Compare("Written and read as generic content", ListOf(original), ListOf(*ReadGeneric(text)));
}

/// Return whether the document \p path could be read and was preserved. If not, standard error or the list says why.
bool Process(char const* path) {
  try {
    CXmlSerializationContext const ctx = Utf8Context();  // the document refers to it
    CXmlDocument document(ctx);
    document.Load(path);
    std::printf("%s (+ marks generic content)\n", std::filesystem::path(path).filename().c_str());
    CSmartPtr<CElement> const original = GenericOf(document);
    bool const isFeed = original->GetName() == "feed" && original->GetNamespace() == kNamespace;
    return isFeed ? ProcessFeed(document, *original) : ProcessOther(*original);
  } catch (CQnException const& failure) {
    std::fprintf(stderr, "%s: %s\n", path, failure.GetFullMessage().c_str());
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s: %s\n", path, failure.what());
  }
  return false;
}

/// Print \p failure and its causes, outermost first.
void PrintChain(CQnException const& failure) {
  for (CQnException const* link = &failure; link != nullptr; link = link->GetInnerException()) {
    std::printf("  %s\n", link->GetMessage().c_str());
  }
}

/// Return whether reading a feed with this entry fails, as it should.
bool FailsToRead(char const* what, char const* entry) {
  std::printf("%s:\n", what);
  try {
    ReadFeed(XmlText("<feed xmlns='http://www.w3.org/2005/Atom'><entry>" + std::string(entry) + "</entry></feed>"));
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  was read without a failure\n");
  return false;
}

bool ShowFailures() {
  std::printf("\nFailures\n--------\n");
  bool ok = FailsToRead("A link without its address", "<link rel='related' x:to='a' xmlns:x='urn:x'/>");
  ok &= FailsToRead("A time that is none", "<x xmlns='urn:x'/><updated>yesterday</updated>");
  ok &= FailsToRead("An extension that does not end", "<x xmlns='urn:x'><y/>");
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return Process(FEED_DOCUMENT) && ShowFailures() ? 0 : 1;
  bool ok = true;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) std::printf("\n");
    ok &= Process(argv[i]);
  }
  return ok ? 0 : 1;
}
