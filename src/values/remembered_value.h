#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "base/fast_paths.h"
#include "base/per_thread.h"

namespace Quillon9 {

/// The value that the function \p make returns for a text, remembered in the calling thread if possible and computed
/// anew otherwise. For items that schemas have few of and documents need often, such as patterns: when there are too
/// many, forgetting all of them is as good as forgetting the oldest.
template <auto make>
class RememberedValue {
 public:
  using Value = std::decay_t<decltype(make(std::string()))>;

  /// \throws whatever \p make throws; nothing is then remembered.
  explicit RememberedValue(std::string const& text) : m_value(Find(text)) {
    if (m_value == nullptr) m_value = &m_own.emplace(make(text));
  }
  RememberedValue(RememberedValue const&) = delete;
  RememberedValue& operator=(RememberedValue const&) = delete;

  /// The value, which lives until this object is destroyed or the thread computes another one with the same function.
  Value& operator*() const { return *m_value; }

 private:
  struct Values : std::unordered_map<std::string, Value> {};
  static constexpr std::size_t kMost = 64;

  static Value* Find(std::string const& text) {
    if constexpr (!kRememberedValue.IsOn()) return nullptr;
    Values* const values = PerThread<Values>::Find();
    if (values == nullptr) return nullptr;
    auto const known = values->find(text);
    if (known != values->end()) return &known->second;
    Value value = make(text);
    if (values->size() >= kMost) values->clear();
    return &values->emplace(text, std::move(value)).first->second;
  }

  std::optional<Value> m_own;
  Value* m_value;
};

}  // namespace Quillon9
