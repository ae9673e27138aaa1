// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of queries share: result sets from posting records written in the test, and a look
// at what lies in a result set.
#ifndef KESTAN_TESTS_QUERY_QUERY_TEST_H_
#define KESTAN_TESTS_QUERY_QUERY_TEST_H_

#include <kestan/engine/shared_state.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/indexing/planting.h"

namespace kestan_tests {

// What a result set says of one document.
struct Hit {
  unsigned code;
  unsigned score;
  Numbers positions;
};

inline bool operator==(const Hit& left, const Hit& right) {
  return left.code == right.code && left.score == right.score && left.positions == right.positions;
}

inline std::ostream& operator<<(std::ostream& out, const Hit& hit) {
  out << "code " << hit.code << " score " << hit.score << " at";
  for (unsigned position : hit.positions) out << ' ' << position;
  return out;
}

using Hits = std::vector<Hit>;

// Reads the set of `id`; an unknown one fails the test.
inline Hits HitsOf(int id) {
  const kestan::ResultSet* const set = kestan::Results().Find(id);
  EXPECT_NE(set, nullptr) << id;
  Hits hits;
  if (set == nullptr) return hits;
  for (const auto& document : set->documents()) {
    const kestan::Positions positions = set->PositionsOf(document);
    hits.push_back({document.code, document.score, {positions.begin(), positions.end()}});
  }
  return hits;
}

// A test with an engine whose result sets are all freed at the end.
class QueryTest : public IndexTest {
 protected:
  void TearDown() override {
    for (int id : ids_) engine_.FreeQueryResult(id);
  }

  int Word(const char* word) { return Kept(engine_.QueryWord(word)); }
  int And(int first, int second, int distance) {
    return Kept(engine_.QueryAnd(first, second, distance));
  }
  int Or(int first, int second) { return Kept(engine_.QueryOr(first, second)); }
  int Not(int id) { return Kept(engine_.QueryNegate(id)); }

  // Plants `record` under a new word and returns the set of that word.
  int Postings(const std::string& record) {
    const std::string word = "word" + std::to_string(ids_.size());
    PlantAndReopen({{word, record}});
    return Word(word.c_str());
  }

  // Returns a set of document 1 alone, which holds a word at `positions`.
  int At(const Numbers& positions) { return Postings(EncodedPosting(1, positions)); }

  // Turns the index into one without positions.
  void DropPositions() { PlantAndReopen({{"g-opts", kNoPositions}}); }

 private:
  int Kept(int id) {
    ids_.push_back(id);
    return id;
  }

  std::vector<int> ids_;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_QUERY_QUERY_TEST_H_
