#include "base/plain_classes.h"

#include <gtest/gtest.h>

#include <typeinfo>
#include <utility>

using namespace Quillon9;

namespace {

template <int>
struct Class {};

void AddAndExpectOnlyThis(PlainClasses& classes, std::type_info const& type) {
  EXPECT_FALSE(classes.Has(type)) << type.name();
  classes.Add(type);
  EXPECT_TRUE(classes.Has(type)) << type.name();
}

template <int... numbers>
void AddAll(std::integer_sequence<int, numbers...>) {
  PlainClasses classes;
  (AddAndExpectOnlyThis(classes, typeid(Class<numbers>)), ...);
}

}  // namespace

// There are more classes than places, so some of them share one.
TEST(PlainClasses, ClassesThatShareAPlaceAreKeptApart) { AddAll(std::make_integer_sequence<int, 64>()); }
