// SPDX-License-Identifier: GPL-3.0-or-later
// ICU, loaded when a text first needs it.
#ifndef KESTAN_SEARCH_TEXT_ICU_H_
#define KESTAN_SEARCH_TEXT_ICU_H_

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>
#include <unicode/utrans.h>

namespace kestan::search {

// The functions of ICU that this library calls. ICU's headers make macros of these names, which
// append ICU's version: the members have the names that the functions have in the library.
struct Icu {
  decltype(&::u_charType) u_charType;
  decltype(&::u_isalpha) u_isalpha;
  decltype(&::ubrk_close) ubrk_close;
  decltype(&::ubrk_first) ubrk_first;
  decltype(&::ubrk_next) ubrk_next;
  decltype(&::ubrk_open) ubrk_open;
  decltype(&::ubrk_setText) ubrk_setText;
  decltype(&::unorm2_getDecomposition) unorm2_getDecomposition;
  decltype(&::unorm2_getNFDInstance) unorm2_getNFDInstance;
  decltype(&::unorm2_getNFKCCasefoldInstance) unorm2_getNFKCCasefoldInstance;
  decltype(&::unorm2_normalize) unorm2_normalize;
  decltype(&::uscript_getScript) uscript_getScript;
  decltype(&::utrans_close) utrans_close;
  decltype(&::utrans_openU) utrans_openU;
  decltype(&::utrans_transUChars) utrans_transUChars;
};

// Returns ICU, which stays loaded until the process ends. Linked, it would cost each process half a
// millisecond at its start, and 20 where nothing of it is in memory; ASCII needs nothing of it.
// Any number of threads may call it at once.
//   Throws   TransliterationError if this machine lacks the version that the library was built
//   with.
const Icu& LoadedIcu();

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ICU_H_
