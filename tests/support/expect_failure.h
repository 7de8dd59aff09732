#pragma once

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

#include "quillon9/base/exceptions.h"

/// Expects `expression` to throw exactly `Class` (not a class derived from it) with this full message.
#define EXPECT_FAILURE(Class, message, expression)                                            \
  do {                                                                                        \
    bool caught_ = false;                                                                     \
    try {                                                                                     \
      (void)(expression);                                                                     \
    } catch (::Quillon9::CQnException const& failure_) {                                      \
      caught_ = true;                                                                         \
      EXPECT_STREQ(typeid(::Quillon9::Class).name(), typeid(failure_).name()) << #expression; \
      EXPECT_EQ(std::string(message), failure_.GetFullMessage()) << #expression;              \
    }                                                                                         \
    EXPECT_TRUE(caught_) << "no failure from " #expression;                                   \
  } while (false)
