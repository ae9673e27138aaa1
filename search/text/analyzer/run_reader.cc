// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/run_reader.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <string>
#include <vector>

#include "search/text/analyzer/characters.h"
#include "search/text/analyzer/dictionary_words.h"
#include "search/text/analyzer/folding.h"
#include "search/text/analyzer/word_encoding.h"
#include "search/text/letters.h"
#include "search/text/run_cache.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

// Texts repeat short runs, so their words are kept. Longer runs are not, which bounds the memory.
constexpr std::size_t kMaxKeptBytes = 64;

// Of letters and marks without end no more are looked at: a word has at most kMaxWordCharacters,
// and ICU takes time with the square of the marks on one letter.
constexpr std::size_t kMaxLetterBytes = 1024;

constexpr std::size_t kMaxUnspacedUnits = std::size_t{1} << 16;

void AppendUtf16(char32_t code, std::u16string* text) {
  if (U_IS_SUPPLEMENTARY(code)) {
    *text += static_cast<char16_t>(U16_LEAD(code));
    *text += static_cast<char16_t>(U16_TRAIL(code));
  } else {
    *text += static_cast<char16_t>(code);
  }
}

std::u16string Utf16Of(std::string_view utf8) {
  std::u16string text;
  for (std::size_t at = 0; at < utf8.size();) AppendUtf16(TakeCode(utf8, &at), &text);
  return text;
}

// Returns the words of folded characters as they are stored, cut, with blanks between them.
std::string StoredWords(const std::u32string& folded) {
  std::string words;
  std::size_t characters = 0;
  for (const char32_t code : folded) {
    if (code == kBetweenWords) {
      characters = 0;
      words += ' ';
    } else if (++characters <= kMaxWordCharacters) {
      AppendStored(code, &words);
    }
  }
  return words;
}

std::u32string FoldedRun(std::string_view run) {
  // Where a character begins, of which no more than three bytes are before the end.
  std::size_t cut = std::min(run.size(), kMaxLetterBytes);
  while (cut < run.size() && cut + 3 > kMaxLetterBytes && ContinuesCharacter(run[cut])) --cut;
  return Folded(Utf16Of(run.substr(0, cut)));
}

std::string WordsOfLetters(std::string_view run) { return StoredWords(FoldedRun(run)); }

// Makes pairs of neighbours.
class Pairs {
 public:
  explicit Pairs(WordSink* sink) : sink_(sink) {}

  // Adds a character that was made of the bytes from `start` to `end`.
  void Add(char32_t character, std::size_t start, std::size_t end) {
    std::string stored;
    AppendStored(character, &stored);
    if (count_ > 0) sink_->Take(last_ + stored, start_, end, WordPart::kPair);
    last_ = std::move(stored);
    start_ = start;
    end_ = end;
    ++count_;
  }

  // Ends a run, if there is one.
  void EndRun() {
    if (count_ == 0) return;
    sink_->Take(last_, start_, end_, count_ == 1 ? WordPart::kOnlyOne : WordPart::kLastOfRun);
    count_ = 0;
  }

 private:
  WordSink* const sink_;
  std::string last_;  // the last character, as it is stored
  std::size_t start_ = 0;
  std::size_t end_ = 0;
  std::size_t count_ = 0;  // of the characters of the run
};

}  // namespace

bool RunReader::ContinuesWord(std::size_t at) const {
  const CharacterClass found = ClassOf(TakeCode(text_, &at));
  return found == CharacterClass::kLetter || found == CharacterClass::kMark;
}

std::size_t RunReader::Read(std::size_t start) {
  if (IsAscii(text_[start])) return ReadLetters(start);
  std::size_t next = start;
  switch (ClassOf(TakeCode(text_, &next))) {
    case CharacterClass::kOther:
      return next;
    case CharacterClass::kPaired:
      return ReadPairs(start);
    case CharacterClass::kUnspaced:
      return ReadUnspaced(start);
    default:
      return ReadLetters(start);
  }
}

std::size_t RunReader::EndOfLetters(std::size_t at) const {
  while (at < text_.size()) {
    const bool goes_on = IsAscii(text_[at])
                             ? IsAsciiLetter(text_[at]) || (text_[at] >= '0' && text_[at] <= '9')
                             : ContinuesWord(at);
    if (!goes_on) break;
    TakeCode(text_, &at);
  }
  return at;
}

std::size_t RunReader::EndOfMarks(std::size_t at) const {
  while (at < text_.size() && !IsAscii(text_[at])) {
    std::size_t next = at;
    if (ClassOf(TakeCode(text_, &next)) != CharacterClass::kMark) break;
    at = next;
  }
  return at;
}

std::size_t RunReader::ReadLetters(std::size_t start) {
  thread_local RunCache cache;
  const std::size_t end = EndOfLetters(start);
  const std::string_view run = text_.substr(start, end - start);
  if (run.size() > kMaxKeptBytes) {
    TakeWords(WordsOfLetters(run), start, end);
    return end;
  }
  const std::string* const known = cache.Find(run);
  TakeWords(known != nullptr ? *known : cache.Keep(run, WordsOfLetters(run)), start, end);
  return end;
}

void RunReader::TakeWords(std::string_view words, std::size_t start, std::size_t end) {
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    if (!word.empty()) sink_->Take(word, start, end, WordPart::kWhole);
    words.remove_prefix(std::min(word.size() + 1, words.size()));
  }
}

std::size_t RunReader::ReadPairs(std::size_t start) {
  Pairs pairs(sink_);
  std::size_t at = start;
  while (at < text_.size() && !IsAscii(text_[at])) {
    std::size_t end = at;
    const char32_t code = TakeCode(text_, &end);
    if (ClassOf(code) != CharacterClass::kPaired) break;
    const std::size_t end_of_marks = EndOfMarks(end);
    if (end_of_marks == end && IsCommonPaired(code)) {
      pairs.Add(code, at, end);
    } else {
      for (const char32_t folded : FoldedRun(text_.substr(at, end_of_marks - at))) {
        if (folded == kBetweenWords) {
          pairs.EndRun();
        } else if (folded < 0x80 || ClassOf(folded) != CharacterClass::kMark) {
          pairs.Add(folded, at, end_of_marks);
        }
      }
    }
    at = end_of_marks;
  }
  pairs.EndRun();
  return at;
}

std::size_t RunReader::ReadUnspaced(std::size_t start) {
  std::u16string run;
  std::vector<std::size_t> places;  // where the character of each unit of `run` begins
  std::size_t at = start;
  while (at < text_.size() && !IsAscii(text_[at]) && run.size() < kMaxUnspacedUnits) {
    std::size_t next = at;
    const char32_t code = TakeCode(text_, &next);
    const CharacterClass found = ClassOf(code);
    if (found != CharacterClass::kUnspaced && found != CharacterClass::kMark) break;
    AppendUtf16(code, &run);
    places.resize(run.size(), at);
    at = next;
  }
  places.push_back(at);
  std::size_t first = 0;
  for (const std::size_t last : WordEnds(run)) {
    const std::u16string word = run.substr(first, std::min(last - first, kMaxLetterBytes));
    TakeWords(StoredWords(Folded(word)), places[first], places[last]);
    first = last;
  }
  return at;
}

}  // namespace kestan::search
