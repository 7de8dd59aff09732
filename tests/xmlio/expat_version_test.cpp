#include "xmlio/expat_version.h"

#include <gtest/gtest.h>

#include "expect_failure.h"

namespace Quillon9 {
namespace {

TEST(ExpatVersion, IsRequiredToHaveTheGuards) {
  for (XML_Expat_Version const& version : {XML_Expat_Version{2, 4, 4}, {2, 3, 9}, {1, 95, 8}}) {
    EXPECT_FAILURE(CQnException,
                   "expat " + std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
                       std::to_string(version.micro) + " is too old; 2.4.5 or later is required",
                   RequireExpat(version));
  }
  for (XML_Expat_Version const& version : {XML_Expat_Version{2, 4, 5}, {2, 5, 0}, {3, 0, 0}}) {
    EXPECT_NO_THROW(RequireExpat(version)) << version.major << '.' << version.minor << '.' << version.micro;
  }
}

}  // namespace
}  // namespace Quillon9
