#include <cstddef>
#include <vector>

#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"

namespace kestan::search {

ResultSet EvaluateAnd(const Query& query, Explanation* explanation, Evaluator& evaluator) {
  Kestan& engine = evaluator.engine();
  const std::vector<Repeated> operands = Distinct(query.operands);
  ResultSet so_far = EvaluateRepeated(operands.front(), explanation, evaluator);
  for (std::size_t i = 1; i < operands.size(); ++i) {
    const ResultSet next = EvaluateRepeated(operands[i], explanation, evaluator);
    so_far = {engine, engine.QueryAnd(so_far.id(), next.id(), 0)};
  }
  return so_far;
}

}  // namespace kestan::search
