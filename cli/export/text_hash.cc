#include "cli/export/text_hash.h"

#include <sys/auxv.h>
#include <sys/random.h>
#include <xxhash.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <ctime>

namespace kestan_cli {
namespace {

using Secret = std::array<std::uint64_t, 24>;  // at least XXH3_SECRET_SIZE_MIN bytes

// For a system without random bytes: uses the sixteen that the process got when it started.
void TakeBytesOfStart(Secret* secret) {
  std::array<std::uint64_t, 3> start = {};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the system hands them over
  const void* const given = reinterpret_cast<const void*>(getauxval(AT_RANDOM));
  if (given != nullptr) std::memcpy(start.data(), given, 16);
  start[2] = static_cast<std::uint64_t>(std::time(nullptr));
  for (std::size_t i = 0; i < secret->size(); ++i) {
    (*secret)[i] = XXH3_64bits_withSeed(start.data(), sizeof start, start[0] + i);
  }
}

Secret DrawSecret() {
  Secret secret;
  const auto drawn = getrandom(secret.data(), sizeof secret, GRND_NONBLOCK);
  if (drawn != static_cast<ssize_t>(sizeof secret)) TakeBytesOfStart(&secret);
  return secret;
}

}  // namespace

std::size_t TextHash::operator()(std::string_view text) const {
  static_assert(sizeof(Secret) >= XXH3_SECRET_SIZE_MIN);
  static const Secret kSecret = DrawSecret();
  return static_cast<std::size_t>(
      XXH3_64bits_withSecret(text.data(), text.size(), kSecret.data(), sizeof kSecret));
}

}  // namespace kestan_cli
