// SPDX-License-Identifier: GPL-3.0-or-later
// libstemmer, loaded when word forms are first asked for.
#ifndef KESTAN_SEARCH_TEXT_STEMMER_LIBRARY_H_
#define KESTAN_SEARCH_TEXT_STEMMER_LIBRARY_H_

#include <libstemmer.h>

#include <string>

namespace kestan::search {

// The functions of libstemmer that this library calls.
struct StemmerLibrary {
  decltype(&::sb_stemmer_new) sb_stemmer_new = nullptr;
  decltype(&::sb_stemmer_delete) sb_stemmer_delete = nullptr;
  decltype(&::sb_stemmer_stem) sb_stemmer_stem = nullptr;
  decltype(&::sb_stemmer_length) sb_stemmer_length = nullptr;
  std::string error;  // why it could not be loaded; "": it was
};

// Returns libstemmer, which stays loaded until the process ends. Linked, its tables would cost each
// process time at its start, whether it asks for word forms or not. Any number of threads may call
// it at once.
const StemmerLibrary& LoadedStemmerLibrary();

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_STEMMER_LIBRARY_H_
