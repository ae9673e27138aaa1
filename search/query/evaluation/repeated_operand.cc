#include <string>

#include "search/query/evaluation/evaluator.h"
#include "search/query/evaluation/operators.h"

namespace kestan::search {

ResultSet EvaluateRepeated(const Repeated& operand, Explanation* explanation,
                           Evaluator& evaluator) {
  Explanation* const part = AddPart(explanation);
  ResultSet result = evaluator.Evaluate(*operand.query, part);
  if (part != nullptr && operand.times > 1) {
    if (!part->note.empty()) part->note += ", ";
    part->note += "asked " + std::to_string(operand.times) + " times, counts once";
  }
  return result;
}

}  // namespace kestan::search
