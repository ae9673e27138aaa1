// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/hash.h>

#include <gtest/gtest.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "tests/support/colliding_words.h"

namespace {
bool random_bytes_fail = false;
}  // namespace

// Takes the place of the system's.
extern "C" ssize_t getrandom(void* buffer, size_t bytes, unsigned flags) {
  if (random_bytes_fail) {
    errno = EAGAIN;
    return -1;
  }
  return syscall(SYS_getrandom, buffer, bytes, flags);
}

namespace kestan_tests {
namespace {

using kestan::Hasher;
using Words = std::vector<std::string>;

constexpr Hasher::Secret kSecret = {0x243f6a8885a308d3, 0x13198a2e03707344, 0xa4093822299f31d0,
                                    0x082efa98ec4e6c89};
constexpr Hasher::Secret kOtherSecret = {0x452821e638d01377, 0xbe5466cf34e90c6c, 0xc0ac29b7c97c50dd,
                                         0x3f84d5b5b5470917};

constexpr std::size_t kPlaces = 1 << 14;  // of a table

// How many of `words` share the fullest place of a table.
template <typename Hash>
std::size_t FullestPlace(const Words& words, const Hash& hash) {
  std::vector<std::size_t> counts(kPlaces);
  for (const std::string& word : words) ++counts[hash(word) % kPlaces];
  return *std::max_element(counts.begin(), counts.end());
}

// How many places are looked at to put `words` into a table with a place for two thirds more, each
// into the first free one from its own on.
std::size_t CountProbes(const Words& words, const Hasher& hasher) {
  std::vector<bool> taken(kPlaces);
  std::size_t probes = 0;
  for (const std::string& word : words) {
    std::size_t place = hasher(word) % kPlaces;
    for (++probes; taken[place]; ++probes) place = (place + 1) % kPlaces;
    taken[place] = true;
  }
  return probes;
}

// Words that share the first place of a table with `hasher`.
Words WordsOfOnePlace(const Hasher& hasher, std::size_t count) {
  Words words;
  for (std::uint64_t i = 0; words.size() < count; ++i) {
    std::string word = NumberedWord(i);
    if (hasher(word) % kPlaces == 0) words.push_back(std::move(word));
  }
  return words;
}

TEST(HasherTest, AWordHasTheSameHashAlways) {
  EXPECT_EQ(Hasher()("word"), Hasher()("word"));
  EXPECT_EQ(Hasher(kSecret)("word"), Hasher(kSecret)("word"));
  EXPECT_NE(Hasher(kSecret)("word"), Hasher(kOtherSecret)("word"));
}

TEST(HasherTest, EveryByteOfEveryLengthCounts) {
  const Hasher hasher(kSecret);
  std::set<std::uint32_t> seen;
  std::size_t hashed = 0;
  for (std::size_t size = 0; size < 70; ++size) {
    const std::vector<char> zeros(size);  // of its own: a byte too much read is found
    seen.insert(hasher({zeros.data(), size}));
    ++hashed;
    for (std::size_t at = 0; at < size; ++at) {
      std::vector<char> changed = zeros;
      changed[at] = '\x80';
      seen.insert(hasher({changed.data(), size}));
      ++hashed;
    }
  }
  EXPECT_EQ(seen.size(), hashed);
}

TEST(HasherTest, LongTextsOfEveryLengthDiffer) {
  std::set<std::uint32_t> seen;
  for (std::size_t size = 0; size < 1000; ++size) {
    seen.insert(Hasher(kSecret)(std::string(size, 'a')));
  }
  EXPECT_EQ(seen.size(), 1000u);
}

TEST(HasherTest, ServesTablesOfTheStandardLibrary) {
  std::unordered_set<std::string, Hasher> names{"one", "two", "one"};
  EXPECT_EQ(names.size(), 2u);
  EXPECT_EQ(names.count("one"), 1u);
  EXPECT_EQ(names.count("three"), 0u);
}

TEST(HasherTest, WordsOfOnePlainHashSpread) {
  const Words words = WordsOfOnePlainHash(10000);
  ASSERT_EQ(FullestPlace(words, PlainHash), words.size());
  EXPECT_LT(FullestPlace(words, Hasher()), 15u);
  EXPECT_LT(CountProbes(words, Hasher()), 4 * words.size());
}

TEST(HasherTest, NumberedWordsSpread) {
  Words words;
  for (std::uint64_t i = 0; i < 10000; ++i) words.push_back(NumberedWord(i));
  EXPECT_LT(CountProbes(words, Hasher()), 4 * words.size());
}

// A secret that only moved all places alike would leave such words together.
TEST(HasherTest, WordsThatShareAPlaceWithOneSecretSpreadWithAnother) {
  const Words words = WordsOfOnePlace(Hasher(kSecret), 200);
  ASSERT_EQ(FullestPlace(words, Hasher(kSecret)), words.size());
  EXPECT_LT(FullestPlace(words, Hasher(kOtherSecret)), 6u);
}

TEST(HasherTest, EachPartOfTheSecretSeparatesWords) {
  const Words words = WordsOfOnePlace(Hasher(kSecret), 200);
  for (std::size_t i = 0; i < kSecret.size(); ++i) {
    Hasher::Secret secret = kSecret;
    secret[i] = kOtherSecret[i];
    EXPECT_LT(FullestPlace(words, Hasher(secret)), 6u) << i;
  }
}

TEST(HasherTest, EachDrawIsAnotherSecret) { EXPECT_NE(Hasher::DrawSecret(), Hasher::DrawSecret()); }

TEST(HasherTest, SecretIsDrawnWithoutRandomBytesToo) {
  random_bytes_fail = true;
  const Hasher::Secret first = Hasher::DrawSecret();
  usleep(1);  // the clock takes part
  const Hasher::Secret second = Hasher::DrawSecret();
  random_bytes_fail = false;
  for (std::size_t i = 0; i < first.size(); ++i) EXPECT_NE(first[i], second[i]);
  EXPECT_LT(FullestPlace(WordsOfOnePlainHash(10000), Hasher(first)), 15u);
}

}  // namespace
}  // namespace kestan_tests
