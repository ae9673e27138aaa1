// The operators of queries, each in a file of its own.
//
// Each function evaluates a node of its kind and, with `evaluator`, the operands of the node. It
// adds a part for each operand to `explanation`, and a note where there is something to say;
// `explanation` may be null.
#ifndef KESTAN_SEARCH_QUERY_EVALUATION_OPERATORS_H_
#define KESTAN_SEARCH_QUERY_EVALUATION_OPERATORS_H_

#include "search/query/distinct.h"
#include "search/query/evaluation/explanation.h"
#include "search/query/evaluation/result_set.h"
#include "search/query/query.h"

namespace kestan::search {

class Evaluator;

// Finds the documents with `leaf.word`, or with any word that it stands for.
ResultSet EvaluateWord(const Query& leaf, Explanation* explanation, Evaluator& evaluator);

// Finds the documents that match all operands.
ResultSet EvaluateAnd(const Query& query, Explanation* explanation, Evaluator& evaluator);

// Finds the documents that match any operand.
ResultSet EvaluateOr(const Query& query, Explanation* explanation, Evaluator& evaluator);

// Finds the documents in which each operand is within its distance from those before it. In an
// index without positions it means AND, and a note says so.
ResultSet EvaluateNear(const Query& query, Explanation* explanation, Evaluator& evaluator);

// Finds the documents that do not match the operand.
ResultSet EvaluateNot(const Query& query, Explanation* explanation, Evaluator& evaluator);

// Evaluates an operand of AND or OR that may be there several times.
ResultSet EvaluateRepeated(const Repeated& operand, Explanation* explanation, Evaluator& evaluator);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_EVALUATION_OPERATORS_H_
