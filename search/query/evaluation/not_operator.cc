#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"

namespace kestan::search {

ResultSet EvaluateNot(const Query& query, Explanation* explanation, Evaluator& evaluator) {
  const ResultSet operand = evaluator.EvaluateNegated(query.operands.front(), AddPart(explanation));
  return {evaluator.engine(), evaluator.engine().QueryNegate(operand.id())};
}

}  // namespace kestan::search
