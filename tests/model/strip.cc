// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/strip.h"

#include <set>

namespace kestan_model {
namespace {

bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

std::string LowerCase(std::string text) {
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
  }
  return text;
}

// The byte at `at`, or a zero byte past the end.
char At(const std::string& text, std::size_t at) { return at < text.size() ? text[at] : '\0'; }

// A word from `at` on: letters, and apostrophes that a letter follows.
std::string WordAt(const std::string& text, std::size_t at) {
  std::size_t end = at;
  while (IsLetter(At(text, end)) || (At(text, end) == '\'' && IsLetter(At(text, end + 1)))) ++end;
  return text.substr(at, end - at);
}

// A line feed ends the line that the last word's blank would have continued.
void KeepLineFeed(std::string* kept) {
  if (kept->empty() || kept->back() == '\n') {
    *kept += '\n';
  } else {
    kept->back() = '\n';
  }
}

// Every run of letters; what is not a letter stands between two.
std::set<std::string> WordsOf(const std::string& stop_text) {
  std::set<std::string> words;
  std::string word;
  for (const char byte : stop_text + ' ') {
    if (IsLetter(byte)) {
      word += byte;
    } else if (!word.empty()) {
      words.insert(LowerCase(word));
      word.clear();
    }
  }
  return words;
}

// What `StripWords` takes for one word, and how many bytes of the text that uses up.
struct Taken {
  std::string word;
  std::size_t bytes = 0;
};

Taken TakeWord(const std::string& text, std::size_t at) {
  Taken taken;
  for (std::size_t i = at; IsLetter(At(text, i)) || At(text, i) == '\''; ++i) {
    if (taken.word.size() == 64 && !IsLetter(text[i])) break;  // a full word is one run's
    if (taken.word.size() < 64 && text[i] != '\'') taken.word += text[i];
    ++taken.bytes;
  }
  return taken;
}

// One line of text with its line feed, and what the decision about it looks at.
struct Line {
  std::string bytes;
  std::size_t count = 0;  // of bytes other than carriage returns and the line feed
  bool has_space = false;
  bool has_high_byte = false;
};

Line LineAt(const std::string& text, std::size_t at) {
  Line line;
  line.bytes = text.substr(at, text.find('\n', at) - at);
  for (const char byte : line.bytes) {
    if (byte == '\r') continue;
    ++line.count;
    if (byte == ' ' || (byte >= '\t' && byte <= '\r')) line.has_space = true;
    if (static_cast<unsigned char>(byte) >= 128) line.has_high_byte = true;
  }
  if (at + line.bytes.size() < text.size()) line.bytes += '\n';
  return line;
}

struct Blocks {
  bool uuencode = false;
  bool encoded = false;
};

// Returns whether a line is encoded data. `byte_at_write` is what the text holds where the line
// would be moved to, which is not the line's first byte once a line has been emptied.
bool IsBad(const Line& line, char byte_at_write, Blocks* in) {
  if (line.has_high_byte) return true;
  if (in->uuencode && line.bytes[0] == 'M') return true;
  in->uuencode = line.count == 61 && byte_at_write == 'M';
  if (in->uuencode) return true;
  if (in->encoded && !line.has_space && line.bytes[0] != '-') return true;
  in->encoded = line.count == 72 && !line.has_space;
  return in->encoded;
}

}  // namespace

Stripped StripNonWords(const std::string& text) {
  std::string kept;
  std::size_t at = 0;
  while (at < text.size()) {
    for (; at < text.size() && !IsLetter(text[at]); ++at) {
      if (text[at] == '\n') KeepLineFeed(&kept);
    }
    const std::string word = WordAt(text, at);
    at += word.size() + 1;  // the byte that ends the word is lost
    kept += word + ' ';
  }
  const bool shorter = kept.size() < text.size();
  if (shorter) kept.pop_back();
  return {kept, shorter};
}

Stripped StripWords(const std::string& text, const std::string& stop_text,
                    const std::vector<std::string>& stop_list) {
  std::set<std::string> stop_words = WordsOf(stop_text);
  for (const std::string& word : stop_list) stop_words.insert(LowerCase(word));
  std::string kept;
  for (std::size_t at = 0; at < text.size();) {
    const Taken taken = TakeWord(text, at);
    const bool stopped = taken.word.size() <= 2 || stop_words.count(LowerCase(taken.word)) > 0;
    if (stop_text.empty() || !stopped) kept += taken.word;
    at += taken.bytes;
    while (at < text.size() && !IsLetter(text[at])) kept += text[at++];
  }
  return {kept, kept.size() < text.size()};
}

Stripped StripBadLines(const std::string& text) {
  std::string kept;
  Blocks blocks;
  for (std::size_t at = 0; at < text.size();) {
    const Line line = LineAt(text, at);
    const bool bad = IsBad(line, text[kept.size()], &blocks);
    kept += bad ? "\n" : line.bytes;
    at += line.bytes.size();
  }
  return {kept, false};
}

}  // namespace kestan_model
