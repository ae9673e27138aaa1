// The documents that a query finds.
#ifndef KESTAN_SEARCH_RANKING_LISTING_HITS_H_
#define KESTAN_SEARCH_RANKING_LISTING_HITS_H_

#include <kestan/results.h>

#include <string>
#include <vector>

#include "search/query/evaluation/result_set.h"

namespace kestan::search {

struct EngineHit {
  int percent = 0;  // of the best hit's score or relevance
  std::string name;
  Code code = 0;
};

// How hits are sorted.
enum class HitOrder {
  kBest,   // by relevance where words side by side mean any of them, else by score
  kScore,  // the engine's percentage, the highest first; among equals, the document added first
  kName,   // in order of bytes
  kCode,   // in order of the engine's codes: the document added first, where none was removed
};

// Returns the documents of `set` in ascending order of their codes.
std::vector<EngineHit> HitsIn(const ResultSet& set);

// Sorts `hits` by `order`. kBest means kScore here; percentages are compared as they are.
void Sort(HitOrder order, std::vector<EngineHit>* hits);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_LISTING_HITS_H_
