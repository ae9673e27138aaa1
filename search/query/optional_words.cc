// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/optional_words.h"

#include <algorithm>
#include <utility>

#include "search/query/query_words.h"
#include "search/text/stop_words.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

// Returns the word as it is written: don't.
std::string Written(const Query& query) {
  if (query.operands.empty()) return query.word;
  std::string text;
  const char* const joint = IsAbbreviation(query) ? "." : "'";
  for (const Query& operand : query.operands) text += (text.empty() ? "" : joint) + operand.word;
  return text;
}

void AddOnce(std::string word, std::vector<std::string>* words) {
  if (std::find(words->begin(), words->end(), word) == words->end()) {
    words->push_back(std::move(word));
  }
}

Query Optional(Query word) {
  Query query;
  query.kind = Kind::kOptional;
  query.operands.push_back(std::move(word));
  return query;
}

// Returns whether `is_one_of` holds for all of `words` but those under NOT.
template <typename IsOneOf>
bool AreAll(const std::vector<Query>& words, const IsOneOf& is_one_of) {
  return std::all_of(words.begin(), words.end(), [&](const Query& query) {
    return query.kind == Kind::kNot || is_one_of(query);
  });
}

}  // namespace

bool IsJoined(const Query& query) {
  return query.kind == Kind::kPhrase || query.kind == Kind::kNear;
}

bool IsAbbreviation(const Query& query) {
  if (!IsJoined(query)) return false;
  std::string letters;
  for (const Query& operand : query.operands) letters += operand.word;
  return query.operands.size() == 2 && (letters == "eg" || letters == "ie");
}

bool IsStop(const Query& query) {
  if (IsJoined(query)) return AreDividedStopWord(query.operands);
  return query.kind == Kind::kWord && !query.is_exact && IsStopWord(query.word);
}

bool IsStopOfQuestion(const Query& query) {
  return IsStop(query) || IsAbbreviation(query) ||
         (query.kind == Kind::kWord && !query.is_exact && IsAskedWith(query.word));
}

std::vector<Query> WithOptionalWords(std::vector<Query> words, bool (*is_stop)(const Query&),
                                     const IsCommonWord& is_common, OptionalWords* optional) {
  if (words.size() < 2 || AreAll(words, is_stop)) return words;
  for (const Query& word : words) {
    if (is_stop(word)) AddOnce(Written(word), &optional->stop_words);
  }
  words.erase(std::remove_if(words.begin(), words.end(), is_stop), words.end());
  const auto is_optional = [&](const Query& query) {
    return is_common && query.kind == Kind::kWord && !query.is_exact && is_common(query.word);
  };
  if (AreAll(words, is_optional)) return words;
  for (Query& word : words) {
    if (!is_optional(word)) continue;
    AddOnce(word.word, &optional->common);
    word = Optional(std::move(word));
  }
  return words;
}

}  // namespace kestan::search
