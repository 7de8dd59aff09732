#include "code/file_plan.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <utility>

#include "plan/names.h"

namespace Quillon9Generator::Code {

using Plan::Class;
using Plan::Enumeration;
using Plan::Member;
using Plan::Namespace;

namespace {

/// How much work for a compiler a source may be, as Weight() measures it, where there are several.
constexpr std::size_t kMostWeight = 2500;

Class const& Outermost(Class const& cls) { return cls.owner != nullptr ? Outermost(*cls.owner) : cls; }

/// Call \p visit for \p cls and each class nested in it.
template <class Visit>
void ForEachPart(Class const& cls, Visit const& visit) {
  visit(cls);
  for (Class const* nested : cls.nested) ForEachPart(*nested, visit);
}

template <class Visit>
void ForEachEnumeration(Plan::ValueType const& value, Visit const& visit) {
  if (value.enumeration != nullptr) visit(*value.enumeration);
  if (value.item != nullptr) ForEachEnumeration(*value.item, visit);
}

/// Call \p visit for each class that the tables of \p cls name.
template <class Visit>
void ForEachClassInTables(Class const& cls, Visit const& visit) {
  if (cls.base != nullptr) visit(*cls.base);
  for (Class const* derived : cls.derived) visit(*derived);
  for (std::vector<Member> const* members : {&cls.members, &cls.restated}) {
    for (Member const& member : *members) {
      if (member.type != nullptr) visit(*member.type);
      if (member.group == nullptr) continue;
      for (Plan::ElementGroup::Element const& element : member.group->elements) {
        if (element.type != nullptr) visit(*element.type);
      }
    }
  }
}

/// A measure of the time that it takes to compile what \p header declares. Members that hold objects instantiate
/// templates.
std::size_t Weight(HeaderFile const& header) {
  constexpr std::size_t kClass = 4;
  constexpr std::size_t kObject = 4;
  std::size_t weight = 0;
  for (NamespacePart const& part : header.parts) weight += part.enumerations.size() + part.roots.size();
  auto const add = [&weight](Class const& part) {
    weight += kClass;
    for (Member const& member : part.members) weight += member.type != nullptr ? kObject : 1;
  };
  for (Class const* cls : header.classes) ForEachPart(*cls, add);
  return weight;
}

/// File systems allow names of 255 octets; an ending and a number follow.
constexpr std::size_t kLongestStem = 200;

/// What the header of a schema document is called, by the name of its file.
std::string StemOf(std::string const& schemaPath) {
  std::string const name = schemaPath.substr(schemaPath.find_last_of('/') + 1);
  return Plan::LowerCase(Plan::UpperCamel(name.substr(0, name.rfind('.'))));
}

using Headers = std::vector<HeaderFile const*>;

/// Sort \p headers by their paths, and leave out repeated ones.
void SortByPath(Headers& headers) {
  std::sort(headers.begin(), headers.end(), [](auto const* a, auto const* b) { return a->path < b->path; });
  headers.erase(std::unique(headers.begin(), headers.end()), headers.end());
}

/// Divides the types among headers.
class HeaderPlanner {
 public:
  explicit HeaderPlanner(Plan::Plan const& plan) : m_plan(plan) {
    for (Class const* cls : plan.classes) m_positions.emplace(cls, m_positions.size());
  }

  std::vector<std::unique_ptr<HeaderFile>> Make(Split split) {
    AddCollectiveHeaders(split);
    if (split == Split::None) TakeAll();
    if (split == Split::BySchema) DivideBySchema();
    if (split == Split::ByType) DivideByType();
    NoteDefinitions();
    if (split == Split::BySchema) JoinCircles();
    AssignRoots();
    for (auto const& header : m_headers) Connect(*header);
    Collect();
    return std::move(m_headers);
  }

 private:
  // ---- Which headers there are

  HeaderFile& NewHeader(std::string path) {
    m_headers.push_back(std::make_unique<HeaderFile>());
    m_headers.back()->path = std::move(path);
    return *m_headers.back();
  }

  void AddCollectiveHeaders(Split split) {
    for (Namespace const& ns : m_plan.namespaces) {
      bool const isMain = m_headers.empty();
      HeaderFile& header = isMain || split != Split::None ? NewHeader(ns.fileStem + ".h") : *m_headers.front();
      header.isCollective = true;
      m_collective[&ns] = &header;
      m_namespaces[ns.cppName] = &ns;
    }
    m_headers.front()->isMain = true;
  }

  /// A header beside the collective ones, in a folder of its own, so that no name of a schema hides a header of the
  /// system.
  HeaderFile& AddHeader(Namespace const& ns, std::string const& stem) {
    HeaderFile& header = NewHeader(m_paths.Take(ns.fileStem + '/' + stem.substr(0, kLongestStem)) + ".h");
    m_members[m_collective.at(&ns)].push_back(&header);
    return header;
  }

  NamespacePart& PartFor(HeaderFile& header, Namespace const& ns) const {
    auto const isLater = [&ns](NamespacePart const& part) { return part.ns >= &ns; };  // all are in one vector
    auto place = std::find_if(header.parts.begin(), header.parts.end(), isLater);
    if (place == header.parts.end() || place->ns != &ns) place = header.parts.insert(place, {&ns, {}, {}});
    return *place;
  }

  void Add(HeaderFile& header, Enumeration const& enumeration) const {
    PartFor(header, NamespaceOf(enumeration)).enumerations.push_back(&enumeration);
  }

  template <class Type>
  Namespace const& NamespaceOf(Type const& type) const {
    return *m_namespaces.at(type.cppNamespace);
  }

  template <class Visit>
  void ForEachEnumerationOfPlan(Visit const& visit) const {
    for (Namespace const& ns : m_plan.namespaces) {
      for (Enumeration const* each : ns.enumerations) visit(*each);
    }
  }

  void TakeAll() {
    HeaderFile& main = *m_headers.front();
    main.classes = m_plan.classes;
    ForEachEnumerationOfPlan([&](Enumeration const& each) { Add(main, each); });
  }

  void DivideByType() {
    auto const stemOf = [](std::string const& name) { return Plan::LowerCase(name.substr(1)); };
    for (Class const* cls : m_plan.classes) {
      AddHeader(NamespaceOf(*cls), stemOf(cls->shortName)).classes.push_back(cls);
    }
    ForEachEnumerationOfPlan(
        [&](Enumeration const& each) { Add(AddHeader(NamespaceOf(each), stemOf(each.cppName)), each); });
  }

  void DivideBySchema() {
    // A description of a web service, or a schema without a namespace of its own, may have types of several namespaces.
    std::map<std::pair<Namespace const*, std::string>, HeaderFile*> headers;
    auto const headerFor = [&](auto const& type) -> HeaderFile& {
      Namespace const& ns = NamespaceOf(type);
      std::string const file = type.place.file != nullptr ? *type.place.file : "built-in";
      HeaderFile*& header = headers[{&ns, file}];
      if (header == nullptr) header = &AddHeader(ns, StemOf(file));
      return *header;
    };
    for (Class const* cls : m_plan.classes) headerFor(*cls).classes.push_back(cls);
    ForEachEnumerationOfPlan([&](Enumeration const& each) { Add(headerFor(each), each); });
  }

  void NoteDefinitions() {
    for (auto const& header : m_headers) {
      header->defined.insert(header->classes.begin(), header->classes.end());
      for (Class const* cls : header->classes) m_headerOfClass[cls] = header.get();
      for (NamespacePart const& part : header->parts) {
        for (Enumeration const* each : part.enumerations) m_headerOfEnumeration[each] = header.get();
      }
    }
  }

  HeaderFile* HeaderOf(Class const& cls) const { return m_headerOfClass.at(&Outermost(cls)); }
  HeaderFile* HeaderOf(Enumeration const& enumeration) const {
    return enumeration.owner != nullptr ? HeaderOf(*enumeration.owner) : m_headerOfEnumeration.at(&enumeration);
  }

  void AssignRoots() {
    for (Namespace const& ns : m_plan.namespaces) {
      for (Plan::Root const& root : ns.roots) {
        HeaderFile& header = root.type != nullptr ? *HeaderOf(*root.type) : *m_collective.at(&ns);
        PartFor(header, ns).roots.push_back(&root);
      }
    }
  }

  // ---- What they include and declare

  /// The headers of the types that have to be complete where those of \p header are defined.
  Headers Required(HeaderFile const& header) const {
    Headers required;
    auto const add = [&](HeaderFile const* other) {
      if (other != &header) required.push_back(other);
    };
    auto const addEnumerations = [&](Plan::ValueType const& value) {
      ForEachEnumeration(value, [&](Enumeration const& each) { add(HeaderOf(each)); });
    };
    auto const addPart = [&](Class const& cls) {
      if (cls.base != nullptr) add(HeaderOf(*cls.base));
      for (Member const& member : cls.members) {
        addEnumerations(member.value);
        if (member.group != nullptr) addEnumerations(member.group->value);
        // A nested class cannot be declared from outside.
        if (member.type != nullptr && member.type->owner != nullptr) add(HeaderOf(*member.type));
      }
    };
    for (Class const* cls : header.classes) ForEachPart(*cls, addPart);
    for (NamespacePart const& part : header.parts) {
      for (Plan::Root const* root : part.roots) addEnumerations(root->value);
    }
    SortByPath(required);
    return required;
  }

  /// Make one header of those that would include each other in a circle.
  void JoinCircles() {
    std::map<HeaderFile const*, Headers> required;
    std::map<HeaderFile const*, std::set<HeaderFile const*>> reachable;
    for (auto const& header : m_headers) required[header.get()] = Required(*header);
    for (auto const& header : m_headers) {
      Headers pending = {header.get()};
      std::set<HeaderFile const*>& reached = reachable[header.get()];
      while (!pending.empty()) {
        HeaderFile const* const next = pending.back();
        pending.pop_back();
        for (HeaderFile const* each : required[next]) {
          if (reached.insert(each).second) pending.push_back(each);
        }
      }
    }
    std::vector<std::unique_ptr<HeaderFile>> joined;
    for (std::unique_ptr<HeaderFile>& header : m_headers) {
      auto const isInCircle = [&](std::unique_ptr<HeaderFile> const& other) {
        return reachable[header.get()].count(other.get()) != 0 && reachable[other.get()].count(header.get()) != 0;
      };
      auto const other = std::find_if(joined.begin(), joined.end(), isInCircle);
      other == joined.end() ? joined.push_back(std::move(header)) : Join(**other, *header);
    }
    m_headers = std::move(joined);
    NoteDefinitions();
  }

  /// Move what \p from has to \p into.
  void Join(HeaderFile& into, HeaderFile const& from) {
    into.classes.insert(into.classes.end(), from.classes.begin(), from.classes.end());
    SortClasses(into.classes);
    for (NamespacePart const& part : from.parts) {
      for (Enumeration const* each : part.enumerations) Add(into, *each);
    }
    for (auto& each : m_members) {
      for (HeaderFile const*& member : each.second) {
        if (member == &from) member = &into;
      }
    }
  }

  void SortClasses(std::vector<Class const*>& classes) const {
    std::sort(classes.begin(), classes.end(),
              [this](Class const* a, Class const* b) { return m_positions.at(a) < m_positions.at(b); });
  }

  void Connect(HeaderFile& header) const {
    header.includes = Required(header);
    std::set<Class const*> known;
    std::set<Class const*> needed;
    auto const isKnown = [&](Class const& cls) {
      HeaderFile const* const other = HeaderOf(cls);
      bool const isIncluded = std::find(header.includes.begin(), header.includes.end(), other) != header.includes.end();
      return cls.owner != nullptr || isIncluded || known.count(&cls) != 0;
    };
    auto const addReferences = [&](Class const& part) {
      for (Member const& member : part.members) {
        if (member.type != nullptr && !isKnown(*member.type)) needed.insert(member.type);
      }
    };
    for (Class const* cls : header.classes) {
      known.insert(cls);
      ForEachPart(*cls, addReferences);
    }
    header.declared.assign(needed.begin(), needed.end());
    SortClasses(header.declared);
  }

  void Collect() {
    HeaderFile& main = *m_headers.front();
    for (auto const& each : m_collective) {
      Headers const& members = m_members[each.second];
      each.second->includes.insert(each.second->includes.end(), members.begin(), members.end());
      if (each.second != &main) main.includes.push_back(each.second);
    }
    for (auto const& each : m_collective) SortByPath(each.second->includes);
  }

  Plan::Plan const& m_plan;
  std::vector<std::unique_ptr<HeaderFile>> m_headers;  // the main one first
  std::map<Namespace const*, HeaderFile*> m_collective;
  std::map<HeaderFile const*, Headers> m_members;  // of the collective ones
  std::map<std::string, Namespace const*> m_namespaces;
  Plan::NameScope m_paths;
  std::map<Class const*, HeaderFile*> m_headerOfClass;  // of those that are not nested
  std::map<Enumeration const*, HeaderFile*> m_headerOfEnumeration;
  std::map<Class const*, std::size_t> m_positions;
};

/// Divides the headers among sources of like size.
class SourcePlanner {
 public:
  SourcePlanner(Plan::Plan const& plan, std::vector<std::unique_ptr<HeaderFile>> const& headers)
      : m_stem(plan.namespaces.front().fileStem), m_headers(headers) {
    for (auto const& header : headers) {
      for (Class const* cls : header->classes) m_headerOfClass[cls] = header.get();
    }
  }

  std::vector<SourceFile> Make() {
    m_sources.emplace_back().isMain = true;
    std::size_t total = 0;
    for (auto const& header : m_headers) total += header->isCollective ? 0 : Weight(*header);
    std::size_t const count = (total + kMostWeight - 1) / kMostWeight;
    m_sources.resize(1 + count);
    std::size_t before = 0;
    for (auto const& header : m_headers) {
      std::size_t const weight = Weight(*header);
      // By the middle of the header among all.
      std::size_t const number = header->isCollective ? 0 : 1 + (before + weight / 2) * count / (total + 1);
      m_sources[number].headers.push_back(header.get());
      before += header->isCollective ? 0 : weight;
    }
    auto const isEmpty = [](SourceFile const& source) { return source.headers.empty(); };
    m_sources.erase(std::remove_if(m_sources.begin(), m_sources.end(), isEmpty), m_sources.end());
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
      m_sources[i].path = m_stem + (i == 0 ? "" : '_' + std::to_string(i + 1)) + ".cpp";
      m_sources[i].includes = IncludesOf(m_sources[i]);
    }
    return std::move(m_sources);
  }

 private:
  Headers IncludesOf(SourceFile const& source) const {
    if (source.isMain) return {m_headers.front().get()};
    Headers includes = source.headers;
    auto const add = [&](Class const& cls) { includes.push_back(m_headerOfClass.at(&Outermost(cls))); };
    for (HeaderFile const* header : source.headers) {
      for (Class const* cls : header->classes) {
        ForEachPart(*cls, [&add](Class const& part) { ForEachClassInTables(part, add); });
      }
    }
    SortByPath(includes);
    return includes;
  }

  std::string const& m_stem;
  std::vector<std::unique_ptr<HeaderFile>> const& m_headers;
  std::vector<SourceFile> m_sources;
  std::map<Class const*, HeaderFile const*> m_headerOfClass;  // of those that are not nested
};

}  // namespace

bool HeaderFile::Defines(Class const& cls) const { return defined.count(&Outermost(cls)) != 0; }

std::vector<Class const*> HeaderFile::ClassesOf(Namespace const& ns) const {
  std::vector<Class const*> selected;
  std::copy_if(classes.begin(), classes.end(), std::back_inserter(selected),
               [&ns](Class const* cls) { return cls->cppNamespace == ns.cppName; });
  return selected;
}

NamespacePart HeaderFile::PartOf(Namespace const& ns) const {
  auto const found =
      std::find_if(parts.begin(), parts.end(), [&ns](NamespacePart const& part) { return part.ns == &ns; });
  return found != parts.end() ? *found : NamespacePart{&ns, {}, {}};
}

FilePlan MakeFilePlan(Plan::Plan const& plan, Split split) {
  FilePlan files;
  files.headers = HeaderPlanner(plan).Make(split);
  files.sources = SourcePlanner(plan, files.headers).Make();
  return files;
}

}  // namespace Quillon9Generator::Code
