// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/score_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestan::search {
namespace {

constexpr std::size_t kFewDocuments = 1000;  // compared, not distributed
constexpr unsigned kDigitBits = 11;
constexpr unsigned kDigits = 6;  // cover the 64 bits of a score
constexpr std::size_t kDigitValues = std::size_t{1} << kDigitBits;

using Counts = std::array<std::uint32_t, kDigitValues>;

// The bits of a double that is not negative have its order as numbers do. Turned over, so that the
// highest score comes first.
std::uint64_t KeyOf(const RankedDocument& document) {
  std::uint64_t bits = 0;
  static_assert(sizeof(bits) == sizeof(document.score));
  std::memcpy(&bits, &document.score, sizeof(bits));
  return ~bits;
}

std::size_t DigitOf(const RankedDocument& document, unsigned digit) {
  return (KeyOf(document) >> (digit * kDigitBits)) & (kDigitValues - 1);
}

void CountDigits(const std::vector<RankedDocument>& documents, std::vector<Counts>* counts) {
  for (const RankedDocument& document : documents) {
    for (unsigned digit = 0; digit < kDigits; ++digit) {
      ++(*counts)[digit][DigitOf(document, digit)];
    }
  }
}

// Turns counts into where the first document of each value goes.
//   Returns  false if all have the same value, so that nothing has to move.
bool TurnIntoStarts(std::size_t documents, Counts* counts) {
  std::uint32_t start = 0;
  for (std::uint32_t& count : *counts) {
    if (count == documents) return false;
    const std::uint32_t next = start + count;
    count = start;
    start = next;
  }
  return true;
}

}  // namespace

// Distributes by digits, the lowest first; each step keeps the order of the one before.
void SortByScore(std::vector<RankedDocument>* documents) {
  const auto is_better = [](const RankedDocument& left, const RankedDocument& right) {
    return left.score > right.score;
  };
  if (documents->size() <= kFewDocuments) {
    return std::stable_sort(documents->begin(), documents->end(), is_better);
  }
  std::vector<Counts> counts(kDigits);
  CountDigits(*documents, &counts);
  std::vector<RankedDocument> sorted(documents->size());
  for (unsigned digit = 0; digit < kDigits; ++digit) {
    Counts& places = counts[digit];
    if (!TurnIntoStarts(documents->size(), &places)) continue;
    for (const RankedDocument& document : *documents) {
      sorted[places[DigitOf(document, digit)]++] = document;
    }
    documents->swap(sorted);
  }
}

}  // namespace kestan::search
