#include "quillon9/values/pattern.h"

#include <pcre.h>
#include <pthread.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "quillon9/binding/exceptions.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/encoder.h"
#include "values/pattern_matching.h"

namespace Quillon9 {

namespace {

// ---- FindReplace

constexpr std::size_t kMaxReplacedBytes = std::size_t{1} << 30;

template <class Text>
bool EndsWith(Text const& text, Text const& end) {
  return text.back() == end.back() && text.size() >= end.size() &&
         text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A replacement can make up a new occurrence together with what stands before it and behind it. So it goes back in
// front of the text that is still to be read, and what was read is looked at again from where it was cut.
template <class Text>
void ReplaceAll(Text& text, Text const& search, Text const& replacement) {
  if (search.empty()) throw CQnException("Cannot replace an empty text");
  if (text.find(search) == Text::npos) return;
  if (replacement.find(search) != Text::npos) {
    throw CQnException("Cannot replace a text by one that contains it");
  }
  Text done;
  Text pending(text.rbegin(), text.rend());  // reversed, so that reading takes from its end
  while (!pending.empty()) {
    done += pending.back();
    pending.pop_back();
    if (!EndsWith(done, search)) continue;
    done.resize(done.size() - search.size());
    if (done.size() + pending.size() + replacement.size() > kMaxReplacedBytes / sizeof(search[0])) {
      throw CQnException("The text grows too long by replacing");
    }
    pending.append(replacement.rbegin(), replacement.rend());
  }
  text = std::move(done);
}

// ---- Translation

struct Substitution {
  char const* search;
  char const* replacement;
};

std::string Translate(std::string pattern) {
  // The order counts: an escaped backslash must not be read as the start of an escape, so it steps aside first.
  // The octal numbers are left for PCRE to read.
  static constexpr Substitution substitutions[] = {
      {R"(\\)", "\x01"},
      {R"(\i)", R"(([^\W\d]|:))"},
      {R"(\I)", R"(([\W\d]))"},
      {R"(\c)", R"((\w|\.|-|:))"},
      {R"(\C)", R"(([^\w\.\-\:]))"},
      {R"(\p{IsBasicLatin})", R"([\000-\177])"},
      {R"(\p{IsLatin-1Supplement})", R"([\200-\377])"},
      {R"(\p{IsLatinExtended-A})", R"([\400-\577])"},
      {R"(\p{IsLatinExtended-B})", R"([\600-\1117])"},
      {"\x01", R"(\\)"},
  };
  for (Substitution const& each : substitutions) FindReplace(pattern, each.search, each.replacement);
  return pattern;
}

// ---- Bounds on the work of a match

// Steps of PCRE. What backtracks without end, such as "(a+)+$", stops after some milliseconds; a repeated group
// takes a step or two for each repetition, so that long values still match. A step may scan the whole value.
unsigned long MatchLimit(std::size_t length) {
  return static_cast<unsigned long>(std::min<std::uint64_t>(1000000 + 2 * std::uint64_t{length}, UINT32_MAX));
}

// Backtracking memory of compiled patterns: 32 bytes or a little more for each repetition of a group. The memory
// is reserved, and used only as far as the match needs it.
constexpr std::size_t kMaxJitStack = std::size_t{128} << 20;
int JitStackSize(std::size_t length) {
  return static_cast<int>(std::min(kMaxJitStack, (std::size_t{1} << 20) + 128 * length));
}

// PCRE's interpreter, which steps in where machine code cannot be made, recurses on the thread's stack, about two
// levels of 500 bytes for each character that a repeated group takes.
constexpr std::size_t kInterpreterLevel = 1024;
constexpr std::size_t kStackReserve = 64 * 1024;

std::size_t StackLeft() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
  void* lowest = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  auto const base = reinterpret_cast<std::uintptr_t>(lowest);
  return here >= base && here - base < size ? here - base : 0;  // a coroutine's stack is not the thread's
}

unsigned long RecursionLimit() {
  std::size_t const left = StackLeft();
  return left > 2 * kStackReserve ? static_cast<unsigned long>((left - kStackReserve) / kInterpreterLevel) : 64;
}

// ---- Compiled patterns

struct FreePcre {
  void operator()(pcre* code) const { pcre_free(code); }
  void operator()(pcre_extra* study) const { pcre_free_study(study); }
  void operator()(pcre_jit_stack* stack) const { pcre_jit_stack_free(stack); }
};

class CompiledPattern {
 public:
  explicit CompiledPattern(std::string const& pattern);
  bool Matches(char const* subject, std::size_t length);

 private:
  int Execute(pcre_extra const& extra, char const* subject, int length);
  int ExecuteOnLargeStack(pcre_extra const& extra, char const* subject, int length);

  std::unique_ptr<pcre, FreePcre> m_code;
  std::unique_ptr<pcre_extra, FreePcre> m_study;  // null when PCRE could not study, which is no failure
  bool m_isMachineCode = false;
  std::vector<int> m_offsets;
};

// Anchored here and not at the match: an option at the match would keep PCRE from using machine code.
CompiledPattern::CompiledPattern(std::string const& pattern) {
  char const* message = nullptr;
  int offset = 0;
  m_code.reset(pcre_compile(Translate(pattern).c_str(), PCRE_UTF8 | PCRE_ANCHORED, &message, &offset, nullptr));
  if (m_code == nullptr) {
    throw CQnException(FormatString("Invalid pattern [%s]: %s at offset %d", pattern.c_str(), message, offset));
  }
  m_study.reset(pcre_study(m_code.get(), PCRE_STUDY_JIT_COMPILE, &message));
  int jit = 0;
  int groups = 0;
  pcre_fullinfo(m_code.get(), m_study.get(), PCRE_INFO_JIT, &jit);
  pcre_fullinfo(m_code.get(), m_study.get(), PCRE_INFO_CAPTURECOUNT, &groups);
  m_isMachineCode = jit != 0;
  m_offsets.resize((static_cast<std::size_t>(groups) + 1) * 3);
}

int CompiledPattern::Execute(pcre_extra const& extra, char const* subject, int length) {
  return pcre_exec(m_code.get(), &extra, subject, length, 0, 0, m_offsets.data(), static_cast<int>(m_offsets.size()));
}

int CompiledPattern::ExecuteOnLargeStack(pcre_extra const& extra, char const* subject, int length) {
  int const size = JitStackSize(static_cast<std::size_t>(length));
  std::unique_ptr<pcre_jit_stack, FreePcre> const stack(pcre_jit_stack_alloc(64 * 1024, size));
  if (stack == nullptr) throw std::bad_alloc();
  pcre_assign_jit_stack(m_study.get(), nullptr, stack.get());
  int const result = Execute(extra, subject, length);
  pcre_assign_jit_stack(m_study.get(), nullptr, nullptr);
  return result;
}

bool CompiledPattern::Matches(char const* subject, std::size_t length) {
  if (length > INT_MAX) throw CQnException("The value is too long to be matched");
  int const count = static_cast<int>(length);
  pcre_extra extra = m_study != nullptr ? *m_study : pcre_extra{};
  extra.flags |= PCRE_EXTRA_MATCH_LIMIT;
  extra.match_limit = MatchLimit(length);
  if (!m_isMachineCode) {
    extra.flags |= PCRE_EXTRA_MATCH_LIMIT_RECURSION;
    extra.match_limit_recursion = RecursionLimit();
  }
  // The 32 KiB that PCRE takes from the thread's stack do for all but long values; others pay for a stack of their
  // own.
  int result = Execute(extra, subject, count);
  if (result == PCRE_ERROR_JIT_STACKLIMIT) result = ExecuteOnLargeStack(extra, subject, count);
  return result > 0 && m_offsets[0] == 0 && m_offsets[1] == count;
}

// Compiling takes some fifty times as long as matching a short value. A schema has few patterns, so that
// forgetting all of them when there are too many is as good as forgetting the oldest.
CompiledPattern& Compiled(std::string const& pattern) {
  constexpr std::size_t kMaxPatterns = 64;
  static thread_local std::unordered_map<std::string, CompiledPattern> patterns;
  auto const known = patterns.find(pattern);
  if (known != patterns.end()) return known->second;
  CompiledPattern compiled(pattern);
  if (patterns.size() >= kMaxPatterns) patterns.clear();
  return patterns.emplace(pattern, std::move(compiled)).first->second;
}

}  // namespace

bool MatchesPattern(std::string const& utf8Pattern, std::string const& value) {
  CompiledPattern& pattern = Compiled(utf8Pattern);
  if (CEncoder::IsUtf8SameInLocalCodePage(value.data(), value.size())) {
    std::string_view const same(value);
    return pattern.Matches(same.data(), std::min(same.find('\0'), same.size()));
  }
  CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(value.c_str());
  if (utf8.GetLength() == 0) return pattern.Matches("", 0);
  std::string_view const subject(reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength());
  return pattern.Matches(subject.data(), std::min(subject.find('\0'), subject.size()));
}

bool TestRegEx(std::string pattern, std::string value) { return MatchesPattern(pattern, value); }

void FindReplace(std::string& text, std::string const& search, std::string const& replacement) {
  ReplaceAll(text, search, replacement);
}

void FindReplace(std::wstring& text, std::wstring const& search, std::wstring const& replacement) {
  ReplaceAll(text, search, replacement);
}

}  // namespace Quillon9
