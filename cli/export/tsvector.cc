// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/tsvector.h"

#include <kestan/storage/hash.h>

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cli/console/message.h"
#include "cli/extract/charset/ascii.h"
#include "cli/extract/charset/latin1.h"

namespace kestan_cli {
namespace {

struct Lexeme {
  std::string bytes;
  std::vector<unsigned> positions;
};

// The different words of a document, with their positions, in the order of their first occurrence.
class Lexemes {
 public:
  Lexemes(const ExportedDocument& document, TsVector* made) : made_(*made) {
    for (const kestan::search::PlacedWord& word : document.words) Add(word);
  }

  const std::vector<Lexeme>& all() const { return lexemes_; }

 private:
  void Add(const kestan::search::PlacedWord& word) {
    std::string bytes =
        LowerCase(WithoutNuls(Utf8OrAllLatin1(word.word, &made_.was_latin1), &made_.had_nul));
    const auto [found, is_new] = numbers_.emplace(std::move(bytes), lexemes_.size());
    if (is_new) lexemes_.push_back({found->first, {}});
    AddPosition(word.position, &lexemes_[found->second].positions);
  }

  // Positions ascend. Two spellings of a word may have the same.
  void AddPosition(unsigned position, std::vector<unsigned>* positions) {
    if (position == 0 || (!positions->empty() && positions->back() == position)) return;
    if (position > kMaxLexemePosition) {
      ++made_.losses.late_positions;
    } else if (positions->size() == kMaxLexemePositions) {
      ++made_.losses.many_positions;
    } else {
      positions->push_back(position);
    }
  }

  TsVector& made_;
  std::vector<Lexeme> lexemes_;
  std::unordered_map<std::string, std::size_t, kestan::Hasher> numbers_;
};

// Returns the most bytes that the server needs for the lexeme: its text, and its positions on an
// even address after their count.
std::size_t BytesInServer(const Lexeme& lexeme) {
  const std::size_t units = lexeme.positions.empty() ? 0 : 1 + lexeme.positions.size();
  return lexeme.bytes.size() + 1 + 2 * units;
}

void Append(const Lexeme& lexeme, std::string* text) {
  if (!text->empty()) *text += ' ';
  *text += '\'';
  for (const char byte : lexeme.bytes) {
    if (byte == '\'' || byte == '\\') *text += byte;
    *text += byte;
  }
  *text += '\'';
  char separator = ':';
  for (const unsigned position : lexeme.positions) {
    (*text += separator) += std::to_string(position);
    separator = ',';
  }
}

}  // namespace

std::string TsVectorLosses::Text() const {
  std::string text;
  const auto tell = [&](std::size_t count, const std::string& noun, const std::string& what) {
    if (count == 0) return;
    if (!text.empty()) text += ", ";
    text += Counted(count, noun) + what;
  };
  tell(long_words, "word", " of more than 2046 bytes left out");
  tell(words_past_the_end, "word", " past the 1 MB of a tsvector left out");
  tell(unusable_words, "word", " without a byte left out");
  tell(late_positions, "position", " past 16383 left out");
  tell(many_positions, "position", " past the 256th of a word left out");
  return text;
}

TsVector MakeTsVector(const ExportedDocument& document) {
  TsVector made;
  const Lexemes lexemes(document, &made);
  std::size_t bytes = 0;
  for (const Lexeme& lexeme : lexemes.all()) {
    const std::size_t needed = BytesInServer(lexeme);
    if (lexeme.bytes.empty()) {
      ++made.losses.unusable_words;
    } else if (lexeme.bytes.size() > kMaxLexemeBytes) {
      ++made.losses.long_words;
    } else if (needed > kMaxTsVectorBytes - bytes) {
      ++made.losses.words_past_the_end;
    } else {
      Append(lexeme, &made.text);
      bytes += needed;
    }
  }
  return made;
}

std::string WithoutNuls(std::string text, bool* had_nul) {
  constexpr std::string_view kReplacement = "\xef\xbf\xbd";
  for (auto at = text.find('\0'); at != std::string::npos; at = text.find('\0', at)) {
    text.replace(at, 1, kReplacement);
    *had_nul = true;
  }
  return text;
}

}  // namespace kestan_cli
