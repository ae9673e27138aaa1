#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"
#include "search/query/evaluation/union.h"

namespace kestan::search {

ResultSet EvaluateOr(const Query& query, Explanation* explanation, Evaluator& evaluator) {
  Union united(evaluator.engine());
  for (const Repeated& operand : Distinct(query.operands)) {
    united.Add(EvaluateRepeated(operand, explanation, evaluator));
  }
  return united.Take();
}

}  // namespace kestan::search
