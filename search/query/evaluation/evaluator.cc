#include "search/query/evaluation/evaluator.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "search/query/clauses.h"
#include "search/query/evaluation/operators.h"
#include "search/query/query_printer.h"
#include "search/vocabulary/suggestions.h"

namespace kestan::search {
namespace {

// Suggestions are looked up for at most so many missing words: each look-up goes through all words
// of the index.
constexpr std::size_t kMaxSuggestedFor = 10;

using Clock = std::chrono::steady_clock;

std::int64_t MicrosecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count();
}

std::int64_t TimeOfParts(const Explanation& explanation) {
  std::int64_t sum = 0;
  for (const Explanation& part : explanation.parts) {
    sum += part.microseconds + TimeOfParts(part);
  }
  return sum;
}

bool Contains(const std::vector<std::string>& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

ResultSet Evaluator::Evaluate(const Query& query, Explanation* explanation) {
  if (explanation == nullptr) return EvaluateNode(query, nullptr);
  const Clock::time_point start = Clock::now();
  const std::int64_t counting_before = counting_microseconds_;
  ResultSet result = EvaluateNode(query, explanation);
  // Counting is left out of all times: a search without explanations does not do it.
  const std::int64_t elsewhere =
      counting_microseconds_ - counting_before + TimeOfParts(*explanation);
  explanation->microseconds = std::max<std::int64_t>(MicrosecondsSince(start) - elsewhere, 0);
  const Clock::time_point counting = Clock::now();
  explanation->label = LabelOf(query);
  explanation->documents = result.CountDocuments();
  counting_microseconds_ += MicrosecondsSince(counting);
  return result;
}

ResultSet Evaluator::EvaluateNode(const Query& query, Explanation* explanation) {
  switch (query.kind) {
    case Query::Kind::kNot:
      return EvaluateNot(query, explanation, *this);
    case Query::Kind::kNear:
      return EvaluateNear(query, explanation, *this);
    case Query::Kind::kAnd:
      return EvaluateAnd(query, explanation, *this);
    case Query::Kind::kOr:
      return EvaluateOr(query, explanation, *this);
    default:
      return EvaluateWord(query, explanation, *this);
  }
}

ResultSet Evaluator::EvaluateNegated(const Query& operand, Explanation* explanation) {
  negated_ = !negated_;
  ResultSet result = Evaluate(operand, explanation);
  negated_ = !negated_;
  return result;
}

const ResultSet& Evaluator::AllDocuments() {
  if (!all_documents_) all_documents_.emplace(engine_, engine_.QueryNegate(-1));
  return *all_documents_;
}

void Evaluator::AddMatchedTerm(const std::string& term) {
  if (!negated_) matched_terms_.insert(term);
}

void Evaluator::AddNote(const std::string& note) {
  if (!Contains(notes_, note)) notes_.push_back(note);
}

std::vector<std::string> Evaluator::SuggestionsFor(const Query& query) {
  const auto document_frequency = [this](const std::string& word) {
    return words_.DocumentsWith(word);
  };
  std::vector<std::string> suggestions;
  std::size_t missing = 0;
  for (const std::string& word : WordsOf(query)) {
    if (missing == kMaxSuggestedFor) break;
    if (document_frequency(word) > 0) continue;
    ++missing;
    for (std::string& suggestion : Suggestions(words_.All(), word, document_frequency)) {
      if (!Contains(suggestions, suggestion)) suggestions.push_back(std::move(suggestion));
    }
  }
  return suggestions;
}

}  // namespace kestan::search
