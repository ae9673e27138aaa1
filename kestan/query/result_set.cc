// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/result_set.h>

#include <algorithm>

namespace kestan {
namespace {

bool CodeIsLower(const ResultSet::Document& left, const ResultSet::Document& right) {
  return left.code < right.code;
}

bool CodeIsNotLower(const ResultSet::Document& left, const ResultSet::Document& right) {
  return !CodeIsLower(left, right);
}

}  // namespace

void ResultSet::AddUnplaced(Code code, Score score) {
  if (units_.empty()) units_ = {1, 0};
  AddTaken(code, score, 0);
}

// Writes every code and moves on only past those that stay: a branch that cannot be predicted would
// cost more.
void ResultSet::AddAllBut(const CodeSet& excluded, Code top) {
  units_ = {1, 0};
  std::size_t added = documents_.size();
  documents_.resize(added + top + 1);
  for (unsigned code = 1; code <= top; ++code) {
    documents_[added] = {static_cast<Code>(code), 0, 0};
    if (!excluded[code]) ++added;
  }
  documents_.resize(added);
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

}  // namespace kestan
