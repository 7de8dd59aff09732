#include "plan/transliteration.h"

#include <cctype>
#include <cstddef>
#include <cstdio>

namespace Quillon9Generator::Plan {

namespace {

struct Block {
  char32_t first;
  std::string_view texts;  // for each character from first on, with a blank after each; "?" where there is none
};

// Latin-1 and Latin Extended-A, Greek, Cyrillic.
constexpr Block kBlocks[] = {
    {0xC0,
     "A A A A A A AE C E E E E I I I I D N O O O O O ? O U U U U Y TH ss "
     "a a a a a a ae c e e e e i i i i d n o o o o o ? o u u u u y th y "
     "A a A a A a C c C c C c C c D d D d E e E e E e E e E e G g G g G g G g H h H h I i I i I i I i I i IJ ij "
     "J j K k k L l L l L l L l L l N n N n N n n N n O o O o O o OE oe R r R r R r S s S s S s S s T t T t T t "
     "U u U u U u U u U u U u W w Y y Y Z z Z z Z z s "},
    {0x386,
     "A ? E I I ? O ? Y O i A V G D E Z I Th I K L M N X O P R ? S T Y F Ch Ps O I Y a e i i y "
     "a v g d e z i th i k l m n x o p r s s t y f ch ps o i y o y o "},
    {0x400,
     "E E Dj G Ye Dz I Yi J Lj Nj C K I U Dzh "
     "A B V G D E Zh Z I Y K L M N O P R S T U F Kh Ts Ch Sh Shch ? Y ? E Yu Ya "
     "a b v g d e zh z i y k l m n o p r s t u f kh ts ch sh shch ? y ? e yu ya "
     "e e dj g ye dz i yi j lj nj c k i u dzh "},
    {0x490, "G g "},
};

// The signs that soften or harden a consonant have no sound of their own.
bool IsSilent(char32_t c) { return c == 0x42A || c == 0x42C || c == 0x44A || c == 0x44C; }

std::string_view TextInBlock(Block const& block, char32_t character) {
  std::string_view texts = block.texts;
  for (char32_t c = block.first; !texts.empty(); ++c) {
    std::size_t const end = texts.find(' ');
    if (c == character) return texts.substr(0, end);
    texts.remove_prefix(end + 1);
  }
  return "?";
}

}  // namespace

std::string Transliterate(char32_t character) {
  if (IsSilent(character)) return "";
  for (Block const& block : kBlocks) {
    if (character < block.first) continue;
    std::string_view const text = TextInBlock(block, character);
    if (text != "?") return std::string(text);
  }
  char code[16];
  std::snprintf(code, sizeof code, "U%04X", static_cast<unsigned>(character));
  return code;
}

}  // namespace Quillon9Generator::Plan
