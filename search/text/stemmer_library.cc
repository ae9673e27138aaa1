// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/stemmer_library.h"

#include <dlfcn.h>

#include <array>

#include "search/process/first_use.h"

namespace kestan::search {
namespace {

// The name that Debian gives the library, and the one that others give it.
constexpr std::array kNames = {"libstemmer.so.0d", "libstemmer.so.0"};

void* OpenLibrary() {
  for (const char* const name : kNames) {
    void* const library = dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library != nullptr) return library;
  }
  return nullptr;
}

template <typename Function>
bool Find(void* library, const char* name, Function* function) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  return *function != nullptr;
}

StemmerLibrary Load() {
  StemmerLibrary loaded;
  void* const library = OpenLibrary();
  const bool is_whole = library != nullptr &&
                        Find(library, "sb_stemmer_new", &loaded.sb_stemmer_new) &&
                        Find(library, "sb_stemmer_delete", &loaded.sb_stemmer_delete) &&
                        Find(library, "sb_stemmer_stem", &loaded.sb_stemmer_stem) &&
                        Find(library, "sb_stemmer_length", &loaded.sb_stemmer_length);
  if (is_whole) return loaded;
  const char* const error = dlerror();
  loaded.error =
      "libstemmer cannot be loaded: " + std::string(error != nullptr ? error : kNames[0]);
  return loaded;
}

}  // namespace

const StemmerLibrary& LoadedStemmerLibrary() {
  static FirstUse<StemmerLibrary> library;
  return library.Get(Load);
}

}  // namespace kestan::search
