#include "search/query/evaluation/union.h"

#include <utility>

namespace kestan::search {

void Union::Add(ResultSet set) {
  if (set.id() == ResultSet::kNoDocuments) return;
  united_.push_back({std::move(set), 1});
  while (united_.size() > 1 && united_[united_.size() - 2].sets == united_.back().sets) {
    UniteLastTwo();
  }
}

ResultSet Union::Take() {
  while (united_.size() > 1) UniteLastTwo();
  if (united_.empty()) return {engine_, ResultSet::kNoDocuments};
  return std::move(united_.front().set);
}

void Union::UniteLastTwo() {
  const United last = std::move(united_.back());
  united_.pop_back();
  United& before = united_.back();
  before.set = ResultSet(engine_, engine_.QueryOr(before.set.id(), last.set.id()));
  before.sets += last.sets;
}

}  // namespace kestan::search
