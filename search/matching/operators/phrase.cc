// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/operators/chain.h"

namespace kestan::search {
namespace {

// Steps are taken without branches: which list comes next cannot be predicted.
std::size_t KeepNext(Positions before, Positions after, Position* kept) {
  std::size_t size = 0;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < before.count && j < after.count) {
    const int expected = before.first[i] + 1;
    const int position = after.first[j];
    kept[size] = after.first[j];
    size += static_cast<std::size_t>(expected == position);
    i += static_cast<std::size_t>(expected < position);
    j += static_cast<std::size_t>(expected >= position);
  }
  return size;
}

}  // namespace

Occurrences Phrase(const std::vector<Found>& operands, Need need) {
  return MatchChain(operands, need,
                    [](std::size_t, Positions before, Positions after, Position* kept) {
                      return KeepNext(before, after, kept);
                    });
}

}  // namespace kestan::search
