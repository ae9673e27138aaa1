// Result sets and the registry that keeps them.
#include <kestan/engine/kestan.h>
#include <kestan/query/result_set.h>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace kestan {
namespace {

// Of the process, not of an engine. Sets that nobody has freed when the process ends stay as they
// are: only FreeQueryResult releases one.
std::map<int, ResultSet*, std::less<>, Allocator<std::pair<const int, ResultSet*>>> MatchList;
int MatchCounter = 1;

bool CodeIsLower(const ResultSet::Document& left, const ResultSet::Document& right) {
  return left.code < right.code;
}

bool CodeIsNotLower(const ResultSet::Document& left, const ResultSet::Document& right) {
  return !CodeIsLower(left, right);
}

}  // namespace

Position* ResultSet::Add(Code code, Score score, std::uint16_t count) {
  const std::size_t first = positions_.size();
  documents_.push_back({code, score, count, static_cast<std::uint32_t>(first)});
  positions_.resize(first + count);
  return positions_.data() + first;
}

void ResultSet::Add(Code code, Score score, Positions positions) {
  std::copy(positions.begin(), positions.end(),
            Add(code, score, static_cast<std::uint16_t>(positions.count)));
}

void ResultSet::Sort() {
  const auto out_of_order =
      std::adjacent_find(documents_.begin(), documents_.end(), CodeIsNotLower);
  if (out_of_order == documents_.end()) return;
  std::stable_sort(documents_.begin(), documents_.end(), CodeIsLower);
  const auto same_code = [](const Document& left, const Document& right) {
    return left.code == right.code;
  };
  documents_.erase(std::unique(documents_.begin(), documents_.end(), same_code), documents_.end());
}

int AddQueryResult(ResultSet* set) {
  MatchList.emplace(MatchCounter, set);
  return MatchCounter++;
}

const ResultSet* FindQueryResult(int id) {
  const auto found = MatchList.find(id);
  return found == MatchList.end() ? nullptr : found->second;
}

}  // namespace kestan

void Kestan::FreeQueryResult(int id) {
  const auto found = kestan::MatchList.find(id);
  if (found == kestan::MatchList.end()) return;
  delete found->second;
  kestan::MatchList.erase(found);
}
