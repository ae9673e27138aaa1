// From result sets to result sets: AND, OR, NOT.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/format/records.h>
#include <kestan/query/proximity.h>
#include <kestan/query/result_set.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

using kestan::Code;
using kestan::Position;
using kestan::Positions;
using kestan::ResultSet;
using kestan::Score;

Score CutScore(std::uint32_t score) {
  return static_cast<Score>(std::min(score, kestan::kMaxScore));
}

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

// Adds one document with the positions of `b` and behind them those of `a`. Their number is counted
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

void Unite(const ResultSet& first, const ResultSet& second, ResultSet* united) {
  united->Reserve(first.documents().size() + second.documents().size(),
                  first.units() + second.units());
  auto a = first.documents().begin();
  auto b = second.documents().begin();
  const auto a_end = first.documents().end();
  const auto b_end = second.documents().end();
  while (a != a_end || b != b_end) {
    if (b == b_end || (a != a_end && a->code < b->code)) {
      united->Add(a->code, a->score, first.PositionsOf(*a));
      ++a;
    } else if (a == a_end || b->code < a->code) {
      united->Add(b->code, b->score, second.PositionsOf(*b));
      ++b;
    } else {
      AddMerged(first, *a++, second, *b++, united);
    }
  }
}

}  // namespace

int Kestan::QueryAnd(int first, int second, int distance) {
  const ResultSet* const a_set = kestan::FindQueryResult(first);
  const ResultSet* const b_set = kestan::FindQueryResult(second);
  if (a_set == nullptr || b_set == nullptr) return -1;
  auto* const both = kestan::New<ResultSet>();
  both->Reserve(std::min(a_set->documents().size(), b_set->documents().size()), 0);
  kestan::PositionMatcher matcher(distance);
  ForEachCommonDocument(*a_set, *b_set, [&](const auto& a, const auto& b) {
    matcher.Match(a_set->PositionsOf(a), b_set->PositionsOf(b));
    if (matcher.found().count == 0) return;
    const std::uint32_t score = std::uint32_t{a.score} + b.score + matcher.bonus();
    both->Add(a.code, CutScore(score), matcher.found());
  });
  return kestan::AddQueryResult(both);
}

int Kestan::QueryOr(int first, int second) {
  static const ResultSet kEmpty;
  const ResultSet* const a_set = kestan::FindQueryResult(first);
  const ResultSet* const b_set = kestan::FindQueryResult(second);
  if (a_set == nullptr && b_set == nullptr) return -1;
  auto* const either = kestan::New<ResultSet>();
  Unite(a_set != nullptr ? *a_set : kEmpty, b_set != nullptr ? *b_set : kEmpty, either);
  return kestan::AddQueryResult(either);
}

int Kestan::QueryNegate(int id) {
  kestan::CodeSet excluded;
  if (IsOpen()) kestan::CollectCodes(*AvailCodes.ptr, &excluded);
  if (const ResultSet* const set = kestan::FindQueryResult(id)) {
    for (const auto& document : set->documents()) excluded.set(document.code);
  }
  const DBDatumPtr counter = kestan::Fetch(store_, kestan::kCounterKey);
  if (counter.ptr == nullptr) {
    std::fprintf(stderr, "%s: Could not locate global-code (oops!)\n", kestan::kEngineName);
    std::exit(1);
  }
  auto* const others = kestan::New<ResultSet>();
  others->AddAllBut(excluded, kestan::DecodeCounter(*counter.ptr));
  return kestan::AddQueryResult(others);
}
