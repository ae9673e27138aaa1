#include "cli/extract/stop_words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

#include "cli/console/message.h"
#include "cli/extract/decode.h"
#include "cli/extract/document.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"
#include "search/text/transliterate.h"

namespace kestan_cli {
namespace {

constexpr std::array<std::string_view, 166> kEnglish = {  // in order of their bytes
    "a",       "about",   "above",   "after",      "again",  "all",     "also",    "am",
    "an",      "and",     "another", "any",        "are",    "arent",   "as",      "at",
    "be",      "because", "been",    "before",     "being",  "below",   "between", "both",
    "but",     "by",      "can",     "cannot",     "cant",   "could",   "couldnt", "did",
    "didnt",   "do",      "does",    "doesnt",     "doing",  "done",    "dont",    "down",
    "during",  "each",    "either",  "else",       "even",   "ever",    "every",   "few",
    "for",     "from",    "further", "had",        "hadnt",  "has",     "hasnt",   "have",
    "havent",  "having",  "he",      "her",        "here",   "hers",    "herself", "him",
    "himself", "his",     "how",     "however",    "i",      "if",      "im",      "in",
    "into",    "is",      "isnt",    "it",         "its",    "itself",  "ive",     "just",
    "like",    "may",     "me",      "might",      "more",   "most",    "much",    "must",
    "my",      "myself",  "neither", "no",         "nor",    "not",     "now",     "of",
    "off",     "on",      "once",    "only",       "or",     "other",   "our",     "ours",
    "out",     "over",    "own",     "same",       "shall",  "she",     "should",  "shouldnt",
    "since",   "so",      "some",    "such",       "than",   "that",    "thats",   "the",
    "their",   "theirs",  "them",    "themselves", "then",   "there",   "these",   "they",
    "this",    "those",   "through", "thus",       "to",     "too",     "under",   "until",
    "up",      "upon",    "very",    "was",        "wasnt",  "we",      "were",    "werent",
    "what",    "when",    "where",   "whether",    "which",  "while",   "who",     "whom",
    "whose",   "why",     "will",    "with",       "within", "without", "wont",    "would",
    "wouldnt", "yet",     "you",     "your",       "yours",  "yourself"};

std::string EnglishWords() {
  std::string words;
  for (const std::string_view word : kEnglish) words.append(word).append(" ");
  return words;
}

CommandError TooLarge(const std::string& path) {
  return CommandError(Quoted(path) + " is too large");
}

std::string ReadWords(const std::string& path) {
  std::string bytes;
  try {
    SteadyFile file(path);
    for (std::string_view piece; file.Read(&piece);) {
      if (bytes.size() + piece.size() > kMaxTextBytes) throw TooLarge(path);
      bytes += piece;
    }
  } catch (const SkipFile& problem) {
    throw CommandError("cannot read " + Quoted(path) + ": " + problem.what());
  }
  const std::optional<std::string> text = DecodedText(std::move(bytes));
  if (!text.has_value()) throw CommandError("cannot read " + Quoted(path) + ": not a text");
  return Transliterated(*text);
}

}  // namespace

std::string StopWords(const std::string& choice) {
  if (choice.empty()) return "";
  std::string words = choice == "english" ? EnglishWords() : ReadWords(choice);
  if (words.size() > kMaxTextBytes) throw TooLarge(choice);
  words = CleanWords(std::move(words));
  // Even a blank would make the engine drop short words.
  return words.find_first_not_of(" \n") == std::string::npos ? "" : words;
}

bool IsStopWord(std::string_view word) {
  if (word.empty() || std::any_of(word.begin() + 1, word.end(), [](char c) { return c < 'a'; })) {
    return false;
  }
  std::string folded(word);
  folded[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(folded[0])));
  return std::binary_search(kEnglish.begin(), kEnglish.end(), std::string_view(folded));
}

}  // namespace kestan_cli
