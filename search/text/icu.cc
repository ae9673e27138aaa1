// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/icu.h"

#include <dlfcn.h>
#include <unicode/uvernum.h>

#include <string>

#include "search/process/first_use.h"
#include "search/text/transliterate.h"

// The text of a name after ICU's macros have changed it.
#define KESTAN_TEXT(name) #name
#define KESTAN_ICU_NAME(function) KESTAN_TEXT(function)

namespace kestan::search {
namespace {

// It needs the other library of ICU, libicuuc, which is loaded with it and looked up too.
constexpr const char* kLibrary = "libicui18n.so." U_ICU_VERSION_SHORT;

[[noreturn]] void Fail() {
  const char* const error = dlerror();
  throw TransliterationError("ICU cannot be loaded: " +
                             std::string(error != nullptr ? error : kLibrary));
}

template <typename Function>
void Find(void* library, const char* name, Function* function) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  if (*function == nullptr) Fail();
}

Icu Load() {
  void* const library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) Fail();
  Icu icu = {};
  Find(library, KESTAN_ICU_NAME(u_charType), &icu.u_charType);
  Find(library, KESTAN_ICU_NAME(u_isalpha), &icu.u_isalpha);
  Find(library, KESTAN_ICU_NAME(ubrk_close), &icu.ubrk_close);
  Find(library, KESTAN_ICU_NAME(ubrk_first), &icu.ubrk_first);
  Find(library, KESTAN_ICU_NAME(ubrk_next), &icu.ubrk_next);
  Find(library, KESTAN_ICU_NAME(ubrk_open), &icu.ubrk_open);
  Find(library, KESTAN_ICU_NAME(ubrk_setText), &icu.ubrk_setText);
  Find(library, KESTAN_ICU_NAME(unorm2_getDecomposition), &icu.unorm2_getDecomposition);
  Find(library, KESTAN_ICU_NAME(unorm2_getNFDInstance), &icu.unorm2_getNFDInstance);
  Find(library, KESTAN_ICU_NAME(unorm2_getNFKCCasefoldInstance),
       &icu.unorm2_getNFKCCasefoldInstance);
  Find(library, KESTAN_ICU_NAME(unorm2_normalize), &icu.unorm2_normalize);
  Find(library, KESTAN_ICU_NAME(uscript_getScript), &icu.uscript_getScript);
  Find(library, KESTAN_ICU_NAME(utrans_close), &icu.utrans_close);
  Find(library, KESTAN_ICU_NAME(utrans_openU), &icu.utrans_openU);
  Find(library, KESTAN_ICU_NAME(utrans_transUChars), &icu.utrans_transUChars);
  return icu;
}

}  // namespace

const Icu& LoadedIcu() {
  static FirstUse<Icu> icu;
  return icu.Get(Load);
}

}  // namespace kestan::search
