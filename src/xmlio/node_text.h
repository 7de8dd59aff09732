#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/text_copy.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

/// The text of a node of a tree: bytes in the tree's memory, followed by a zero. It becomes a std::string only on
/// request and when it is long. Nearly all texts are short and only looked at: a std::string in each node would double
/// the memory of a tree and require a visit to each node at its end.
///
/// A node holds one word, its \p place: 0 for an empty text, the address of the first byte, or that of the string with
/// the bit kIsString. The memory is that of the node's document, or null for a standalone node, and is the same in all
/// calls. Only one thread at a time may use a text, even to look at it.
namespace NodeText {

constexpr std::uintptr_t kIsString = 1;
/// The two bytes in front of a text.
constexpr std::size_t kHead = 2;
/// A longer text is a string from the start: it moves less often when it grows, and its destruction frees the memory.
constexpr std::size_t kMostBytes = CTreeMemory::kLargest - 3;

std::string_view ViewOfString(std::uintptr_t place);
bool SetPlain(std::uintptr_t& place, std::string_view text, CTreeMemory& memory);
void AppendMore(std::uintptr_t& place, std::string_view text, CTreeMemory* memory);
bool SetWhole(std::uintptr_t& place, std::string_view text, CTreeMemory& memory);
bool AppendMorePlain(std::uintptr_t& place, std::string_view text, CTreeMemory* memory);

/// The number of granules for a text of \p size bytes with its head and its zero.
constexpr std::size_t GranulesFor(std::size_t size) { return (kHead + size) / CTreeMemory::kGranule + 1; }

/// Set the first text of a node, which is nearly always the only one. Return false, with nothing changed, if the text
/// is too long or \p stops finds something in it. Inline, because readers create most texts here.
template <class Stops>
inline bool SetFirst(std::uintptr_t& place, std::string_view text, CTreeMemory& memory, Stops stops) {
  std::size_t const size = text.size();
  if (size > kMostBytes) return false;
  std::size_t const granules = GranulesFor(size);
  auto* const bytes = static_cast<char*>(memory.AllocateGranules(granules));
  if (CopyBlocks(bytes + kHead, text, stops) != size) {
    memory.Free(bytes, granules * CTreeMemory::kGranule);
    return false;
  }
  bytes[0] = static_cast<char>(static_cast<unsigned char>(size));
  bytes[1] = static_cast<char>(static_cast<unsigned char>(granules * CTreeMemory::kGranule - kHead - 1));
  bytes[kHead + size] = '\0';
  place = reinterpret_cast<std::uintptr_t>(bytes + kHead);
  return true;
}

/// Return the bytes, until the next call of another operation.
inline std::string_view GetView(std::uintptr_t place) {
  if (place == 0) return std::string_view("", 0);
  if ((place & kIsString) != 0) return ViewOfString(place);
  // Two bytes in front of the text hold its length and how long it may get in place.
  auto const* const bytes = reinterpret_cast<char const*>(place);
  return {bytes, static_cast<unsigned char>(bytes[-2])};
}
/// Return the same as a string, which lives until the next Append() or Free().
std::string const& GetString(std::uintptr_t& place, CTreeMemory* memory);
/// Append \p text. Appending n bytes in any number of pieces costs O(n).
inline void Append(std::uintptr_t& place, std::string_view text, CTreeMemory* memory) {
  if (place != 0 || text.empty() || memory == nullptr || !SetWhole(place, text, *memory))
    AppendMore(place, text, memory);
}
/// Append ASCII without zeros and carriage returns, checking it while copying. Return false, with nothing changed, if
/// the text is not of this kind or has to become a string.
inline bool AppendPlain(std::uintptr_t& place, std::string_view text, CTreeMemory* memory) {
  return place == 0 && memory != nullptr ? SetPlain(place, text, *memory) : AppendMorePlain(place, text, memory);
}
/// Return where children stand in the text of an element; null if this is not kept.
CChildPlaces* FindPlaces(std::uintptr_t place);
/// Keep where children stand in the text, which takes the form of a string. Replaces what was kept before.
void KeepPlaces(std::uintptr_t& place, CTreeMemory* memory, CChildPlaces places);
/// Append a line feed in place. Return false, with nothing changed, if that has to become a string or be moved.
inline bool AppendLineFeed(std::uintptr_t place) {
  if (place == 0 || (place & kIsString) != 0) return false;
  auto* const bytes = reinterpret_cast<char*>(place);
  auto const size = static_cast<unsigned char>(bytes[-2]);
  if (size >= static_cast<unsigned char>(bytes[-1])) return false;
  bytes[size] = '\n';
  bytes[size + 1] = '\0';
  bytes[-2] = static_cast<char>(size + 1);
  return true;
}
/// Release all memory; the text is empty afterwards. Without this call, the bytes go with the tree's memory, and those
/// of a standalone node leak.
void Free(std::uintptr_t& place, CTreeMemory* memory) noexcept;

}  // namespace NodeText

}  // namespace Quillon9
