// From a query to the documents that match it.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_EVALUATOR_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_EVALUATOR_H_

#include <kestan/results.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "search/query/evaluation/expansion.h"
#include "search/query/evaluation/explanation.h"
#include "search/query/evaluation/index_words.h"
#include "search/query/evaluation/result_set.h"
#include "search/query/query.h"

namespace kestan::search {

// Evaluates one query and its clauses in the engine. Keeps the terms that matched, and notes.
class Evaluator {
 public:
  // Borrows `engine`, whose index is open and has, or had, a document.
  explicit Evaluator(Kestan& engine)
      : engine_(engine), words_(ReaderOf(engine)), expander_(words_) {}
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;

  // Evaluates `query`. Operands of AND or of OR that are equal count once. Fills `*explanation`,
  // which may be null: counting documents takes time.
  ResultSet Evaluate(const Query& query, Explanation* explanation);

  // The words of the index that the evaluated queries matched, expansions among them; not those
  // under NOT.
  const std::set<std::string>& matched_terms() const { return matched_terms_; }

  // One sentence for each expansion that was cut to kMaxExpansions, and for an index without the
  // positions that the query needs.
  const std::vector<std::string>& notes() const { return notes_; }

  // Returns suggestions for each word of `query`, outside NOT, that no document has;
  // for ten such words at most.
  std::vector<std::string> SuggestionsFor(const Query& query);

  // What the operators use.
  Kestan& engine() const { return engine_; }
  QueryExpander& expander() { return expander_; }

  // Evaluates `operand`, the operand of a NOT: its terms do not count as matched.
  ResultSet EvaluateNegated(const Query& operand, Explanation* explanation);

  // The documents of the index, whatever words they have.
  const ResultSet& AllDocuments();

  // Counts `term` as matched, unless a NOT is above it.
  void AddMatchedTerm(const std::string& term);

  // Adds `note`, once.
  void AddNote(const std::string& note);

 private:
  ResultSet EvaluateNode(const Query& query, Explanation* explanation);

  Kestan& engine_;
  IndexWords words_;
  QueryExpander expander_;
  std::optional<ResultSet> all_documents_;
  std::set<std::string> matched_terms_;
  std::vector<std::string> notes_;
  bool negated_ = false;
  std::int64_t counting_microseconds_ = 0;  // what filling explanations has taken
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_EVALUATOR_H_
