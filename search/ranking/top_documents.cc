#include "search/ranking/top_documents.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

namespace kestan::search {
namespace {

class IsBetter {
 public:
  explicit IsBetter(const Snapshot& snapshot) : snapshot_(&snapshot) {}

  bool operator()(const RankedDocument& left, const RankedDocument& right) const {
    if (left.score != right.score) return left.score > right.score;
    const int order = NameOf(left).compare(NameOf(right));
    if (order != 0) return order < 0;
    return std::tie(left.id.segment, left.id.code) < std::tie(right.id.segment, right.id.code);
  }

 private:
  std::string_view NameOf(const RankedDocument& document) const {
    return snapshot_->segments[document.id.segment]->NameOf(document.id.code);
  }

  const Snapshot* snapshot_;
};

}  // namespace

TopDocuments::TopDocuments(const Snapshot& snapshot, std::size_t limit)
    : snapshot_(snapshot), limit_(limit) {}

void TopDocuments::AddToHeap(const RankedDocument& document) {
  const IsBetter is_better(snapshot_);
  if (limit_ == 0) {
    heap_.push_back(document);
  } else if (heap_.size() < limit_) {
    heap_.push_back(document);
    std::push_heap(heap_.begin(), heap_.end(), is_better);
  } else if (is_better(document, heap_.front())) {
    std::pop_heap(heap_.begin(), heap_.end(), is_better);
    heap_.back() = document;
    std::push_heap(heap_.begin(), heap_.end(), is_better);
  }
}

std::vector<RankedDocument> TopDocuments::Take() {
  if (limit_ == 0) {
    std::sort(heap_.begin(), heap_.end(), IsBetter(snapshot_));
  } else {
    std::sort_heap(heap_.begin(), heap_.end(), IsBetter(snapshot_));
  }
  return std::move(heap_);
}

}  // namespace kestan::search
