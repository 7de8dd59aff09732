#pragma once

#include "binding/document_places.h"
#include "binding/failure_report.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"

namespace Quillon9 {

/// Run \p read, which is a whole operation of the caller, so that what it throws has its place. \p places must know the
/// nodes that it reads; they have to live until then.
template <class Read>
auto ReadWithReport(CXmlSerializationContext const& ctx, PlaceFinder& places, Read read) {
  FailureReport report(ctx, places);
  try {
    return read();
  } catch (CQnException& failure) {
    report.Complete(failure);
    throw;
  }
}

}  // namespace Quillon9
