// SPDX-License-Identifier: GPL-3.0-or-later
// Guards against damaged files that gdbm does not detect.
#ifndef KESTAN_STORAGE_GDBM_FILE_H_
#define KESTAN_STORAGE_GDBM_FILE_H_

#include <gdbm.h>

#include <cstdint>

namespace kestan {

// Returns the number of the error with which the last call of gdbm failed. Where gdbm sets none, it
// had no memory for a bucket: that must pass neither for success nor for a missing record.
int LastError();

// Returns the size of the open file in bytes.
std::int64_t BytesOfFile(GDBM_FILE file);

// Returns whether `name` no longer names the open `file`, but another file or none.
bool HasLostItsName(GDBM_FILE file, const char* name);

// Checks what `file` says of its own free space, which gdbm believes when it writes.
//   Returns  0, or gdbm's error number: then nothing may be written into the file.
int CheckFreeSpace(GDBM_FILE file);

// Returns 0 if gdbm takes the file for valid, else the number of what it finds wrong.
int DamageOf(GDBM_FILE file);

// Closes `file` and releases it. One that gdbm calls damaged gives up its descriptor and its lock
// but stays in memory, since gdbm might free a part of it twice.
void CloseFile(GDBM_FILE file);

}  // namespace kestan

#endif  // KESTAN_STORAGE_GDBM_FILE_H_
