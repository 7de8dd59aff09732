#include "base/text_cursor.h"

#include <gtest/gtest.h>

#include <string>

namespace Quillon9 {
namespace {

TEST(TextCursor, PutsTextUpToAZeroOrAStop) {
  char room[64] = "........another.name............";
  CTextCursor to(room, sizeof room);
  to.Put('\t', 2);
  to.Put("</");
  to.PutName(std::string_view("name\0rest", 9));
  to.PutName("longer_than_one_block");
  EXPECT_EQ(16U, to.PutUntil("sixteen letters,<and more>", HasMarkup()));
  to.Put('>');
  EXPECT_EQ("\t\t</namelonger_than_one_blocksixteen letters,>", std::string(room, to.Written()));
  EXPECT_EQ(room + to.Written(), to.At());
  to.PutAgain(std::string_view(room + 2, 10));
  EXPECT_EQ("></namelong", std::string(to.At() - 11, 11));
}

// Builds without assertions run the same steps, for which the memory has room.
TEST(TextCursor, AssertsThatTheTextFits) {
  char memory[32] = {};
  struct {
    void (*step)(CTextCursor&);
    std::size_t room;  // the least that suffices
  } const rows[] = {
      {[](CTextCursor& to) { to.Put('x'); }, 1},
      {[](CTextCursor& to) { to.Put('x', 3); }, 3},
      {[](CTextCursor& to) { to.Put("/>"); }, 2},
      {[](CTextCursor& to) { to.PutName("name"); }, 4},
      {[](CTextCursor& to) { to.PutUntil("<name", HasMarkup()); }, 5},
      {[](CTextCursor& to) {
         to.PutAgain({to.At(), 3});
       },
       3 + CTextCursor::kOverrun},
  };
  for (auto const& row : rows) {
    CTextCursor enough(memory, row.room);
    row.step(enough);
    CTextCursor tooLittle(memory, row.room - 1);
    EXPECT_DEBUG_DEATH(row.step(tooLittle), "more text than room was reserved for") << row.room;
  }
}

}  // namespace
}  // namespace Quillon9
