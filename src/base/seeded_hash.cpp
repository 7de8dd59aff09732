#include "base/seeded_hash.h"

#include <sys/random.h>

#include <chrono>

namespace Quillon9::SeededHash {

using ByteBlocks::Load;
using ByteBlocks::LoadShort;

Secret DrawSecret() {
  Secret drawn;
  if (getrandom(&drawn, sizeof drawn, GRND_NONBLOCK) == sizeof drawn) return drawn;
  auto const now = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  drawn.start = Mix(now ^ kOdd, reinterpret_cast<std::uintptr_t>(&drawn) ^ kOdd);
  drawn.factor = Mix(drawn.start, now ^ kOdd);
  return drawn;
}

std::uint64_t OfLong(std::string_view text) {
  Secret const& secret = TheSecret();
  char const* at = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = secret.start ^ left * kOdd;
  for (; left > 16; left -= 16, at += 16) {
    hash = Mix(hash ^ Load<std::uint64_t>(at), Load<std::uint64_t>(at + 8) ^ secret.factor);
  }
  std::uint64_t const low = left > 8 ? Load<std::uint64_t>(at) : LoadShort(at, left, 0);
  std::uint64_t const high = left > 8 ? Load<std::uint64_t>(at + left - 8) : 0;
  return Mix(hash ^ low, high ^ secret.factor);
}

}  // namespace Quillon9::SeededHash
