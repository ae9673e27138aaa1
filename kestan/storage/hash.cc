// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/hash.h>

#include <sys/auxv.h>
#include <sys/random.h>

#include <ctime>

namespace kestan {
namespace {

// For a system that has no random bytes yet, or lets nobody ask: it gave sixteen to the process
// when it started.
void TakeBytesOfStart(Hasher::Secret* secret) {
  Hasher::Secret start = {};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the system hands them over
  const void* const given = reinterpret_cast<const void*>(getauxval(AT_RANDOM));
  if (given != nullptr) std::memcpy(start.data(), given, 16);
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  start[2] = static_cast<std::uint64_t>(now.tv_sec);
  start[3] = static_cast<std::uint64_t>(now.tv_nsec);
  const std::string_view bytes(reinterpret_cast<const char*>(start.data()), sizeof start);
  for (std::size_t i = 0; i < secret->size(); ++i) {
    start[2] += i;
    const std::uint64_t high = Hasher(start)(bytes);
    start[3] += high;
    (*secret)[i] = high << 32 | Hasher(start)(bytes);
  }
}

}  // namespace

Hasher::Secret Hasher::DrawSecret() {
  Secret secret;
  const auto drawn = getrandom(secret.data(), sizeof secret, GRND_NONBLOCK);
  if (drawn != static_cast<ssize_t>(sizeof secret)) TakeBytesOfStart(&secret);
  return secret;
}

const Hasher::Secret& Hasher::ProcessSecret() {
  static const Secret kSecret = DrawSecret();
  return kSecret;
}

}  // namespace kestan
