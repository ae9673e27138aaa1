#include "search/ranking/top_documents.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "search/ranking/score_order.h"

namespace kestan::search {
namespace {

std::string_view NameOf(const Snapshot& snapshot, const RankedDocument& document) {
  return snapshot.segments[document.id.segment]->NameOf(document.id.code);
}

auto PlaceOf(const RankedDocument& document) {
  return std::tie(document.id.segment, document.id.code);
}

class IsBetter {
 public:
  explicit IsBetter(const Snapshot& snapshot) : snapshot_(&snapshot) {}

  bool operator()(const RankedDocument& left, const RankedDocument& right) const {
    if (left.score != right.score) return left.score > right.score;
    const int order = NameOf(*snapshot_, left).compare(NameOf(*snapshot_, right));
    return order != 0 ? order < 0 : PlaceOf(left) < PlaceOf(right);
  }

 private:
  const Snapshot* snapshot_;
};

// Sorts documents of equal score. Reads each name once.
void SortByName(const Snapshot& snapshot, RankedDocument* begin, RankedDocument* end) {
  std::vector<std::pair<std::string_view, RankedDocument>> named;
  for (const RankedDocument* document = begin; document != end; ++document) {
    named.emplace_back(NameOf(snapshot, *document), *document);
  }
  std::sort(named.begin(), named.end(), [](const auto& left, const auto& right) {
    const int order = left.first.compare(right.first);
    return order != 0 ? order < 0 : PlaceOf(left.second) < PlaceOf(right.second);
  });
  for (const auto& [name, document] : named) *begin++ = document;
}

}  // namespace

TopDocuments::TopDocuments(const Snapshot& snapshot, std::size_t limit)
    : snapshot_(snapshot), limit_(limit) {}

void TopDocuments::Keep(const RankedDocument& document) {
  const IsBetter is_better(snapshot_);
  if (!is_full_) {
    best_.push_back(document);
    is_full_ = best_.size() == limit_;
    if (is_full_) std::make_heap(best_.begin(), best_.end(), is_better);
  } else if (is_better(document, best_.front())) {
    std::pop_heap(best_.begin(), best_.end(), is_better);
    best_.back() = document;
    std::push_heap(best_.begin(), best_.end(), is_better);
  }
}

std::vector<RankedDocument> TopDocuments::Take() { return std::move(best_); }

std::vector<RankedDocument> TopDocuments::TakeSorted() {
  SortByScore(&best_);
  RankedDocument* const end = best_.data() + best_.size();
  for (RankedDocument* first = best_.data(); first != end;) {
    RankedDocument* last = first + 1;
    while (last != end && last->score == first->score) ++last;
    if (last - first > 1) SortByName(snapshot_, first, last);
    first = last;
  }
  return std::move(best_);
}

}  // namespace kestan::search
