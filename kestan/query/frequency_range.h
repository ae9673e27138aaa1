// SPDX-License-Identifier: GPL-3.0-or-later
// A range of document frequencies.
#ifndef KESTAN_QUERY_FREQUENCY_RANGE_H_
#define KESTAN_QUERY_FREQUENCY_RANGE_H_

namespace kestan {

// How many documents hold a word, at least and at most. From 0 up to, not including, 1 it is a
// share of the documents; from 1 on a count. A negative `high` is no limit.
struct FrequencyRange {
  double low;
  double high;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_FREQUENCY_RANGE_H_
