// The best documents of many.
#ifndef KESTAN_SEARCH_RANKING_TOP_DOCUMENTS_H_
#define KESTAN_SEARCH_RANKING_TOP_DOCUMENTS_H_

#include <cstddef>
#include <vector>

#include "search/ranking/ranked_search.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

// Keeps the documents of the highest scores; of equal score, those whose names come first in order
// of bytes; of equal name, those of the first segment. Reads names only where scores are equal.
class TopDocuments {
 public:
  // Borrows `snapshot`. Keeps `limit` documents; 0: all.
  TopDocuments(const Snapshot& snapshot, std::size_t limit);

  void Add(const RankedDocument& document) {
    if (limit_ != 0 && heap_.size() == limit_ && document.score < heap_.front().score) return;
    AddToHeap(document);
  }

  // Returns them, the best first. Nothing may be added after it.
  std::vector<RankedDocument> Take();

 private:
  void AddToHeap(const RankedDocument& document);

  const Snapshot& snapshot_;
  const std::size_t limit_;
  std::vector<RankedDocument> heap_;  // the worst on top, if there is a limit
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_TOP_DOCUMENTS_H_
