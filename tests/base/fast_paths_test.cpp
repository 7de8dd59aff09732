#include "base/fast_paths.h"

#include <gtest/gtest.h>

namespace Quillon9 {
namespace {

TEST(FastPathDeathTest, AWrongAnswerEndsABuildThatComparesAndNoOther) {
  constexpr FastPath path("some_path");
  int calls = 0;
  path.Verify([&] { return ++calls != 0; });
  EXPECT_EQ(kChecksCaches ? 1 : 0, calls);
  auto const isWrong = [] { return false; };
  if (kChecksCaches) {
    EXPECT_DEATH(path.Verify(isWrong), "The mechanism some_path has given a wrong answer");
  } else {
    path.Verify(isWrong);
  }
}

}  // namespace
}  // namespace Quillon9
