// SPDX-License-Identifier: GPL-3.0-or-later
// The best documents of many.
#ifndef KESTAN_SEARCH_RANKING_TOP_DOCUMENTS_H_
#define KESTAN_SEARCH_RANKING_TOP_DOCUMENTS_H_

#include <cstddef>
#include <vector>

#include "search/ranking/ranked_search.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

// Keeps the documents of the highest scores, which are 0 or more; of equal score, those whose names
// come first in order of bytes; of equal name, those of the first segment. Reads names only where
// scores are equal, when it is known which of them matter.
class TopDocuments {
 public:
  // Keeps `limit` documents; 0: all.
  explicit TopDocuments(std::size_t limit) : limit_(limit) {}

  // Makes room for documents, where all are kept.
  void Expect(std::size_t documents) {
    if (limit_ == 0) best_.reserve(documents);
  }

  void Add(const RankedDocument& document) {
    if (is_full_ && document.score < best_.front().score) return;
    Keep(document);
  }

  // Returns the lowest score that a document which is added now may have to be kept.
  double least_score() const { return is_full_ ? best_.front().score : 0; }

  // Returns them, in any order, and those of the same score as the last of them. Nothing may be
  // added after it.
  std::vector<RankedDocument> Take();

  // Returns them, the best first, with names from `snapshot`. Nothing may be added after it.
  std::vector<RankedDocument> TakeSorted(const Snapshot& snapshot);

 private:
  void Keep(const RankedDocument& document);

  const std::size_t limit_;
  bool is_full_ = false;
  std::vector<RankedDocument> best_;   // a heap with the lowest score on top, once it is full
  std::vector<RankedDocument> equal_;  // others of the lowest score in the heap
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_TOP_DOCUMENTS_H_
