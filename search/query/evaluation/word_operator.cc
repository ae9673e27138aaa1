#include <string>
#include <utility>

#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"
#include "search/query/evaluation/union.h"
#include "search/query/query_printer.h"

namespace kestan::search {
namespace {

// Postings of words of one letter outlive their documents and the shrinks of other programs. They
// would not be listed, but the percentages of the others would be relative to their scores.
bool MayHaveLeftoverPostings(const std::string& word) {
  return word.size() == 1 || (word.size() == 2 && word[1] == '-');
}

ResultSet DocumentsWith(const std::string& word, Evaluator& evaluator) {
  Kestan& engine = evaluator.engine();
  ResultSet found(engine, engine.QueryWord(word.c_str()));
  if (found.id() == ResultSet::kNoDocuments || !MayHaveLeftoverPostings(word)) return found;
  return {engine, engine.QueryAnd(evaluator.AllDocuments().id(), found.id(), 0)};
}

}  // namespace

ResultSet EvaluateWord(const Query& leaf, Explanation* explanation, Evaluator& evaluator) {
  const Expansion& expansion = evaluator.expander().Expand(leaf);
  if (explanation != nullptr) explanation->note = expansion.note;
  if (expansion.is_cut) evaluator.AddNote(ToString(leaf) + " stands for " + expansion.note);
  Union united(evaluator.engine());
  for (const std::string& word : expansion.words) {
    ResultSet set = DocumentsWith(word, evaluator);
    if (set.id() == ResultSet::kNoDocuments) continue;
    evaluator.AddMatchedTerm(word);
    united.Add(std::move(set));
  }
  return united.Take();
}

}  // namespace kestan::search
