#include "search/query/query_printer.h"

#include <algorithm>
#include <string_view>

namespace kestan::search {
namespace {

using Kind = Query::Kind;

std::string InQuotes(const std::string& text) { return '"' + text + '"'; }

bool IsOperator(const std::string& word) { return word == "AND" || word == "OR" || word == "NOT"; }

// Quotes stand for words, each next to the one before.
bool IsPhrase(const Query& query) {
  if (query.kind != Kind::kNear) return false;
  const auto& words = query.operands;
  const auto is_word = [](const Query& operand) { return operand.kind == Kind::kWord; };
  const auto is_next = [](const Query& operand) { return operand.distance_words == 1; };
  return std::all_of(words.begin(), words.end(), is_word) &&
         std::all_of(words.begin() + 1, words.end(), is_next);
}

std::string PrintPhrase(const Query& query) {
  std::string text;
  for (const Query& word : query.operands) text += (text.empty() ? "" : " ") + word.word;
  return InQuotes(text);
}

bool IsPart(const Query& query) {
  return query.operands.empty() || query.kind == Kind::kNot || IsPhrase(query);
}

std::string Grouped(const Query& query, bool needs_group) {
  return needs_group ? "(" + ToString(query) + ")" : ToString(query);
}

std::string PrintNear(const Query& query) {
  std::string text = Grouped(query.operands.front(), !IsPart(query.operands.front()));
  for (std::size_t i = 1; i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    text += " NEAR/" + std::to_string(operand.distance_words) + " ";
    text += Grouped(operand, !IsPart(operand));
  }
  return text;
}

// Prints the operands of AND or OR. An OR among them, or one of the same kind, needs parentheses.
std::string PrintList(const Query& query, std::string_view separator) {
  std::string text;
  for (const Query& operand : query.operands) {
    const bool needs_group = operand.kind == Kind::kOr || operand.kind == query.kind;
    if (!text.empty()) text += separator;
    text += Grouped(operand, needs_group);
  }
  return text;
}

std::string LabelOfNear(const Query& query) {
  const int distance = query.operands[1].distance_words;
  const auto is_other = [distance](const Query& operand) {
    return operand.distance_words != distance;
  };
  if (std::any_of(query.operands.begin() + 1, query.operands.end(), is_other)) return "NEAR";
  return "NEAR/" + std::to_string(distance);
}

std::string PrintWord(const Query& query) {
  if (query.kind == Kind::kPrefix) return query.word + "*";
  if (query.kind == Kind::kFuzzy) return query.word + "~" + std::to_string(query.edits);
  return IsOperator(query.word) ? InQuotes(query.word) : query.word;
}

}  // namespace

std::string ToString(const Query& query) {
  if (IsPhrase(query)) return PrintPhrase(query);
  switch (query.kind) {
    case Kind::kNot:
      return "NOT " + Grouped(query.operands.front(), !IsPart(query.operands.front()));
    case Kind::kNear:
      return PrintNear(query);
    case Kind::kAnd:
      return PrintList(query, " AND ");
    case Kind::kOr:
      return PrintList(query, " OR ");
    default:
      return PrintWord(query);
  }
}

std::string LabelOf(const Query& query) {
  switch (query.kind) {
    case Kind::kNot:
      return "NOT";
    case Kind::kNear:
      return LabelOfNear(query);
    case Kind::kAnd:
      return "AND";
    case Kind::kOr:
      return "OR";
    case Kind::kInflections:
      return query.word + " and its forms";
    default:
      return PrintWord(query);
  }
}

}  // namespace kestan::search
