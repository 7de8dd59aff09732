#include "quillon9/base/exceptions.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <typeinfo>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

TEST(Exceptions, FullMessageWalksFromTheOutsideIn) {
  CQnInvalidValueException const cause("cause");
  CQnValidationException const middle("middle", cause);
  CQnException const outer("", middle);
  EXPECT_EQ("cause", cause.GetFullMessage());
  EXPECT_EQ("\nmiddle\ncause", outer.GetFullMessage());
  EXPECT_NE(nullptr, dynamic_cast<CQnInvalidValueException const*>(outer.GetInnerException()->GetInnerException()));
}

TEST(Exceptions, CopiesAreIndependentAndTakeTheNamedClass) {
  CQnException first("outer", CQnInvalidParamException("inner"));
  {
    CQnOverFlowException const copy(first);
    EXPECT_EQ("outer\ninner", copy.GetFullMessage());
    std::unique_ptr<CQnException> const clone(copy.Clone());
    EXPECT_NE(nullptr, dynamic_cast<CQnOverFlowException*>(clone.get()));
  }
  EXPECT_EQ("outer\ninner", first.GetFullMessage());
  first = *first.GetInnerException();
  EXPECT_EQ("inner", first.GetFullMessage());
  CQnException const& self = first;
  first = self;
  EXPECT_EQ("inner", first.GetFullMessage());
}

// A caller may keep a failure and throw it again from code that the library calls.
TEST(Exceptions, AFailureThatIsThrownAgainAndAgainKeepsItsChain) {
  struct Failing : Testing::DynamicClass {
    using DynamicClass::DynamicClass;
    void AccessProperty(int, bool, QnVariant&) override { std::rethrow_exception(m_failure); }
    std::exception_ptr m_failure =
        std::make_exception_ptr(CQnOverFlowException("outer", CQnValidationException("middle", CQnException("deep"))));
  };
  Testing::Shape const shape({}, {Testing::Prim<Quillon9Data::CElementInfoSeqPrimMnd>("e", 0)},
                             {Testing::Attribute("a", 1, true)});
  Failing object(shape);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ("Failed to process the element [root]\nouter\nmiddle\ndeep", ReadBack(object, "<root><e>1</e></root>"));
    EXPECT_FAILURE(
        CQnValidationException,
        "Failed to convert the element [root] to XML\nFailed to convert attributes to XML\nouter\nmiddle\ndeep",
        object.Text());
    try {
      object.Text();
    } catch (CQnException const& failure) {
      CQnException const& cause = *failure.GetInnerException()->GetInnerException();
      EXPECT_EQ(typeid(CQnOverFlowException), typeid(cause));
      EXPECT_NE(nullptr, dynamic_cast<CQnValidationException const*>(cause.GetInnerException()));
    }
  }
}

TEST(Exceptions, AChainOfAnyLengthIsFreedWithoutRecursion) {
  CQnException chain("0");
  for (int i = 0; i < 1000000; ++i) chain = CQnException("n", chain);
  EXPECT_NE(nullptr, chain.GetInnerException());
}

TEST(FormatString, HasNoLengthLimitAndKnowsTheOlderModifier) {
  std::string const longText(10000, 'x');
  std::string const literal(1000, 'y');
  EXPECT_EQ(literal + longText, FormatString((literal + "%s").c_str(), longText.c_str()));
  EXPECT_EQ("", FormatString("%s", ""));
  EXPECT_EQ("7|  007|a", FormatString("%d|%5.3d|%c", 7, 7, 'a'));
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
  EXPECT_EQ("[9000000000] I64d %I64d", FormatString("[%I64d] I64d %%I64d", 9000000000LL));
#pragma GCC diagnostic pop
  EXPECT_EQ("ends", FormatString("ends%cnever seen", 0));
}

}  // namespace
}  // namespace Quillon9
