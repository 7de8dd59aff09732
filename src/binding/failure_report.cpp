#include "binding/failure_report.h"

#include <functional>

#include "base/failure_detail.h"

namespace Quillon9 {

FailureReport::FailureReport(CXmlSerializationContext const& ctx, PlaceFinder& places)
    : m_sink(ctx.GetFailureSink()),
      m_places(places),
      m_most(MostFailures(ctx)),
      m_start(FailureAccess::CountDetails()),
      m_outer(std::exchange(t_current, this)) {}

// A failure that the program has kept may be in flight in other threads too, and what it knows may be about a tree that
// is gone. So what this read finds out about it stays here until the failure has reached the caller's operation.
CFailureDetail& FailureReport::DetailFor(CQnException const& failure) {
  if (CFailureDetail* const own = FailureAccess::FindDetail(failure, m_start)) return *own;
  CQnException const& cause = CauseOf(failure);
  if (!m_foreign || *m_foreignClass != typeid(cause) || m_foreignText != cause.GetMessage()) {
    m_foreign.emplace().kind = failure.GetKind();
    m_foreignClass = &typeid(cause);
    m_foreignText = cause.GetMessage();
  }
  return *m_foreign;
}

CXmlElement const* FailureReport::ElementOf(CQnException const& failure) {
  return t_current != nullptr ? static_cast<CXmlElement const*>(t_current->DetailFor(failure).element) : nullptr;
}

FailureReport* FailureReport::Of(CXmlSerializationContext const& ctx) {
  bool const isOurs = ctx.GetFailureSink() != nullptr && t_current != nullptr;
  return isOurs && t_current->m_sink == ctx.GetFailureSink() ? t_current : nullptr;
}

void FailureReport::Note(CQnException& failure, FailurePoint const& point) {
  if (t_current == nullptr) return;
  CFailureDetail& detail = t_current->DetailFor(failure);
  if (detail.hasPlace || detail.element != nullptr) return;
  detail.element = point.element;
  detail.attribute = point.attribute;
  detail.isAtEnd = point.isAtEnd;
}

bool FailureReport::GoesOn(CXmlSerializationContext const& ctx, CQnException& failure, FailurePoint const& point) {
  Note(failure, point);
  FailureReport* const report = Of(ctx);
  if (report == nullptr || report->m_thrown != nullptr) return false;
  CFailureDetail& detail = report->DetailFor(failure);
  if (detail.isTold || detail.kind == FailureKind_Limit) return false;
  FailurePoint const known{static_cast<CXmlElement const*>(detail.element),
                           static_cast<CXmlAttribute const*>(detail.attribute), detail.isAtEnd};
  bool const isNew = known.element == nullptr || report->IsNew(known, CauseOf(failure).GetMessage());
  if (isNew) report->FindPlace(failure);
  bool const goesOn = !isNew || report->Tell(failure);
  if (goesOn) report->m_foreign.reset();
  return goesOn;
}

void FailureReport::NoteLoss(CXmlSerializationContext const& ctx, CXmlCollectionBase const& collection) {
  if (FailureReport* const report = Of(ctx)) report->m_losers.insert(&collection);
}

bool FailureReport::HasLost(CXmlSerializationContext const& ctx, CXmlCollectionBase const& collection) {
  FailureReport const* const report = Of(ctx);
  return report != nullptr && report->m_losers.count(&collection) != 0;
}

void FailureReport::Remark(CXmlSerializationContext const& ctx, FailureKind kind, FailurePoint const& point,
                           std::string const& text) {
  FailureReport* const report = Of(ctx);
  if (report == nullptr || report->m_thrown != nullptr || report->m_remarks >= report->m_most) return;
  if (point.element != nullptr && !report->IsNew(point, text)) return;
  ++report->m_remarks;
  report->Send(CFailure(kind, FailureSeverity_Remark, report->PlaceOf(point), text));
}

void FailureReport::Complete(CQnException& failure) {
  if (m_thrown != nullptr) std::rethrow_exception(m_thrown);  // without the lines of the open elements
  FindPlace(failure);
  bool const isTold = std::exchange(DetailFor(failure).isTold, true);
  if (FailureAccess::FindDetail(failure, m_start) == nullptr) {
    FailureAccess::SetDetail(failure, FailureAccess::NewDetail(*m_foreign));
  }
  if (m_sink != nullptr && !isTold) Tell(failure);
}

// A read of a part of a tree, within the read of its document, has no positions itself.
CFailurePlace FailureReport::PlaceOf(FailurePoint const& point) const {
  FailureReport const* report = this;
  if (point.element != nullptr) {
    while (report != nullptr && !report->m_places.HasPositionsOf(point.element)) report = report->m_outer;
  }
  return (report != nullptr ? report : this)->m_places.Find(point);
}

void FailureReport::FindPlace(CQnException& failure) {
  CFailureDetail& detail = DetailFor(failure);
  if (detail.hasPlace) return;
  detail.place = PlaceOf({static_cast<CXmlElement const*>(detail.element),
                          static_cast<CXmlAttribute const*>(detail.attribute), detail.isAtEnd});
  detail.hasPlace = detail.element != nullptr || !detail.place.GetFile().empty();
}

bool FailureReport::IsNew(FailurePoint const& point, std::string const& text) {
  return m_told.emplace(point.element, point.attribute, point.isAtEnd, std::hash<std::string>()(text)).second;
}

bool FailureReport::Tell(CQnException& failure) {
  CFailureDetail& detail = DetailFor(failure);
  detail.isTold = true;
  bool const goesOn = Send(CFailure(detail.kind, FailureSeverity_Error, detail.place, CauseOf(failure).GetMessage()));
  return goesOn && ++m_errors < m_most;
}

// On its way to the caller, what the sink throws may be taken for a failure of the document. A read may consist of
// several with one sink.
bool FailureReport::Send(CFailure const& failure) try { return m_sink->OnFailure(failure); } catch (...) {
  for (FailureReport* report = this; report != nullptr; report = report->m_outer) {
    if (report->m_sink == m_sink) report->m_thrown = std::current_exception();
  }
  throw;
}

}  // namespace Quillon9
