#include "search/query/query.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>

#include "search/query/query_tokens.h"
#include "search/text/stop_words.h"
#include "search/text/transliterate.h"
#include "search/text/words.h"

namespace kestan::search {
namespace {

using Kind = Token::Kind;
using MaybeQuery = std::optional<Query>;

constexpr std::string_view kBlanks = " \t\n\v\f\r";

Query WordQuery(std::string_view word, int distance_words) {
  Query query;
  query.word = word;
  query.distance_words = distance_words;
  return query;
}

// A node for `operands`, or the only one of them, or nothing.
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
std::vector<Query> WordsIn(const std::string& text) {
  const std::string cleaned = CleanWords(Transliterated(text));
  std::vector<Query> words;
  for (std::string_view rest = cleaned;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    if (rest.empty()) return words;
    const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
    words.push_back(WordQuery(word, words.empty() ? 0 : 1));
    rest.remove_prefix(word.size());
  }
}

// What the end of a word asks for beyond the word.
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

// Whether a word goes up to the end of `text`, so that a suffix is about it.
bool EndsInLetter(std::string_view text) {
  return !text.empty() && (std::isalpha(static_cast<unsigned char>(text.back())) != 0 ||
                           static_cast<unsigned char>(text.back()) >= 0x80);
}

MaybeQuery WordsOf(const Token& token) {
  const Suffix suffix = token.kind == Kind::kWord ? SuffixOf(token.text) : Suffix{};
  const std::string text = token.text.substr(0, token.text.size() - suffix.bytes);
  std::vector<Query> words = WordsIn(text);
  if (suffix.bytes > 0 && !words.empty() && EndsInLetter(text)) {
    words.back().kind = suffix.kind;
    words.back().edits = suffix.edits;
  }
  return Combined(Query::Kind::kNear, std::move(words));
}

bool IsStop(const Query& query) {
  return query.kind == Query::Kind::kWord && IsStopWord(query.word);
}

bool IsInSmallLetters(const std::string& word) {
  return std::none_of(word.begin(), word.end(), [](char letter) { return letter < 'a'; });
}

// Makes of words what finds most of what they are about.
std::vector<Query> AsQuestion(std::vector<Query> words) {
  if (!std::all_of(words.begin(), words.end(), IsStop)) {
    words.erase(std::remove_if(words.begin(), words.end(), IsStop), words.end());
  }
  for (Query& query : words) {
    const bool has_forms = query.kind == Query::Kind::kWord && IsInSmallLetters(query.word);
    if (has_forms) query.kind = Query::Kind::kForms;
  }
  return words;
}

// Reads tokens, one function for each line of the grammar. Each returns nothing where no letters
// are.
class Parser {
 public:
  Parser(std::vector<Token> tokens, SideBySide side_by_side)
      : tokens_(std::move(tokens)), side_by_side_(side_by_side), left_out_(tokens_.size()) {}

  MaybeQuery ParseOr() {
    if (side_by_side_ == SideBySide::kAny) return ParseAny();
    std::vector<Query> operands;
    do {
      AppendIfAny(ParseAnd(), &operands);
    } while (Take(Kind::kOr));
    return Combined(Query::Kind::kOr, std::move(operands));
  }

 private:
  // Takes the place of both OR and words side by side.
  MaybeQuery ParseAny() {
    std::vector<Query> wanted;
    std::vector<Query> unwanted;
    do {
      const bool after_or = Take(Kind::kOr);
      MaybeQuery part = ParseAnd();
      const bool leaves_out = part && part->kind == Query::Kind::kNot && !after_or;
      AppendIfAny(std::move(part), leaves_out ? &unwanted : &wanted);
    } while (StartsPart() || Next().kind == Kind::kOr);
    std::vector<Query> operands;
    AppendIfAny(Combined(Query::Kind::kOr, AsQuestion(std::move(wanted))), &operands);
    for (Query& query : unwanted) operands.push_back(std::move(query));
    return Combined(Query::Kind::kAnd, std::move(operands));
  }

  MaybeQuery ParseAnd() {
    std::vector<Query> operands;
    do {
      AppendIfAny(ParseNear(), &operands);
    } while (Take(Kind::kAnd) || (side_by_side_ == SideBySide::kAll && StartsPart()));
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
      // A part without letters leaves its place: the words around it may be as far apart as both
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
    if (token.kind == Kind::kWord || token.kind == Kind::kPhrase) return WordsOf(token);
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
  const SideBySide side_by_side_;
  std::vector<bool> left_out_;  // the closing partners of parentheses that were left out
  std::size_t next_ = 0;
  unsigned depth_ = 0;
};

}  // namespace

bool operator==(const Query& left, const Query& right) {
  return left.kind == right.kind && left.word == right.word && left.edits == right.edits &&
         left.distance_words == right.distance_words && left.operands == right.operands;
}

bool QueryLess::operator()(const Query* left, const Query* right) const {
  const auto leaf = [](const Query& query) {
    return std::tie(query.kind, query.word, query.edits, query.distance_words);
  };
  if (leaf(*left) != leaf(*right)) return leaf(*left) < leaf(*right);
  const std::size_t common = std::min(left->operands.size(), right->operands.size());
  for (std::size_t i = 0; i < common; ++i) {
    const Query* const a = &left->operands[i];
    const Query* const b = &right->operands[i];
    if (*a == *b) continue;
    return (*this)(a, b);
  }
  return left->operands.size() < right->operands.size();
}

std::optional<Query> ParseQuery(std::string_view text, SideBySide side_by_side) {
  return Parser(Tokens(text), side_by_side).ParseOr();
}

}  // namespace kestan::search
