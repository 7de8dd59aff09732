#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "quillon9/export.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/schema_form.h"

namespace Quillon9 {

/// The facets that a schema puts on a primitive element or attribute (W3C XML Schema Part 2, 4.3), except enumerations,
/// which generated code represents as enumerated types. CXmlObjectHelper checks values against them.
///
/// Bounds are text in the lexical form of the value's type and are parsed when a value is checked, so one object serves
/// every ItemType; a facet that a type does not use is ignored. Threads may share an object that none of them changes.
class QUILLON9_API CPrimitiveRestrictions {
 public:
  /// No facet is set: every value passes.
  CPrimitiveRestrictions();
  /// The constructor for generated code. Empty text and a negative length leave the facet unset.
  CPrimitiveRestrictions(std::string pattern, std::int32_t minLength, std::int32_t maxLength, std::string minInclusive,
                         std::string maxInclusive, std::string minExclusive, std::string maxExclusive,
                         std::int32_t length);
  /// Copies or takes over every facet.
  ///@{
  CPrimitiveRestrictions(CPrimitiveRestrictions const&) = default;
  CPrimitiveRestrictions(CPrimitiveRestrictions&&) = default;
  CPrimitiveRestrictions& operator=(CPrimitiveRestrictions const&) = default;
  CPrimitiveRestrictions& operator=(CPrimitiveRestrictions&&) = default;
  ///@}
  virtual ~CPrimitiveRestrictions();

  std::string pattern;          ///< regular expression in the local code page, for strings; see TestRegEx()
  std::int32_t minLength = -1;  ///< bytes of a string or of binary data, as for the other two lengths
  std::int32_t maxLength = -1;  ///< -1: not set
  std::string minInclusive;     ///< the value must be at or above it; the bounds are for numbers, dates and durations
  std::string maxInclusive;     ///< the value must be at or below it
  std::string minExclusive;     ///< the value must be above it
  std::string maxExclusive;     ///< the value must be below it
  std::int32_t length = -1;     ///< -1: not set
  /// Whether the bounds of dates count months as XML Schema does. CDateTime::CompareTo(), which decides otherwise, does
  /// not.
  bool comparesMonths = false;
  /// Which texts are values by the rules of XML Schema. The classic rules know nothing of it.
  SchemaForm form = SchemaForm::Any;
};

class SchemaFacets;

namespace detail {

/// The facets of one place as the rules of XML Schema check them, made when they are first needed. Any number of threads
/// may ask at the same time, always with the same kind and facets.
class QUILLON9_API LazySchemaFacets {
 public:
  LazySchemaFacets() = default;
  ~LazySchemaFacets();
  LazySchemaFacets(LazySchemaFacets const&) = delete;
  LazySchemaFacets& operator=(LazySchemaFacets const&) = delete;

  /// The facets for values of the kind \p type.
  SchemaFacets const& Get(ItemType type, CPrimitiveRestrictions const& restrictions) const {
    SchemaFacets const* const made = m_made.load(std::memory_order_acquire);
    return made != nullptr ? *made : Make(type, restrictions);
  }

 private:
  SchemaFacets const& Make(ItemType type, CPrimitiveRestrictions const& restrictions) const;

  mutable std::atomic<SchemaFacets const*> m_made{nullptr};
};

}  // namespace detail

}  // namespace Quillon9
