#include <gtest/gtest.h>

#include <string>

#include "quillon9/xmlio/string_buffer.h"

namespace Quillon9 {
namespace {

constexpr std::size_t kBlock = 4095;

void ExpectText(std::string const& text, CStringBuffer& buffer) {
  EXPECT_EQ(text.size(), buffer.GetLength());
  EXPECT_EQ(text, std::string(buffer.GetText(), buffer.GetLength()));
  EXPECT_EQ('\0', buffer.GetText()[text.size()]);
}

TEST(StringBuffer, AllWaysOfAppendingFillBlocksInOrder) {
  for (unsigned long blockSize : {0UL, 1UL, 2UL, 3UL, 7UL, 4096UL}) {
    CStringBuffer buffer(blockSize);
    buffer.Append(static_cast<char const*>(nullptr));
    std::string expected;
    ExpectText(expected, buffer);
    for (int i = 0; i < 50; ++i) {
      buffer.Append('<');
      buffer.Append("some text");
      buffer.Append(std::string("seen\0unseen", 11));
      buffer.Append("a\0z", 3UL);
      expected += "<some textseen" + std::string("a\0z", 3);
      if (i % 20 == 19) ExpectText(expected, buffer);  // and on from the joined block
    }
    ExpectText(expected, buffer);
  }
}

TEST(StringBuffer, BlocksAreJoinedOnceAndASingleBlockIsKept) {
  CStringBuffer buffer;
  buffer.Append(std::string(kBlock, 'x'));
  char const* const block = buffer.GetText();
  ExpectText(std::string(kBlock, 'x'), buffer);
  EXPECT_EQ(block, buffer.GetText());
  buffer.Append('x');
  char const* const joined = buffer.GetText();
  EXPECT_NE(block, joined);
  ExpectText(std::string(kBlock + 1, 'x'), buffer);
  buffer.Empty();
  ExpectText("", buffer);
  buffer.Append(std::string(kBlock, 'y'));
  EXPECT_EQ(joined, buffer.GetText());
  ExpectText(std::string(kBlock, 'y'), buffer);
  buffer.Append("zzz");  // two blocks now, so that nothing is kept
  buffer.Empty();
  ExpectText("", buffer);
}

TEST(StringBuffer, BlockOpenedEarlyLeavesNoGapInTheText) {
  CStringBuffer buffer;
  buffer.Append("ab");
  buffer.AddNewBlock();
  buffer.Append("cd");
  ExpectText("abcd", buffer);
  buffer.SetText("new");
  ExpectText("new", buffer);
}

}  // namespace
}  // namespace Quillon9
