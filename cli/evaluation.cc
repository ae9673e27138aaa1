#include "evaluation.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "hits.h"
#include "message.h"
#include "spelling.h"
#include "word_forms.h"

namespace kestan_cli {
namespace {

// For so many missing words are others suggested: each costs a look at all words of the index.
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

// Returns a new part of `explanation`, null if that is null.
Explanation* AddPart(Explanation* explanation) {
  return explanation == nullptr ? nullptr : &explanation->parts.emplace_back();
}

void CollectWords(const Query& query, std::vector<std::string>* words) {
  if (query.kind == Query::Kind::kNot) return;
  const bool is_word = query.kind == Query::Kind::kWord || query.kind == Query::Kind::kForms;
  if (is_word) words->push_back(query.word);
  for (const Query& operand : query.operands) CollectWords(operand, words);
}

// Each once, in the order in which they came.
std::vector<std::string> WordsOf(const Query& query) {
  std::vector<std::string> words;
  CollectWords(query, &words);
  std::set<std::string> seen;
  const auto is_known = [&](const std::string& word) { return !seen.insert(word).second; };
  words.erase(std::remove_if(words.begin(), words.end(), is_known), words.end());
  return words;
}

void CollectParts(const Query& query, std::vector<const Query*>* parts) {
  if (query.kind == Query::Kind::kNot) return;
  if (query.kind != Query::Kind::kAnd && query.kind != Query::Kind::kOr) {
    parts->push_back(&query);
    return;
  }
  for (const Query& operand : query.operands) CollectParts(operand, parts);
}

}  // namespace

ResultSet Evaluator::Evaluate(const Query& query, Explanation* explanation) {
  const Clock::time_point start = Clock::now();
  const std::int64_t counted_before = counting_;
  ResultSet result = EvaluateNode(query, explanation);
  if (explanation != nullptr) {
    // Counting is left out of all times: a search without explanations does not do it.
    const std::int64_t elsewhere = counting_ - counted_before + TimeOfParts(*explanation);
    explanation->microseconds = std::max<std::int64_t>(MicrosecondsSince(start) - elsewhere, 0);
    const Clock::time_point counting = Clock::now();
    explanation->label = LabelOf(query);
    explanation->documents = CountLines(result.Listing());
    counting_ += MicrosecondsSince(counting);
  }
  return result;
}

ResultSet Evaluator::EvaluateNode(const Query& query, Explanation* explanation) {
  if (query.kind == Query::Kind::kNot) return Negate(query, explanation);
  if (!query.operands.empty()) return EvaluateOperands(query, explanation);
  return AnyOf(Expanded(query, explanation));
}

ResultSet Evaluator::Negate(const Query& query, Explanation* explanation) {
  negated_ = !negated_;
  const ResultSet operand = Evaluate(query.operands.front(), AddPart(explanation));
  negated_ = !negated_;
  return {engine_, engine_.QueryNegate(operand.id())};
}

ResultSet Evaluator::EvaluateOperands(const Query& query, Explanation* explanation) {
  if (query.kind == Query::Kind::kNear) TellOfPositions(explanation);
  ResultSet so_far = Evaluate(query.operands.front(), AddPart(explanation));
  for (std::size_t i = 1; i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    const ResultSet next = Evaluate(operand, AddPart(explanation));
    const int distance = query.kind == Query::Kind::kNear ? operand.distance_words : 0;
    const int combined = query.kind == Query::Kind::kOr
                             ? engine_.QueryOr(so_far.id(), next.id())
                             : engine_.QueryAnd(so_far.id(), next.id(), distance);
    so_far = ResultSet(engine_, combined);
  }
  return so_far;
}

// Unites sets of about the same size, so that none is copied once for each word.
ResultSet Evaluator::AnyOf(const std::vector<std::string>& words) {
  std::vector<ResultSet> sets;
  for (const std::string& word : words) {
    ResultSet set(engine_, engine_.QueryWord(word.c_str()));
    if (set.id() == -1) continue;
    if (!negated_) sought_.insert(word);
    sets.push_back(std::move(set));
  }
  while (sets.size() > 1) {
    std::vector<ResultSet> united;
    for (std::size_t i = 0; i + 1 < sets.size(); i += 2) {
      united.emplace_back(engine_, engine_.QueryOr(sets[i].id(), sets[i + 1].id()));
    }
    if (sets.size() % 2 == 1) united.push_back(std::move(sets.back()));
    sets = std::move(united);
  }
  return sets.empty() ? ResultSet(engine_, -1) : std::move(sets.front());
}

std::vector<std::string> Evaluator::Expanded(const Query& query, Explanation* explanation) {
  if (query.kind == Query::Kind::kWord) return {query.word};
  if (query.kind == Query::Kind::kForms) return FormsOf(query.word);
  std::vector<Similar> candidates = query.kind == Query::Kind::kPrefix
                                        ? Words().WithPrefix(query.word)
                                        : Words().WithinEdits(query.word, query.edits);
  const std::size_t found = candidates.size();
  KeepClosest(
      kMaxExpansions, [this](const std::string& word) { return DocumentsWith(word); }, &candidates);
  if (explanation != nullptr) explanation->note = Counted(found, "word");
  if (found > kMaxExpansions) TellOfCut(query, found, explanation);
  std::vector<std::string> words;
  words.reserve(candidates.size());
  for (Similar& candidate : candidates) words.push_back(std::move(candidate.word));
  return words;
}

void Evaluator::TellOfCut(const Query& query, std::size_t found, Explanation* explanation) {
  const std::string closest = query.kind == Query::Kind::kFuzzy ? "closest and " : "";
  const std::string cut = "only the " + std::to_string(kMaxExpansions) + " " + closest +
                          "most frequent of " + Counted(found, "word");
  if (explanation != nullptr) explanation->note = cut;
  notes_.push_back(Spelled(query) + " stands for " + cut);
}

void Evaluator::TellOfPositions(Explanation* explanation) {
  if ((engine_.Options() & 1) == 0) return;
  if (explanation != nullptr) explanation->note = "taken for AND";
  const std::string note = "the index keeps no positions, so NEAR and quotes are taken for AND";
  if (std::find(notes_.begin(), notes_.end(), note) == notes_.end()) notes_.push_back(note);
}

const Vocabulary& Evaluator::Words() {
  if (!words_) words_.emplace(engine_.CommonWords(1, -1));
  return *words_;
}

std::size_t Evaluator::DocumentsWith(const std::string& word) {
  return CountLines(ResultSet(engine_, engine_.QueryWord(word.c_str())).Listing());
}

std::vector<std::string> Evaluator::SuggestionsFor(const Query& query) {
  const auto frequency_of = [this](const std::string& word) { return DocumentsWith(word); };
  std::vector<std::string> suggestions;
  std::size_t missing = 0;
  for (const std::string& word : WordsOf(query)) {
    if (missing == kMaxSuggestedFor) break;
    if (frequency_of(word) > 0) continue;
    ++missing;
    for (std::string& suggestion : Suggestions(Words(), word, frequency_of)) {
      const bool is_new =
          std::find(suggestions.begin(), suggestions.end(), suggestion) == suggestions.end();
      if (is_new) suggestions.push_back(std::move(suggestion));
    }
  }
  return suggestions;
}

std::vector<const Query*> PartsThatSpeakFor(const Query& query) {
  std::vector<const Query*> parts;
  CollectParts(query, &parts);
  return parts;
}

}  // namespace kestan_cli
