// What is wrong with a word list, and how much of it can be kept.
#ifndef KESTAN_MAINTENANCE_REPAIR_WORD_LIST_REPAIR_H_
#define KESTAN_MAINTENANCE_REPAIR_WORD_LIST_REPAIR_H_

#include <kestan/storage/memory.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// A list is damaged where a word claims to share more bytes than the word before has, and where the
// first bytes are no word. Bytes above 127 in words, which the engine stores as they are, look like
// such claims. Mostly they claim 64 bytes or more, as no damage in a few bits of a small number
// does, and the bytes that UTF-8 has behind one of them belong to it.
struct WordListFaults {
  bool IsAny() const { return lacks_first_word || shared_too_much != 0; }

  bool lacks_first_word = false;
  bool has_high_bytes = false;
  std::uint64_t shared_too_much = 0;  // how many words
};

// Reads `list`. If `mended` is given, it becomes a list without faults: a word that claims too much
// shares all of the word before, bytes without a word become one, and NULs, which no word has, go.
WordListFaults ReadWordList(std::string_view list, String* mended);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_WORD_LIST_REPAIR_H_
