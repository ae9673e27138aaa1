// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/built/lowering.h"

#include <algorithm>
#include <climits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "search/query/built/built_node.h"
#include "search/query/query_words.h"
#include "search/query/word_notes.h"
#include "search/text/analyzer/word_sink.h"
#include "search/text/white_space.h"

namespace kestan::search {
namespace {

using Kind = BuiltNode::Kind;

constexpr WordSuffix kPrefixSuffix = {Query::Kind::kPrefix, 0, 1};

std::string NameOf(Kind kind) {
  switch (kind) {
    case Kind::kPrefix:
      return "the prefix ";
    case Kind::kPhrase:
      return "the phrase ";
    case Kind::kAnd:
      return "AND";
    case Kind::kOr:
      return "OR";
    default:
      return "the word ";
  }
}

bool EndsInPrefix(const Query& query) {
  const Query* last = &query;
  while (!last->operands.empty()) last = &last->operands.back();
  return last->kind == Query::Kind::kPrefix;
}

// Cuts `text` at white space. What is empty has no runs.
std::vector<std::string_view> RunsOf(std::string_view text) {
  std::vector<std::string_view> runs;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    if (text.empty()) return runs;
    runs.push_back(text.substr(0, text.find_first_of(kWhiteSpace)));
    text.remove_prefix(runs.back().size());
  }
}

// One part of a NEAR, and how far from the one before.
struct NearPart {
  const BuiltNode* node;
  unsigned distance_words;
};

// Lowers one query. After an error, the queries it returns mean nothing.
class Lowering {
 public:
  Lowering(DefaultOperator default_operator, TextRules rules)
      : operator_of_words_(default_operator == DefaultOperator::kOr ? Query::Kind::kOr
                                                                    : Query::Kind::kAnd),
        rules_(rules) {}

  const Status& status() const { return status_; }
  const std::vector<std::string>& cut() const { return cut_; }

  // `depth` is the number of operators around `node`.
  Query Lower(const BuiltNode* node, unsigned depth) {
    if (node == nullptr) return Fail({StatusCode::kOutOfMemory, "out of memory"});
    switch (node->kind) {
      case Kind::kWord:
      case Kind::kPrefix:
      case Kind::kPhrase:
        return LowerText(*node);
      default:
        break;
    }
    if (depth == kMaxQueryDepth) {
      return FailQuery("the query is nested deeper than " + std::to_string(kMaxQueryDepth) +
                       " operators");
    }
    if (node->kind == Kind::kNear) return LowerNear(*node, depth + 1);
    if (node->kind == Kind::kNot) return LowerNot(*node, depth + 1);
    return LowerList(*node, depth + 1);
  }

 private:
  Query Fail(Status status) {
    if (status_.ok()) status_ = std::move(status);
    return {};
  }

  Query FailQuery(std::string message) {
    return Fail({StatusCode::kInvalidQuery, std::move(message)});
  }

  // Returns whether there may be `parts` more.
  bool Count(std::size_t parts) {
    if (parts > kMaxQueryParts - parts_) {
      FailQuery("the query has more than " + std::to_string(kMaxQueryParts) + " parts");
      return false;
    }
    parts_ += parts;
    return status_.ok();
  }

  Query LowerText(const BuiltNode& node) {
    std::vector<Query> parts = PartsOfText(node);
    for (const Query& part : parts) Count(part.operands.size());
    std::optional<Query> query = Combined(operator_of_words_, std::move(parts));
    if (!query) {
      const std::string what = rules_ == TextRules::kAnalyzer ? "letters or digits" : "letters";
      return FailQuery(NameOf(node.kind) + Shown(node.text) + " holds no " + what);
    }
    if (node.kind == Kind::kPrefix && !EndsInPrefix(*query)) {
      return FailQuery(NameOf(node.kind) + Shown(node.text) + " does not end in a word");
    }
    return std::move(*query);
  }

  std::vector<Query> PartsOfText(const BuiltNode& node) {
    if (node.kind == Kind::kPhrase)
      return PartsOfRun(node.text, WordsOfPhrase(node.text, rules_), true);
    std::vector<Query> parts;
    const std::vector<std::string_view> runs = RunsOf(node.text);
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const bool is_prefix = node.kind == Kind::kPrefix && i + 1 == runs.size();
      const WordSuffix suffix = is_prefix ? kPrefixSuffix : WordSuffix();
      for (Query& part : PartsOfRun(runs[i], WordsOfText(runs[i], suffix, rules_), false)) {
        parts.push_back(std::move(part));
      }
    }
    return parts;
  }

  std::vector<Query> PartsOfRun(std::string_view text, std::vector<QueryWords> words,
                                bool is_phrase) {
    if (text.size() > kMaxWordCharacters) {
      AddIfCut(words, {Token::Kind::kWord, std::string(text)}, &cut_);
    }
    return PartsOf(std::move(words), is_phrase, QuotesMean::kPhrase);
  }

  Query LowerNot(const BuiltNode& node, unsigned depth) {
    Query query;
    query.kind = Query::Kind::kNot;
    if (Count(1)) query.operands.push_back(Lower(BuiltNode::Of(node.operands.front()), depth));
    return query;
  }

  Query LowerNear(const BuiltNode& node, unsigned depth) {
    Query query;
    query.kind = Query::Kind::kNear;
    for (const NearPart& part : ChainOf(node)) {
      if (!status_.ok()) break;
      query.operands.push_back(Lower(part.node, depth));
      query.operands.back().distance_words = static_cast<int>(part.distance_words);
    }
    return query;
  }

  // Returns the parts of the chain that ends in `last`, in order.
  std::vector<NearPart> ChainOf(const BuiltNode& last) {
    std::vector<NearPart> parts;
    const BuiltNode* node = &last;
    for (; node != nullptr && node->kind == Kind::kNear;
         node = BuiltNode::Of(node->operands.front())) {
      if (node->distance_words == 0 || node->distance_words > unsigned{INT_MAX}) {
        FailQuery("the distance of NEAR must be 1 to " + std::to_string(INT_MAX) + ", not " +
                  std::to_string(node->distance_words));
        return {};
      }
      if (!Count(2)) return {};
      parts.push_back({BuiltNode::Of(node->operands.back()), node->distance_words});
    }
    parts.push_back({node, 0});
    std::reverse(parts.begin(), parts.end());
    return parts;
  }

  Query LowerList(const BuiltNode& node, unsigned depth) {
    std::vector<Query> operands;
    for (const BuiltNode* operand : JoinedOperands(node)) {
      if (!status_.ok()) return {};
      operands.push_back(Lower(operand, depth));
      operands.back().distance_words = 0;
    }
    const auto kind = node.kind == Kind::kAnd ? Query::Kind::kAnd : Query::Kind::kOr;
    return Combined(kind, std::move(operands)).value_or(Query());
  }

  // Returns the operands of `list`, with those of operands that are such lists in their place.
  std::vector<const BuiltNode*> JoinedOperands(const BuiltNode& list) {
    std::vector<const BuiltNode*> joined;
    std::vector<const BuiltNode*> waiting = {&list};
    while (!waiting.empty()) {
      const BuiltNode* const node = waiting.back();
      waiting.pop_back();
      if (node == nullptr || node->kind != list.kind) {
        joined.push_back(node);
        continue;
      }
      if (node->operands.empty()) FailQuery(NameOf(node->kind) + " has no operands");
      if (!Count(node->operands.size())) return {};
      for (auto operand = node->operands.rbegin(); operand != node->operands.rend(); ++operand) {
        waiting.push_back(BuiltNode::Of(*operand));
      }
    }
    return joined;
  }

  const Query::Kind operator_of_words_;  // of several that one text holds
  const TextRules rules_;
  Status status_;
  std::size_t parts_ = 0;
  std::vector<std::string> cut_;  // the beginnings of words that are too long
};

}  // namespace

Result<Query> Lowered(const SearchQuery& query, DefaultOperator default_operator, TextRules rules,
                      std::vector<std::string>* cut) {
  Lowering lowering(default_operator, rules);
  Query lowered = lowering.Lower(BuiltNode::Of(query), 0);
  if (!lowering.status().ok()) return lowering.status();
  if (default_operator != DefaultOperator::kAnd) AskForForms(&lowered);
  if (cut != nullptr) *cut = lowering.cut();
  return lowered;
}

}  // namespace kestan::search
