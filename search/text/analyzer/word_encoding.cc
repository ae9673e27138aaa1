// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/word_encoding.h"

#include <algorithm>
#include <array>

#include "search/text/utf8.h"

namespace kestan::search {
namespace {

constexpr unsigned kDigitBits = 5;
constexpr unsigned kFirstDigit = 0xa0;
constexpr unsigned kLastDigit = 0xbf;

// The leads from `lead` on, with so many digits. They count characters from the first lead with
// only zeros after it.
struct Form {
  unsigned lead;
  unsigned leads;
  unsigned digits;
};

constexpr std::array<Form, 4> kForms = {{{0xe0, 24, 1}, {0xf8, 6, 2}, {0xfe, 1, 3}, {0xff, 1, 4}}};

// Characters in a row, which a form counts from `number` on.
struct Range {
  char32_t first;
  char32_t last;
  unsigned form;
  char32_t number;
};

constexpr std::array<Range, 5> kRanges = {{{0x80, 0x36f, 1, 0},
                                           {0x370, 0x66f, 0, 0},
                                           {0x670, 0x1b7f, 1, 0x2f0},
                                           {0x1b80, 0x9b7f, 2, 0},
                                           {0x9b80, 0x109b7f, 3, 0}}};

constexpr char32_t kLastStored = kRanges.back().last;

unsigned ByteOf(char byte) { return static_cast<unsigned char>(byte); }

const Form* FormOf(unsigned lead) {
  for (const Form& form : kForms) {
    if (lead >= form.lead && lead < form.lead + form.leads) return &form;
  }
  return nullptr;
}

bool IsSurrogate(char32_t code) { return code >= 0xd800 && code < 0xe000; }

// Returns the run of bytes above 127 at the start of `text`.
std::string_view HighRun(std::string_view text) {
  std::size_t end = 0;
  while (end < text.size() && !IsAscii(text[end])) ++end;
  return text.substr(0, end);
}

// Adds `run` in UTF-8.
//   Returns  false if it does not consist of stored characters; then a part of it may be added.
bool AppendDecoded(std::string_view run, std::string* utf8) {
  while (!run.empty()) {
    char32_t character = 0;
    const std::size_t bytes = ReadStored(run, &character);
    if (bytes == 0) return false;
    AppendCharacter(character, utf8);
    run.remove_prefix(bytes);
  }
  return true;
}

}  // namespace

void AppendStored(char32_t character, std::string* word) {
  if (character < 0x80) {
    *word += static_cast<char>(character);
    return;
  }
  const auto* range = kRanges.begin();
  while (character > range->last) ++range;
  const Form& form = kForms[range->form];
  const char32_t number = character - range->first + range->number;
  unsigned shift = form.digits * kDigitBits;
  *word += static_cast<char>(form.lead + (number >> shift));
  while (shift > 0) {
    shift -= kDigitBits;
    *word += static_cast<char>(kFirstDigit | (number >> shift & 0x1f));
  }
}

std::size_t ReadStored(std::string_view word, char32_t* character) {
  const unsigned lead = ByteOf(word[0]);
  *character = lead;
  if (lead < 0x80) return 1;
  const Form* const form = FormOf(lead);
  if (form == nullptr || word.size() <= form->digits) return 0;
  char32_t number = lead - form->lead;
  for (unsigned i = 1; i <= form->digits; ++i) {
    const unsigned digit = ByteOf(word[i]);
    if (digit < kFirstDigit || digit > kLastDigit) return 0;
    number = number << kDigitBits | (digit - kFirstDigit);
  }
  const auto index = static_cast<unsigned>(form - kForms.data());
  for (const Range& range : kRanges) {
    if (range.form != index || number < range.number) continue;
    const char32_t code = number - range.number + range.first;
    if (code > range.last) continue;
    *character = code;
    return IsSurrogate(code) ? 0 : form->digits + 1;
  }
  return 0;
}

std::string DecodedWords(std::string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  while (!text.empty()) {
    const std::size_t ascii = FindNonAscii(text, 0);
    utf8 += text.substr(0, ascii);
    text.remove_prefix(ascii);
    const std::string_view run = HighRun(text);
    const std::size_t before = utf8.size();
    if (!AppendDecoded(run, &utf8)) utf8.replace(before, std::string::npos, run);
    text.remove_prefix(run.size());
  }
  return utf8;
}

std::string StoredCharacters(std::string_view utf8) {
  std::string stored;
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t bytes = CharacterBytes(utf8.substr(at));
    std::size_t next = at;
    const char32_t code = TakeCode(utf8, &next);
    if (bytes == 0 || code > kLastStored) {
      stored += utf8.substr(at, next - at);
    } else {
      AppendStored(code, &stored);
    }
    at = next;
  }
  return stored;
}

std::u32string CharactersOf(std::string_view word) {
  std::u32string characters;
  while (!word.empty()) {
    char32_t character = 0;
    const std::size_t bytes = ReadStored(word, &character);
    characters += character;
    word.remove_prefix(std::max<std::size_t>(bytes, 1));
  }
  return characters;
}

std::size_t CountCharacters(std::string_view word) {
  if (FindNonAscii(word, 0) == word.size()) return word.size();
  return CharactersOf(word).size();
}

}  // namespace kestan::search
