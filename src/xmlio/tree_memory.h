#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/binding/plain_classes.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// Where the nodes of a document's tree and their names live. Nodes come from blocks instead of one by one, and each
/// name stands here once, however many nodes bear it.
///
/// It belongs to its document, and outlives it as long as there is a node: a child that a caller detached keeps it
/// alive. Everything here is for one thread at a time, as the tree is.
class CTreeMemory {
 public:
  /// Made with new; the document gives it up by Abandon().
  CTreeMemory();
  CTreeMemory(CTreeMemory const&) = delete;
  CTreeMemory& operator=(CTreeMemory const&) = delete;

  /// Tell that the document needs it no more. It goes now, or with its last node.
  void Abandon();
  bool HasNodes() const { return m_nodes > 0; }

  /// The classes that have been read from this tree.
  CPlainClasses& PlainClasses() { return m_plainClasses; }

  /// The one name with these texts.
  CXmlName const* ShareName(std::string_view namespaceUri, std::string_view localName);

  // Storage of one node, aligned for a pointer. Free() takes any node, those that have no such memory behind them too.
  void* Allocate(std::size_t size);
  static void* AllocateAlone(std::size_t size);
  static void Free(void* node, std::size_t size) noexcept;

 private:
  /// Stands in front of each node, so that `delete` finds the way back; null for a node by itself.
  using Header = CTreeMemory*;
  struct FreeNode {
    FreeNode* next;
  };
  static constexpr std::size_t kGranule = 8;
  static constexpr std::size_t kSizes = 20;  // nodes of up to 152 bytes with their header

  ~CTreeMemory();
  void StartBlock();

  CPlainClasses m_plainClasses;
  std::size_t m_nodes = 0;
  bool m_isAbandoned = false;
  FreeNode* m_free[kSizes] = {};
  char* m_blockAt = nullptr;
  char* m_blockEnd = nullptr;
  std::vector<std::unique_ptr<char[]>> m_blocks;
  /// By namespace, then by local name; ordered, since the document chooses the names.
  std::map<std::pair<std::string_view, std::string_view>, std::unique_ptr<CXmlName>> m_names;
};

}  // namespace Quillon9
