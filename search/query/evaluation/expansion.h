// Query expansion: the words of the index that one word of a query stands for.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_EXPANSION_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_EXPANSION_H_

#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "search/query/evaluation/index_words.h"
#include "search/query/query.h"

namespace kestan::search {

// How many words of the index one prefix* or fuzzy~ stands for at most.
constexpr std::size_t kMaxExpansions = 100;

struct Expansion {
  std::vector<std::string> words;
  std::string note;     // how many words of the index there are; empty for a plain word
  bool is_cut = false;  // whether there were more than kMaxExpansions
};

// Expands the leaves of queries, each prefix* and fuzzy~ once.
class QueryExpander {
 public:
  // Borrows `words`.
  explicit QueryExpander(IndexWords& words) : words_(words) {}

  // Expands `leaf`, a query without operands. Where a prefix* or fuzzy~ stands for more than
  // kMaxExpansions words, the closest are kept, then the most frequent.
  //   Returns  the words, which the index may lack if they are inflections or the word itself. The
  //            expander owns them.
  const Expansion& Expand(const Query& leaf);

 private:
  Expansion ExpandPattern(const Query& leaf);

  IndexWords& words_;
  std::map<std::tuple<Query::Kind, std::string, int>, Expansion> known_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_EXPANSION_H_
