#include "quillon9/binding/collection.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

using namespace Testing;

/// Records the events that it receives, and throws at the event that it is constructed with.
class Recorder : public IEventSink {
 public:
  explicit Recorder(int throwAt = -1) : m_throwAt(throwAt) {}
  void OnEvent(CXmlObjectBase* sender, MsgType type, void* data) override {
    m_sender = sender;
    m_data = data;
    m_log += static_cast<char>('0' + type);
    if (type == m_throwAt) throw CQnException("listener");
  }
  std::string Take() { return std::exchange(m_log, ""); }

  CXmlObjectBase* m_sender = nullptr;
  void* m_data = nullptr;

 private:
  int m_throwAt;
  std::string m_log;
};

class CollectionTest : public testing::Test {
 protected:
  std::string Names(DynamicCollection const& collection) {
    std::string names;
    for (int i = 0; i < collection.GetCount(); ++i) names += collection.Item(i)->GetElementName();
    return names;
  }

  Shape m_shape{{}, {}};
  CSmartPtr<DynamicClass> a{new DynamicClass(m_shape, "a")};
  CSmartPtr<DynamicClass> b{new DynamicClass(m_shape, "b")};
  CSmartPtr<DynamicClass> c{new DynamicClass(m_shape, "c")};
};

TEST_F(CollectionTest, AddsInEveryPlace) {
  DynamicCollection list(m_shape, "item", 0, -1);
  list.AppendItem(b.Get());
  list.PrependItem(a.Get());
  list.AddItemAt(2, c.Get());
  EXPECT_EQ("abc", Names(list));
  list.AddBeforeItem(c.Get(), a.Get());
  list.AddAfterItem(a.Get(), c.Get());  // the first of the two nodes that hold a
  list.AddBeforeItem(nullptr, b.Get());
  list.AddAfterItem(nullptr, b.Get());
  list.AddItemAt(1, c.Get());
  EXPECT_EQ("bcacbacb", Names(list));
  list.Remove(7);
  list.Remove(0);
  EXPECT_EQ("cacbac", Names(list));
}

TEST_F(CollectionTest, PlacesAreFoundAfterEveryChange) {
  DynamicCollection list(m_shape, "item", 0, -1);
  std::vector<DynamicClass*> expected;
  DynamicClass* const items[] = {a.Get(), b.Get(), c.Get()};
  std::minstd_rand random(1);
  auto const below = [&](std::size_t limit) { return static_cast<int>(random() % limit); };
  for (int step = 0; step < 3000; ++step) {
    int const at = below(expected.size() + 1);
    if (step % 5 < 3) {
      DynamicClass* const item = items[below(3)];
      list.AddItemAt(at, item);
      expected.insert(expected.begin() + at, item);
    } else if (at < list.GetCount()) {
      list.Remove(at);
      expected.erase(expected.begin() + at);
    }
    for (int look = 0; look < 3 && !expected.empty(); ++look) {
      int const index = below(expected.size());
      ASSERT_EQ(expected[static_cast<std::size_t>(index)], list.Item(index)) << step;
    }
  }
}

TEST_F(CollectionTest, ManyItemsByIndex) {
  DynamicCollection list(m_shape, "item", 0, -1);
  constexpr int kMany = 300000;
  for (int i = 0; i < kMany; ++i) list.AppendItem(i % 2 == 0 ? a.Get() : b.Get());
  int found = 0;
  for (int i = 0; i < kMany; ++i) found += list.Item(i) == a.Get() ? 1 : 0;  // must not be quadratic
  EXPECT_EQ(kMany / 2, found);
  for (int i = kMany / 2; i < kMany; ++i) list.Remove(kMany / 2);
  EXPECT_EQ(b.Get(), list.Item(kMany / 2 - 1));
}

// There are so many items that not every index can be remembered.
TEST_F(CollectionTest, ManyItemsByIndexAmongChanges) {
  DynamicCollection list(m_shape, "item", 0, -1);
  std::vector<CXmlObjectBase*> expected;
  CXmlObjectBase* const items[] = {a.Get(), b.Get(), c.Get()};
  std::mt19937 random(1);
  for (int i = 0; i < 70000; ++i) list.AppendItem(expected.emplace_back(items[random() % 3]));
  for (int step = 0, index = 0; step < 3000; ++step) {
    // Usually near the last index, where the remembered place matters.
    index = static_cast<int>(random() % 8 != 0 ? static_cast<unsigned>(index) + random() % 90 : random());
    index = std::abs(index) % list.GetCount();
    auto const at = expected.begin() + index;
    ASSERT_EQ(*at, list.Item(index)) << step;
    switch (random() % 6) {
      case 0:
        list.AddItemAt(index, items[step % 3]);
        expected.insert(at, items[step % 3]);
        break;
      case 1:
      case 2:
        list.Remove(index);
        expected.erase(at);
        break;
      default: break;
    }
  }
}

TEST_F(CollectionTest, FiresBeforeAfterAndChange) {
  DynamicCollection list(m_shape, "item", 0, -1);
  Recorder listener;
  list.AddEventListener(&listener);
  list.Clear();
  EXPECT_EQ("", listener.Take());
  list.AppendItem(a.Get());
  EXPECT_EQ("120", listener.Take());
  EXPECT_EQ(&list, listener.m_sender);
  list.Remove(0);
  EXPECT_EQ("340", listener.Take());
  list.AddEventListener(&listener);
  list.AppendItem(a.Get());
  EXPECT_EQ("112200", listener.Take());
  list.RemoveEventListener(&listener);
  list.RemoveEventListener(&listener);
  list.AppendItem(a.Get());
  EXPECT_EQ("", listener.Take());
}

TEST_F(CollectionTest, EventDataOfRemovalIsTheIndexUnlessItIsMinusOne) {
  DynamicCollection list(m_shape, "item", 0, -1);
  struct IndexSink : IEventSink {
    void OnEvent(CXmlObjectBase*, MsgType, void* data) override {
      m_index = data == nullptr ? -1 : *static_cast<int*>(data);
    }
    int m_index = -2;
  } sink;
  CXmlObjectBase::FireOnCollectionRemoveEvent(&sink, &list, 0);
  EXPECT_EQ(0, sink.m_index);
  CXmlObjectBase::FireOnCollectionRemoveEvent(&sink, &list, -1);
  EXPECT_EQ(-1, sink.m_index);
}

TEST_F(CollectionTest, FailuresAndWhatTheyLeave) {
  DynamicCollection list(m_shape, "item", 0, -1);
  Recorder listener;
  list.AddEventListener(&listener);
  EXPECT_FAILURE(CQnInvalidParamException, "Index 0 is out of range, use 0 - 0", list.Remove(0));
  EXPECT_FAILURE(CQnInvalidParamException, "Index out of range", list.AddItemAt(1, a.Get()));
  EXPECT_FAILURE(CQnInvalidParamException, "Index out of range", list.AddItemAt(-1, a.Get()));
  EXPECT_EQ("", listener.Take());
  EXPECT_FAILURE(CQnInvalidParamException, "The object was not found in the collection",
                 list.AddBeforeItem(b.Get(), a.Get()));
  EXPECT_EQ("1", listener.Take());
  EXPECT_EQ(0, list.GetCount());
  EXPECT_FAILURE(CQnException,
                 "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic "
                 "error)",
                 list.ToXml());
}

TEST_F(CollectionTest, AListenerThatRaisesStopsTheAddAndNeverTheDestruction) {
  Recorder onAdd(IEventSink::CollectionAdd);
  Recorder onRemove(IEventSink::CollectionRemove);
  {
    DynamicCollection list(m_shape, "item", 0, -1);
    list.AddEventListener(&onAdd);
    EXPECT_FAILURE(CQnException, "listener", list.AppendItem(a.Get()));
    EXPECT_EQ(0, list.GetCount());
    list.RemoveEventListener(&onAdd);
    list.AppendItem(a.Get());
    list.AppendItem(nullptr);
    list.AddEventListener(&onRemove);
  }
  EXPECT_EQ("33", onRemove.Take());  // the removal of each item is reported
  EXPECT_EQ(2, a->AddRef()) << "the collection gave its reference back";
  a->Release();
}

// Fails however many items are added in its place: its address and the count are not enough to recognise the node.
TEST_F(CollectionTest, AListenerThatRemovesTheItemFirstMakesTheRemovalFail) {
  struct Faster : IEventSink {
    Faster(DynamicCollection& collection, int count, CXmlObjectBase* other)
        : list(collection), added(count), item(other) {}
    void OnEvent(CXmlObjectBase*, MsgType type, void*) override {
      if (type != CollectionRemove || std::exchange(isBusy, true)) return;
      list.Remove(0);
      for (int i = 0; i < added; ++i) list.AppendItem(item);
    }
    DynamicCollection& list;
    int added;
    CXmlObjectBase* item;
    bool isBusy = false;
  };
  for (int const held : {1, 2, 3}) {
    for (int const added : {0, 1, 2}) {
      DynamicCollection list(m_shape, "item", 0, -1);
      for (int i = 0; i < held; ++i) list.AppendItem(a.Get());
      Faster listener(list, added, b.Get());
      list.AddEventListener(&listener);
      EXPECT_FAILURE(CQnInvalidParamException, "The object was not found in the collection", list.Remove(0));
      list.RemoveEventListener(&listener);
      EXPECT_EQ(
          std::string(static_cast<std::size_t>(held - 1), 'a') + std::string(static_cast<std::size_t>(added), 'b'),
          Names(list));
      list.Clear();
      EXPECT_EQ("", Names(list));
    }
  }
}

// A listener that removes other items moves the item that is about to be removed.
TEST_F(CollectionTest, PlacesAreFoundAfterAListenerHasMovedTheItem) {
  struct Remover : IEventSink {
    void OnEvent(CXmlObjectBase* sender, MsgType type, void*) override {
      if (type != CollectionRemove || std::exchange(m_isDone, true)) return;
      auto& list = static_cast<DynamicCollection&>(*sender);
      list.Remove(0);
      list.Remove(0);
      list.Item(4);
    }
    bool m_isDone = false;
  } remover;
  DynamicCollection list(m_shape, "item", 0, -1);
  for (CXmlObjectBase* item : {a.Get(), a.Get(), a.Get(), b.Get(), c.Get(), c.Get(), a.Get(), b.Get(), c.Get()}) {
    list.Add(item);
  }
  list.AddEventListener(&remover);
  list.Remove(5);
  list.RemoveEventListener(&remover);
  EXPECT_EQ(b.Get(), list.Item(4));
  EXPECT_EQ("abcabc", Names(list));
}

TEST_F(CollectionTest, Limits) {
  struct Row {
    int minOccurs, maxOccurs, count;
    char const* failure;
  } const rows[] = {
      {0, -1, 3, ""},
      {2, 5, 1, "The Minimum number of [item] elements allowed in this collection is 2"},
      {0, 2, 3, "The Maximum number of [item] elements allowed in this collection is 2"},
      {4, 2, 3, "The Maximum number of [item] elements allowed in this collection is 2"},
  };
  for (Row const& row : rows) {
    DynamicCollection list(m_shape, "item", row.minOccurs, row.maxOccurs);
    for (int i = 0; i < row.count; ++i) list.AppendItem(a.Get());
    bool const valid = *row.failure == '\0';
    EXPECT_EQ(valid, list.IsValidCount(Ignoring("")));
    EXPECT_TRUE(list.IsValidCount(Ignoring("I")));
    EXPECT_NO_THROW(list.ValidateCount(Ignoring("I")));
    if (!valid) EXPECT_FAILURE(CQnValidationException, row.failure, list.ValidateCount(Ignoring("")));
  }
}

}  // namespace
}  // namespace Quillon9
