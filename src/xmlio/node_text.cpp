#include "xmlio/node_text.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>

#include "base/text_copy.h"

namespace Quillon9::NodeText {

namespace {

bool IsString(std::uintptr_t place) { return (place & kIsString) != 0; }
CTreeString* StringAt(std::uintptr_t place) { return reinterpret_cast<CTreeString*>(place & ~kIsString); }
char* BytesAt(std::uintptr_t place) { return reinterpret_cast<char*>(place); }
std::size_t SizeAt(std::uintptr_t place) { return static_cast<unsigned char>(BytesAt(place)[-2]); }
std::size_t CapacityAt(std::uintptr_t place) { return static_cast<unsigned char>(BytesAt(place)[-1]); }

void FreeBytes(std::uintptr_t place, CTreeMemory* memory) noexcept {
  if (place != 0) memory->Free(BytesAt(place) - kHead, kHead + CapacityAt(place) + 1);
}

void BecomeString(std::uintptr_t& place, CTreeMemory* memory, std::size_t capacity) {
  auto string = std::make_unique<CTreeString>(memory);
  string->text.reserve(capacity);
  string->text.assign(GetView(place));
  FreeBytes(place, memory);
  place = reinterpret_cast<std::uintptr_t>(string.release()) | kIsString;
}

/// Start an empty text in this many granules at \p bytes.
void Place(std::uintptr_t& place, char* bytes, std::size_t granules) {
  place = reinterpret_cast<std::uintptr_t>(bytes + kHead);
  bytes[1] = static_cast<char>(static_cast<unsigned char>(granules * CTreeMemory::kGranule - kHead - 1));
}

/// Make the bytes up to \p end part of the text.
void Commit(std::uintptr_t place, char* end) {
  *end = '\0';
  BytesAt(place)[-2] = static_cast<char>(static_cast<unsigned char>(end - BytesAt(place)));
}

/// The least room that a text gets when it grows: layout comes in many short runs.
constexpr std::size_t kLeastGrown = 4 * CTreeMemory::kGranule - kHead - 1;

/// Move the text to storage for \p size bytes in total.
void Move(std::uintptr_t& place, std::size_t size, CTreeMemory& memory) {
  std::size_t const old = place != 0 ? SizeAt(place) : 0;
  std::size_t const grown = old != 0 ? std::max(2 * old, kLeastGrown) : 0;
  std::size_t const granules = GranulesFor(std::min(std::max(size, grown), kMostBytes));
  auto* const bytes = static_cast<char*>(memory.AllocateGranules(granules));
  if (old != 0) std::memcpy(bytes + kHead, BytesAt(place), old);
  FreeBytes(place, &memory);
  Place(place, bytes, granules);
  Commit(place, BytesAt(place) + old);
}

/// Return where \p size more bytes and a zero are to be written; null if the text is or must become a string.
char* Reserve(std::uintptr_t& place, std::size_t size, CTreeMemory* memory) {
  if (IsString(place) || memory == nullptr) return nullptr;
  std::size_t const total = (place != 0 ? SizeAt(place) : 0) + size;
  if (total > kMostBytes) return nullptr;
  if (place == 0 || total > CapacityAt(place)) Move(place, total, *memory);
  return BytesAt(place) + SizeAt(place);
}

/// Return whether \p text lies within these bytes, which may move.
bool IsPart(std::uintptr_t place, std::string_view text) {
  if (place == 0 || IsString(place)) return false;
  std::less<> const isBelow;
  return !isBelow(text.data(), BytesAt(place)) && isBelow(text.data(), BytesAt(place) + SizeAt(place));
}

}  // namespace

std::string_view ViewOfString(std::uintptr_t place) { return StringAt(place)->text; }

std::string const& GetString(std::uintptr_t& place, CTreeMemory* memory) {
  static std::string const* const none = new std::string;
  if (place == 0) return *none;
  if (!IsString(place)) BecomeString(place, memory, SizeAt(place));
  return StringAt(place)->text;
}

CChildPlaces* FindPlaces(std::uintptr_t place) { return IsString(place) ? StringAt(place)->places.get() : nullptr; }

void KeepPlaces(std::uintptr_t& place, CTreeMemory* memory, CChildPlaces places) {
  auto kept = std::make_unique<CChildPlaces>(std::move(places));
  if (!IsString(place)) BecomeString(place, memory, GetView(place).size());
  StringAt(place)->places = std::move(kept);
}

void AppendMore(std::uintptr_t& place, std::string_view text, CTreeMemory* memory) {
  if (text.empty()) return;
  if (IsPart(place, text)) return AppendMore(place, std::string(text), memory);
  if (char* const to = Reserve(place, text.size(), memory)) {
    return Commit(place, to + CopyBlocks(to, text, [](std::uint64_t) { return false; }));
  }
  if (!IsString(place)) BecomeString(place, memory, GetView(place).size() + text.size());
  StringAt(place)->text.append(text);
}

bool SetPlain(std::uintptr_t& place, std::string_view text, CTreeMemory& memory) {
  return SetFirst(place, text, memory, HasUnplain());
}

bool SetWhole(std::uintptr_t& place, std::string_view text, CTreeMemory& memory) {
  return SetFirst(place, text, memory, [](std::uint64_t) { return false; });
}

bool AppendMorePlain(std::uintptr_t& place, std::string_view text, CTreeMemory* memory) {
  if (IsPart(place, text)) return false;
  char* const to = Reserve(place, text.size(), memory);
  if (to == nullptr) return false;
  bool const isPlain = CopyBlocks(to, text, HasUnplain()) == text.size();
  Commit(place, isPlain ? to + text.size() : to);  // the first blocks of other text have overwritten the zero
  return isPlain;
}

void Free(std::uintptr_t& place, CTreeMemory* memory) noexcept {
  if (IsString(place)) {
    delete StringAt(place);
  } else {
    FreeBytes(place, memory);
  }
  place = 0;
}

}  // namespace Quillon9::NodeText
