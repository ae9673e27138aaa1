// SPDX-License-Identifier: GPL-3.0-or-later
// A title, a summary and a free-form record for each name.
#ifndef KESTAN_ENGINE_SIDE_RECORDS_H_
#define KESTAN_ENGINE_SIDE_RECORDS_H_

#include <kestan/storage/database.h>
#include <kestan/text/scratch_text.h>

#include <string_view>

namespace kestan {

// Returns the text of `name` in `family`, in `*text`; null if there is none.
char* GetSideRecord(Database& store, std::string_view family, std::string_view name,
                    ScratchBuffer* text);

// Stores `text` for `name` in the file at once. Copies both.
//   Returns  0, -1 if no file is open, or gdbm's error number.
int PutSideRecord(Database& store, std::string_view family, std::string_view name,
                  std::string_view text);

// Deletes the text of `name` from the file at once. `is_open` says whether `store` has one.
//   Returns  0; -1 if there is none, it cannot be read, or no file is open.
int DeleteSideRecord(Database& store, bool is_open, std::string_view family, std::string_view name);

}  // namespace kestan

#endif  // KESTAN_ENGINE_SIDE_RECORDS_H_
