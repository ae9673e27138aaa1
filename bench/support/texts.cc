// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/support/texts.h"

namespace kestan_bench {
namespace {

constexpr unsigned kOctaves = 16;

// Each octave of ranks (1, 2 to 3, 4 to 7, ...) is as likely as any other.
unsigned DrawRank(Chance* chance) {
  const unsigned octave = chance->Below(kOctaves);
  return (1U << octave) + chance->Below(1U << octave);
}

}  // namespace

std::uint64_t Chance::Next() {  // splitmix64
  state_ += 0x9e3779b97f4a7c15U;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
  return mixed ^ (mixed >> 31);
}

std::string WordOfRank(unsigned rank) {
  constexpr unsigned kLetters = 26;
  std::string word;
  for (unsigned rest = rank + kLetters; rest > 0; rest /= kLetters) {
    word += static_cast<char>('a' + rest % kLetters);
  }
  return word;
}

std::string DocumentName(unsigned number) {
  return "collection/part" + std::to_string(number / 1000) + "/document" + std::to_string(number);
}

std::string DocumentText(unsigned number, unsigned words) {
  Chance chance(number);
  std::string text;
  for (unsigned i = 0; i < words; ++i) {
    text += WordOfRank(DrawRank(&chance));
    text += ' ';
  }
  return text;
}

}  // namespace kestan_bench
