// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_tokens.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "search/text/white_space.h"

namespace kestan::search {
namespace {

using Kind = Token::Kind;

constexpr std::string_view kWordEnds = " \t\n\v\f\r()";
constexpr std::string_view kNear = "NEAR/";

// The quotes of word processors are U+201C to U+201F. In UTF-8 they differ in the last byte only.
constexpr std::string_view kCurlyQuote = "\xe2\x80";

// Puts where each byte stood in `text` into `*offsets`, and the size of `text` at the end, unless
// that is null.
std::string WithPlainQuotes(std::string_view text, std::vector<std::size_t>* offsets) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char last = i + 2 < text.size() ? text[i + 2] : '\0';
    if (offsets != nullptr) offsets->push_back(i);
    if (text.substr(i, 2) == kCurlyQuote && last >= '\x9c' && last <= '\x9f') {
      plain += '"';
      i += 2;
    } else {
      plain += text[i];
    }
  }
  if (offsets != nullptr) offsets->push_back(text.size());
  return plain;
}

// Returns the k of NEAR/k, or 0 if it is none.
int DistanceOf(std::string_view text) {
  if (text.substr(0, kNear.size()) != kNear) return 0;
  const std::string_view digits = text.substr(kNear.size());
  int distance = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), distance);
  const bool is_whole = error == std::errc() && end == digits.data() + digits.size();
  return is_whole && distance >= 1 ? distance : 0;
}

Kind KindOf(std::string_view text) {
  if (text == "(") return Kind::kOpen;
  if (text == ")") return Kind::kClose;
  if (text == "AND") return Kind::kAnd;
  if (text == "OR") return Kind::kOr;
  if (text == "NOT") return Kind::kNot;
  if (DistanceOf(text) > 0) return Kind::kNear;
  return Kind::kWord;
}

// Cuts text into tokens one by one, without looking at operands.
class Cutter {
 public:
  explicit Cutter(std::string_view text) : text_(text), rest_(text) {}

  std::vector<Token> Cut() {
    while (true) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(kWhiteSpace), rest_.size()));
      if (rest_.empty()) break;
      if (!CutMinus() && !CutPhrase()) CutWord();
    }
    tokens_.push_back({});
    return std::move(tokens_);
  }

 private:
  // A "-" that something else follows is part of a word.
  bool CutMinus() {
    if (rest_.size() < 2 || rest_[0] != '-') return false;
    if (rest_[1] == '-' || IsWhiteSpace(rest_[1]) || rest_[1] == ')') {
      return false;
    }
    Add(Kind::kNot, 1);
    if (!CutPhrase()) CutWord(true);
    return true;
  }

  bool CutPhrase() {
    if (rest_[0] != '"') return false;
    const std::size_t end = rest_.find('"', 1);
    if (end == std::string_view::npos) return false;
    tokens_.push_back({Kind::kPhrase, std::string(rest_.substr(1, end - 1)), 0, 0, offset()});
    rest_.remove_prefix(end + 1);
    return true;
  }

  void CutWord(bool negated = false) {
    const std::size_t end = std::min(rest_.find_first_of(kWordEnds), rest_.size());
    const std::string_view text = rest_.substr(0, std::max<std::size_t>(end, 1));
    const Kind kind = KindOf(text);
    const bool is_group = kind == Kind::kOpen || kind == Kind::kClose;
    Add(negated && !is_group ? Kind::kWord : kind, text.size());
  }

  void Add(Kind kind, std::size_t size) {
    const std::string_view text = rest_.substr(0, size);
    const int distance = kind == Kind::kNear ? DistanceOf(text) : 0;
    tokens_.push_back({kind, std::string(text), distance, 0, offset()});
    rest_.remove_prefix(size);
  }

  std::size_t offset() const { return text_.size() - rest_.size(); }

  const std::string_view text_;
  std::string_view rest_;
  std::vector<Token> tokens_;
};

bool IsMinus(const Token& token) { return token.kind == Kind::kNot && token.text == "-"; }

// Returns for each token whether it is a parenthesis without its partner.
std::vector<bool> FindUnmatched(const std::vector<Token>& tokens) {
  std::vector<bool> unmatched(tokens.size());
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == Kind::kOpen) open.push_back(i);
    if (tokens[i].kind != Kind::kClose) continue;
    if (open.empty()) {
      unmatched[i] = true;
    } else {
      open.pop_back();
    }
  }
  for (const std::size_t i : open) unmatched[i] = true;
  return unmatched;
}

using Mistakes = std::vector<QueryMistake>;

void AddMistake(std::string message, std::size_t offset, Mistakes* mistakes) {
  if (mistakes != nullptr) mistakes->push_back({std::move(message), offset});
}

std::vector<Token> WithoutUnmatched(std::vector<Token> tokens, Mistakes* mistakes) {
  const std::vector<bool> unmatched = FindUnmatched(tokens);
  std::vector<Token> kept;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const bool loses_operand = IsMinus(tokens[i]) && unmatched[i + 1];
    if (unmatched[i]) AddMistake("the parenthesis has no partner", tokens[i].offset, mistakes);
    if (!unmatched[i] && !loses_operand) kept.push_back(std::move(tokens[i]));
  }
  return kept;
}

// A quote in what was taken for a word ends no other one.
void FindLoneQuotes(const std::vector<Token>& tokens, Mistakes* mistakes) {
  for (const Token& token : tokens) {
    const std::size_t quote = token.kind == Kind::kWord ? token.text.find('"') : std::string::npos;
    if (quote == std::string::npos) continue;
    AddMistake("the quote has no partner, or stands within a word", token.offset + quote, mistakes);
  }
}

void FindPartners(std::vector<Token>* tokens) {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < tokens->size(); ++i) {
    if ((*tokens)[i].kind == Kind::kOpen) open.push_back(i);
    if ((*tokens)[i].kind != Kind::kClose) continue;
    (*tokens)[open.back()].partner = i;
    open.pop_back();
  }
}

bool EndsPart(Kind kind) {
  return kind == Kind::kWord || kind == Kind::kPhrase || kind == Kind::kClose;
}

bool StartsPart(Kind kind) {
  return kind == Kind::kWord || kind == Kind::kPhrase || kind == Kind::kOpen || kind == Kind::kNot;
}

// Turns operators that lack an operand into words, from left to right.
void TurnLoneOperatorsIntoWords(std::vector<Token>* tokens, Mistakes* mistakes) {
  Kind previous = Kind::kEnd;
  for (std::size_t i = 0; i < tokens->size(); ++i) {
    Token& token = (*tokens)[i];
    const bool is_binary =
        token.kind == Kind::kAnd || token.kind == Kind::kOr || token.kind == Kind::kNear;
    const bool lacks_left = is_binary && !EndsPart(previous);
    const bool takes_right = is_binary || token.kind == Kind::kNot;
    if (lacks_left || (takes_right && !StartsPart((*tokens)[i + 1].kind))) {
      AddMistake(token.text + " lacks an operand", token.offset, mistakes);
      token.kind = Kind::kWord;
    }
    previous = token.kind;
  }
}

}  // namespace

std::vector<Token> TokensOf(std::string_view text, std::vector<QueryMistake>* mistakes) {
  std::vector<std::size_t> offsets;
  const std::string plain = WithPlainQuotes(text, mistakes != nullptr ? &offsets : nullptr);
  std::vector<Token> tokens = WithoutUnmatched(Cutter(plain).Cut(), mistakes);
  FindPartners(&tokens);
  TurnLoneOperatorsIntoWords(&tokens, mistakes);
  if (mistakes == nullptr) return tokens;
  FindLoneQuotes(tokens, mistakes);
  for (Token& token : tokens) token.offset = offsets[token.offset];
  for (QueryMistake& mistake : *mistakes) mistake.offset = offsets[mistake.offset];
  return tokens;
}

}  // namespace kestan::search
