#include "search/query/query_parser.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/query/query_tokens.h"
#include "search/text/letters.h"
#include "search/text/stop_words.h"
#include "search/text/words.h"

namespace kestan::search {
namespace {

using Kind = Token::Kind;
using MaybeQuery = std::optional<Query>;

constexpr std::size_t kMinQuestionWords = 4;

// Returns a node for `operands`, the only one of them, or nothing.
MaybeQuery Combined(Query::Kind kind, std::vector<Query> operands) {
  if (operands.empty()) return std::nullopt;
  if (operands.size() == 1) return std::move(operands.front());
  Query query;
  query.kind = kind;
  query.operands = std::move(operands);
  return query;
}

void AppendIfAny(MaybeQuery query, std::vector<Query>* operands) {
  if (query) operands->push_back(std::move(*query));
}

// The words of `text` as documents have them.
std::vector<Query> WordsIn(std::string_view text) {
  std::vector<Query> queries;
  for (std::string& word : IndexedWords(text)) {
    queries.emplace_back();
    queries.back().word = std::move(word);
  }
  return queries;
}

MaybeQuery WordsInARow(std::vector<Query> words, QuotesMean quotes) {
  if (quotes == QuotesMean::kPhrase) return Combined(Query::Kind::kPhrase, std::move(words));
  for (std::size_t i = 1; i < words.size(); ++i) words[i].distance_words = 1;
  return Combined(Query::Kind::kNear, std::move(words));
}

// The operator that a word ends with.
struct Suffix {
  Query::Kind kind = Query::Kind::kWord;
  int edits = 0;
  std::size_t bytes = 0;
};

Suffix SuffixOf(std::string_view text) {
  const auto ends_with = [text](std::string_view end) {
    return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
  };
  if (ends_with("*")) return {Query::Kind::kPrefix, 0, 1};
  if (ends_with("~1")) return {Query::Kind::kFuzzy, 1, 2};
  if (ends_with("~2")) return {Query::Kind::kFuzzy, 2, 2};
  if (ends_with("~")) return {Query::Kind::kFuzzy, 1, 1};
  return {};
}

// Returns whether `text` ends in a word, so that a suffix after it belongs to that word.
bool EndsInLetter(std::string_view text) {
  return !text.empty() &&
         (IsAsciiLetter(text.back()) || static_cast<unsigned char>(text.back()) >= 0x80);
}

MaybeQuery WordsOf(const Token& token, QuotesMean quotes) {
  const Suffix suffix = token.kind == Kind::kWord ? SuffixOf(token.text) : Suffix{};
  const std::string_view text =
      std::string_view(token.text).substr(0, token.text.size() - suffix.bytes);
  std::vector<Query> words = WordsIn(text);
  if (suffix.bytes > 0 && !words.empty() && EndsInLetter(text)) {
    words.back().kind = suffix.kind;
    words.back().edits = suffix.edits;
  }
  return WordsInARow(std::move(words), quotes);
}

bool IsStop(const Query& query) {
  return query.kind == Query::Kind::kWord && IsStopWord(query.word);
}

// e.g., i.e.
bool IsAbbreviation(const Query& query) {
  if (query.kind != Query::Kind::kPhrase && query.kind != Query::Kind::kNear) return false;
  std::string letters;
  for (const Query& operand : query.operands) letters += operand.word;
  return query.operands.size() == 2 && (letters == "eg" || letters == "ie");
}

bool IsStopOfQuestion(const Query& query) {
  return IsStop(query) || IsAbbreviation(query) ||
         (query.kind == Query::Kind::kWord && IsAskedWith(query.word));
}

// Drops stop words, unless there are no others.
std::vector<Query> WithoutStopWords(std::vector<Query> words,
                                    bool (*is_stop)(const Query&) = IsStop) {
  if (!std::all_of(words.begin(), words.end(), is_stop)) {
    words.erase(std::remove_if(words.begin(), words.end(), is_stop), words.end());
  }
  return words;
}

// Returns `query`, or, of words that punctuation joins, each of them.
std::vector<Query> Apart(Query query) {
  const bool is_joined = query.kind == Query::Kind::kPhrase || query.kind == Query::Kind::kNear;
  if (!is_joined || IsAbbreviation(query)) return {std::move(query)};
  for (Query& operand : query.operands) operand.distance_words = 0;
  return std::move(query.operands);
}

// A capital that begins a word may stand for the beginning of a sentence or of a heading. A word
// of more capitals is a name.
void FoldFirstLetter(std::string* word) {
  if (!HasCapital(std::string_view(*word).substr(1))) word->front() = LowerCase(word->front());
}

// Drops the stop words of a question, and expands the other words with their inflections.
std::vector<Query> AsQuestion(std::vector<Query> words, bool freely) {
  words = WithoutStopWords(std::move(words), freely ? IsStopOfQuestion : IsStop);
  for (Query& query : words) {
    if (freely && query.kind == Query::Kind::kWord) FoldFirstLetter(&query.word);
    const bool is_inflected = query.kind == Query::Kind::kWord && !HasCapital(query.word);
    if (is_inflected) query.kind = Query::Kind::kInflections;
  }
  return words;
}

// Returns whether `token` is more than a word, words in quotes or a parenthesis.
bool IsOperator(const Token& token) {
  if (token.kind == Kind::kWord) return SuffixOf(token.text).bytes > 0;
  return token.kind == Kind::kAnd || token.kind == Kind::kOr || token.kind == Kind::kNear ||
         token.kind == Kind::kNot;
}

// Parses tokens, with one function for each line of the grammar. Each returns nothing where there
// are no letters.
class Parser {
 public:
  Parser(std::vector<Token> tokens, DefaultOperator default_operator, QuotesMean quotes)
      : tokens_(std::move(tokens)),
        default_operator_(default_operator),
        means_or_(default_operator == DefaultOperator::kOr ||
                  default_operator == DefaultOperator::kOrOfQuestion),
        quotes_(quotes),
        left_out_(tokens_.size()) {}

  MaybeQuery ParseOr() {
    if (means_or_) return ParseQuestion();
    std::vector<Query> operands;
    do {
      AppendIfAny(ParseAnd(), &operands);
    } while (Take(Kind::kOr));
    return Combined(Query::Kind::kOr, std::move(operands));
  }

 private:
  // Stands for both ParseOr and ParseAnd where words side by side mean OR.
  MaybeQuery ParseQuestion() {
    const bool freely = default_operator_ == DefaultOperator::kOrOfQuestion;
    std::vector<Query> wanted;
    std::vector<Query> excluded;
    do {
      const bool after_or = Take(Kind::kOr);
      const bool is_lone_word = freely && IsLoneWord();
      MaybeQuery part = ParseAnd();
      if (is_lone_word && part) {
        for (Query& word : Apart(std::move(*part))) wanted.push_back(std::move(word));
        continue;
      }
      const bool excludes = part && part->kind == Query::Kind::kNot && !after_or;
      AppendIfAny(std::move(part), excludes ? &excluded : &wanted);
    } while (StartsPart() || Next().kind == Kind::kOr);
    std::vector<Query> operands;
    AppendIfAny(Combined(Query::Kind::kOr, AsQuestion(std::move(wanted), freely)), &operands);
    for (Query& query : excluded) operands.push_back(std::move(query));
    return Combined(Query::Kind::kAnd, std::move(operands));
  }

  MaybeQuery ParseAnd() {
    std::vector<Query> operands;
    bool is_question = default_operator_ == DefaultOperator::kAndOfQuestion;
    do {
      AppendIfAny(ParseNear(), &operands);
      if (Next().kind == Kind::kAnd) is_question = false;
    } while (Take(Kind::kAnd) || (!means_or_ && StartsPart()));
    if (is_question) operands = WithoutStopWords(std::move(operands));
    return Combined(Query::Kind::kAnd, std::move(operands));
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
    if (token.kind == Kind::kWord || token.kind == Kind::kPhrase) return WordsOf(token, quotes_);
    ++depth_;
    MaybeQuery part = token.kind == Kind::kNot ? ParseNot() : ParseGroup();
    --depth_;
    return part;
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
  std::vector<bool> left_out_;  // the closing partners of parentheses that were left out
  std::size_t next_ = 0;
  unsigned depth_ = 0;
};

}  // namespace

std::optional<Query> ParseQuery(std::string_view text, DefaultOperator default_operator,
                                QuotesMean quotes) {
  return Parser(TokensOf(text), default_operator, quotes).ParseOr();
}

bool IsQuestion(std::string_view text) {
  std::set<std::string> others;
  bool has_stop_words = false;
  for (const Token& token : TokensOf(text)) {
    if (IsOperator(token)) return false;
    for (Query& word : WordsIn(token.text)) {
      if (IsStop(word)) {
        has_stop_words = true;
      } else {
        others.insert(std::move(word.word));
      }
    }
  }
  return has_stop_words && others.size() >= kMinQuestionWords;
}

}  // namespace kestan::search
