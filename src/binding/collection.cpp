#include "quillon9/binding/collection.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "base/failure_detail.h"
#include "base/fast_paths.h"
#include "base/text_arguments.h"
#include "binding/deferred_release.h"
#include "binding/node_place.h"
#include "binding/node_pool.h"
#include "quillon9/base/exceptions.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

namespace {

std::unique_ptr<char[]> CopyOrNull(std::string_view text) {
  if (text.empty()) return nullptr;
  auto copy = std::make_unique<char[]>(text.size() + 1);
  text.copy(copy.get(), text.size());
  return copy;
}

}  // namespace

CXmlCollectionBase::CXmlCollectionBase() = default;

CXmlCollectionBase::CXmlCollectionBase(char const* name, char const* ns, int minOccurs, int maxOccurs)
    : m_minOccurs(minOccurs), m_maxOccurs(maxOccurs), m_namespace(CopyOrNull(OrEmpty(ns))) {
  SetElementName(name);
}

CXmlCollectionBase::~CXmlCollectionBase() = default;

CXmlObjectBase* CXmlCollectionBase::GetBase() { return this; }

std::string CXmlCollectionBase::GetTargetNamespace() const {
  throw CQnException(
      "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)");
}

std::string CXmlCollectionBase::GetNamespace() const { return OrEmpty(m_namespace.get()); }

namespace {

void RequireCount(CXmlCollectionBase const& collection, char const* names) {
  int const count = collection.GetCount();
  int const most = collection.GetMaxOccurs();
  int const least = collection.GetMinOccurs();
  if (count > most && most != -1) {
    throw OfKind(FailureKind_Count,
                 CQnValidationException(FormatString(
                     "The Maximum number of [%s] elements allowed in this collection is %d", names, most)));
  }
  if (count < least) {
    throw OfKind(FailureKind_Count,
                 CQnValidationException(FormatString(
                     "The Minimum number of [%s] elements allowed in this collection is %d", names, least)));
  }
}

}  // namespace

void CXmlCollectionBase::ValidateCount(CXmlSerializationContext const& ctx) const {
  RequireValidCount(ctx, GetElementName().c_str());
}

void CXmlCollectionBase::RequireValidCount(CXmlSerializationContext const& ctx, char const* names) const {
  if (ctx.GetIgnoreInvalidCollectionCounts()) return;
  try {
    RequireCount(*this, names);
  } catch (CQnException& failure) {
    CheckingWriter* const check = CheckingWriter::Current();
    if (check == nullptr || !check->GoesOnAfterCount(this, failure)) throw;
  }
}

bool CXmlCollectionBase::IsValidCount(CXmlSerializationContext const& ctx) const {
  if (ctx.GetIgnoreInvalidCollectionCounts()) return true;
  int const count = GetCount();
  if (count > m_maxOccurs && m_maxOccurs != -1) return false;
  return count >= m_minOccurs;
}

void CXmlCollectionBase::AddEventListener(IEventSink* sink) {
  if (m_listeners == nullptr) m_listeners = std::make_unique<std::vector<IEventSink*>>();
  m_listeners->push_back(sink);
}

void CXmlCollectionBase::RemoveEventListener(IEventSink* sink) {
  if (m_listeners == nullptr) return;
  m_listeners->erase(std::remove(m_listeners->begin(), m_listeners->end(), sink), m_listeners->end());
}

template <class Fire>
[[gnu::always_inline]] inline void CXmlCollectionBase::ForEachListener(Fire fire) {
  if (HasListeners()) TellListeners(fire);  // few collections have any, and every item fires three events
}

// Iterates over a copy, since a listener may add or remove listeners during the call; removed ones are skipped.
template <class Fire>
void CXmlCollectionBase::TellListeners(Fire fire) {
  DeferredRelease::Pause const pause;
  std::vector<IEventSink*> const listeners = *m_listeners;
  for (IEventSink* const sink : listeners) {
    if (std::find(m_listeners->begin(), m_listeners->end(), sink) != m_listeners->end()) fire(sink);
  }
}

void CXmlCollectionBase::FireOnCollectionAdd(void* item) {
  ForEachListener([&](IEventSink* sink) { FireOnCollectionAddEvent(sink, this, item); });
}

void CXmlCollectionBase::FireOnCollectionAddComplete(void* item) {
  ForEachListener([&](IEventSink* sink) { FireOnCollectionAddCompleteEvent(sink, this, item); });
}

void CXmlCollectionBase::FireOnCollectionRemove(int index) {
  ForEachListener([&](IEventSink* sink) { FireOnCollectionRemoveEvent(sink, this, index); });
}

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int index) {
  ForEachListener([&](IEventSink* sink) { FireOnCollectionRemoveCompleteEvent(sink, this, index); });
}

void CXmlCollectionBase::FireOnCollectionChange() {
  ForEachListener([&](IEventSink* sink) { FireOnCollectionChangeEvent(sink, this); });
}

CXmlCollectionBase::ClearGuard::ClearGuard(CXmlCollectionBase const& collection)
    : m_collection(collection), m_lowest(collection.GetCount()), m_allowance(m_lowest + 1000LL), m_left(m_allowance) {}

void CXmlCollectionBase::ClearGuard::Check() {
  int const count = m_collection.GetCount();
  if (count < m_lowest) {
    m_lowest = count;
    m_left = m_allowance;
  } else if (--m_left == 0) {
    throw CQnException(
        FormatString("The collection [%s] is filled while it is cleared", m_collection.GetElementName().c_str()));
  }
}

CXmlCollection::CXmlCollection() = default;

CXmlCollection::CXmlCollection(char const* name, char const* ns, int minOccurs, int maxOccurs)
    : CXmlCollectionBase(name, ns, minOccurs, maxOccurs) {}

CXmlCollection::~CXmlCollection() {
  for (long long rounds = m_count + 1000LL; m_head != nullptr; --rounds) {
    if (rounds == 0) RemoveAllListeners();  // a listener that adds without end must not keep this object alive
    std::uint32_t const removals = m_removals;
    try {
      RemoveNode(m_head);
    } catch (...) {  // a listener's failure must not end the process, and the item must still go
      if (m_removals == removals) Unlink(m_head);
    }
  }
  NodePool::DropUnused(m_nodes);
}

void CXmlCollection::Clear() {
  ClearGuard guard(*this);
  while (m_count > 0) {
    Remove(0);
    guard.Check();
  }
}

void CXmlCollection::Remove(int index) { RemoveNode(GetNodeAtIndex(index), index); }

void CXmlCollection::AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const {
  for (CNode const* node = m_head; node != nullptr; node = node->m_next) {
    if (node->m_item) CXmlObjectBase::AttributesToXml_Int(node->m_item->GetBase(), writer, ctx);
  }
}

void CXmlCollection::AppendItem(CXmlObjectBase* item) {
  FireOnCollectionAdd(item);
  FinishAdd(nullptr, item);
}

void CXmlCollection::PrependItem(CXmlObjectBase* item) {
  FireOnCollectionAdd(item);
  FinishAdd(m_head, item);
}

void CXmlCollection::AddBeforeItem(CXmlObjectBase const* anchor, CXmlObjectBase* item) {
  if (anchor == nullptr) return AppendItem(item);
  FireOnCollectionAdd(item);
  FinishAdd(GetNodeForItem(anchor), item);
}

void CXmlCollection::AddAfterItem(CXmlObjectBase const* anchor, CXmlObjectBase* item) {
  if (anchor == nullptr) return PrependItem(item);
  FireOnCollectionAdd(item);
  FinishAdd(GetNodeForItem(anchor)->m_next, item);
}

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item) {
  if (index < 0 || index > m_count) throw CQnInvalidParamException("Index out of range");
  if (index == m_count) return AppendItem(item);
  FireOnCollectionAdd(item);
  FinishAdd(GetNodeAtIndex(index), item);
}

namespace {

CNode* Walk(CNode* node, int distance) {
  for (; distance > 0; --distance) node = node->m_next;
  for (; distance < 0; ++distance) node = node->m_prev;
  return node;
}

}  // namespace

CNode* CXmlCollection::GetNodeAtIndex(int index) const {
  if (index < 0 || index >= m_count) {
    throw CQnInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, m_count));
  }
  // Start from the nearer end or the last place, so that a loop over all indices is not quadratic.
  bool const isNearTail = index > m_count / 2;
  CNode* node = isNearTail ? m_tail : m_head;
  int at = isNearTail ? m_count - 1 : 0;
  NodePlace const last(m_lastPlace.load(std::memory_order_relaxed));
  if (last.Node() != nullptr && std::abs(index - last.Index()) < std::abs(index - at)) {
    node = last.Node();
    at = last.Index();
  }
  node = Walk(node, index - at);
  kNodePlace.Verify([&] { return m_count > kMostVerified || node == Walk(m_head, index); });
  int const step = NodePlace::Step(index);
  if (last.Node() == nullptr || step != last.Index()) {
    m_lastPlace.store(NodePlace(Walk(node, step - index), step).Word(), std::memory_order_relaxed);
  }
  return node;
}

CNode* CXmlCollection::GetNodeForItem(CXmlObjectBase const* item) const {
  CXmlObjectBase const* const wanted = item != nullptr ? item->GetBase() : nullptr;
  for (CNode* node = m_head; node != nullptr; node = node->m_next) {
    if ((node->m_item ? node->m_item->GetBase() : nullptr) == wanted) return node;
  }
  throw CQnInvalidParamException("The object was not found in the collection");
}

void CXmlCollection::RemoveNode(CNode* node) { RemoveNode(node, -1); }

// Removes the node at index, or at an unknown place for -1.
void CXmlCollection::RemoveNode(CNode* node, int index) {
  std::uint32_t const removals = m_removals;
  if (HasListeners()) AnnounceRemoval(node);
  Unlink(node, m_removals == removals ? index : -1);  // a listener that removed other items has moved it
  if (!HasListeners()) return;
  FireOnCollectionRemoveComplete(-1);
  FireOnCollectionChange();
}

void CXmlCollection::AnnounceRemoval(CNode const* node) {
  NodePool::Pause const pause(m_nodes);
  std::uint32_t const removals = m_removals;
  FireOnCollectionRemove(-1);
  if (m_removals != removals && !HoldsNode(node)) {  // a listener has already removed it
    throw CQnInvalidParamException("The object was not found in the collection");
  }
}

// The add event has been fired, and next, the node to insert before (null for the end), was looked up after it, because
// a listener may have changed the list.
void CXmlCollection::FinishAdd(CNode* next, CXmlObjectBase* item) {
  auto* const node = new (NodePool::Take(m_nodes)) CNode(item);
  if (next != nullptr) m_lastPlace.store(0, std::memory_order_relaxed);
  node->m_next = next;
  node->m_prev = next != nullptr ? next->m_prev : m_tail;
  (node->m_prev != nullptr ? node->m_prev->m_next : m_head) = node;
  (next != nullptr ? next->m_prev : m_tail) = node;
  ++m_count;
  if (!HasListeners()) return;
  FireOnCollectionAddComplete(item);
  FireOnCollectionChange();
}

bool CXmlCollection::HoldsNode(CNode const* node) const {
  CNode const* held = m_head;
  while (held != nullptr && held != node) held = held->m_next;
  return held != nullptr;
}

// The count is already correct when the item is released, because its destructor may read it. The remembered place
// stays if the node comes after it, and moves to the next node if it is the node itself, so that removing at the same
// index repeatedly takes linear time.
void CXmlCollection::Unlink(CNode* node, int index) {
  (node->m_prev != nullptr ? node->m_prev->m_next : m_head) = node->m_next;
  (node->m_next != nullptr ? node->m_next->m_prev : m_tail) = node->m_prev;
  --m_count;
  ++m_removals;
  NodePlace const last(m_lastPlace.load(std::memory_order_relaxed));
  if (node == last.Node()) {
    m_lastPlace.store(NodePlace(node->m_next, last.Index()).Word(), std::memory_order_relaxed);
  } else if (index <= last.Index()) {
    m_lastPlace.store(0, std::memory_order_relaxed);
  }
  node->~CNode();
  NodePool::Give(m_nodes, node);
}

}  // namespace Quillon9
