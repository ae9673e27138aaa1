// How a query was understood, part by part.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_EXPLANATION_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_EXPLANATION_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestan::search {

// How a part of a query was understood, what it matched and what it cost.
struct Explanation {
  std::string label;              // a word, or an operator
  std::size_t documents = 0;      // how many it matches
  std::int64_t microseconds = 0;  // what it took, without the parts below it
  std::string note;               // what else there is to say; mostly empty
  std::vector<Explanation> parts;
};

// Adds a part to `explanation`, which may be null.
//   Returns  the part, or null if `explanation` is. It is valid until the next one is added.
inline Explanation* AddPart(Explanation* explanation) {
  return explanation == nullptr ? nullptr : &explanation->parts.emplace_back();
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_EXPLANATION_H_
