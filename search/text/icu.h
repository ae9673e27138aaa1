// ICU, loaded when a text first needs it.
#ifndef KESTAN_SEARCH_TEXT_ICU_H_
#define KESTAN_SEARCH_TEXT_ICU_H_

#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utrans.h>

namespace kestan::search {

// The functions of ICU that this library calls. ICU's headers make macros of these names, which
// append ICU's version: the members have the names that the functions have in the library.
struct Icu {
  decltype(&::u_charType) u_charType;
  decltype(&::u_isalpha) u_isalpha;
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
