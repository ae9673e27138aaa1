// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a text. Whatever they are, the words that the Analyzer finds are such as the
// engine's folding leaves alone, and stand where it says.
#include <kestan/search/analyzer.h>

#include <kestan/search/text.h>

#include <set>
#include <string>
#include <string_view>

#include "fuzz/support/reporting.h"

namespace {

using kestan::search::AnalyzedWord;
using kestan::search::Analyzer;
using kestan::search::WordGroup;
using kestan_fuzz::Require;

std::size_t CharactersIn(std::string_view utf8) {
  std::size_t characters = 0;
  for (const char byte : utf8) characters += kestan::search::ContinuesCharacter(byte) ? 0 : 1;
  return characters;
}

void CheckWord(std::string_view word) {
  Require(!word.empty(), "a word without letters");
  for (const char byte : word) {
    Require((static_cast<unsigned char>(byte) & 0x20) != 0, "a byte that folding changes");
    Require(byte != ' ', "a blank in a word");
  }
  Require(word.size() < 2 || word[1] != '-', "the key of a system record");
  const auto utf8 = Analyzer::Decode(word);
  Require(utf8.ok() && kestan::search::IsUtf8(*utf8), "a word that is not decoded");
  Require(CharactersIn(*utf8) <= Analyzer::kMaxCharacters, "a word that is too long");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const Analyzer analyzer;
  const auto words = analyzer.Analyze(text);
  Require(words.ok(), "no words");
  std::string visited;
  std::set<std::string, std::less<>> distinct;
  std::size_t last_end = 0;
  const auto status = analyzer.ForEachWord(text, [&](const AnalyzedWord& word) {
    CheckWord(word.word);
    Require(word.start < word.end && word.end <= text.size(), "a word outside the text");
    Require(word.end >= last_end, "a word before the one before");
    last_end = word.end;
    visited.append(word.word).append(1, ' ');
    distinct.emplace(word.word);
    return true;
  });
  Require(status.ok() && visited == *words, "other words for a visitor");
  const auto groups = analyzer.AnalyzeQuery(text);
  Require(groups.ok(), "no groups");
  for (const WordGroup& group : *groups) {
    Require(!group.words.empty() && group.end <= text.size(), "a group outside the text");
    for (const std::string& word : group.words) {
      Require(distinct.count(word) == 1, "a word of the query alone");
    }
  }
  Require(Analyzer::Decode(text).ok(), "text that is not decoded");
  return 0;
}
