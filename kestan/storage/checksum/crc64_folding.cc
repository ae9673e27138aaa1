// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/checksum/crc64_folding.h>

#include <kestan/storage/checksum/crc64_tables.h>

#if defined(__x86_64__) || defined(__i386__)
#include <wmmintrin.h>
// Clang does not take this header of the C library for C++: it knows no _Bool there.
#if __has_include(<sys/platform/x86.h>) && !defined(__clang__)
#define KESTAN_ASKS_C_LIBRARY
#include <sys/platform/x86.h>
#endif
#endif

namespace kestan {

#if defined(__x86_64__) || defined(__i386__)

namespace {

// Bits are reflected: the lowest bit of a number stands for the highest power of x. The product of
// two such numbers of 64 bits then is x times too low a power, hence one less in the exponents
// below.
constexpr std::uint64_t PowerOfX(unsigned exponent) {
  std::uint64_t remainder = std::uint64_t{1} << 63;
  for (unsigned i = 0; i < exponent; ++i) {
    remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? kCrc64Polynomial : 0);
  }
  return remainder;
}

// What the first and the last eight of 16 bytes are multiplied with to move them on by kBits.
struct Factors {
  std::uint64_t first;
  std::uint64_t last;
};

template <unsigned kBits>
constexpr Factors kMoveBy = {PowerOfX(kBits + 64 - 1), PowerOfX(kBits - 1)};

__attribute__((target("pclmul"))) __m128i Load(const void* bytes) {
  return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

// Returns `block`, moved on by as many bits as `factors` says, plus `next`.
__attribute__((target("pclmul"))) __m128i Fold(__m128i block, __m128i factors, __m128i next) {
  const __m128i first = _mm_clmulepi64_si128(block, factors, 0x00);
  const __m128i last = _mm_clmulepi64_si128(block, factors, 0x11);
  return _mm_xor_si128(_mm_xor_si128(first, last), next);
}

}  // namespace

// The C library has asked the processor already. In a virtual machine, asking takes microseconds.
bool CanFoldCrc64() {
#ifdef KESTAN_ASKS_C_LIBRARY
  return CPU_FEATURE_ACTIVE(PCLMULQDQ);
#else
  return __builtin_cpu_supports("pclmul") != 0;
#endif
}

// Four blocks of 16 bytes at once, as each multiplication takes longer than until the next may
// begin.
__attribute__((target("pclmul"))) std::array<std::uint64_t, 2> FoldCrc64(std::uint64_t state,
                                                                         const char* bytes,
                                                                         std::size_t size) {
  const std::array<std::uint64_t, 2> start = {state, 0};
  __m128i a = _mm_xor_si128(Load(bytes), Load(start.data()));
  __m128i b = Load(bytes + 16);
  __m128i c = Load(bytes + 32);
  __m128i d = Load(bytes + 48);
  const __m128i by_four = Load(&kMoveBy<512>);
  for (std::size_t at = kCrc64FoldStep; at < size; at += kCrc64FoldStep) {
    a = Fold(a, by_four, Load(bytes + at));
    b = Fold(b, by_four, Load(bytes + at + 16));
    c = Fold(c, by_four, Load(bytes + at + 32));
    d = Fold(d, by_four, Load(bytes + at + 48));
  }
  const __m128i by_one = Load(&kMoveBy<128>);
  const __m128i all = Fold(Fold(Fold(a, by_one, b), by_one, c), by_one, d);
  std::array<std::uint64_t, 2> folded{};
  _mm_storeu_si128(reinterpret_cast<__m128i*>(folded.data()), all);
  return folded;
}

#else

bool CanFoldCrc64() { return false; }

std::array<std::uint64_t, 2> FoldCrc64(std::uint64_t, const char*, std::size_t) { return {}; }

#endif

}  // namespace kestan
