// SPDX-License-Identifier: GPL-3.0-or-later
// How a query was read, and what each part of it found.
#ifndef KESTAN_SEARCH_EXPLANATION_H_
#define KESTAN_SEARCH_EXPLANATION_H_

#include <cstdint>
#include <string>
#include <vector>

namespace kestan::search {

// A query, or a part of one.
struct Explanation {
  std::string part;                // a word as it was read, or an operator; "": no letters
  std::string note;                // what else there is to say: how many words a prefix stands for
  std::uint64_t documents = 0;     // how many it matches
  std::uint64_t microseconds = 0;  // to find them, without the time of the parts below
  std::vector<Explanation> parts;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_EXPLANATION_H_
