// SPDX-License-Identifier: GPL-3.0-or-later
// Word lists by name.
#ifndef KESTAN_ENGINE_NAMED_WORD_LISTS_H_
#define KESTAN_ENGINE_NAMED_WORD_LISTS_H_

#include <kestan/storage/database.h>
#include <kestan/text/scratch_text.h>

#include <string_view>

namespace kestan {

// Stores `words`, which white space separates, as the list `name`, encoded in `*buffer` first.
//   Returns  0, -1 if no file is open, or gdbm's error number.
int PutWordList(Database& store, std::string_view name, std::string_view words,
                ScratchBuffer* buffer);

// Finds the list `name`.
//   Returns  its words, each followed by a line feed, in `*text`; null if there is no such list.
char* GetWordList(Database& store, std::string_view name, ScratchBuffer* text);

}  // namespace kestan

#endif  // KESTAN_ENGINE_NAMED_WORD_LISTS_H_
