// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_parser.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/query/query_tokens.h"
#include "search/query/query_words.h"
#include "search/text/letters.h"
#include "search/text/stop_words.h"
#include "search/text/white_space.h"

namespace kestan::search {
namespace {

using Kind = Token::Kind;
using MaybeQuery = std::optional<Query>;

constexpr std::size_t kMinQuestionWords = 4;
constexpr std::size_t kManyWords = 8;  // more than a list of words to search for

void AppendIfAny(MaybeQuery query, std::vector<Query>* operands) {
  if (query) operands->push_back(std::move(*query));
}

bool HasOperandsSideBySide(const Query& query) {
  return query.kind == Query::Kind::kAnd || query.kind == Query::Kind::kOr;
}

// Adds the parts of a token side by side: of words that punctuation joins each, if `freely`; and
// each of those that hang together in a script without blanks.
void AppendApart(Query query, bool freely, std::vector<Query>* words) {
  if (HasOperandsSideBySide(query)) {
    for (Query& part : query.operands) AppendApart(std::move(part), freely, words);
    return;
  }
  const bool is_apart =
      IsJoined(query) && !IsStop(query) && !IsAbbreviation(query) &&
      (freely || std::all_of(query.operands.begin(), query.operands.end(), IsOfUnspacedScript));
  if (!is_apart) return words->push_back(std::move(query));
  for (std::size_t i = 0; i < query.operands.size(); ++i) {
    if (i > 0 && IsEnding(query.operands[i])) continue;
    query.operands[i].distance_words = 0;
    query.operands[i].is_exact = false;
    words->push_back(std::move(query.operands[i]));
  }
}

// A capital that begins a word may stand for the beginning of a sentence or of a heading. A word
// of more capitals is a name.
void FoldFirstLetter(Query* query) {
  if (query->kind == Query::Kind::kOptional) return FoldFirstLetter(&query->operands.front());
  if (query->kind != Query::Kind::kWord || query->is_exact) return;
  std::string* const word = &query->word;
  if (!HasCapital(std::string_view(*word).substr(1))) word->front() = LowerCase(word->front());
}

// Returns whether `token` is more than a word, words in quotes or a parenthesis.
bool IsOperator(const Token& token) {
  if (token.kind == Kind::kWord) return SuffixOf(token.text).bytes > 0;
  return token.kind == Kind::kAnd || token.kind == Kind::kOr || token.kind == Kind::kNear ||
         token.kind == Kind::kNot;
}

// Of the Latin, the Greek, the Arabic and the wide script.
bool EndsInQuestionMark(std::string_view text) {
  constexpr std::array<std::string_view, 4> kMarks = {"?", "\xcd\xbe", "\xd8\x9f", "\xef\xbc\x9f"};
  const std::size_t last = text.find_last_not_of(kWhiteSpace);
  if (last == std::string_view::npos) return false;
  text = text.substr(0, last + 1);
  return std::any_of(kMarks.begin(), kMarks.end(), [text](std::string_view mark) {
    return text.size() >= mark.size() && text.substr(text.size() - mark.size()) == mark;
  });
}

// Parses tokens, with one function for each line of the grammar. Each returns nothing where there
// are no letters.
class Parser {
 public:
  // Borrows `is_common`.
  Parser(std::vector<Token> tokens, DefaultOperator default_operator, QuotesMean quotes,
         TextRules rules, const IsCommonWord& is_common)
      : tokens_(std::move(tokens)),
        default_operator_(default_operator),
        means_or_(default_operator == DefaultOperator::kOr ||
                  default_operator == DefaultOperator::kOrOfQuestion),
        quotes_(quotes),
        rules_(rules),
        is_common_(is_common),
        left_out_(tokens_.size()) {}

  MaybeQuery ParseOr() {
    if (means_or_) return ParseQuestion();
    std::vector<Query> operands;
    do {
      AppendIfAny(ParseAnd(), &operands);
    } while (Take(Kind::kOr));
    return Combined(Query::Kind::kOr, std::move(operands));
  }

  OptionalWords TakeOptional() { return std::move(optional_); }

 private:
  // Stands for both ParseOr and ParseAnd where words side by side mean OR.
  MaybeQuery ParseQuestion() {
    const bool freely = default_operator_ == DefaultOperator::kOrOfQuestion;
    std::vector<Query> wanted;
    std::vector<Query> excluded;
    do {
      const bool after_or = Take(Kind::kOr);
      const bool is_lone_word = IsLoneWord();
      MaybeQuery part = ParseAnd();
      if (is_lone_word && part) {
        AppendApart(std::move(*part), freely, &wanted);
        continue;
      }
      const bool excludes = part && part->kind == Query::Kind::kNot && !after_or;
      AppendIfAny(std::move(part), excludes ? &excluded : &wanted);
    } while (StartsPart() || Next().kind == Kind::kOr);
    std::vector<Query> operands;
    wanted = WithOptionalWords(std::move(wanted), freely ? IsStopOfQuestion : IsStop, is_common_,
                               &optional_);
    if (freely) {
      for (Query& query : wanted) FoldFirstLetter(&query);
    }
    AppendIfAny(Combined(Query::Kind::kOr, std::move(wanted)), &operands);
    for (Query& query : excluded) operands.push_back(std::move(query));
    return Combined(Query::Kind::kAnd, std::move(operands));
  }

  MaybeQuery ParseAnd() {
    std::vector<Query> operands;
    bool is_question = default_operator_ == DefaultOperator::kAndOfQuestion;
    do {
      const bool is_lone_word = IsLoneWord();
      AppendSideBySide(is_lone_word, ParseNear(), &operands);
      if (Next().kind == Kind::kAnd) is_question = false;
    } while (Take(Kind::kAnd) || (!means_or_ && StartsPart()));
    if (is_question) {
      operands = WithOptionalWords(std::move(operands), IsStop, is_common_, &optional_);
    }
    return Combined(Query::Kind::kAnd, std::move(operands));
  }

  // Appends `part`, or, of a word that gives words side by side, each of them.
  void AppendSideBySide(bool is_word, MaybeQuery part, std::vector<Query>* operands) const {
    if (!is_word || means_or_ || !part || part->kind != Query::Kind::kAnd) {
      return AppendIfAny(std::move(part), operands);
    }
    for (Query& operand : part->operands) operands->push_back(std::move(operand));
  }

  MaybeQuery ParseNear() {
    std::vector<Query> operands;
    int distance_words = 0;
    while (true) {
      MaybeQuery part = ParsePart();
      if (part) {
        part->distance_words = operands.empty() ? 0 : distance_words;
        operands.push_back(std::move(*part));
        distance_words = 0;
      }
      if (Next().kind != Kind::kNear) break;
      // A part without letters keeps its place: the words around it may be as far apart as both
      // distances allow.
      distance_words = Sum(distance_words, tokens_[next_++].distance_words);
    }
    return Combined(Query::Kind::kNear, std::move(operands));
  }

  static int Sum(int left, int right) {
    return left > std::numeric_limits<int>::max() - right ? std::numeric_limits<int>::max()
                                                          : left + right;
  }

  MaybeQuery ParsePart() {
    if (depth_ == kMaxQueryDepth) LeaveOutNesting();
    if (!StartsPart()) return std::nullopt;
    const Token& token = tokens_[next_++];
    if (token.kind == Kind::kWord || token.kind == Kind::kPhrase) return ParseWords(token);
    ++depth_;
    MaybeQuery part = token.kind == Kind::kNot ? ParseNot() : ParseGroup();
    --depth_;
    return part;
  }

  MaybeQuery ParseWords(const Token& token) const {
    return Combined(means_or_ ? Query::Kind::kOr : Query::Kind::kAnd,
                    PartsOf(WordsOf(token, rules_), token.kind == Kind::kPhrase, quotes_));
  }

  void LeaveOutNesting() {
    while (Next().kind == Kind::kOpen || Next().kind == Kind::kNot) {
      if (Next().kind == Kind::kNot) {
        tokens_[next_].kind = Kind::kWord;
        return;
      }
      left_out_[tokens_[next_].partner] = true;
      ++next_;
    }
  }

  MaybeQuery ParseNot() {
    MaybeQuery operand = ParsePart();
    if (!operand) return std::nullopt;
    Query query;
    query.kind = Query::Kind::kNot;
    query.operands.push_back(std::move(*operand));
    return query;
  }

  MaybeQuery ParseGroup() {
    MaybeQuery query = ParseOr();
    Next();
    ++next_;  // the parentheses match, and nothing but ")" ends a query within them
    return query;
  }

  // Returns whether a word comes next, and no operator of ParseAnd() or ParseNear() after it.
  bool IsLoneWord() {
    if (Next().kind != Kind::kWord) return false;
    std::size_t after = next_ + 1;
    while (left_out_[after]) ++after;
    return tokens_[after].kind != Kind::kAnd && tokens_[after].kind != Kind::kNear;
  }

  const Token& Next() {
    while (left_out_[next_]) ++next_;
    return tokens_[next_];
  }

  bool StartsPart() {
    const Kind kind = Next().kind;
    return kind == Kind::kWord || kind == Kind::kPhrase || kind == Kind::kNot ||
           kind == Kind::kOpen;
  }

  bool Take(Kind kind) {
    if (Next().kind != kind) return false;
    ++next_;
    return true;
  }

  std::vector<Token> tokens_;
  const DefaultOperator default_operator_;
  const bool means_or_;  // words side by side mean OR
  const QuotesMean quotes_;
  const TextRules rules_;
  const IsCommonWord& is_common_;
  OptionalWords optional_;
  std::vector<bool> left_out_;  // the closing partners of parentheses that were left out
  std::size_t next_ = 0;
  unsigned depth_ = 0;
};

}  // namespace

std::optional<Query> ParseQuery(std::string_view text, DefaultOperator default_operator,
                                QuotesMean quotes, TextRules rules, const IsCommonWord& is_common,
                                OptionalWords* optional) {
  Parser parser(TokensOf(text), default_operator, quotes, rules, is_common);
  MaybeQuery query = parser.ParseOr();
  if (query && default_operator != DefaultOperator::kAnd) AskForForms(&*query);
  if (optional != nullptr) *optional = parser.TakeOptional();
  return query;
}

bool IsQuestion(std::string_view text, TextRules rules, const IsCommonWord& is_common) {
  std::set<std::string> others;
  bool has_optional_words = false;
  for (const Token& token : TokensOf(text)) {
    if (IsOperator(token)) return false;
    for (const QueryWords& words : WordsOf(token, rules)) {
      const bool is_divided = AreDividedStopWord(words);
      has_optional_words = has_optional_words || is_divided;
      if (is_divided) continue;
      for (const Query& word : words) {
        const bool is_optional = IsStop(word) || (is_common && is_common(word.word));
        has_optional_words = has_optional_words || is_optional;
        if (!is_optional) others.insert(word.word);
      }
    }
  }
  if (others.size() < kMinQuestionWords) return false;
  return has_optional_words || others.size() >= kManyWords || EndsInQuestionMark(text);
}

}  // namespace kestan::search
