// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/reading.h"

#include <cstdint>
#include <utility>

#include "search/matching/vocabulary.h"
#include "search/query/strict/strict_reading.h"
#include "search/text/white_space.h"

namespace kestan::search {

// NOT, of an OR of nothing.
Query AllDocuments() {
  Query nothing;
  nothing.kind = Query::Kind::kOr;
  Query all;
  all.kind = Query::Kind::kNot;
  all.operands.push_back(std::move(nothing));
  return all;
}

DefaultOperator OperatorOf(WordsMean words) {
  switch (words) {
    case WordsMean::kAll:
      return DefaultOperator::kAnd;
    case WordsMean::kAny:
      return DefaultOperator::kOr;
    default:
      return DefaultOperator::kAndOfQuestion;
  }
}

Status Reading::Check() const {
  return is_strict_ && !finds_all_ ? CheckIsStrict(text_, snapshot_.rules) : Status();
}

std::optional<Query> Reading::AsAsked() {
  if (built_) return built_;
  if (finds_all_) return AllDocuments();
  return Parsed(OperatorOf(words_));
}

std::optional<Query> Reading::ForSome() {
  if (finds_all_) return AllDocuments();
  return Parsed(IsQuestion() ? DefaultOperator::kOrOfQuestion : DefaultOperator::kOr);
}

bool Reading::IsQuestion() const {
  return !built_ && search::IsQuestion(text_, snapshot_.rules, CommonWords());
}

bool Reading::IsBlank(std::string_view text) {
  return text.find_first_not_of(kWhiteSpace) == std::string_view::npos;
}

std::optional<Query> Reading::Parsed(DefaultOperator default_operator) {
  return ParseQuery(text_, default_operator, QuotesMean::kPhrase, snapshot_.rules, CommonWords(),
                    &optional_);
}

// With kAll and kAny, words are taken for what they are.
IsCommonWord Reading::CommonWords() const {
  const bool may_be_common =
      words_ == WordsMean::kBest && snapshot_.living_documents() >= kMinDocumentsOfCommonWords;
  if (!may_be_common) return {};
  return [this](const std::string& word) { return IsCommon(word); };
}

bool Reading::IsCommon(const std::string& word) const {
  const auto known = is_common_.find(word);
  if (known != is_common_.end()) return known->second;
  const Result<bool> is_common = IsInMostDocuments(snapshot_, word);
  if (!is_common.ok() && status_.ok()) status_ = is_common.status();
  return is_common_[word] = is_common.ok() && *is_common;
}

}  // namespace kestan::search
