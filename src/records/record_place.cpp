#include "records/record_place.h"

#include <utility>

#include "base/failure_detail.h"

namespace Quillon9 {

std::string RecordPlace::PathOf(std::vector<ElementName> const& open) {
  std::string path;
  for (ElementName const& name : open) path += "/" + name.local;
  return path;
}

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

}  // namespace Quillon9
