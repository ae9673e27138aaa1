// SPDX-License-Identifier: GPL-3.0-or-later
// AND, within a distance or not.
#ifndef KESTAN_QUERY_OPERATORS_INTERSECT_H_
#define KESTAN_QUERY_OPERATORS_INTERSECT_H_

#include <kestan/query/result_set.h>

namespace kestan {

// Finds the documents in both sets whose positions are at most `distance` words apart, in either
// order; with 0, anywhere. Scores add up, and words near each other earn more. The positions are
// those of `second` that are near enough.
ResultSet Intersect(const ResultSet& first, const ResultSet& second, int distance);

}  // namespace kestan

#endif  // KESTAN_QUERY_OPERATORS_INTERSECT_H_
