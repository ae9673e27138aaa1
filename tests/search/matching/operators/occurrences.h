// SPDX-License-Identifier: GPL-3.0-or-later
// Occurrences that a test writes down.
#ifndef KESTAN_TESTS_SEARCH_MATCHING_OPERATORS_OCCURRENCES_H_
#define KESTAN_TESTS_SEARCH_MATCHING_OPERATORS_OCCURRENCES_H_

#include <rapidcheck.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "search/matching/operators/operators.h"

namespace kestan_tests {

// The positions in each document, by its code.
using Places = std::map<kestan::Code, std::vector<kestan::Position>>;

inline kestan::search::Found At(const Places& places) {
  kestan::search::Occurrences found;
  for (const auto& [code, where] : places) found.Append(code, {where.data(), where.size()});
  return std::make_shared<const kestan::search::Occurrences>(std::move(found));
}

inline Places PlacesIn(const kestan::search::Occurrences& found) {
  Places places;
  kestan::search::PositionReader reader;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const kestan::Positions where = reader.Of(found, i);
    places[found.codes[i]].assign(where.begin(), where.end());
  }
  return places;
}

// Positions in ascending order, few and many, near each other and far, on both sides of the limits
// of comparing them by gaps.
inline rc::Gen<std::vector<kestan::Position>> AnyPositions(kestan::Position first) {
  using List = std::vector<kestan::Position>;
  const auto between = [](int begin, int end) {
    return rc::gen::inRange(static_cast<kestan::Position>(begin),
                            static_cast<kestan::Position>(end));
  };
  const auto position = rc::gen::oneOf(between(first, first + 60), between(first, 1000),
                                       between(32700, 32800), between(65000, 65535));
  return rc::gen::map(
      rc::gen::oneOf(rc::gen::container<List>(between(first, first + 60)),
                     rc::gen::container<List>(between(first, 1000)),
                     rc::gen::container<List>(position),
                     rc::gen::scale(0.1, rc::gen::container<List>(between(first, first + 60)))),
      [](List positions) {
        std::sort(positions.begin(), positions.end());
        return positions;
      });
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SEARCH_MATCHING_OPERATORS_OCCURRENCES_H_
