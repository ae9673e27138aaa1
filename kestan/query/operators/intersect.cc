// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/operators/intersect.h>

#include <kestan/query/operators/proximity.h>
#include <kestan/query/operators/score.h>

#include <algorithm>
#include <cstdint>

namespace kestan {
namespace {

// Calls `on_both` with each pair of documents that have the same code.
template <typename OnBoth>
void ForEachCommonDocument(const ResultSet& first, const ResultSet& second, OnBoth on_both) {
  auto a = first.documents().begin();
  auto b = second.documents().begin();
  while (a != first.documents().end() && b != second.documents().end()) {
    const Code a_code = a->code;
    const Code b_code = b->code;
    if (a_code == b_code) on_both(*a, *b);
    a += a_code <= b_code ? 1 : 0;
    b += b_code <= a_code ? 1 : 0;
  }
}

}  // namespace

ResultSet Intersect(const ResultSet& first, const ResultSet& second, int distance) {
  ResultSet both;
  both.Reserve(std::min(first.documents().size(), second.documents().size()), 0);
  ProximityMatcher matcher(distance);
  ForEachCommonDocument(first, second, [&](const auto& a, const auto& b) {
    matcher.Match(first.PositionsOf(a), second.PositionsOf(b));
    if (matcher.found().count == 0) return;
    const std::uint32_t score = std::uint32_t{a.score} + b.score + matcher.bonus();
    both.Add(a.code, CutScore(score), matcher.found());
  });
  return both;
}

}  // namespace kestan
