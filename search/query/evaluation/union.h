// Unites many result sets.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_UNION_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_UNION_H_

#include <kestan/results.h>

#include <cstddef>
#include <vector>

#include "search/query/evaluation/result_set.h"

namespace kestan::search {

// Unites sets in their order. As far as possible, unites only unions of equally many sets: the
// first set would otherwise be copied once for each set after it.
class Union {
 public:
  // Borrows `engine`.
  explicit Union(Kestan& engine) : engine_(engine) {}

  void Add(ResultSet set);

  // Returns the union of all, empty if there are none. No other call may follow.
  ResultSet Take();

 private:
  struct United {
    ResultSet set;
    std::size_t sets;
  };

  void UniteLastTwo();

  Kestan& engine_;
  std::vector<United> united_;  // each of fewer sets than the one before, but for the last
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_UNION_H_
