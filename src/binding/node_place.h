#pragma once

#include <cstdint>

namespace Quillon9 {

class CNode;

/// A node of a collection and its index in one word, so that threads that search the collection at the same time can
/// remember it without a lock. Large indices are remembered in steps of a power of two.
class NodePlace {
 public:
  /// Unpacks \p word, as Word() returned it; 0 stands for no node.
  explicit NodePlace(std::uint64_t word) : m_word(word) {}
  /// Packs \p node, which may be null, at \p index, which must be a result of Step(). Holds no node when the address
  /// has too many bits.
  NodePlace(CNode* node, int index) : m_word(0) {
    std::uint64_t const address = reinterpret_cast<std::uintptr_t>(node);
    if (address >> kAddressBits != 0 || node == nullptr) return;
    auto const shift = static_cast<unsigned>(ShiftFor(index));
    m_word = address >> kZeroBits | static_cast<std::uint64_t>(index) >> shift << kIndexAt |
             static_cast<std::uint64_t>(shift) << kShiftAt;
  }

  std::uint64_t Word() const { return m_word; }
  CNode* Node() const {
    std::uint64_t const address = (m_word << (64 - kIndexAt)) >> (64 - kIndexAt) << kZeroBits;
    return reinterpret_cast<CNode*>(static_cast<std::uintptr_t>(address));
  }
  int Index() const {
    return static_cast<int>((m_word >> kIndexAt & ((1U << kIndexBits) - 1)) << (m_word >> kShiftAt));
  }

  /// The greatest index that can be remembered and is not greater than \p index, which is not negative.
  static int Step(int index) { return index >> ShiftFor(index) << ShiftFor(index); }

 private:
  static constexpr int kAddressBits = 48;  // as many as programs use unless they ask for more
  static constexpr int kZeroBits = 3;      // at the low end of an address
  static constexpr int kIndexBits = 14;
  static constexpr int kIndexAt = kAddressBits - kZeroBits;
  static constexpr int kShiftAt = kIndexAt + kIndexBits;

  static int ShiftFor(int index) {
    int const bits = 32 - __builtin_clz(static_cast<unsigned>(index) | 1);
    return bits > kIndexBits ? bits - kIndexBits : 0;
  }

  std::uint64_t m_word;
};

}  // namespace Quillon9
