// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/top_documents.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "search/ranking/score_order.h"

namespace kestan::search {
namespace {

// Of so many documents the names are announced before they are read. More of them are fetched as
// rows, which lie side by side.
constexpr std::size_t kMostAnnounced = 1000;

std::string_view NameOf(const Snapshot& snapshot, const RankedDocument& document) {
  return snapshot.segments[document.id.segment]->NameOf(document.id.code);
}

// Those of equal score are read to sort them, those of the best to show them.
void AnnounceNames(const Snapshot& snapshot, const std::vector<RankedDocument>& documents) {
  if (documents.size() > kMostAnnounced) return;
  for (const RankedDocument& document : documents) {
    snapshot.segments[document.id.segment]->table().WillReadStart(document.id.code);
  }
  for (const RankedDocument& document : documents) {
    snapshot.segments[document.id.segment]->table().WillReadRecord(document.id.code);
  }
}

auto PlaceOf(const RankedDocument& document) {
  return std::tie(document.id.segment, document.id.code);
}

bool HasHigherScore(const RankedDocument& left, const RankedDocument& right) {
  return left.score > right.score;
}

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

// Scores alone decide here: a document that has the lowest score of the heap waits beside it.
void TopDocuments::Keep(const RankedDocument& document) {
  if (!is_full_) {
    best_.push_back(document);
    is_full_ = best_.size() == limit_;
    if (is_full_) std::make_heap(best_.begin(), best_.end(), HasHigherScore);
    return;
  }
  if (document.score == best_.front().score) {
    equal_.push_back(document);
    return;
  }
  std::pop_heap(best_.begin(), best_.end(), HasHigherScore);
  const RankedDocument displaced = std::exchange(best_.back(), document);
  std::push_heap(best_.begin(), best_.end(), HasHigherScore);
  if (best_.front().score > displaced.score) {
    equal_.clear();
  } else {
    equal_.push_back(displaced);
  }
}

std::vector<RankedDocument> TopDocuments::Take() {
  best_.insert(best_.end(), equal_.begin(), equal_.end());
  return std::move(best_);
}

std::vector<RankedDocument> TopDocuments::TakeSorted(const Snapshot& snapshot) {
  std::vector<RankedDocument> best = Take();
  AnnounceNames(snapshot, best);
  SortByScore(&best);
  RankedDocument* const end = best.data() + best.size();
  for (RankedDocument* first = best.data(); first != end;) {
    RankedDocument* last = first + 1;
    while (last != end && last->score == first->score) ++last;
    if (last - first > 1) SortByName(snapshot, first, last);
    first = last;
  }
  if (limit_ != 0 && best.size() > limit_) best.resize(limit_);
  return best;
}

}  // namespace kestan::search
