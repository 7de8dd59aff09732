#pragma once

#include <memory>

#include "base/fast_paths.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/variant.h"

namespace Quillon9 {

/// Accepts values that CXmlObjectHelper::CheckRestriction() would accept; invalid and rare values are left to that
/// function. The bounds and the pattern are parsed once and not at each check. Immutable, for any thread.
class CFacetFilter {
 public:
  /// The filter for values of a kind under these facets; null when it could not accept any value.
  static std::unique_ptr<CFacetFilter const> Make(ItemType type, CPrimitiveRestrictions const& restrictions);
  virtual ~CFacetFilter();

  bool Passes(QnVariant const& value) const { return value.GetItemType() == m_type && (m_isOpen || IsWithin(value)); }

  /// Call \p check, which calls CXmlObjectHelper::CheckRestriction() for \p value, unless \p filter accepts it. \p
  /// filter is what Make() returned for the same facets.
  /// \throws what \p check throws.
  template <class Check>
  static void CheckUnlessPasses(CFacetFilter const* filter, QnVariant const& value, Check check) {
    bool const passes = kFacetFilter.IsOn() && filter != nullptr && filter->Passes(value);
    if (!passes) return check();
    kFacetFilter.Verify([&] {
      try {
        check();
        return true;
      } catch (CQnException const&) {
        return false;
      }
    });
  }

 protected:
  /// For values of the kind \p type; if \p isOpen, all of them pass.
  CFacetFilter(ItemType type, bool isOpen) : m_type(type), m_isOpen(isOpen) {}

 private:
  virtual bool IsWithin(QnVariant const& value) const;

  ItemType m_type;
  bool m_isOpen;
};

}  // namespace Quillon9
