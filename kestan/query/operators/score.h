// SPDX-License-Identifier: GPL-3.0-or-later
// Scores that combining adds up.
#ifndef KESTAN_QUERY_OPERATORS_SCORE_H_
#define KESTAN_QUERY_OPERATORS_SCORE_H_

#include <kestan/query/matches.h>

#include <algorithm>
#include <cstdint>

namespace kestan {

// Returns `score`, or the highest that a document can have if it is higher.
inline Score CutScore(std::uint32_t score) {
  return static_cast<Score>(std::min(score, kMaxScore));
}

}  // namespace kestan

#endif  // KESTAN_QUERY_OPERATORS_SCORE_H_
