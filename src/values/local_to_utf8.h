#pragma once

#include <string_view>
#include <vector>

#include "quillon9/values/binary_data.h"

namespace Quillon9 {

/// CEncoder::LocalCodePageToUtf8Binary() of the concatenated \p blocks. Text whose bytes do not change is copied only
/// once, since joining it first would slow writing down.
CBinaryData LocalCodePageToUtf8Binary(std::vector<std::string_view> const& blocks);

}  // namespace Quillon9
