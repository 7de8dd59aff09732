// Sets the locale that QUILLON9_TEST_LOCALE names before the tests run, so that a whole suite can run in it. Tests that
// need a certain locale set it themselves.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace {

class TestLocale : public testing::Environment {
 public:
  void SetUp() override {
    char const* const name = std::getenv("QUILLON9_TEST_LOCALE");
    if (name == nullptr) return;
    ASSERT_NE(nullptr, std::setlocale(LC_ALL, name)) << "no locale " << name;
  }
};

[[maybe_unused]] auto* const g_testLocale = testing::AddGlobalTestEnvironment(new TestLocale);

}  // namespace
