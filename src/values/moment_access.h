#pragma once

#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "values/moment_fields.h"

namespace Quillon9 {

/// The friend of CDateTime and CDateTimeSpan: their whole contents, whatever the getters can express.
struct MomentAccess {
  static MomentFields FieldsOf(CDateTime const& value);
  static SpanFields FieldsOf(CDateTimeSpan const& value);
  /// The value gets these fields and no others. Zeros at the end of the fraction are dropped. They are not validated:
  /// offsets have less than a day, nanoseconds less than a second.
  static void SetFields(CDateTime& value, MomentFields const& fields);
  static void SetFields(CDateTimeSpan& value, SpanFields const& fields);
  /// Whether each of the three groups of the fraction has three digits, which no setter checks.
  static bool HasFractionInOrder(CDateTime const& value) {
    return value.m_milliSecond < 1000 && value.m_microSecond < 1000 && value.m_nanoSecond < 1000;
  }
  /// Whether the getters cannot express the value.
  static bool IsLong(CDateTime const& value) { return value.m_rest.Find() != nullptr; }
};

}  // namespace Quillon9
