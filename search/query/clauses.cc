#include "search/query/clauses.h"

#include <algorithm>
#include <set>

namespace kestan::search {
namespace {

using Kind = Query::Kind;

void CollectClauses(const Query& query, std::vector<const Query*>* clauses) {
  if (query.kind == Kind::kNot) return;
  if (query.kind != Kind::kAnd && query.kind != Kind::kOr) {
    clauses->push_back(&query);
    return;
  }
  for (const Query& operand : query.operands) CollectClauses(operand, clauses);
}

void CollectWords(const Query& query, std::vector<std::string>* words) {
  if (query.kind == Kind::kNot) return;
  if (query.kind == Kind::kWord || query.kind == Kind::kInflections) words->push_back(query.word);
  for (const Query& operand : query.operands) CollectWords(operand, words);
}

}  // namespace

std::vector<const Query*> ScoringClauses(const Query& query) {
  std::vector<const Query*> clauses;
  CollectClauses(query, &clauses);
  return clauses;
}

std::vector<std::string> WordsOf(const Query& query) {
  std::vector<std::string> words;
  CollectWords(query, &words);
  std::set<std::string> seen;
  const auto is_known = [&](const std::string& word) { return !seen.insert(word).second; };
  words.erase(std::remove_if(words.begin(), words.end(), is_known), words.end());
  return words;
}

}  // namespace kestan::search
