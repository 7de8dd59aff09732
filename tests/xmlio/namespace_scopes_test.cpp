// Compares the namespace scopes of open elements with a plain model: each context either inherits or has its own
// default namespace and map, copied from those in force on the first change.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {
namespace {

using Map = std::map<std::string, std::string>;
using Context = CXmlWriter::CXmlWriterContext;

std::string const kUris[] = {"", "u", "v", "w", "x", "y"};
std::string const kPrefixes[] = {"AA", "AB", "p", "q"};

struct Model {
  Model* m_parent = nullptr;  // null with a scope of its own
  std::string m_defaultNamespace;
  Map m_map;

  Model const& Scope() const { return m_parent != nullptr ? m_parent->Scope() : *this; }
  Model& Scope() { return m_parent != nullptr ? m_parent->Scope() : *this; }
  Model& OwnScope() {
    Model const& scope = Scope();
    if (&scope == this) return *this;
    m_defaultNamespace = scope.m_defaultNamespace;
    m_map = scope.m_map;
    m_parent = nullptr;
    return *this;
  }
  std::string FindOrBind(std::string const& uri) {
    Map const& map = Scope().m_map;
    auto const found = map.find(uri);
    if (found != map.end()) return found->second;
    std::string const prefix = CXmlWriter::GetUniquePrefix(map);
    return OwnScope().m_map[uri] = prefix;
  }
};

class Random {
 public:
  explicit Random(unsigned seed) : m_engine(seed) {}
  std::size_t Below(std::size_t count) { return m_engine() % count; }
  template <std::size_t count>
  std::string const& OneOf(std::string const (&texts)[count]) {
    return texts[Below(count)];
  }

 private:
  std::mt19937 m_engine;
};

/// Checks that one number stands for one content of a scope.
class States {
 public:
  void Check(std::uint64_t state, Model const& scope) {
    if (state == 0) return;
    auto const content = std::pair(scope.m_defaultNamespace, scope.m_map);
    EXPECT_EQ(content, m_contents.emplace(state, content).first->second) << state;
  }

 private:
  std::map<std::uint64_t, std::pair<std::string, Map>> m_contents;
};

void ExpectSame(Model const& model, Context const& context, States& states) {
  Model const& scope = model.Scope();
  ASSERT_EQ(scope.m_defaultNamespace, context.GetDefaultNamespace());
  for (std::string const& uri : kUris) {
    std::string const* const prefix = context.FindPrefix(uri);
    auto const expected = scope.m_map.find(uri);
    ASSERT_EQ(expected != scope.m_map.end(), prefix != nullptr) << uri;
    if (prefix != nullptr) {
      ASSERT_EQ(expected->second, *prefix) << uri;
    }
  }
  ASSERT_EQ(context.m_namespace.empty() || context.m_namespace == scope.m_defaultNamespace, context.NeedsNoPrefix());
  states.Check(XmlWriterAccess::ScopeState(context), scope);
}

/// Makes protected operations callable, and starts each element with the operation after the one that requests it.
class LateWriter : public CXmlTextWriter {
 public:
  using CXmlTextWriter::CXmlTextWriter;
  using CXmlWriter::FindOrBindPrefix;
  ~LateWriter() override {
    if (m_late == nullptr) return;
    m_late->m_parent = nullptr;
    delete m_late;
  }

  void Ask(std::string const& uri) { m_late = NewContext("e", uri); }
  void Start() { m_context = std::exchange(m_late, nullptr); }
  void End() { PopContext(); }
  Context* Innermost() { return m_context; }
  Context* Late() { return m_late; }

 private:
  Context* m_late = nullptr;
};

/// Contexts in any relation, as a caller's own writer may create them.
class Contexts {
 public:
  explicit Contexts(unsigned seed) : m_random(seed) {}
  ~Contexts() {
    while (!m_entries.empty()) Delete();
  }

  void Step(States& states) {
    if (m_entries.empty()) OpenDocument();
    Entry& entry = *m_entries[m_random.Below(m_entries.size())];
    std::string const& uri = m_random.OneOf(kUris);
    std::string const& prefix = m_random.OneOf(kPrefixes);
    switch (m_random.Below(10)) {
      case 0: OpenDocument(); break;
      case 1:
      case 2: OpenChild(entry); break;
      case 3:
        entry.m_context->SetNamespaceMapValue(uri, prefix);
        entry.m_model.OwnScope().m_map[uri] = prefix;
        break;
      case 4: Generate(entry, uri); break;
      case 5:
        entry.m_context->SetDefaultNamespace(uri);
        entry.m_model.OwnScope().m_defaultNamespace = uri;
        break;
      case 6: entry.m_context->GetNamespaceMapValue(uri) = entry.m_model.Scope().m_map[uri] = prefix; break;
      case 7: Unlink(entry); break;
      case 8: Delete(); break;
      default: ASSERT_EQ(entry.m_model.Scope().m_map, entry.m_context->GetNamespaceMap());
    }
    for (auto const& each : m_entries) ExpectSame(each->m_model, *each->m_context, states);
  }

 private:
  struct Entry {
    Model m_model;
    Context* m_context = nullptr;
    Entry* m_parent = nullptr;  // which this one owns
    Entry* m_child = nullptr;   // which owns this one
  };

  Entry& Add() { return *m_entries.emplace_back(std::make_unique<Entry>()); }

  void OpenDocument() {
    Entry& entry = Add();
    entry.m_model.m_defaultNamespace = m_random.OneOf(kUris);
    entry.m_model.m_map = {{"u", "p"}, {"z", "AA"}};
    entry.m_context = new Context("d", "u", entry.m_model.m_defaultNamespace, entry.m_model.m_map, nullptr);
  }

  void OpenChild(Entry& parent) {
    if (parent.m_child != nullptr) return;  // which owns it
    Entry& child = Add();
    child.m_model.m_parent = &parent.m_model;
    child.m_context = new Context("e", m_random.OneOf(kUris), parent.m_context);
    child.m_parent = &parent;
    parent.m_child = &child;
  }

  static void Generate(Entry& entry, std::string const& uri) {
    bool isNew = false;
    bool const wasBound = entry.m_context->FindPrefix(uri) != nullptr;
    std::string const prefix = LateWriter::FindOrBindPrefix(*entry.m_context, uri, isNew);
    EXPECT_EQ(entry.m_model.FindOrBind(uri), prefix);
    EXPECT_EQ(!wasBound, isNew);
  }

  static void Unlink(Entry& entry) {
    if (entry.m_parent == nullptr) return;
    entry.m_context->m_parent = nullptr;
    entry.m_model.OwnScope();
    std::exchange(entry.m_parent, nullptr)->m_child = nullptr;
  }

  // Delete an entry that is not owned, with all those that it owns.
  void Delete() {
    Entry* entry = m_entries[m_random.Below(m_entries.size())].get();
    while (entry->m_child != nullptr) entry = entry->m_child;
    delete entry->m_context;
    while (entry != nullptr) {
      Entry* const parent = entry->m_parent;
      for (auto& each : m_entries) {
        if (each.get() == entry) std::swap(each, m_entries.back());
      }
      m_entries.pop_back();
      entry = parent;
    }
  }

  Random m_random;
  std::vector<std::unique_ptr<Entry>> m_entries;
};

// The sequences are always the same; with --gtest_shuffle each of many rounds (--gtest_repeat) has others.
unsigned FirstSeed() {
  return GTEST_FLAG_GET(shuffle) ? static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) * 1000 : 0;
}

TEST(NamespaceScopes, ContextsMatchTheModel) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(FirstSeed() + seed);
    States states;
    Contexts contexts(FirstSeed() + seed);
    for (int step = 0; step < 60; ++step) {
      contexts.Step(states);
      if (testing::Test::HasFailure()) return;
    }
  }
}

/// The elements of a writer that starts them late, with their models.
class LateElements {
 public:
  explicit LateElements(unsigned seed) : m_random(seed) { m_map[CXmlWriter::XML_NAMESPACE] = "xml"; }

  void Step(States& states) {
    std::string const& uri = m_random.OneOf(kUris);
    switch (m_random.Below(6)) {
      case 0:
      case 1: Ask(uri); break;
      case 2: End(); break;
      case 3: {
        std::string const& prefix = m_random.OneOf(kPrefixes);
        m_writer.AddNamespace(prefix, uri);
        (m_open.empty() ? m_map : m_open.back()->OwnScope().m_map)[uri] = prefix;
        break;
      }
      case 4:
        m_writer.SetDefaultNamespace(uri);
        (m_open.empty() ? m_defaultNamespace : m_open.back()->OwnScope().m_defaultNamespace) = uri;
        break;
      default: Start();
    }
    if (m_late != nullptr) ExpectSame(*m_late, *m_writer.Late(), states);
    Context const* context = m_writer.Innermost();
    for (auto model = m_open.rbegin(); model != m_open.rend(); ++model, context = context->m_parent) {
      ExpectSame(**model, *context, states);
    }
  }

 private:
  void Ask(std::string const& uri) {
    Start();
    m_late = std::make_unique<Model>();
    if (m_open.empty()) {
      m_late->m_defaultNamespace = m_defaultNamespace;
      m_late->m_map = m_map;
    } else {
      m_late->m_parent = m_open.back().get();
    }
    m_writer.Ask(uri);
  }

  void Start() {
    if (m_late == nullptr) return;
    m_open.push_back(std::move(m_late));
    m_writer.Start();
    bool isNew = false;
    std::string const& uri = m_writer.Innermost()->m_namespace;
    EXPECT_EQ(m_open.back()->FindOrBind(uri), LateWriter::FindOrBindPrefix(*m_writer.Innermost(), uri, isNew));
  }

  void End() {
    Start();
    if (m_open.empty()) return;
    m_writer.End();
    m_open.pop_back();
  }

  Random m_random;
  CTextStream m_stream;
  LateWriter m_writer{m_stream};
  std::string m_defaultNamespace;
  Map m_map;
  std::vector<std::unique_ptr<Model>> m_open;
  std::unique_ptr<Model> m_late;
};

TEST(NamespaceScopes, ElementsThatAreStartedLateMatchTheModel) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(FirstSeed() + seed);
    States states;
    LateElements elements(FirstSeed() + seed);
    for (int step = 0; step < 60; ++step) {
      elements.Step(states);
      if (testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace Quillon9
