#include <pcre.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <vector>

#include "base/stack_left.h"
#include "values/pattern_engine.h"

namespace Quillon9 {

namespace {

struct FreePcre {
  void operator()(pcre* code) const { pcre_free(code); }
  void operator()(pcre_extra* study) const { pcre_free_study(study); }
  void operator()(pcre_jit_stack* stack) const { pcre_jit_stack_free(stack); }
};

// PCRE's interpreter, which is used where machine code cannot be made, recurses on the thread's stack, about two levels
// of 500 bytes for each character that a repeated group takes.
constexpr std::size_t kInterpreterLevel = 1024;
constexpr std::size_t kStackReserve = 64 * 1024;
constexpr std::size_t kUnknownStack = 256 * 1024;

unsigned long RecursionLimit() {
  std::size_t const left = StackLeft().value_or(0);
  return left > 2 * kStackReserve ? static_cast<unsigned long>((left - kStackReserve) / kInterpreterLevel) : 64;
}

// PCRE makes machine code by recursion on the thread's stack, with a level for each group around a group. A repeated
// group is compiled into copies, the optional ones within each other, of at least 15 bytes each.
std::size_t StackToStudy(std::string const& pattern, pcre const* code) {
  constexpr std::size_t kStudyLevel = 640;
  constexpr std::size_t kCopy = 15;
  std::size_t size = 0;
  pcre_fullinfo(code, nullptr, PCRE_INFO_SIZE, &size);
  auto const groups = static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), '('));
  bool const hasCopies = pattern.find("){") != std::string::npos;
  return kStackReserve + kStudyLevel * (groups + (hasCopies ? size / kCopy : 0));
}

CompiledPattern::Answer AnswerOf(int result, int const* offsets, int length) {
  if (result < 0 && result != PCRE_ERROR_NOMATCH) return CompiledPattern::Answer::kGaveUp;
  bool const isWhole = result > 0 && offsets[0] == 0 && offsets[1] == length;
  return isWhole ? CompiledPattern::Answer::kYes : CompiledPattern::Answer::kNo;
}

}  // namespace

struct CompiledPattern::Engine {
  std::unique_ptr<pcre, FreePcre> code;
  std::unique_ptr<pcre_extra, FreePcre> study;  // null until it is made, and when the study found nothing useful
  std::vector<int> offsets;
  bool isMachineCode = false;
  int triesLeft = kMachineCodeTries;
  std::size_t stackToStudy = 0;

  bool WantsMachineCode() const;
  void TryMachineCode();
  pcre_extra WithLimits(int length) const;
  int Execute(pcre_extra const& extra, char const* subject, int length);
  int ExecuteOnLargeStack(pcre_extra const& extra, char const* subject, int length);
};

// Anchored here and not at the match, where an option would keep PCRE from using machine code.
CompiledPattern::CompiledPattern(std::string const& given, std::string const& translated)
    : m_engine(std::make_unique<Engine>()) {
  char const* message = nullptr;
  int offset = 0;
  m_engine->code.reset(pcre_compile(translated.c_str(), PCRE_UTF8 | PCRE_ANCHORED, &message, &offset, nullptr));
  if (m_engine->code == nullptr) ThrowInvalidPattern(given, message, offset);
  m_engine->stackToStudy = StackToStudy(translated, m_engine->code.get());
  int groups = 0;
  pcre_fullinfo(m_engine->code.get(), nullptr, PCRE_INFO_CAPTURECOUNT, &groups);
  m_engine->offsets.resize((static_cast<std::size_t>(groups) + 1) * 3);
}

CompiledPattern::~CompiledPattern() = default;
CompiledPattern::CompiledPattern(CompiledPattern&&) noexcept = default;

// The stack of a coroutine is unknown: only large patterns are left to the interpreter there.
bool CompiledPattern::Engine::WantsMachineCode() const {
  return !isMachineCode && triesLeft > 0 && StackLeft().value_or(kUnknownStack) >= stackToStudy;
}

void CompiledPattern::Engine::TryMachineCode() {
  char const* message = nullptr;
  study.reset(pcre_study(code.get(), PCRE_STUDY_JIT_COMPILE, &message));
  if (message != nullptr) throw std::bad_alloc();
  int jit = 0;
  pcre_fullinfo(code.get(), study.get(), PCRE_INFO_JIT, &jit);
  isMachineCode = jit != 0;
  --triesLeft;
}

pcre_extra CompiledPattern::Engine::WithLimits(int length) const {
  pcre_extra extra = study != nullptr ? *study : pcre_extra{};
  extra.flags |= PCRE_EXTRA_MATCH_LIMIT;
  extra.match_limit = MatchLimit(length);
  if (!isMachineCode) {
    extra.flags |= PCRE_EXTRA_MATCH_LIMIT_RECURSION;
    extra.match_limit_recursion = RecursionLimit();
  }
  return extra;
}

int CompiledPattern::Engine::Execute(pcre_extra const& extra, char const* subject, int length) {
  return pcre_exec(code.get(), &extra, subject, length, 0, 0, offsets.data(), static_cast<int>(offsets.size()));
}

int CompiledPattern::Engine::ExecuteOnLargeStack(pcre_extra const& extra, char const* subject, int length) {
  std::unique_ptr<pcre_jit_stack, FreePcre> const stack(
      pcre_jit_stack_alloc(kFirstJitStack, static_cast<int>(MaxJitStack(length))));
  if (stack == nullptr) throw std::bad_alloc();
  pcre_assign_jit_stack(study.get(), nullptr, stack.get());
  int const result = Execute(extra, subject, length);
  pcre_assign_jit_stack(study.get(), nullptr, nullptr);
  return result;
}

void CompiledPattern::Share() {
  while (m_engine->WantsMachineCode()) m_engine->TryMachineCode();
}

// A larger stack for machine code would have to be assigned to what the threads share.
CompiledPattern::Answer CompiledPattern::TryInAnyThread(char const* subject, int length) const {
  pcre_extra const extra = m_engine->WithLimits(length);
  int offsets[3] = {0, 0, 0};
  return AnswerOf(pcre_exec(m_engine->code.get(), &extra, subject, length, 0, 0, offsets, 3), offsets, length);
}

CompiledPattern::Answer CompiledPattern::Try(char const* subject, int length) {
  Engine& engine = *m_engine;
  if (engine.WantsMachineCode()) engine.TryMachineCode();
  pcre_extra const extra = engine.WithLimits(length);
  // The 32 KiB that PCRE takes from the thread's stack are enough for all but long values, which pay for a stack of
  // their own.
  int result = engine.Execute(extra, subject, length);
  if (result == PCRE_ERROR_JIT_STACKLIMIT) result = engine.ExecuteOnLargeStack(extra, subject, length);
  return AnswerOf(result, engine.offsets.data(), length);
}

}  // namespace Quillon9
