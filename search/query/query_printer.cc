// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_printer.h"

#include <algorithm>
#include <string_view>

namespace kestan::search {
namespace {

using Kind = Query::Kind;

std::string InQuotes(const std::string& text) { return '"' + text + '"'; }

bool IsOperator(const std::string& word) { return word == "AND" || word == "OR" || word == "NOT"; }

std::string PrintWord(const Query& query) {
  if (query.kind == Kind::kPrefix) return query.word + "*";
  if (query.kind == Kind::kFuzzy) return query.word + "~" + std::to_string(query.edits);
  return IsOperator(query.word) ? InQuotes(query.word) : query.word;
}

// Prints words in a row. Where the last of them stands for others, punctuation joins them: in
// quotes it would stand for itself.
std::string PrintPhrase(const Query& query) {
  const Query& last = query.operands.back();
  const bool has_suffix = last.kind == Kind::kPrefix || last.kind == Kind::kFuzzy;
  std::string text;
  for (const Query& word : query.operands) {
    if (!text.empty()) text += has_suffix ? "-" : " ";
    text += has_suffix && &word == &last ? PrintWord(word) : word.word;
  }
  return has_suffix ? text : InQuotes(text);
}

// Prints queries for the parser that takes quotes for `quotes_`.
class Printer {
 public:
  explicit Printer(QuotesMean quotes) : quotes_(quotes) {}

  std::string Print(const Query& query) const {
    if (IsInQuotes(query)) return PrintPhrase(query);
    switch (query.kind) {
      case Kind::kNot:
        return "NOT " + Grouped(query.operands.front(), !IsPart(query.operands.front()));
      case Kind::kNear:
        return PrintNear(query);
      case Kind::kAnd:
        return PrintList(query, " AND ");
      case Kind::kOr:
        return PrintList(query, " OR ");
      case Kind::kOptional:
        return Print(query.operands.front());
      default:
        return PrintWord(query);
    }
  }

 private:
  bool IsInQuotes(const Query& query) const {
    if (query.kind == Kind::kPhrase) return true;
    if (query.kind != Kind::kNear || quotes_ != QuotesMean::kNear) return false;
    const auto& words = query.operands;
    const auto is_word = [](const Query& operand) { return operand.kind == Kind::kWord; };
    const auto is_next = [](const Query& operand) { return operand.distance_words == 1; };
    return std::all_of(words.begin(), words.end(), is_word) &&
           std::all_of(words.begin() + 1, words.end(), is_next);
  }

  bool IsPart(const Query& query) const {
    return query.operands.empty() || query.kind == Kind::kNot || IsInQuotes(query);
  }

  std::string Grouped(const Query& query, bool needs_group) const {
    return needs_group ? "(" + Print(query) + ")" : Print(query);
  }

  std::string PrintNear(const Query& query) const {
    std::string text = Grouped(query.operands.front(), !IsPart(query.operands.front()));
    for (std::size_t i = 1; i < query.operands.size(); ++i) {
      const Query& operand = query.operands[i];
      text += " NEAR/" + std::to_string(operand.distance_words) + " ";
      text += Grouped(operand, !IsPart(operand));
    }
    return text;
  }

  // Prints the operands of AND or OR. An OR among them, or one of the same kind, needs parentheses.
  std::string PrintList(const Query& query, std::string_view separator) const {
    std::string text;
    for (const Query& operand : query.operands) {
      const bool needs_group = operand.kind == Kind::kOr || operand.kind == query.kind;
      if (!text.empty()) text += separator;
      text += Grouped(operand, needs_group);
    }
    return text;
  }

  const QuotesMean quotes_;
};

std::string LabelOfNear(const Query& query) {
  const int distance = query.operands[1].distance_words;
  const auto is_other = [distance](const Query& operand) {
    return operand.distance_words != distance;
  };
  if (std::any_of(query.operands.begin() + 1, query.operands.end(), is_other)) return "NEAR";
  return "NEAR/" + std::to_string(distance);
}

}  // namespace

std::string ToString(const Query& query, QuotesMean quotes) { return Printer(quotes).Print(query); }

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
    case Kind::kPhrase:
      return PrintPhrase(query);
    case Kind::kInflections:
      return query.word + " and its forms";
    case Kind::kOptional:
      return LabelOf(query.operands.front());
    default:
      return PrintWord(query);
  }
}

}  // namespace kestan::search
