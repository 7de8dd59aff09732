#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "quillon9/binding/node_pool.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/export.h"

namespace Quillon9 {

/// What all collections share: the element name (GetElementName()) and the namespace of the items, the occurrence
/// limits, and the listeners. A repeating element of a schema becomes a collection property of its class.
///
/// A change fires one event before it, one after it, and then CollectionChange, on the thread that makes it. The
/// limits are not enforced when items are added, but when the collection is written and after it was read.
class QUILLON9_API CXmlCollectionBase : public CXmlObjectBase {
 public:
  /// Empty names, no limits.
  CXmlCollectionBase();
  /// \p maxOccurs -1 means no upper limit.
  CXmlCollectionBase(char const* name, char const* ns, int minOccurs, int maxOccurs);
  ~CXmlCollectionBase() override;

  using CXmlObjectBase::GetBase;
  /// This object as a CXmlObjectBase.
  CXmlObjectBase* GetBase() override;
  /// \throws CQnException always: a collection is no document element.
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

  /// The least count.
  int GetMinOccurs() const { return m_minOccurs; }
  /// The greatest count; -1 for no limit.
  int GetMaxOccurs() const { return m_maxOccurs; }

  /// Send the events of this collection to \p sink too; added twice, it gets each event twice. The sink stays the
  /// caller's and must be removed before it dies, if the collection lives on.
  void AddEventListener(IEventSink* sink);
  /// Remove every entry of \p sink; an unknown sink is no failure.
  void RemoveEventListener(IEventSink* sink);

  /// Send the event of this name to every listener. \p item and \p index are the data that IEventSink::MsgType tells.
  /// Called by the operations that change a collection.
  /// \throws what a listener throws.
  ///@{
  void FireOnCollectionAdd(void* item);
  void FireOnCollectionAddComplete(void* item);
  void FireOnCollectionRemove(int index);
  void FireOnCollectionRemoveComplete(int index);
  void FireOnCollectionChange();
  ///@}

 protected:
  /// Ends a Clear() that a listener makes endless, by adding whenever something is removed.
  class QUILLON9_API ClearGuard {
   public:
    /// Watch \p collection, which must outlive the guard.
    explicit ClearGuard(CXmlCollectionBase const& collection);
    /// To be called after each removal.
    /// \throws CQnException "The collection [%s] is filled while it is cleared" when the count does not fall any more.
    void Check();

   private:
    CXmlCollectionBase const& m_collection;
    int m_lowest;
    long long m_allowance;
    long long m_left;
  };
  /// Whether anybody hears of changes.
  bool HasListeners() const { return !m_listeners.empty(); }
  /// Forget every listener.
  void RemoveAllListeners() { m_listeners.clear(); }

 private:
  template <class Fire>
  void ForEachListener(Fire fire);
  template <class Fire>
  void TellListeners(Fire fire);

  std::string m_namespace;
  std::vector<IEventSink*> m_listeners;
  int m_minOccurs = 0;
  int m_maxOccurs = -1;
};

/// One item of a CXmlCollection: a counted reference, which may be null, and its neighbours.
class CNode {
 public:
  /// A node without neighbours that takes a reference to \p item, which may be null.
  explicit CNode(CXmlObjectBase* item) : m_item(item) {}

  CSmartPtr<CXmlObjectBase> m_item;  ///< owned together with others
  CNode* m_next = nullptr;           ///< null for the last
  CNode* m_prev = nullptr;           ///< null for the first
};

/// A list of counted object references, the base of generated collections of class-typed elements. These give
/// typed `Add` and `Item` operations of their own and implement ToXml_Int and FromXml_Int.
class QUILLON9_API CXmlCollection : public CXmlCollectionBase {
 public:
  CXmlCollection();
  /// As CXmlCollectionBase's.
  CXmlCollection(char const* name, char const* ns, int minOccurs, int maxOccurs);
  /// Removes every item; listeners still registered hear of each. What they throw then is dropped, and they are no
  /// longer told when one of them adds without end.
  ~CXmlCollection() override;

  /// The number of items.
  int GetCount() const override { return m_count; }
  /// Remove(0) until nothing is left.
  /// \throws CQnException "The collection [%s] is filled while it is cleared" for a listener that adds without end; as
  ///         Remove().
  void Clear() override;
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" with the count, before any event;
  ///         "The object was not found in the collection" when a listener of the remove event has removed it already.
  void Remove(int index) override;

 protected:
  /// Each item adds its attributes to the open element; null items are passed over.
  void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx) const override;

  /// Add \p item, which may be null, at the end or in front. When a failure comes before it is in the list (from a
  /// listener of the add event, or for want of memory), it stays the caller's: hold it in a CSmartPtr meanwhile.
  ///@{
  void AppendItem(CXmlObjectBase* item);
  void PrependItem(CXmlObjectBase* item);
  ///@}
  /// Add \p item in front of or behind the first node that holds \p anchor. A null anchor appends or prepends.
  /// \throws CQnInvalidParamException "The object was not found in the collection", after the add event.
  ///@{
  void AddBeforeItem(CXmlObjectBase const* anchor, CXmlObjectBase* item);
  void AddAfterItem(CXmlObjectBase const* anchor, CXmlObjectBase* item);
  ///@}
  /// \throws CQnInvalidParamException "Index out of range" unless \p index is 0 to GetCount(), before any event.
  void AddItemAt(int index, CXmlObjectBase* item);

  /// Where a walk over the items begins; null for an empty list.
  CNode* GetFirstNode() const { return m_head; }
  /// The node at \p index or the first node that holds \p item. The collection keeps owning it.
  /// \throws CQnInvalidParamException when there is none.
  ///@{
  CNode* GetNodeAtIndex(int index) const;
  CNode* GetNodeForItem(CXmlObjectBase const* item) const;
  ///@}
  /// Remove \p node, which must be a node of this collection, and free it.
  /// \throws CQnInvalidParamException when a listener of the remove event has removed it already.
  void RemoveNode(CNode* node);

 private:
  void FinishAdd(CNode* next, CXmlObjectBase* item);
  void AnnounceRemoval(CNode const* node);
  bool HoldsNode(CNode const* node) const;
  void RemoveNode(CNode* node, int index);
  void Unlink(CNode* node, int index = -1);

  CNodePool m_nodes;
  CNode* m_head = nullptr;
  CNode* m_tail = nullptr;
  int m_count = 0;
  std::uint64_t m_removals = 0;  // so far
  /// Where GetNodeAtIndex() was last, as a NodePlace, while that holds. Any number of threads may look at the same time.
  mutable std::atomic<std::uint64_t> m_lastPlace{0};
};

}  // namespace Quillon9
