// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/foreign_syntax.h"

#include <algorithm>
#include <cstddef>

#include "search/query/query_tokens.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

// All bytes of other scripts count as letters.
bool IsLetter(char byte) {
  const auto lower = static_cast<unsigned char>(static_cast<unsigned char>(byte) | 0x20U);
  return (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(byte) >= 0x80;
}

bool IsWordByte(char byte) { return IsLetter(byte) || IsDigit(byte); }

// Returns where the first of `signs` stands with a letter or a digit on each side, or at the start
// with one after it.
std::size_t FindWithin(std::string_view word, std::string_view signs) {
  for (std::size_t at = 0; at + 1 < word.size(); ++at) {
    if (signs.find(word[at]) == std::string_view::npos || !IsWordByte(word[at + 1])) continue;
    if (at == 0 || IsWordByte(word[at - 1])) return at;
  }
  return std::string_view::npos;
}

// Returns what to say of an operator of other tools that stands alone or between two words; "" if
// there is none in `word`.
std::string NoteOnOperator(std::string_view word) {
  const auto is_all = [word](char sign) {
    return word.size() <= 2 && word.find_first_not_of(sign) == std::string_view::npos;
  };
  const bool starts_word = word.size() > 1 && IsLetter(word[1]);
  if (word == "NEAR" || word.substr(0, 5) == "NEAR/") {
    return Quoted(word) +
           " is taken for a word: as an operator it stands between two parts, with a "
           "number from 1, as in NEAR/5";
  }
  if (is_all('|') || FindWithin(word, "|") != std::string_view::npos) {
    return Quoted(word) + ": | is no operator; write OR";
  }
  if (is_all('&')) return Quoted(word) + ": & is no operator; write AND, or nothing";
  if (word[0] == '!' && starts_word) {
    return Quoted(word) + ": ! is no operator; write NOT, or - before the word";
  }
  if (word[0] == '+' && starts_word) {
    return Quoted(word) + ": + is no operator; all words are asked for, unless there is OR";
  }
  return "";
}

// The same of * and ? for letters. In an address, such as one of a page, they stand for themselves.
std::string NoteOnWildcard(std::string_view word) {
  const bool is_address = word.find_first_of("/:=") != std::string_view::npos;
  if (is_address) return "";
  const std::size_t at = FindWithin(word, "*?");
  if (at == std::string_view::npos) return "";
  const std::string sign(1, word[at]);
  if (at == 0) return Quoted(word) + ": no " + sign + " stands for the start of a word";
  return Quoted(word) + ": no " + sign + " stands for letters within a word; " +
         std::string(word.substr(0, at)) + "* finds all that begin so";
}

}  // namespace

std::string NoteOnForeignSyntax(std::string_view word) {
  if (word.empty()) return "";
  std::string note = NoteOnOperator(word);
  return note.empty() ? NoteOnWildcard(word) : note;
}

std::vector<std::string> NotesOnForeignSyntax(std::string_view text) {
  std::vector<std::string> notes;
  for (const Token& token : TokensOf(text)) {
    if (token.kind != Token::Kind::kWord) continue;
    std::string note = NoteOnForeignSyntax(token.text);
    const bool is_new = std::find(notes.begin(), notes.end(), note) == notes.end();
    if (!note.empty() && is_new) notes.push_back(std::move(note));
  }
  return notes;
}

}  // namespace kestan::search
