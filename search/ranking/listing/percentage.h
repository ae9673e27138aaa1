// Scores as percentages of the best one.
#ifndef KESTAN_SEARCH_RANKING_LISTING_PERCENTAGE_H_
#define KESTAN_SEARCH_RANKING_LISTING_PERCENTAGE_H_

#include <kestan/results.h>

#include <cstdint>

namespace kestan::search {

// Turns scores into percentages as Kestan::QueryResults() prints them. All are 0 if the best score
// is 0.
class PercentageScale {
 public:
  explicit PercentageScale(Score best) : factor_(best != 0 ? 100 * kOne / best : kOne) {}

  // Returns the percentage of `score`, which is at most the best one.
  int Of(Score score) const { return static_cast<int>((factor_ * score + kOne / 2) / kOne); }

 private:
  static constexpr std::uint32_t kOne = 65536;  // a fixed-point 1

  std::uint32_t factor_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_LISTING_PERCENTAGE_H_
