// SPDX-License-Identifier: GPL-3.0-or-later
// Text to index that is the same on every machine and every run.
#ifndef KESTAN_BENCH_SUPPORT_TEXTS_H_
#define KESTAN_BENCH_SUPPORT_TEXTS_H_

#include <cstdint>
#include <string>

namespace kestan_bench {

// A sequence of numbers that looks like chance and depends on nothing but its seed.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next();
  unsigned Below(unsigned limit) { return static_cast<unsigned>(Next() % limit); }

 private:
  std::uint64_t state_;
};

// The word of rank `rank`: lower-case letters, a different word for each rank, longer for higher
// ranks.
std::string WordOfRank(unsigned rank);

// The name and the text of document `number`: `words` words of a vocabulary of 65536, drawn as
// often as words of language are: the one of rank r about 1 / r as often as the first.
std::string DocumentName(unsigned number);
std::string DocumentText(unsigned number, unsigned words);

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_SUPPORT_TEXTS_H_
