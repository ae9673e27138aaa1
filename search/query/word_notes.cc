// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/word_notes.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "search/text/analyzer/word_encoding.h"
#include "search/text/analyzer/word_sink.h"
#include "search/text/utf8.h"
#include "search/text/white_space.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMaxNamed = 10;            // words in one note
constexpr std::size_t kMaxShownCharacters = 20;  // of a long word
constexpr std::size_t kMaxShownBytes = 40;       // of a text, in an error

// Punctuation beyond ASCII that people set apart with blanks: ¿ ¡ « » ؟ 。 、 and wide ones.
constexpr std::array<std::string_view, 10> kMarks = {
    "\xc2\xbf",     "\xc2\xa1",     "\xc2\xab",     "\xc2\xbb",     "\xd8\x9f",
    "\xe3\x80\x82", "\xe3\x80\x81", "\xef\xbc\x9f", "\xef\xbc\x81", "\xef\xbc\x8c"};

// Returns the size of the punctuation that `text` begins with; 0 if it begins with something else.
std::size_t SizeOfMark(std::string_view text) {
  const char first = text.front();
  const bool is_ascii = static_cast<unsigned char>(first) < 0x80;
  if (is_ascii)
    return first < '0' || first > '9' ? 1 : 0;  // letters are words, which were looked for
  if (text.substr(0, 2) == "\xe2\x80") return std::min<std::size_t>(3, text.size());  // U+2000 on
  for (const std::string_view mark : kMarks) {
    if (text.substr(0, mark.size()) == mark) return mark.size();
  }
  return 0;
}

bool IsPunctuation(std::string_view text) {
  while (!text.empty()) {
    const std::size_t size = SizeOfMark(text);
    if (size == 0) return false;
    text.remove_prefix(size);
  }
  return true;
}

// Returns the words in quotes with commas between them: 'how', 'do' and 3 more.
std::string Listed(const std::vector<std::string>& words) {
  std::string list;
  const std::size_t named = words.size() <= kMaxNamed + 1 ? words.size() : kMaxNamed;
  for (std::size_t i = 0; i < named; ++i) {
    list += (i == 0 ? "'" : ", '") + words[i] + "'";
  }
  if (named < words.size()) list += " and " + std::to_string(words.size() - named) + " more";
  return list;
}

// Returns the listed words with the verbs that suit one or several of them; "" for none.
std::string Note(const std::vector<std::string>& words, std::string_view of_one,
                 std::string_view of_several) {
  if (words.empty()) return "";
  return Listed(words).append(words.size() == 1 ? of_one : of_several);
}

void AddNote(std::string note, std::vector<std::string>* notes) {
  if (!note.empty()) notes->push_back(std::move(note));
}

void AddOnce(std::string word, std::vector<std::string>* words) {
  if (std::find(words->begin(), words->end(), word) == words->end()) {
    words->push_back(std::move(word));
  }
}

// Returns the beginning of `text`, which is longer.
std::string Shortened(std::string_view text) {
  std::size_t end = 0;
  for (std::size_t i = 0; i < kMaxShownCharacters && end < text.size(); ++i) {
    do {
      ++end;
    } while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80);
  }
  return std::string(text.substr(0, end)) + "...";
}

// Returns whether there are more characters than a word may have between two blanks.
bool HoldsLongRun(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(kWhiteSpace), text.size());
    if (CountCharacters(StoredCharacters(text.substr(0, end))) > kMaxWordCharacters) return true;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return false;
}

}  // namespace

std::string Shown(std::string_view text) {
  std::size_t end = std::min(text.size(), kMaxShownBytes);
  while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80) {
    --end;
  }
  std::string shown = "'";
  for (const char byte : text.substr(0, end)) {
    const bool is_control = static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
    shown += is_control ? ' ' : byte;
  }
  return shown + (end < text.size() ? "...'" : "'");
}

// A word that was cut has as many characters as a word may have, and was written with more.
bool HoldsCutWord(const std::vector<QueryWords>& words, const Token& token) {
  if (token.text.size() <= kMaxWordCharacters) return false;
  const auto has_all = [](const Query& word) {
    return CountCharacters(word.word) == kMaxWordCharacters;
  };
  const auto holds_one = [&](const QueryWords& group) {
    return std::any_of(group.begin(), group.end(), has_all);
  };
  return std::any_of(words.begin(), words.end(), holds_one) && HoldsLongRun(token.text);
}

void AddIfCut(const std::vector<QueryWords>& words, const Token& token,
              std::vector<std::string>* cut) {
  if (HoldsCutWord(words, token)) AddOnce(Shortened(token.text), cut);
}

std::vector<std::string> NotesOnCutWords(const std::vector<std::string>& cut) {
  std::vector<std::string> notes;
  AddNote(Note(cut, " is too long: its first 64 characters count",
               " are too long: their first 64 characters count"),
          &notes);
  return notes;
}

std::vector<std::string> NotesOnIgnoredText(std::string_view text, TextRules rules) {
  std::vector<std::string> ignored;
  std::vector<std::string> cut;
  for (const Token& token : TokensOf(text)) {
    if (token.kind != Token::Kind::kWord && token.kind != Token::Kind::kPhrase) continue;
    const std::vector<QueryWords> words = WordsOf(token, rules);
    if (words.empty() && !IsPunctuation(token.text)) {
      const bool is_long = token.text.size() > kMaxWordCharacters;
      AddOnce(is_long ? Shortened(token.text) : token.text, &ignored);
    }
    AddIfCut(words, token, &cut);
  }
  const bool is_analyzed = rules == TextRules::kAnalyzer;
  std::vector<std::string> notes;
  AddNote(is_analyzed ? Note(ignored, " holds no letters or digits and was ignored",
                             " hold no letters or digits and were ignored")
                      : Note(ignored, " holds no letters and was ignored",
                             " hold no letters and were ignored"),
          &notes);
  for (std::string& note : NotesOnCutWords(cut)) notes.push_back(std::move(note));
  return notes;
}

std::vector<std::string> NotesOnOptionalWords(const OptionalWords& optional) {
  std::vector<std::string> notes;
  AddNote(Note(optional.stop_words, " says little and was not required",
               " say little and were not required"),
          &notes);
  AddNote(Note(optional.common, " is in most documents and was not required",
               " are in most documents and were not required"),
          &notes);
  return notes;
}

}  // namespace kestan::search
