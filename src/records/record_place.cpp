#include "records/record_place.h"

#include <utility>

#include "base/failure_detail.h"

namespace Quillon9 {

CFailurePlace RecordPlace::At(TextPosition const& at, std::string path) {
  CFailurePlace place;
  place.SetOffset(static_cast<std::int64_t>(at.offset));
  place.SetLine(at.line);
  place.SetColumn(at.column);
  place.SetPath(std::move(path));
  return place;
}

void RecordPlace::Set(CQnException& failure, CFailurePlace place) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  detail.place = std::move(place);
  detail.hasPlace = true;
}

void RecordPlace::SetPath(CQnException& failure, std::string path) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  if (detail.hasPlace) detail.place.SetPath(std::move(path));
}

void RecordPlace::ThrowTooLarge(std::size_t limit, CFailurePlace place) {
  throw Noted(std::move(place), OfKind(FailureKind_Limit,
                                       CQnException(FormatString("The record exceeds the limit of %zu bytes", limit))));
}

void RecordPlace::ThrowNotResumable() {
  throw CQnInvalidStateException("A read can begin in the middle of uncompressed text in UTF-8 only");
}

}  // namespace Quillon9
