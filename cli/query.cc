#include "query.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

#include "document.h"
#include "message.h"

namespace kestan_cli {
namespace {

struct Token {
  enum class Kind { kWord, kAnd, kOr, kNear, kNot, kOpen, kClose, kEnd };
  Kind kind = Kind::kEnd;
  std::string_view text;
  std::size_t column = 0;
};

constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::string_view kWordEnds = " \t\n\v\f\r()";
constexpr std::string_view kNear = "NEAR/";

auto SyntaxError(std::size_t column, const std::string& what) {
  return CommandError("query, column " + std::to_string(column) + ": " + what);
}

std::string InDoubleQuotes(std::string_view text) { return '"' + OneLine(text) + '"'; }

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

Token::Kind KindOf(std::string_view text) {
  if (text == "(") return Token::Kind::kOpen;
  if (text == ")") return Token::Kind::kClose;
  if (text == "AND") return Token::Kind::kAnd;
  if (text == "OR") return Token::Kind::kOr;
  if (text == "NOT") return Token::Kind::kNot;
  if (text == "NEAR" || StartsWith(text, kNear)) return Token::Kind::kNear;
  return Token::Kind::kWord;
}

// Counts characters: every byte but those that continue a UTF-8 character.
std::size_t ColumnOf(std::string_view text, std::size_t at) {
  const auto starts = [](char byte) { return (static_cast<unsigned char>(byte) & 0xc0) != 0x80; };
  return 1 + static_cast<std::size_t>(std::count_if(
                 text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), starts));
}

// Cuts `text` into tokens; the last is kEnd.
std::vector<Token> Tokens(std::string_view text) {
  std::vector<Token> tokens;
  std::size_t column = 1;
  while (true) {
    const std::size_t start = std::min(text.find_first_not_of(kBlanks), text.size());
    column += ColumnOf(text, start) - 1;
    text.remove_prefix(start);
    if (text.empty()) break;
    const std::size_t end = std::min(text.find_first_of(kWordEnds), text.size());
    const std::string_view token = text.substr(0, std::max<std::size_t>(end, 1));
    tokens.push_back({KindOf(token), token, column});
    column += ColumnOf(text, token.size()) - 1;
    text.remove_prefix(token.size());
  }
  tokens.push_back({Token::Kind::kEnd, "", column});
  return tokens;
}

// Told first, for a lost parenthesis makes nonsense of every other complaint.
void CheckParentheses(const std::vector<Token>& tokens) {
  std::vector<std::size_t> open_columns;
  for (const Token& token : tokens) {
    if (token.kind == Token::Kind::kOpen) open_columns.push_back(token.column);
    if (token.kind != Token::Kind::kClose) continue;
    if (open_columns.empty()) throw SyntaxError(token.column, "\")\" without \"(\"");
    open_columns.pop_back();
  }
  if (!open_columns.empty()) throw SyntaxError(open_columns.back(), "\"(\" without \")\"");
}

int DistanceOf(const Token& near) {
  const std::string_view digits = near.text.substr(std::min(kNear.size(), near.text.size()));
  int distance = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), distance);
  if (error == std::errc() && end == digits.data() + digits.size() && distance >= 1) {
    return distance;
  }
  throw SyntaxError(near.column,
                    InDoubleQuotes(near.text) + " needs a distance of 1 or more, as in NEAR/3");
}

char Lower(char letter) { return static_cast<char>(letter | 0x20); }

Query WordQuery(std::string word) {
  std::transform(word.begin(), word.end(), word.begin(), Lower);
  Query query;
  query.word = std::move(word);
  return query;
}

// A node for `operands`, or the only one of them.
Query Combined(Query::Kind kind, std::vector<Query> operands) {
  if (operands.size() == 1) return std::move(operands.front());
  Query query;
  query.kind = kind;
  query.operands = std::move(operands);
  return query;
}

// Documents lose every line that holds a byte above 127, so no document could match.
void CheckLetters(const Token& token) {
  const auto is_ascii = [](char byte) { return static_cast<unsigned char>(byte) < 128; };
  if (std::all_of(token.text.begin(), token.text.end(), is_ascii)) return;
  throw SyntaxError(token.column, InDoubleQuotes(token.text) +
                                      " has letters other than A to Z, which are not indexed");
}

Query WordsOf(const Token& token) {
  CheckLetters(token);
  const std::string cleaned = CleanWords(std::string(token.text));
  std::vector<Query> words;
  for (std::string_view rest = cleaned;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    if (rest.empty()) break;
    const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
    words.push_back(WordQuery(std::string(word)));
    words.back().distance_words = 1;
    rest.remove_prefix(word.size());
  }
  if (words.empty()) {
    throw SyntaxError(token.column, InDoubleQuotes(token.text) + " holds no letters to search for");
  }
  return Combined(Query::Kind::kNear, std::move(words));
}

// Reads tokens whose parentheses match, one function for each line of the grammar.
class Parser {
 public:
  explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  Query ParseOr() {
    std::vector<Query> operands{ParseAnd()};
    while (Take(Token::Kind::kOr)) operands.push_back(ParseAnd());
    return Combined(Query::Kind::kOr, std::move(operands));
  }

 private:
  Query ParseAnd() {
    std::vector<Query> operands{ParseNear()};
    while (Take(Token::Kind::kAnd) || StartsPart()) operands.push_back(ParseNear());
    return Combined(Query::Kind::kAnd, std::move(operands));
  }

  Query ParseNear() {
    std::vector<Query> operands{ParsePart()};
    while (Next().kind == Token::Kind::kNear) {
      const int distance_words = DistanceOf(tokens_[next_++]);
      operands.push_back(ParsePart());
      operands.back().distance_words = distance_words;
    }
    return Combined(Query::Kind::kNear, std::move(operands));
  }

  Query ParsePart() {
    if (!StartsPart()) throw MissingOperand();
    const Token& token = tokens_[next_++];
    if (token.kind == Token::Kind::kWord) return WordsOf(token);
    if (++depth_ > kMaxQueryDepth) {
      throw SyntaxError(token.column,
                        "nested more than " + std::to_string(kMaxQueryDepth) + " levels deep");
    }
    Query part = token.kind == Token::Kind::kNot ? ParseNot() : ParseGroup();
    --depth_;
    return part;
  }

  Query ParseNot() {
    std::vector<Query> operands{ParsePart()};
    Query query;
    query.kind = Query::Kind::kNot;
    query.operands = std::move(operands);
    return query;
  }

  Query ParseGroup() {
    Query query = ParseOr();
    ++next_;  // the parentheses match, and nothing but ")" ends a query within them
    return query;
  }

  // The operator before the gap, or the one after it where none is before, lacks an operand.
  CommandError MissingOperand() const {
    const bool first = next_ == 0;
    if (first && Next().kind == Token::Kind::kEnd) return SyntaxError(1, "the query is empty");
    const bool after_open = !first && tokens_[next_ - 1].kind == Token::Kind::kOpen;
    if (after_open && Next().kind == Token::Kind::kClose) {
      return SyntaxError(Next().column, "nothing between \"(\" and \")\"");
    }
    const bool before = first || after_open;
    const Token& lacking = before ? Next() : tokens_[next_ - 1];
    return SyntaxError(lacking.column, InDoubleQuotes(lacking.text) + " needs a word " +
                                           (before ? "before it" : "after it"));
  }

  const Token& Next() const { return tokens_[next_]; }

  bool StartsPart() const {
    return Next().kind == Token::Kind::kWord || Next().kind == Token::Kind::kNot ||
           Next().kind == Token::Kind::kOpen;
  }

  bool Take(Token::Kind kind) {
    if (Next().kind != kind) return false;
    ++next_;
    return true;
  }

  const std::vector<Token> tokens_;
  std::size_t next_ = 0;
  unsigned depth_ = 0;
};

}  // namespace

Query ParseQuery(std::string_view text) {
  std::vector<Token> tokens = Tokens(text);
  CheckParentheses(tokens);
  return Parser(std::move(tokens)).ParseOr();
}

}  // namespace kestan_cli
