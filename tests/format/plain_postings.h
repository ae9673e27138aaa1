// SPDX-License-Identifier: GPL-3.0-or-later
// Posting records, read by a plain twin of the library's reader: units in a row, no more.
#ifndef KESTAN_TESTS_FORMAT_PLAIN_POSTINGS_H_
#define KESTAN_TESTS_FORMAT_PLAIN_POSTINGS_H_

#include <string>
#include <vector>

#include "tests/format/plain_records.h"

namespace kestan_tests {

struct PlainPosting {
  std::vector<unsigned> units;  // all that the record has of it
  unsigned code = 0;
  std::vector<unsigned> positions;

  friend bool operator==(const PlainPosting& left, const PlainPosting& right) {
    return left.units == right.units && left.code == right.code &&
           left.positions == right.positions;
  }
};

inline std::vector<PlainPosting> PlainPostings(const std::string& record, bool with_positions) {
  const std::vector<unsigned> units = UnitsOf(record);
  std::vector<PlainPosting> postings;
  for (std::size_t i = 0; i < units.size();) {
    PlainPosting posting;
    posting.code = units[i];
    posting.units.push_back(units[i++]);
    unsigned count = 0;
    if (with_positions && i < units.size()) {
      count = units[i];
      posting.units.push_back(units[i++]);
    }
    for (; count > 0 && i < units.size(); --count) {
      posting.positions.push_back(units[i]);
      posting.units.push_back(units[i++]);
    }
    postings.push_back(posting);
  }
  return postings;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_FORMAT_PLAIN_POSTINGS_H_
