// SPDX-License-Identifier: GPL-3.0-or-later
// The stems of words, by which a question finds what is said in other forms of its words.
#ifndef KESTAN_SEARCH_VOCABULARY_STEM_H_
#define KESTAN_SEARCH_VOCABULARY_STEM_H_

#include <kestan/search/status.h>

#include <memory>
#include <string>
#include <string_view>

#include "search/text/language.h"

struct sb_stemmer;

namespace kestan::search {

// Finds the stems of words in one language, with libstemmer: "connect" for connect, connects,
// connected, connecting and connection. Words of one stem mean about the same; the stem itself need
// not be a word. Words are in UTF-8, without capitals and accents. One thread at a time.
class Stemmer {
 public:
  // Borrows `language`; null for words without other forms. Loads nothing yet.
  explicit Stemmer(const Language* language) : language_(language) {}

  // Gets ready for words that HasForms().
  //   Returns  kSystem if libstemmer cannot be loaded or lacks the language.
  Status Open();

  // Returns whether `word` is of a script of the language and has at least two letters. Another
  // word stands for itself alone.
  bool HasForms(std::string_view word) const;

  // Returns the stem of `word`, of fewer than 2^31 bytes. After Open(). Lent until the next call.
  //   Throws   std::bad_alloc.
  std::string_view Stem(std::string_view word);

  // Returns what all words of that `stem` begin with: it, without the last letters that may be
  // others in a word (happi: happy, happiness); "" if words may begin with anything.
  std::string_view PrefixOf(std::string_view stem) const;

 private:
  struct Delete {
    void operator()(sb_stemmer* stemmer) const;
  };

  const Language* language_;
  std::unique_ptr<sb_stemmer, Delete> stemmer_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_STEM_H_
