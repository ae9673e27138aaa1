// SPDX-License-Identifier: GPL-3.0-or-later
// The language of a text, guessed from its most frequent words.
#ifndef KESTAN_SEARCH_VOCABULARY_LANGUAGE_GUESS_H_
#define KESTAN_SEARCH_VOCABULARY_LANGUAGE_GUESS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "search/text/language.h"

namespace kestan::search {

// Guesses the language of documents: the one whose most frequent words are the most of all words.
// The same texts in the same order give the same language.
class LanguageGuess {
 public:
  LanguageGuess();

  // Looks at the first 4 KB of `text`, in UTF-8, unless it has seen 256 KB of texts.
  void Add(std::string_view text);

  // Returns the language; English where the texts show no other. Never null.
  const Language* Guess() const;

 private:
  void Count(std::string_view word);

  std::size_t bytes_ = 0;
  std::uint64_t words_ = 0;
  std::vector<std::uint64_t> found_;  // how many of them each language has
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_LANGUAGE_GUESS_H_
