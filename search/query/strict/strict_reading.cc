// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/strict/strict_reading.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "search/query/foreign_syntax.h"
#include "search/query/query_parser.h"
#include "search/query/query_tokens.h"
#include "search/query/query_words.h"
#include "search/query/word_notes.h"

namespace kestan::search {
namespace {

using Kind = Token::Kind;
using Mistakes = std::vector<QueryMistake>;

bool IsPart(const Token& token) { return token.kind == Kind::kWord || token.kind == Kind::kPhrase; }

// Returns what to say of a word or a phrase; "" if it is read as it is written.
std::string MistakeIn(const Token& token, TextRules rules) {
  const bool is_word = token.kind == Kind::kWord;
  std::string foreign = is_word ? NoteOnForeignSyntax(token.text) : "";
  if (!foreign.empty()) return foreign;
  const std::vector<QueryWords> words = WordsOf(token, rules);
  if (words.empty()) {
    const std::string what = rules == TextRules::kAnalyzer ? "letters or digits" : "letters";
    return Shown(token.text) + " holds no " + what;
  }
  if (HoldsCutWord(words, token))
    return Shown(token.text) + " is too long: a word has up to 64 characters";
  const WordSuffix suffix = is_word ? SuffixOf(token.text) : WordSuffix();
  if (suffix.bytes > 0 && words.back().back().kind != suffix.kind) {
    return Shown(token.text) + ": " + token.text.substr(token.text.size() - suffix.bytes) +
           " does not stand right after a word";
  }
  return "";
}

// Counts how deep parentheses and NOTs are nested, as the parser does.
class Depth {
 public:
  // Returns whether `token` is nested too deeply.
  bool Takes(const Token& token) {
    if (token.kind == Kind::kNot) {
      ++nots_;
    } else if (token.kind == Kind::kOpen) {
      nots_around_.push_back(std::exchange(nots_, 0));
    } else if (token.kind == Kind::kClose) {
      depth_ -= 1 + nots_around_.back();
      nots_around_.pop_back();
      return false;
    } else if (IsPart(token)) {
      depth_ -= std::exchange(nots_, 0);
      return false;
    } else {
      return false;
    }
    return ++depth_ > kMaxQueryDepth;
  }

 private:
  unsigned depth_ = 0;
  unsigned nots_ = 0;                  // right before the next part
  std::vector<unsigned> nots_around_;  // before each open parenthesis
};

// Finds parentheses without anything between them, and nesting that is too deep.
void FindNesting(const std::vector<Token>& tokens, Mistakes* mistakes) {
  Depth depth;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (depth.Takes(tokens[i])) {
      mistakes->push_back(
          {"parentheses and NOTs are nested deeper than " + std::to_string(kMaxQueryDepth),
           tokens[i].offset});
      return;
    }
    if (tokens[i].kind == Kind::kOpen && tokens[i + 1].kind == Kind::kClose) {
      mistakes->push_back({"the parentheses hold nothing", tokens[i].offset});
    }
  }
}

}  // namespace

Status CheckIsStrict(std::string_view text, TextRules rules) {
  Mistakes mistakes;
  const std::vector<Token> tokens = TokensOf(text, &mistakes);
  if (mistakes.empty() && std::none_of(tokens.begin(), tokens.end(), IsPart)) {
    return Status::InQuery("the query holds no words", 0);
  }
  FindNesting(tokens, &mistakes);
  for (const Token& token : tokens) {
    std::string mistake = IsPart(token) ? MistakeIn(token, rules) : "";
    if (!mistake.empty()) mistakes.push_back({std::move(mistake), token.offset});
  }
  if (mistakes.empty()) return {};
  const auto is_before = [](const QueryMistake& left, const QueryMistake& right) {
    return left.offset < right.offset;
  };
  const auto first = std::min_element(mistakes.begin(), mistakes.end(), is_before);
  return Status::InQuery(first->message, first->offset);
}

}  // namespace kestan::search
