#include <gtest/gtest.h>

#include <string>

#include "quillon9/text/string_buffer.h"

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
      if (i % 20 == 19) ExpectText(expected, buffer);  // later appends continue from the joined block
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
  buffer.Append("zzz");  // two blocks now, so none is kept
  buffer.Empty();
  ExpectText("", buffer);
}

TEST(StringBuffer, RoomIsInOnePieceAndBlocksMakeUpTheText) {
  for (unsigned long blockSize : {2UL, 7UL, 4096UL}) {
    CStringBuffer buffer(blockSize);
    std::string expected;
    for (std::size_t count : {0U, 1U, 5U, 100U, 3U, 9000U, 4095U, 2U, 40000U}) {
      std::string const text(count, static_cast<char>('a' + count % 26));
      text.copy(buffer.Reserve(count + 3), count);
      buffer.Commit(count);
      buffer.Append("|");
      expected += text + '|';
    }
    std::string joined;
    for (std::string_view const block : buffer.GetBlocks()) joined += block;
    EXPECT_EQ(expected, joined);
    ExpectText(expected, buffer);
    EXPECT_EQ(1U, buffer.GetBlocks().size());
  }
  EXPECT_TRUE(CStringBuffer().GetBlocks().empty());
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
