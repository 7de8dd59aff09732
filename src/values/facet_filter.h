#pragma once

#include <memory>

#include "quillon9/values/item_type.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/variant.h"

namespace Quillon9 {

/// Accepts values that CXmlObjectHelper::CheckRestriction() would accept; invalid and rare values are left to that
/// function. The bounds and the pattern are parsed once and not at each check, which would slow writing down.
/// Immutable, for any thread.
class CFacetFilter {
 public:
  /// The filter for values of a kind under these facets; null when it could not accept any value.
  static std::unique_ptr<CFacetFilter const> Make(ItemType type, CPrimitiveRestrictions const& restrictions);
  virtual ~CFacetFilter();

  bool Passes(QnVariant const& value) const { return value.GetItemType() == m_type && (m_isOpen || IsWithin(value)); }

 protected:
  /// For values of the kind \p type; if \p isOpen, all of them pass.
  CFacetFilter(ItemType type, bool isOpen) : m_type(type), m_isOpen(isOpen) {}

 private:
  virtual bool IsWithin(QnVariant const& value) const;

  ItemType m_type;
  bool m_isOpen;
};

}  // namespace Quillon9
