#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "quillon9/binding/object_base.h"
#include "quillon9/export.h"

namespace Quillon9 {

class NodePool;

/// Base of all collections: the element name (GetElementName()) and the namespace of the items, the occurrence limits,
/// and the listeners. A repeating element of a schema becomes a collection property of its class.
///
/// Each change fires one event before it, one after it, and then CollectionChange, on the thread that makes the change.
/// The limits are not enforced when items are added, but when the collection is written and after it has been read.
class QUILLON9_API CXmlCollectionBase : public CXmlObjectBase {
 public:
  /// Construct with empty names and without limits.
  CXmlCollectionBase();
  /// \p maxOccurs -1 means no upper limit.
  CXmlCollectionBase(char const* name, char const* ns, int minOccurs, int maxOccurs);
  ~CXmlCollectionBase() override;

  using CXmlObjectBase::GetBase;
  /// This object as a CXmlObjectBase.
  CXmlObjectBase* GetBase() override;
  /// \throws CQnException always: a collection is not a document element.
  std::string GetTargetNamespace() const override;
  /// The namespace of the items.
  std::string GetNamespace() const override;

  /// The number of items.
  virtual int GetCount() const = 0;
  /// Remove all items, firing the events of each removal.
  virtual void Clear() = 0;
  /// \throws CQnInvalidParamException for an \p index outside 0 to GetCount() - 1.
  virtual void Remove(int index) = 0;
  /// \throws CQnValidationException for a count outside the limits, unless \p ctx ignores that.
  virtual void ValidateCount(CXmlSerializationContext const& ctx) const;
  /// Whether ValidateCount() would pass.
  virtual bool IsValidCount(CXmlSerializationContext const& ctx) const;

  /// The minimum count.
  int GetMinOccurs() const { return m_minOccurs; }
  /// The maximum count; -1 means no limit.
  int GetMaxOccurs() const { return m_maxOccurs; }

  /// Send the events of this collection to \p sink too; a sink that was added twice gets each event twice. The caller
  /// keeps ownership of the sink and must remove it before destroying it if the collection lives on.
  void AddEventListener(IEventSink* sink);
  /// Remove every entry of \p sink. Does nothing if the sink is unknown.
  void RemoveEventListener(IEventSink* sink);

  /// Send the event of this name to every listener. \p item and \p index are the data that IEventSink::MsgType
  /// describes. Called by the operations that change a collection.
  /// \throws what a listener throws.
  ///@{
  void FireOnCollectionAdd(void* item);
  void FireOnCollectionAddComplete(void* item);
  void FireOnCollectionRemove(int index);
  void FireOnCollectionRemoveComplete(int index);
  void FireOnCollectionChange();
  ///@}

 protected:
  /// Stops a Clear() that would never end because a listener adds an item whenever one is removed.
  class QUILLON9_API ClearGuard {
   public:
    /// Watch \p collection, which must outlive the guard.
    explicit ClearGuard(CXmlCollectionBase const& collection);
    /// Call after each removal.
    /// \throws CQnException "The collection [%s] is filled while it is cleared" when the count no longer falls.
    void Check();

   private:
    CXmlCollectionBase const& m_collection;
    int m_lowest;
    long long m_allowance;
    long long m_left;
  };
  /// \throws CQnValidationException for a count outside the limits, with \p names for the items.
  void RequireValidCount(CXmlSerializationContext const& ctx, char const* names) const;
  /// Whether a read takes no more items, although there may be more: the collection belongs to one round of a repeated
  /// group, and has reached its maximum.
  bool IsFull() const { return m_stopsAt >= 0 && GetCount() >= m_stopsAt; }
  /// Whether any listener is registered.
  bool HasListeners() const { return m_listeners != nullptr && !m_listeners->empty(); }
  /// Remove every listener.
  void RemoveAllListeners() {
    if (m_listeners != nullptr) m_listeners->clear();
  }

 private:
  template <class Fire>
  void ForEachListener(Fire fire);
  template <class Fire>
  void TellListeners(Fire fire);

  int m_minOccurs = 0;
  int m_maxOccurs = -1;
  int m_stopsAt = -1;                                     // the count at which a read ends; -1 for none
  std::unique_ptr<char[]> m_namespace;                    // null for none
  std::unique_ptr<std::vector<IEventSink*>> m_listeners;  // null before the first one

  friend struct ObjectAccess;
};

/// One item of a CXmlCollection: a counted reference, which may be null, and its neighbours.
class CNode {
 public:
  /// A node without neighbours that takes a reference to \p item, which may be null.
  explicit CNode(CXmlObjectBase* item) : m_item(item) {}

  CSmartPtr<CXmlObjectBase> m_item;  ///< shared ownership
  CNode* m_next = nullptr;           ///< null for the last
  CNode* m_prev = nullptr;           ///< null for the first
};

/// A list of counted object references; the base of generated collections of class-typed elements. A generated
/// collection adds typed `Add` and `Item` operations and implements ToXml_Int and FromXml_Int.
class QUILLON9_API CXmlCollection : public CXmlCollectionBase {
 public:
  CXmlCollection();
  /// The arguments are those of CXmlCollectionBase.
  CXmlCollection(char const* name, char const* ns, int minOccurs, int maxOccurs);
  /// Removes every item and reports each removal to the listeners that are still registered. Exceptions from listeners
  /// are dropped. Once a listener adds items without end, no listener is called any more.
  ~CXmlCollection() override;

  /// The number of items.
  int GetCount() const override { return m_count; }
  /// Call Remove(0) until the collection is empty.
  /// \throws CQnException "The collection [%s] is filled while it is cleared" for a listener that adds without end;
  ///         what Remove() throws.
  void Clear() override;
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" with the count, before any event; "The
  ///         object was not found in the collection" when a listener of the remove event has already removed it.
  void Remove(int index) override;

 protected:
  /// Each item adds its attributes to the open element; null items are skipped.
  void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const override;

  /// Add \p item, which may be null, at the end or at the front. If this fails before the item is in the list (because
  /// a listener of the add event throws, or when out of memory), the item stays the caller's: hold it in a CSmartPtr
  /// during the call.
  ///@{
  void AppendItem(CXmlObjectBase* item);
  void PrependItem(CXmlObjectBase* item);
  ///@}
  /// Add \p item before or after the first node that holds \p anchor. With a null anchor, AddBeforeItem() appends
  /// \p item and AddAfterItem() prepends it.
  /// \throws CQnInvalidParamException "The object was not found in the collection", after the add event.
  ///@{
  void AddBeforeItem(CXmlObjectBase const* anchor, CXmlObjectBase* item);
  void AddAfterItem(CXmlObjectBase const* anchor, CXmlObjectBase* item);
  ///@}
  /// \throws CQnInvalidParamException "Index out of range" unless \p index is 0 to GetCount(), before any event.
  void AddItemAt(int index, CXmlObjectBase* item);

  /// The first node, where a walk over the items begins; null for an empty list.
  CNode* GetFirstNode() const { return m_head; }
  /// The node at \p index or the first node that holds \p item. The collection keeps ownership of it.
  /// \throws CQnInvalidParamException when there is no such node.
  ///@{
  CNode* GetNodeAtIndex(int index) const;
  CNode* GetNodeForItem(CXmlObjectBase const* item) const;
  ///@}
  /// Remove \p node, which must be a node of this collection, and free it.
  /// \throws CQnInvalidParamException when a listener of the remove event has already removed it.
  void RemoveNode(CNode* node);

 private:
  void FinishAdd(CNode* next, CXmlObjectBase* item);
  void AnnounceRemoval(CNode const* node);
  bool HoldsNode(CNode const* node) const;
  void RemoveNode(CNode* node, int index);
  void Unlink(CNode* node, int index = -1);

  friend struct ObjectAccess;

  NodePool* m_nodes = nullptr;  // owned; null without nodes
  CNode* m_head = nullptr;
  CNode* m_tail = nullptr;
  int m_count = 0;
  std::uint32_t m_removals = 0;  // number of removals so far, modulo 2^32: compared before and after one call
  /// The last place that GetNodeAtIndex() found, as a NodePlace, while it is valid. Any number of threads may search at
  /// once.
  mutable std::atomic<std::uint64_t> m_lastPlace{0};
};

}  // namespace Quillon9
