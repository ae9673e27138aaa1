#include "search/matching/operators/chain.h"

namespace kestan::search {
namespace {

void KeepNext(Positions before, Positions after, std::vector<Position>* kept) {
  const Position* previous = before.begin();
  for (const Position position : after) {
    while (previous != before.end() && *previous + 1 < position) ++previous;
    if (previous == before.end()) return;
    if (*previous + 1 == position) kept->push_back(position);
  }
}

}  // namespace

Occurrences Phrase(const std::vector<Found>& operands) {
  return MatchChain(operands, [](std::size_t, Positions before, Positions after,
                                 std::vector<Position>* kept) { KeepNext(before, after, kept); });
}

}  // namespace kestan::search
