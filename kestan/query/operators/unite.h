// SPDX-License-Identifier: GPL-3.0-or-later
// OR.
#ifndef KESTAN_QUERY_OPERATORS_UNITE_H_
#define KESTAN_QUERY_OPERATORS_UNITE_H_

#include <kestan/query/result_set.h>

namespace kestan {

// Finds the documents in either set. Scores add up; positions of `first` follow those of `second`.
ResultSet Unite(const ResultSet& first, const ResultSet& second);

}  // namespace kestan

#endif  // KESTAN_QUERY_OPERATORS_UNITE_H_
