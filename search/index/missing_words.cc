#include "search/index/missing_words.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "search/matching/vocabulary.h"
#include "search/ranking/ranked_search.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

constexpr std::size_t kMaxMissing = 10;

// Collects the words outside NOT, each once.
void CollectWords(const Query& query, std::vector<Query>* words) {
  if (query.kind == Kind::kNot) return;
  if (query.kind == Kind::kWord || query.kind == Kind::kInflections) {
    Query word;
    word.kind = query.kind;
    word.word = query.word;
    if (std::find(words->begin(), words->end(), word) == words->end()) words->push_back(word);
  }
  for (const Query& operand : query.operands) CollectWords(operand, words);
}

}  // namespace

Result<std::vector<MissingWord>> MissingWords(const Query& query, const Snapshot& snapshot) {
  std::vector<Query> words;
  CollectWords(query, &words);
  std::vector<MissingWord> missing;
  for (const Query& word : words) {
    if (missing.size() == kMaxMissing) break;
    auto documents = LivingDocumentsWith(snapshot, word.word);
    if (documents.ok() && *documents == 0) documents = CountMatches(word, snapshot);
    if (!documents.ok()) return documents.status();
    if (*documents > 0) continue;
    auto suggestions = SuggestionsFor(snapshot, word.word);
    if (!suggestions.ok()) return suggestions.status();
    missing.push_back({word.word, std::move(*suggestions)});
  }
  return missing;
}

std::string NoteOn(const MissingWord& missing) {
  std::string note = "no document has '" + missing.word + "'";
  if (!missing.suggestions.empty()) {
    note += "; did you mean '" + missing.suggestions.front() + "'?";
  }
  return note;
}

}  // namespace kestan::search
