#include "quillon9/values/restrictions.h"

#include <utility>

namespace Quillon9 {

CPrimitiveRestrictions::CPrimitiveRestrictions() = default;

CPrimitiveRestrictions::CPrimitiveRestrictions(std::string patternText, std::int32_t minLengthValue,
                                               std::int32_t maxLengthValue, std::string minInclusiveText,
                                               std::string maxInclusiveText, std::string minExclusiveText,
                                               std::string maxExclusiveText, std::int32_t lengthValue)
    : pattern(std::move(patternText)),
      minLength(minLengthValue),
      maxLength(maxLengthValue),
      minInclusive(std::move(minInclusiveText)),
      maxInclusive(std::move(maxInclusiveText)),
      minExclusive(std::move(minExclusiveText)),
      maxExclusive(std::move(maxExclusiveText)),
      length(lengthValue) {}

CPrimitiveRestrictions::~CPrimitiveRestrictions() = default;

}  // namespace Quillon9
