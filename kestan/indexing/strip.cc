// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/strip.h>

#include <kestan/storage/memory/memory.h>
#include <strings.h>

#include <array>
#include <cctype>
#include <cstring>
#include <set>

namespace kestan {
namespace {

constexpr unsigned kWordLetters = 64;      // longer words are cut
constexpr unsigned kShortWordLetters = 2;  // dropped along with the stop words
constexpr unsigned kUuencodeLineBytes = 61;
constexpr unsigned kEncodedLineBytes = 72;

// Bytes above 127 are looked up as negative numbers, as signed chars are.
bool IsLetter(char byte) { return std::isalpha(static_cast<signed char>(byte)) != 0; }
bool IsSpace(char byte) { return std::isspace(static_cast<signed char>(byte)) != 0; }

// Copies a word, letters with apostrophes between them, from `read` to `write`, and passes the byte
// that ends it. Moves both indices.
void KeepWord(char* text, unsigned length, unsigned* read, unsigned* write) {
  while (*read < length) {
    const char byte = text[(*read)++];
    const bool joins = byte == '\'' && *read < length && IsLetter(text[*read]);
    if (!joins && !IsLetter(byte)) return;
    text[(*write)++] = byte;
    if (joins) text[(*write)++] = text[(*read)++];
  }
}

}  // namespace

int RemoveNonWords(char* text, unsigned length) {
  unsigned read = 0;
  unsigned write = 0;
  while (read < length) {
    for (; read < length && !IsLetter(text[read]); ++read) {
      if (text[read] != '\n') continue;
      // A line feed takes the place of the blank after the last word, or follows a line feed.
      if (write > 0 && text[write - 1] != '\n') --write;
      text[write++] = '\n';
    }
    KeepWord(text, length, &read, &write);
    text[write++] = ' ';
  }
  if (write < read) text[--write] = '\0';
  return static_cast<int>(write);
}

namespace {

struct CompareStrings {
  bool operator()(const char* left, const char* right) const { return strcasecmp(left, right) < 0; }
};

using StopSet = std::set<const char*, CompareStrings, Allocator<const char*>>;

// Cuts `text` into its words, NUL-terminated where they stand, and adds them to `stops`. A text
// that begins with something else than a letter adds the empty word, which harms nothing.
void AddStopWords(String* text, StopSet* stops) {
  const std::size_t length = text->size();
  std::size_t next = 0;
  while (next < length) {
    const std::size_t start = next;
    while (next < length && IsLetter((*text)[next])) ++next;
    while (next < length && !IsLetter((*text)[next])) (*text)[next++] = '\0';
    stops->insert(text->data() + start);
  }
}

// A word without its apostrophes, cut to its first letters.
struct Word {
  std::array<char, kWordLetters + 1> letters;
  unsigned count;
};

// Reads the word at `*read`, which may be empty, and moves past it.
Word ReadWord(const char* text, unsigned length, unsigned* read) {
  Word word;
  word.count = 0;
  for (; *read < length && word.count < kWordLetters; ++*read) {
    const char byte = text[*read];
    if (byte == '\'') continue;
    if (!IsLetter(byte)) break;
    word.letters[word.count++] = byte;
  }
  if (word.count == kWordLetters) {
    while (*read < length && IsLetter(text[*read])) ++*read;
  }
  word.letters[word.count] = '\0';
  return word;
}

}  // namespace

int RemoveStopWords(char* text, unsigned length, const char* stop_text,
                    const char* const* stop_list) {
  String stop_words(stop_text);
  StopSet stops;
  AddStopWords(&stop_words, &stops);
  const bool keep_all = stops.empty();  // without a stop text, the list has no effect either
  for (; *stop_list != nullptr; ++stop_list) stops.insert(*stop_list);

  unsigned read = 0;
  unsigned write = 0;
  while (read < length) {
    const Word word = ReadWord(text, length, &read);
    if (keep_all || (word.count > kShortWordLetters && stops.count(word.letters.data()) == 0)) {
      std::memcpy(text + write, word.letters.data(), word.count);
      write += word.count;
    }
    while (read < length && !IsLetter(text[read])) text[write++] = text[read++];
  }
  if (write < read) text[write] = '\0';
  return static_cast<int>(write);
}

namespace {

// What distinguishes a line of text from a line of encoded data.
struct Line {
  unsigned end;        // the index after its line feed, or after the text
  unsigned count = 0;  // of its bytes but carriage returns and the line feed
  bool has_space = false;
  bool has_high_byte = false;
};

Line ReadLine(const char* text, unsigned length, unsigned start) {
  Line line;
  line.end = start;
  while (line.end < length) {
    const char byte = text[line.end++];
    if (byte == '\n') break;
    if (byte == '\r') continue;
    ++line.count;
    if (IsSpace(byte)) line.has_space = true;
    if (static_cast<unsigned char>(byte) >= 128) line.has_high_byte = true;
  }
  return line;
}

// Recognises encoded data line by line.
class EncodedDataFilter {
 public:
  // Returns whether to blank `line`. `first` is its first byte, `at_write` the byte where the next
  // kept line will go: the start of a uuencoded block is looked for there. The two are the same
  // until a line has been blanked.
  bool Blanks(const Line& line, char first, char at_write) {
    if (line.has_high_byte) return true;
    if (in_uuencode_ && first == 'M') return true;
    in_uuencode_ = line.count == kUuencodeLineBytes && at_write == 'M';
    if (in_uuencode_) return true;
    if (in_encoded_ && !line.has_space && first != '-') return true;
    in_encoded_ = line.count == kEncodedLineBytes && !line.has_space;
    return in_encoded_;
  }

 private:
  bool in_uuencode_ = false;
  bool in_encoded_ = false;
};

}  // namespace

int RemoveBadLines(char* text, unsigned length) {
  EncodedDataFilter filter;
  unsigned write = 0;
  for (unsigned start = 0; start < length;) {
    const Line line = ReadLine(text, length, start);
    if (filter.Blanks(line, text[start], text[write])) {
      text[write++] = '\n';
    } else {
      std::memmove(text + write, text + start, line.end - start);
      write += line.end - start;
    }
    start = line.end;
  }
  return static_cast<int>(write);
}

}  // namespace kestan
