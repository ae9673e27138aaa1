// Occurrences that a test writes down.
#ifndef KESTAN_TESTS_SEARCH_MATCHING_OPERATORS_OCCURRENCES_H_
#define KESTAN_TESTS_SEARCH_MATCHING_OPERATORS_OCCURRENCES_H_

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

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SEARCH_MATCHING_OPERATORS_OCCURRENCES_H_
