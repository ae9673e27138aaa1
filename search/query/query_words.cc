// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_words.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "search/text/analyzer/analysis.h"
#include "search/text/analyzer/characters.h"
#include "search/text/analyzer/word_encoding.h"
#include "search/text/letters.h"
#include "search/text/stop_words.h"
#include "search/text/words.h"

namespace kestan::search {
namespace {

bool IsWord(const Query& query) { return query.kind == Query::Kind::kWord; }

QueryWords AsQueries(std::vector<std::string> words) {
  QueryWords queries(words.size());
  for (std::size_t i = 0; i < words.size(); ++i) queries[i].word = std::move(words[i]);
  return queries;
}

// Returns whether `text` ends in a letter, so that a suffix after it belongs to the last word.
bool EndsInLetter(std::string_view text) {
  return !text.empty() &&
         (IsAsciiLetter(text.back()) || static_cast<unsigned char>(text.back()) >= 0x80);
}

void Apply(const WordSuffix& suffix, Query* word) {
  if (suffix.bytes == 0) return;
  word->kind = suffix.kind;
  word->edits = suffix.edits;
}

std::vector<QueryWords> LettersOf(std::string_view text, const WordSuffix& suffix) {
  QueryWords words = AsQueries(IndexedWords(text));
  if (words.empty()) return {};
  if (EndsInLetter(text)) Apply(suffix, &words.back());
  return {std::move(words)};
}

QueryWords WordsOfGroup(WordGroup group) {
  QueryWords words = AsQueries(std::move(group.words));
  if (group.last_is_prefix) words.back().kind = Query::Kind::kPrefix;
  return words;
}

std::vector<QueryWords> AnalyzedPhraseOf(std::string_view text) {
  WordGroup phrase = AnalyzedPhrase(text);
  if (phrase.words.empty()) return {};
  return {WordsOfGroup(std::move(phrase))};
}

std::vector<QueryWords> AnalyzedWordsOf(std::string_view text, const WordSuffix& suffix) {
  std::vector<QueryWords> words;
  for (WordGroup& group : AnalyzedGroups(text)) {
    const bool has_suffix = group.end == text.size();
    words.push_back(WordsOfGroup(std::move(group)));
    if (has_suffix) Apply(suffix, &words.back().back());
  }
  return words;
}

std::optional<Query> WordsInARow(std::vector<Query> words, QuotesMean quotes) {
  if (quotes == QuotesMean::kPhrase) return Combined(Query::Kind::kPhrase, std::move(words));
  for (std::size_t i = 1; i < words.size(); ++i) words[i].distance_words = 1;
  return Combined(Query::Kind::kNear, std::move(words));
}

}  // namespace

WordSuffix SuffixOf(std::string_view text) {
  const auto ends_with = [text](std::string_view end) {
    return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
  };
  if (ends_with("*")) return {Query::Kind::kPrefix, 0, 1};
  if (ends_with("~1")) return {Query::Kind::kFuzzy, 1, 2};
  if (ends_with("~2")) return {Query::Kind::kFuzzy, 2, 2};
  if (ends_with("~")) return {Query::Kind::kFuzzy, 1, 1};
  return {};
}

std::vector<QueryWords> WordsOf(const Token& token, TextRules rules) {
  const bool is_phrase = token.kind == Token::Kind::kPhrase;
  const WordSuffix suffix = is_phrase ? WordSuffix() : SuffixOf(token.text);
  const std::string_view text =
      std::string_view(token.text).substr(0, token.text.size() - suffix.bytes);
  return is_phrase ? WordsOfPhrase(text, rules) : WordsOfText(text, suffix, rules);
}

std::vector<QueryWords> WordsOfText(std::string_view text, const WordSuffix& suffix,
                                    TextRules rules) {
  return rules == TextRules::kAsciiLetters ? LettersOf(text, suffix)
                                           : AnalyzedWordsOf(text, suffix);
}

std::vector<QueryWords> WordsOfPhrase(std::string_view text, TextRules rules) {
  return rules == TextRules::kAsciiLetters ? LettersOf(text, {}) : AnalyzedPhraseOf(text);
}

std::vector<Query> PartsOf(std::vector<QueryWords> words, bool is_phrase, QuotesMean quotes) {
  std::vector<Query> parts;
  for (QueryWords& group : words) {
    for (Query& word : group) word.is_exact = is_phrase || group.size() > 1;
    auto part = WordsInARow(std::move(group), quotes);
    if (part) parts.push_back(std::move(*part));
  }
  return parts;
}

void AskForForms(Query* query) {
  for (Query& operand : query->operands) AskForForms(&operand);
  const bool is_free_word = query->kind == Query::Kind::kWord && !query->is_exact;
  if (is_free_word && !HasCapital(query->word) && !IsStopWord(query->word))
    query->kind = Query::Kind::kInflections;
}

bool IsEnding(const Query& query) {
  constexpr std::array<std::string_view, 6> kEndings = {"s", "t", "m", "ll", "re", "ve"};
  return IsWord(query) && std::find(kEndings.begin(), kEndings.end(), query.word) != kEndings.end();
}

bool AreDividedStopWord(const QueryWords& words) {
  if (words.size() != 2 || !IsWord(words[0]) || !IsEnding(words[1])) return false;
  return IsStopWord(words[0].word + words[1].word) ||
         (words[1].word != "t" && IsStopWord(words[0].word));
}

bool IsOfUnspacedScript(const Query& query) {
  const std::u32string characters = CharactersOf(query.word);
  if (characters.empty() || characters.front() < 0x80) return false;
  const CharacterClass found = ClassOf(characters.front());
  return found == CharacterClass::kPaired || found == CharacterClass::kUnspaced;
}

}  // namespace kestan::search
