#include <kestan/results.h>

#include <cstddef>

#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"

namespace kestan::search {
namespace {

void NoteMissingPositions(Explanation* explanation, Evaluator& evaluator) {
  if (ReaderOf(evaluator.engine()).KeepsPositions()) return;
  if (explanation != nullptr) explanation->note = "taken for AND";
  evaluator.AddNote("the index keeps no positions, so NEAR and quotes are taken for AND");
}

}  // namespace

// Equal operands stay: words in a row may well be equal, and are in different places then.
ResultSet EvaluateNear(const Query& query, Explanation* explanation, Evaluator& evaluator) {
  NoteMissingPositions(explanation, evaluator);
  Kestan& engine = evaluator.engine();
  ResultSet so_far = evaluator.Evaluate(query.operands.front(), AddPart(explanation));
  for (std::size_t i = 1; i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    const ResultSet next = evaluator.Evaluate(operand, AddPart(explanation));
    so_far = {engine, engine.QueryAnd(so_far.id(), next.id(), operand.distance_words)};
  }
  return so_far;
}

}  // namespace kestan::search
