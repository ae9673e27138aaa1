// SPDX-License-Identifier: GPL-3.0-or-later
// Splits text into words, those of ASCII by itself.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_TEXT_SCANNER_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_TEXT_SCANNER_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "search/text/analyzer/run_reader.h"
#include "search/text/analyzer/word_sink.h"

namespace kestan::search {

// What the scanner looks for in a byte: letters and digits have their small letter or digit.
namespace scanning {

constexpr unsigned char kOther = 0;
constexpr unsigned char kDot = 1;
constexpr unsigned char kHigh = 2;  // beyond ASCII

constexpr std::array<unsigned char, 256> MakeTable() {
  std::array<unsigned char, 256> table{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    const bool is_capital = byte >= 'A' && byte <= 'Z';
    const bool is_small = (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9');
    const unsigned found = is_capital      ? byte | 0x20u
                           : is_small      ? byte
                           : byte >= 0x80u ? kHigh
                           : byte == '.'   ? kDot
                                           : kOther;
    table[byte] = static_cast<unsigned char>(found);
  }
  return table;
}

inline constexpr std::array<unsigned char, 256> kTable = MakeTable();

inline unsigned char Look(char byte) { return kTable[static_cast<unsigned char>(byte)]; }
inline bool IsWord(char byte) { return Look(byte) > kHigh; }
inline bool IsLetter(char byte) { return Look(byte) >= 'a'; }

}  // namespace scanning

// Hands the words of a text to a sink. Those of ASCII are written where the sink has room:
//
//   char* Room()                    room for kMaxWordCharacters bytes and two more
//   void Took(char* end, start, stop)  the word there ends at `end`; its bytes of the text
//   bool WantsMore()                whether to go on
//   void Take(...)                  of WordSink: any other word
template <typename Sink>
class TextScanner {
 public:
  // Borrows both.
  TextScanner(std::string_view text, Sink* sink) : text_(text), sink_(sink), runs_(text, sink) {}

  //   Throws   TransliterationError, std::bad_alloc, and what the sink throws.
  void Scan() {
    std::size_t at = 0;
    while (at < text_.size() && sink_->WantsMore()) {
      const unsigned char found = scanning::Look(text_[at]);
      if (found > scanning::kHigh) {
        at = ScanWord(at);
      } else if (found == scanning::kHigh) {
        at = runs_.Read(at);
      } else if (found == scanning::kDot && BeginsDottedWord(at)) {
        at = ScanDottedWord(at);
      } else {
        ++at;
      }
    }
  }

 private:
  // Copies a word, cut after kMaxWordCharacters, to `*room`.
  //   Returns  where it ends.
  std::size_t Copy(std::size_t at, char** room) const {
    const std::size_t cut = std::min(text_.size(), at + kMaxWordCharacters);
    char* next = *room;
    for (unsigned char found = 0; at < cut && (found = scanning::Look(text_[at])) > scanning::kHigh;
         ++at) {
      *next++ = static_cast<char>(found);
    }
    *room = next;
    while (at < text_.size() && scanning::IsWord(text_[at])) ++at;
    return at;
  }

  std::size_t ScanWord(std::size_t start) {
    char* const room = sink_->Room();
    char* end_of_room = room;
    const std::size_t end = Copy(start, &end_of_room);
    if (end < text_.size()) {
      const char next = text_[end];
      const bool goes_on = static_cast<unsigned char>(next) >= 0x80 && runs_.ContinuesWord(end);
      if (goes_on) return runs_.Read(start);
      if (next == '+' || next == '#') return ScanMarkedWord(start, end, end_of_room);
    }
    sink_->Took(end_of_room, start, end);
    return end;
  }

  // c++, c#: another word after "c".
  std::size_t ScanMarkedWord(std::size_t start, std::size_t end, char* end_of_room) {
    const std::string_view after = text_.substr(end, 3);
    const std::size_t marks = after.front() == '#' ? 1 : after.substr(0, 2) == "++" ? 2 : 0;
    const bool ends = marks > 0 && (after.size() == marks || !Continues(after[marks]));
    const bool has_letters =
        std::all_of(text_.begin() + static_cast<std::ptrdiff_t>(start),
                    text_.begin() + static_cast<std::ptrdiff_t>(end), scanning::IsLetter);
    sink_->Took(end_of_room, start, end);
    if (!ends || !has_letters || end - start > kMaxWordCharacters - marks) return end;
    char* room = sink_->Room();
    Copy(start, &room);
    std::memcpy(room, after.data(), marks);
    sink_->Took(room + marks, start, end + marks);
    return end + marks;
  }

  static bool Continues(char byte) {
    return scanning::IsWord(byte) || static_cast<unsigned char>(byte) >= 0x80 || byte == '+' ||
           byte == '#';
  }

  // .net, where nothing that it could belong to comes before it.
  bool BeginsDottedWord(std::size_t at) const {
    constexpr std::string_view kBefore = " \t\n\v\f\r([{<\"'`";
    const bool is_free = at == 0 || kBefore.find(text_[at - 1]) != std::string_view::npos;
    return is_free && at + 1 < text_.size() && scanning::IsLetter(text_[at + 1]);
  }

  // The word without its dot comes first. Words that go on beyond ASCII have no dot.
  std::size_t ScanDottedWord(std::size_t dot) {
    char* room = sink_->Room();
    const std::size_t end = Copy(dot + 1, &room);
    const bool goes_on = end < text_.size() && static_cast<unsigned char>(text_[end]) >= 0x80 &&
                         runs_.ContinuesWord(end);
    if (goes_on || end - dot > kMaxWordCharacters) return dot + 1;
    sink_->Took(room, dot + 1, end);
    room = sink_->Room();
    *room++ = '.';
    Copy(dot + 1, &room);
    sink_->Took(room, dot, end);
    return end;
  }

  const std::string_view text_;
  Sink* const sink_;
  RunReader runs_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_TEXT_SCANNER_H_
