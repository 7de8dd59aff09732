#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <climits>
#include <new>
#include <string_view>

#include "values/pattern_engine.h"

namespace Quillon9 {

namespace {

struct FreePcre2 {
  void operator()(pcre2_code* code) const { pcre2_code_free(code); }
  void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
  void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
  void operator()(pcre2_jit_stack* stack) const { pcre2_jit_stack_free(stack); }
};

template <class Object>
std::unique_ptr<Object, FreePcre2> Owned(Object* object) {
  if (object == nullptr) throw std::bad_alloc();
  return std::unique_ptr<Object, FreePcre2>(object);
}

// ---- Constructs that the first generation accepts and PCRE2 refuses

bool IsOneOf(char letter, char const* letters) { return std::string_view(letters).find(letter) != std::string::npos; }

// The unit of reading: an escape, everything between "\Q" and "\E", a named class within a class, or a byte.
std::string_view FirstItem(std::string_view pattern, bool isInClass) {
  auto const through = [pattern](char const* end, std::size_t otherwise) {
    std::size_t const at = pattern.find(end, 2);
    return pattern.substr(0, at == std::string::npos ? otherwise : at + std::string_view(end).size());
  };
  if (pattern[0] == '[' && isInClass && pattern.substr(1, 1) == ":") return through(":]", 1);
  if (pattern[0] != '\\' || pattern.size() == 1) return pattern.substr(0, 1);
  if (pattern[1] == 'Q') return through("\\E", pattern.size());
  if (IsOneOf(pattern[1], "pP") && pattern.substr(2, 1) == "{") return through("}", 2);
  return pattern.substr(0, 2);
}

bool IsSetOfCharacters(std::string_view item) {
  return item.size() > 1 && (item[0] == '[' || (item[0] == '\\' && IsOneOf(item[1], "dDhHpPsSvVwW")));
}

bool IsLetterOnly(std::string_view item, bool isInClass) {
  return item.size() == 2 && item[0] == '\\' &&
         (IsOneOf(item[1], "FJMOTYjmqy") || (isInClass && IsOneOf(item[1], "ABGKRXZkz")));
}

// The first generation reads a letter without meaning after a backslash as the letter itself, and in a class a hyphen
// after a set of characters as a hyphen: "[\w-.]". PCRE2 does the same if they are written as a code point and as an
// escape.
std::string ForPcre2(std::string_view pattern) {
  std::string result;
  bool isInClass = false;
  while (!pattern.empty()) {
    std::string_view item = FirstItem(pattern, isInClass);
    if (!isInClass && item == "[") {
      isInClass = true;
      if (pattern.substr(1, 1) == "^") item = pattern.substr(0, 2);
      if (pattern.substr(item.size(), 1) == "]") item = pattern.substr(0, item.size() + 1);
    } else if (item == "]") {
      isInClass = false;
    }
    pattern.remove_prefix(item.size());
    result += IsLetterOnly(item, isInClass) ? FormatString("\\x{%x}", item[1]) : std::string(item);
    if (isInClass && IsSetOfCharacters(item) && pattern.substr(0, 1) == "-") result += '\\';
  }
  return result;
}

[[noreturn]] void ThrowInvalid(std::string const& given, int error, std::size_t offset) {
  PCRE2_UCHAR message[256];
  pcre2_get_error_message(error, message, sizeof message);
  ThrowInvalidPattern(given, reinterpret_cast<char const*>(message),
                      static_cast<int>(std::min<std::size_t>(offset, INT_MAX)));
}

CompiledPattern::Answer AnswerOf(int result, pcre2_match_data* data, int length) {
  if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
  if (result < 0 && result != PCRE2_ERROR_NOMATCH) return CompiledPattern::Answer::kGaveUp;
  std::size_t const* const offsets = pcre2_get_ovector_pointer(data);
  bool const isWhole = result > 0 && offsets[0] == 0 && offsets[1] == static_cast<std::size_t>(length);
  return isWhole ? CompiledPattern::Answer::kYes : CompiledPattern::Answer::kNo;
}

}  // namespace

struct CompiledPattern::Engine {
  std::unique_ptr<pcre2_code, FreePcre2> code;
  std::unique_ptr<pcre2_match_context, FreePcre2> context;
  std::unique_ptr<pcre2_match_data, FreePcre2> data;
  bool isMachineCode = false;
  int triesLeft = kMachineCodeTries;

  void TryMachineCode();
  int Execute(pcre2_match_data* results, char const* subject, int length) const {
    return ExecuteIn(context.get(), results, subject, length);
  }
  int ExecuteIn(pcre2_match_context* with, pcre2_match_data* results, char const* subject, int length) const;
  int ExecuteOnLargeStack(pcre2_match_context* with, pcre2_match_data* results, char const* subject, int length) const;
};

// Anchored here and not at the match, where an option would keep PCRE2 from using machine code.
CompiledPattern::CompiledPattern(std::string const& given, std::string const& translated)
    : m_engine(std::make_unique<Engine>()) {
  std::string const pattern = ForPcre2(translated.c_str());
  int error = 0;
  std::size_t offset = 0;
  m_engine->code.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()), PCRE2_ZERO_TERMINATED,
                                     PCRE2_UTF | PCRE2_ANCHORED, &error, &offset, nullptr));
  if (m_engine->code == nullptr) ThrowInvalid(given, error, offset);
  m_engine->context = Owned(pcre2_match_context_create(nullptr));
  m_engine->data = Owned(pcre2_match_data_create_from_pattern(m_engine->code.get(), nullptr));
}

CompiledPattern::~CompiledPattern() = default;
CompiledPattern::CompiledPattern(CompiledPattern&&) noexcept = default;

void CompiledPattern::Engine::TryMachineCode() {
  isMachineCode = pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE) == 0;
  --triesLeft;
}

int CompiledPattern::Engine::ExecuteIn(pcre2_match_context* with, pcre2_match_data* results, char const* subject,
                                       int length) const {
  return pcre2_match(code.get(), reinterpret_cast<PCRE2_SPTR>(subject), static_cast<std::size_t>(length), 0, 0, results,
                     with);
}

int CompiledPattern::Engine::ExecuteOnLargeStack(pcre2_match_context* with, pcre2_match_data* results,
                                                 char const* subject, int length) const {
  auto const stack = Owned(pcre2_jit_stack_create(kFirstJitStack, MaxJitStack(length), nullptr));
  pcre2_jit_stack_assign(with, nullptr, stack.get());
  int const result = ExecuteIn(with, results, subject, length);
  pcre2_jit_stack_assign(with, nullptr, nullptr);
  return result;
}

void CompiledPattern::Share() {
  while (!m_engine->isMachineCode && m_engine->triesLeft > 0) m_engine->TryMachineCode();
  pcre2_set_match_limit(m_engine->context.get(), MatchLimit(0));
  pcre2_set_depth_limit(m_engine->context.get(), MatchLimit(0));
  pcre2_set_heap_limit(m_engine->context.get(), kMaxBacktracking / 1024);
}

CompiledPattern::Answer CompiledPattern::TryInAnyThread(char const* subject, int length) const {
  auto const results = Owned(pcre2_match_data_create(1, nullptr));
  int result = m_engine->Execute(results.get(), subject, length);
  if (result == PCRE2_ERROR_JIT_STACKLIMIT) {
    auto const own = Owned(pcre2_match_context_copy(m_engine->context.get()));
    pcre2_set_match_limit(own.get(), MatchLimit(length));
    result = m_engine->ExecuteOnLargeStack(own.get(), results.get(), subject, length);
  }
  return AnswerOf(result, results.get(), length);
}

CompiledPattern::Answer CompiledPattern::Try(char const* subject, int length) {
  Engine& engine = *m_engine;
  if (!engine.isMachineCode && engine.triesLeft > 0) engine.TryMachineCode();
  pcre2_set_match_limit(engine.context.get(), MatchLimit(length));
  if (!engine.isMachineCode) {
    // The interpreter backtracks in memory that its match data keeps, so the match data is created for this match only.
    pcre2_set_depth_limit(engine.context.get(), MatchLimit(length));
    pcre2_set_heap_limit(engine.context.get(), kMaxBacktracking / 1024);
    auto const results = Owned(pcre2_match_data_create_from_pattern(engine.code.get(), nullptr));
    return AnswerOf(engine.Execute(results.get(), subject, length), results.get(), length);
  }
  // The 32 KiB that PCRE2 takes from the thread's stack are enough for all but long values, which pay for a stack of
  // their own.
  int result = engine.Execute(engine.data.get(), subject, length);
  if (result == PCRE2_ERROR_JIT_STACKLIMIT) {
    result = engine.ExecuteOnLargeStack(engine.context.get(), engine.data.get(), subject, length);
  }
  return AnswerOf(result, engine.data.get(), length);
}

}  // namespace Quillon9
