// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/operators/unite.h>

#include <kestan/query/operators/score.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kestan {
namespace {

// Adds one document with the positions of `b` followed by those of `a`. Their number is counted
// in 16 bits; where it passes 65535, only as many positions stay as it then says.
void AddMerged(const ResultSet& a_set, const ResultSet::Document& a, const ResultSet& b_set,
               const ResultSet::Document& b, ResultSet* merged) {
  const Positions of_a = a_set.PositionsOf(a);
  const Positions of_b = b_set.PositionsOf(b);
  const auto count = static_cast<std::uint16_t>(of_a.count + of_b.count);
  Position* const to = merged->Add(b.code, CutScore(std::uint32_t{a.score} + b.score), count);
  const std::size_t from_b = std::min<std::size_t>(of_b.count, count);
  std::copy_n(of_b.first, from_b, to);
  std::copy_n(of_a.first, count - from_b, to + from_b);
}

}  // namespace

ResultSet Unite(const ResultSet& first, const ResultSet& second) {
  ResultSet united;
  united.Reserve(first.documents().size() + second.documents().size(),
                 first.units() + second.units());
  auto a = first.documents().begin();
  auto b = second.documents().begin();
  const auto a_end = first.documents().end();
  const auto b_end = second.documents().end();
  while (a != a_end || b != b_end) {
    if (b == b_end || (a != a_end && a->code < b->code)) {
      united.Add(a->code, a->score, first.PositionsOf(*a));
      ++a;
    } else if (a == a_end || b->code < a->code) {
      united.Add(b->code, b->score, second.PositionsOf(*b));
      ++b;
    } else {
      AddMerged(first, *a++, second, *b++, &united);
    }
  }
  return united;
}

}  // namespace kestan
