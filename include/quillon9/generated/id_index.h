#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "quillon9/export.h"
#include "quillon9/generated/bound_object.h"

namespace Quillon9 {

/// The objects of a graph by their values of type xs:ID, as they are when the index is made. It borrows them: ask it
/// only while they exist. Any number of threads may ask.
class QUILLON9_API CIdIndex {
 public:
  /// The index of \p root and what is below it.
  explicit CIdIndex(CBoundObject& root);

  /// The object that CBoundObject::FindById() would return.
  CBoundObject* Find(std::string_view id) const;
  /// The number of different identifiers.
  std::size_t size() const { return m_objects.size(); }

 private:
  std::unordered_map<std::string, CBoundObject*> m_objects;
};

}  // namespace Quillon9
