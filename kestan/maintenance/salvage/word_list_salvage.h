// SPDX-License-Identifier: GPL-3.0-or-later
// What is wrong with a word list, and how much of it can be kept.
#ifndef KESTAN_MAINTENANCE_SALVAGE_WORD_LIST_SALVAGE_H_
#define KESTAN_MAINTENANCE_SALVAGE_WORD_LIST_SALVAGE_H_

#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// A list is damaged if a word claims to share more bytes than the word before has, or if it does
// not begin with a word. Bytes above 127 in words, which the engine stores as they are, look like
// such claims. Most of them claim 64 bytes or more, which damage to a few bits of a small number
// does not, and the bytes that UTF-8 has after one of them belong to it.
struct WordListFaults {
  bool IsAny() const { return lacks_first_word || shared_too_much != 0; }

  bool lacks_first_word = false;
  bool has_high_bytes = false;
  std::uint64_t shared_too_much = 0;  // how many words
};

// Reads `list`. If `repaired` is given, it becomes a list without faults: a word that claims too
// much shares all of the word before, bytes without a word become one, and NULs, which no word has,
// go.
WordListFaults ReadWordList(std::string_view list, String* repaired);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_SALVAGE_WORD_LIST_SALVAGE_H_
