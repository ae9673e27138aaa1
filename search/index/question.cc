// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/question.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <utility>

#include "search/index/missing_words.h"
#include "search/matching/explain.h"
#include "search/matching/reading.h"
#include "search/query/built/lowering.h"
#include "search/query/foreign_syntax.h"
#include "search/query/word_notes.h"

namespace kestan::search {
namespace {

using MaybeQuery = std::optional<Query>;

// The query for what `some` finds and `all` does not.
Query Without(Query some, Query all) {
  Query excluded;
  excluded.kind = Query::Kind::kNot;
  excluded.operands.push_back(std::move(all));
  Query rest;
  rest.kind = Query::Kind::kAnd;
  rest.operands.push_back(std::move(some));
  rest.operands.push_back(std::move(excluded));
  return rest;
}

// Puts `last` after `first`, whose scores are raised above those of `last`.
void Append(RankedDocuments last, std::size_t limit, RankedDocuments* first) {
  const double best = last.best.empty() ? 0 : last.best.front().score;
  for (RankedDocument& document : first->best) document.score += best;
  first->best.insert(first->best.end(), last.best.begin(), last.best.end());
  if (limit > 0 && first->best.size() > limit) first->best.resize(limit);
  first->total += last.total;
  std::set<std::string> terms(first->terms.begin(), first->terms.end());
  terms.insert(last.terms.begin(), last.terms.end());
  first->terms.assign(terms.begin(), terms.end());
}

// The same for documents in no order.
void Append(const std::vector<ScoredDocuments>& last, std::vector<ScoredDocuments>* first) {
  double best = 0;
  for (const ScoredDocuments& documents : last) {
    for (const double score : documents.scores) best = std::max(best, score);
  }
  for (ScoredDocuments& documents : *first) {
    for (double& score : documents.scores) score += best;
  }
  first->insert(first->end(), last.begin(), last.end());
}

std::string HowManyHaveAll(std::uint64_t documents) {
  if (documents == 1) return "1 document has all of these words; those after it have some of them";
  return std::to_string(documents) +
         " documents have all of these words; those after them have some of them";
}

bool NeedsPositions(const Query& query) {
  return query.kind == Query::Kind::kNear || query.kind == Query::Kind::kPhrase ||
         std::any_of(query.operands.begin(), query.operands.end(), NeedsPositions);
}

// Says of each word that no document has that it is so, where others were found.
Status NameMissingWords(const Query& query, const Snapshot& snapshot, Answer* answer) {
  auto missing = MissingWords(query, snapshot);
  if (!missing.ok()) return missing.status();
  for (const MissingWord& word : *missing) {
    if (answer->found.total > 0) answer->notes.push_back(NoteOn(word));
    for (const std::string& suggestion : word.suggestions) {
      auto& known = answer->suggestions;
      if (std::find(known.begin(), known.end(), suggestion) == known.end()) {
        known.push_back(suggestion);
      }
    }
  }
  return {};
}

// One query, put to a snapshot in one way after the other.
class Question {
 public:
  // Borrows all three.
  Question(Reading* reading, const Snapshot& snapshot, const SearchOptions& options)
      : snapshot_(snapshot), options_(options), reading_(*reading) {}

  Result<Answer> Ask() {
    query_ = reading_.AsAsked();
    if (!query_) {
      const bool has_digits = snapshot_.rules == TextRules::kAnalyzer;
      answer_.notes.emplace_back(has_digits ? "the query holds no letters or digits to search for"
                                            : "the query holds no letters to search for");
      return std::move(answer_);
    }
    if (!snapshot_.with_positions() && NeedsPositions(*query_)) {
      answer_.notes.emplace_back(
          "the index keeps no positions, so NEAR and quotes are taken for AND");
    }
    Status status = Find(*query_);
    if (status.ok() && reading_.MayBeForSome()) status = FindSome();
    if (status.ok()) status = NameMissingWords(*query_, snapshot_, &answer_);
    if (status.ok()) status = reading_.status();
    if (!status.ok()) return status;
    NoteFirst(NotesOnOptionalWords(reading_.optional_words()));
    NoteFirst(NotesOnIgnoredText(reading_.text(), snapshot_.rules));
    return std::move(answer_);
  }

 private:
  void NoteFirst(const std::vector<std::string>& notes) {
    answer_.notes.insert(answer_.notes.begin(), notes.begin(), notes.end());
  }

  Status Find(const Query& query) {
    auto found = RankedSearch(query, snapshot_, options_);
    if (!found.ok()) return found.status();
    Append(std::move(*found), options_.limit, &answer_.found);
    return {};
  }

  // Goes on with the documents that hold some of the words, where they answer too.
  Status FindSome() {
    const std::uint64_t have_all = answer_.found.total;
    if (have_all > 0 && !reading_.IsQuestion()) return {};
    Query all = std::move(*query_);
    query_ = reading_.ForSome();
    if (*query_ == all) return {};
    Status status = Find(have_all > 0 ? Without(*query_, std::move(all)) : *query_);
    if (!status.ok() || answer_.found.total == have_all) return status;
    answer_.notes.push_back(have_all > 0 ? HowManyHaveAll(have_all) : NoneHasAll());
    return {};
  }

  std::string NoneHasAll() const {
    const std::string none =
        options_.filter ? "no document that passes the filters has all" : "no document has all";
    return none + " of these words; these have some of them";
  }

  const Snapshot& snapshot_;
  const SearchOptions& options_;
  Reading& reading_;
  MaybeQuery query_;
  Answer answer_;
};

Result<std::vector<ScoredDocuments>> AllAnswersOf(Reading& reading, const Snapshot& snapshot,
                                                  const SearchOptions& options) {
  const MaybeQuery all = reading.AsAsked();
  if (!all) return std::vector<ScoredDocuments>();
  auto found = ScoredSearch(*all, snapshot, options);
  const bool are_enough = found.ok() && !found->empty() && !reading.IsQuestion();
  if (!reading.status().ok()) return reading.status();
  if (!found.ok() || are_enough || !reading.MayBeForSome()) return found;
  const MaybeQuery some = reading.ForSome();
  if (*some == *all) return found;
  const auto rest = ScoredSearch(found->empty() ? *some : Without(*some, *all), snapshot, options);
  if (!rest.ok()) return rest.status();
  Append(*rest, &*found);
  return found;
}

Result<std::uint64_t> CountAnswersOf(Reading& reading, const Snapshot& snapshot,
                                     const SearchOptions& options) {
  const MaybeQuery query = reading.AsAsked();
  if (!query) return std::uint64_t{0};
  auto have_all = CountMatches(*query, snapshot, options.filter);
  const bool are_enough = have_all.ok() && *have_all > 0 && !reading.IsQuestion();
  if (!reading.status().ok()) return reading.status();
  if (!have_all.ok() || are_enough || !reading.MayBeForSome()) return have_all;
  const MaybeQuery some = reading.ForSome();
  if (*have_all == 0) return CountMatches(*some, snapshot, options.filter);
  auto rest = CountMatches(Without(*some, *query), snapshot, options.filter);
  if (rest.ok()) *rest += *have_all;
  return rest;
}

std::uint64_t MicrosecondsOf(const Explanation& explanation) {
  std::uint64_t all = explanation.microseconds;
  for (const Explanation& part : explanation.parts) all += MicrosecondsOf(part);
  return all;
}

Result<Explanation> ExplainFiltered(const Query& query, const Snapshot& snapshot,
                                    const DocumentFilter& filter) {
  auto explained = ExplainQuery(query, snapshot);
  if (!explained.ok() || !filter) return explained;
  const auto start = std::chrono::steady_clock::now();
  const auto documents = CountMatches(query, snapshot, filter);
  if (!documents.ok()) return documents.status();
  const auto took = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  Explanation whole;
  whole.part = "FILTER";
  whole.documents = *documents;
  const auto all = static_cast<std::uint64_t>(took.count());
  whole.microseconds = all - std::min(all, MicrosecondsOf(*explained));
  if (!(query == AllDocuments())) whole.parts.push_back(std::move(*explained));
  return whole;
}

Result<Explanation> ExplainAnswerOf(Reading& reading, const Snapshot& snapshot,
                                    const SearchOptions& options) {
  const MaybeQuery all = reading.AsAsked();
  if (!all) return Explanation();
  auto explained = ExplainFiltered(*all, snapshot, options.filter);
  const bool is_answered = explained.ok() && explained->documents > 0 && !reading.IsQuestion();
  if (!reading.status().ok()) return reading.status();
  if (!explained.ok() || is_answered || !reading.MayBeForSome()) return explained;
  return ExplainFiltered(*reading.ForSome(), snapshot, options.filter);
}

// Calls `answer` with the readings of `text`.
//   Returns  what that returns, or kInvalidQuery.
template <typename Answerer>
auto WithReading(std::string_view text, const Snapshot& snapshot, const SearchOptions& options,
                 const Answerer& answer) -> decltype(answer(std::declval<Reading&>())) {
  Reading reading(text, snapshot, options);
  Status status = reading.Check();
  if (!status.ok()) return status;
  return answer(reading);
}

// Calls `answer` with the one reading of `query`. Puts words that are cut into `*cut`.
//   Returns  what that returns, or kInvalidQuery, kOutOfMemory.
template <typename Answerer>
auto WithReading(const SearchQuery& query, const Snapshot& snapshot, const SearchOptions& options,
                 const Answerer& answer, std::vector<std::string>* cut = nullptr)
    -> decltype(answer(std::declval<Reading&>())) {
  Result<Query> lowered = Lowered(query, OperatorOf(options.words), snapshot.rules, cut);
  if (!lowered.ok()) return lowered.status();
  Reading reading(std::move(*lowered), snapshot, options);
  return answer(reading);
}

}  // namespace

Result<Answer> Ask(std::string_view text, const Snapshot& snapshot, const SearchOptions& options) {
  auto answer = WithReading(text, snapshot, options, [&](Reading& reading) {
    return Question(&reading, snapshot, options).Ask();
  });
  if (!answer.ok()) return answer;
  std::vector<std::string> notes = NotesOnForeignSyntax(text);
  answer->notes.insert(answer->notes.begin(), notes.begin(), notes.end());
  return answer;
}

Result<Answer> Ask(const SearchQuery& query, const Snapshot& snapshot,
                   const SearchOptions& options) {
  std::vector<std::string> cut;
  const auto ask = [&](Reading& reading) { return Question(&reading, snapshot, options).Ask(); };
  auto answer = WithReading(query, snapshot, options, ask, &cut);
  if (!answer.ok()) return answer;
  const std::vector<std::string> notes = NotesOnCutWords(cut);
  answer->notes.insert(answer->notes.begin(), notes.begin(), notes.end());
  return answer;
}

Result<std::vector<ScoredDocuments>> AllAnswers(std::string_view text, const Snapshot& snapshot,
                                                const SearchOptions& options) {
  return WithReading(text, snapshot, options,
                     [&](Reading& reading) { return AllAnswersOf(reading, snapshot, options); });
}

Result<std::vector<ScoredDocuments>> AllAnswers(const SearchQuery& query, const Snapshot& snapshot,
                                                const SearchOptions& options) {
  return WithReading(query, snapshot, options,
                     [&](Reading& reading) { return AllAnswersOf(reading, snapshot, options); });
}

Result<std::uint64_t> CountAnswers(std::string_view text, const Snapshot& snapshot,
                                   const SearchOptions& options) {
  return WithReading(text, snapshot, options,
                     [&](Reading& reading) { return CountAnswersOf(reading, snapshot, options); });
}

Result<std::uint64_t> CountAnswers(const SearchQuery& query, const Snapshot& snapshot,
                                   const SearchOptions& options) {
  return WithReading(query, snapshot, options,
                     [&](Reading& reading) { return CountAnswersOf(reading, snapshot, options); });
}

Result<Explanation> ExplainAnswer(std::string_view text, const Snapshot& snapshot,
                                  const SearchOptions& options) {
  return WithReading(text, snapshot, options,
                     [&](Reading& reading) { return ExplainAnswerOf(reading, snapshot, options); });
}

Result<Explanation> ExplainAnswer(const SearchQuery& query, const Snapshot& snapshot,
                                  const SearchOptions& options) {
  return WithReading(query, snapshot, options,
                     [&](Reading& reading) { return ExplainAnswerOf(reading, snapshot, options); });
}

}  // namespace kestan::search
