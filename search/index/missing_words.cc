// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/missing_words.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string_view>
#include <utility>

#include "search/matching/vocabulary.h"
#include "search/ranking/ranked_search.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

constexpr std::size_t kMaxMissing = 10;

// The words outside NOT, each once, in order.
class Words {
 public:
  // Borrows `query`, whose words it adds.
  void Collect(const Query& query) {
    if (query.kind == Kind::kNot) return;
    const bool is_word = query.kind == Kind::kWord || query.kind == Kind::kInflections;
    if (is_word && known_.emplace(query.kind, query.word).second) {
      Query& word = words_.emplace_back();
      word.kind = query.kind;
      word.word = query.word;
    }
    for (const Query& operand : query.operands) Collect(operand);
  }

  const std::vector<Query>& words() const { return words_; }

 private:
  std::set<std::pair<Kind, std::string_view>> known_;
  std::vector<Query> words_;
};

// Returns the first words of `query` that no living document has, at most kMaxMissing.
Result<std::vector<std::string>> MissingTerms(const Query& query, const Snapshot& snapshot) {
  Words words;
  words.Collect(query);
  std::vector<std::string> missing;
  for (const Query& word : words.words()) {
    if (missing.size() == kMaxMissing) break;
    auto documents = LivingDocumentsWith(snapshot, word.word);
    if (documents.ok() && *documents == 0) documents = CountMatches(word, snapshot);
    if (!documents.ok()) return documents.status();
    if (*documents == 0) missing.push_back(word.word);
  }
  return missing;
}

}  // namespace

Result<std::vector<MissingWord>> MissingWords(const Query& query, const Snapshot& snapshot) {
  auto terms = MissingTerms(query, snapshot);
  if (!terms.ok()) return terms.status();
  std::vector<MissingWord> missing;
  for (std::string& term : *terms) {
    auto suggestions = SuggestionsFor(snapshot, term);
    if (!suggestions.ok()) return suggestions.status();
    missing.push_back({std::move(term), std::move(*suggestions)});
  }
  return missing;
}

Result<std::vector<FuzzyMatch>> SuggestedWords(const Query& query, const Snapshot& snapshot,
                                               std::size_t limit) {
  auto terms = MissingTerms(query, snapshot);
  if (!terms.ok()) return terms.status();
  std::vector<FuzzyMatch> suggested;
  for (const std::string& term : *terms) {
    auto closest = ClosestTerms(snapshot, term);
    if (!closest.ok()) return closest.status();
    for (FuzzyMatch& match : *closest) {
      if (limit > 0 && suggested.size() == limit) return suggested;
      const auto is_same = [&match](const FuzzyMatch& known) { return known.word == match.word; };
      if (std::any_of(suggested.begin(), suggested.end(), is_same)) continue;
      suggested.push_back(std::move(match));
    }
  }
  return suggested;
}

std::string NoteOn(const MissingWord& missing) {
  std::string note = "no document has '" + missing.word + "'";
  if (!missing.suggestions.empty()) {
    note += "; did you mean '" + missing.suggestions.front() + "'?";
  }
  return note;
}

}  // namespace kestan::search
