#include "binding/failure_report.h"

#include <limits>

#include "base/failure_detail.h"

namespace Quillon9 {

FailureReport::FailureReport(CXmlSerializationContext const& ctx, PlaceFinder& places)
    : m_sink(ctx.GetFailureSink()),
      m_places(places),
      m_most(ctx.GetMaxFailures() != 0 ? ctx.GetMaxFailures() : std::numeric_limits<std::uint64_t>::max()),
      m_outer(std::exchange(t_current, this)) {}

FailureReport* FailureReport::Of(CXmlSerializationContext const& ctx) {
  bool const isOurs = ctx.GetFailureSink() != nullptr && t_current != nullptr;
  return isOurs && t_current->m_sink == ctx.GetFailureSink() ? t_current : nullptr;
}

void FailureReport::Note(CQnException& failure, FailurePoint const& point) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  if (detail.hasPlace || detail.element != nullptr) return;
  detail.element = point.element;
  detail.attribute = point.attribute;
  detail.isAtEnd = point.isAtEnd;
}

bool FailureReport::GoesOn(CXmlSerializationContext const& ctx, CQnException& failure, FailurePoint const& point) {
  Note(failure, point);
  FailureReport* const report = Of(ctx);
  if (report == nullptr) return false;
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  if (detail.isTold || detail.kind == FailureKind_Limit) return false;
  report->FindPlace(failure);
  return report->Tell(failure);
}

void FailureReport::Remark(CXmlSerializationContext const& ctx, FailureKind kind, FailurePoint const& point,
                           std::string const& text) {
  FailureReport* const report = Of(ctx);
  if (report == nullptr || report->m_remarks >= report->m_most) return;
  ++report->m_remarks;
  report->m_sink->OnFailure(CFailure(kind, FailureSeverity_Remark, report->PlaceOf(point), text));
}

void FailureReport::Complete(CQnException& failure) {
  FindPlace(failure);
  if (m_sink != nullptr && !FailureAccess::DetailOf(failure).isTold) Tell(failure);
}

// A read of a part of a tree, within the read of its document, has no positions itself.
CFailurePlace FailureReport::PlaceOf(FailurePoint const& point) const {
  FailureReport const* report = this;
  if (point.element != nullptr) {
    while (report != nullptr && !report->m_places.HasPositionsOf(*point.element)) report = report->m_outer;
  }
  return (report != nullptr ? report : this)->m_places.Find(point);
}

void FailureReport::FindPlace(CQnException& failure) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  if (detail.hasPlace) return;
  detail.place = PlaceOf({static_cast<CXmlElement const*>(detail.element),
                          static_cast<CXmlAttribute const*>(detail.attribute), detail.isAtEnd});
  detail.hasPlace = detail.element != nullptr || !detail.place.GetFile().empty();
}

// What the sink throws passes on; so the failure counts as known beforehand.
bool FailureReport::Tell(CQnException& failure) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  detail.isTold = true;
  CQnException const* cause = &failure;
  while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
  bool const goesOn =
      m_sink->OnFailure(CFailure(detail.kind, FailureSeverity_Error, detail.place, cause->GetMessage()));
  return goesOn && ++m_errors < m_most;
}

}  // namespace Quillon9
