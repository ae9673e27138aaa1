// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "tests/model/model.h"
#include "tests/model/units.h"

namespace kestan_model {
namespace {

constexpr std::uint32_t kBestScore = 65535;
constexpr int kNear = 20;  // places; closer words earn a bonus

// The pairs of positions of two words in one document.
struct Pairs {
  std::set<unsigned> positions;  // where the pairs that pass stand
  std::vector<int> close;        // the differences that earn a bonus
};

Pairs PairsOf(const Hit& first, const Hit& second, int distance) {
  Pairs pairs;
  for (const unsigned a : first.positions) {
    for (const unsigned b : second.positions) {
      if (a == 0 || b == 0) {  // a place is not known: the other one counts
        pairs.positions.insert(b == 0 ? a : b);
        continue;
      }
      const int apart = static_cast<int>(b) - static_cast<int>(a);
      if (distance != 0 && (apart == 0 || std::abs(apart) > distance)) continue;
      if (std::abs(apart) <= kNear) pairs.close.push_back(apart);
      pairs.positions.insert(b);
    }
  }
  return pairs;
}

Hit Merged(const Hit& first, const Hit& second) {
  Hit merged{std::min(first.score + second.score, kBestScore), second.positions};
  merged.positions.insert(merged.positions.end(), first.positions.begin(), first.positions.end());
  merged.positions.resize(merged.positions.size() % 65536);  // the count has 16 bits
  return merged;
}

}  // namespace

int Model::Register(const ResultSet& result) {
  process_.results[process_.next_id] = result;
  return process_.next_id++;
}

const ResultSet* Model::Find(int id) const {
  const auto found = process_.results.find(id);
  return found == process_.results.end() ? nullptr : &found->second;
}

int Model::QueryWord(const std::string& word) {
  const Value record = store_.Get(word);
  if (record == nullptr) return -1;
  ResultSet result;
  for (const Posting& posting : PostingsOf(record->bytes, PositionsKept())) {
    Hit hit{1, {0}};
    if (PositionsKept()) {
      hit = Hit{static_cast<std::uint32_t>(posting.positions.size()), posting.positions};
    }
    result.insert({posting.code, hit});  // keeps the first posting of a code
  }
  return Register(result);
}

std::size_t Model::CountPairs(int first, int second) const {
  const ResultSet* left = Find(first);
  const ResultSet* right = Find(second);
  if (left == nullptr || right == nullptr) return 0;
  std::size_t count = 0;
  for (const auto& [code, hit] : *left) {
    const auto other = right->find(code);
    if (other != right->end()) count += hit.positions.size() * other->second.positions.size();
  }
  return count;
}

int Model::QueryAnd(int first, int second, int distance) {
  const ResultSet* left = Find(first);
  const ResultSet* right = Find(second);
  if (left == nullptr || right == nullptr) return -1;
  ResultSet result;
  for (const auto& [code, hit] : *left) {
    if (right->count(code) == 0) continue;
    const Hit& other = right->at(code);
    const Pairs pairs = PairsOf(hit, other, distance);
    if (pairs.positions.empty()) continue;
    std::uint32_t score = hit.score + other.score;
    for (const int apart : pairs.close) score += static_cast<std::uint32_t>(401 - apart * apart);
    result[code] = Hit{std::min(score, kBestScore),
                       std::vector<unsigned>(pairs.positions.begin(), pairs.positions.end())};
  }
  return Register(result);
}

int Model::QueryOr(int first, int second) {
  const ResultSet* left = Find(first);
  const ResultSet* right = Find(second);
  if (left == nullptr && right == nullptr) return -1;
  ResultSet result;
  if (left != nullptr) result = *left;
  if (right == nullptr) return Register(result);
  for (const auto& [code, hit] : *right) {
    result[code] = result.count(code) == 0 ? hit : Merged(result[code], hit);
  }
  return Register(result);
}

int Model::QueryNegate(int id) {
  const std::vector<unsigned> reusable = UnitsOf(avail_codes_->bytes);
  std::set<unsigned> excluded(reusable.begin(), reusable.end());
  if (const ResultSet* operand = Find(id); operand != nullptr) {
    for (const auto& [code, hit] : *operand) excluded.insert(code);
  }
  const unsigned highest = NumberAt(store_.Get("g-code")->bytes, 0, 2);
  ResultSet result;
  for (unsigned code = 1; code <= highest; ++code) {
    if (excluded.count(code) == 0) result[code] = Hit{0, {0}};
  }
  return Register(result);
}

}  // namespace kestan_model
