// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/stop_words.h"

#include <kestan/search/text.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "search/text/letters.h"

namespace kestan::search {
namespace {

constexpr std::array<std::string_view, 177> kEnglish = {  // in order of their bytes
    "a",       "about",   "above",   "after",      "again",   "all",     "also",    "am",
    "an",      "and",     "another", "any",        "are",     "aren",    "arent",   "as",
    "at",      "be",      "because", "been",       "before",  "being",   "below",   "between",
    "both",    "but",     "by",      "can",        "cannot",  "cant",    "could",   "couldn",
    "couldnt", "did",     "didn",    "didnt",      "do",      "does",    "doesn",   "doesnt",
    "doing",   "done",    "dont",    "down",       "during",  "each",    "either",  "else",
    "even",    "ever",    "every",   "few",        "for",     "from",    "further", "had",
    "hadn",    "hadnt",   "has",     "hasn",       "hasnt",   "have",    "havent",  "having",
    "he",      "her",     "here",    "hers",       "herself", "him",     "himself", "his",
    "how",     "however", "i",       "if",         "im",      "in",      "into",    "is",
    "isn",     "isnt",    "it",      "its",        "itself",  "ive",     "just",    "like",
    "may",     "me",      "might",   "more",       "most",    "much",    "must",    "my",
    "myself",  "neither", "no",      "nor",        "not",     "now",     "of",      "off",
    "on",      "once",    "only",    "or",         "other",   "our",     "ours",    "out",
    "over",    "own",     "same",    "shall",      "she",     "should",  "shouldn", "shouldnt",
    "since",   "so",      "some",    "such",       "than",    "that",    "thats",   "the",
    "their",   "theirs",  "them",    "themselves", "then",    "there",   "these",   "they",
    "this",    "those",   "through", "thus",       "to",      "too",     "under",   "until",
    "up",      "upon",    "very",    "was",        "wasn",    "wasnt",   "we",      "were",
    "weren",   "werent",  "what",    "when",       "where",   "whether", "which",   "while",
    "who",     "whom",    "whose",   "why",        "will",    "with",    "within",  "without",
    "wont",    "would",   "wouldn",  "wouldnt",    "yet",     "you",     "your",    "yours",
    "yourself"};

constexpr std::array<std::string_view, 10> kAskedWith = {  // in order of their bytes
    "anyone", "concerning", "etc", "made", "make", "per", "regarding", "use", "used", "using"};

// Returns whether `word` is in `list`. With a capital after its first letter it is a name.
template <std::size_t kCount>
bool Holds(const std::array<std::string_view, kCount>& list, std::string_view word) {
  if (word.empty() || std::any_of(word.begin() + 1, word.end(), [](char c) { return c < 'a'; })) {
    return false;
  }
  const std::string folded = LowerCase(word);
  return std::binary_search(list.begin(), list.end(), std::string_view(folded));
}

}  // namespace

std::string EnglishStopWords() {
  std::string words;
  for (const std::string_view word : kEnglish) words.append(word).append(" ");
  return words;
}

bool IsStopWord(std::string_view word) { return Holds(kEnglish, word); }

bool IsAskedWith(std::string_view word) { return Holds(kAskedWith, word); }

}  // namespace kestan::search
