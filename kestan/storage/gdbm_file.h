// What gdbm itself does not guard against in a damaged file.
#ifndef KESTAN_STORAGE_GDBM_FILE_H_
#define KESTAN_STORAGE_GDBM_FILE_H_

#include <gdbm.h>

#include <cstdint>

namespace kestan {

// Returns the number of the error with which the last call of gdbm failed. gdbm tells none where it
// has no memory for a bucket, which must not pass for success, nor for a record that is not there.
int LastError();

// Returns the size of the open file in bytes.
std::int64_t BytesOfFile(GDBM_FILE file);

// Returns whether there is no file called `name` any more, or another one than the open `file`.
bool HasLostItsName(GDBM_FILE file, const char* name);

// Looks whether `file` says of its own space what can be, as gdbm believes it when it writes.
//   Returns  0, or gdbm's error number: then nothing may be written into the file.
int CheckFreeSpace(GDBM_FILE file);

// Returns 0 if gdbm takes the file for sound, else the number of what it finds wrong.
int DamageOf(GDBM_FILE file);

// Closes `file` and releases it; one that gdbm calls damaged gives up its descriptor and its lock,
// but stays in memory, for gdbm might free a part of it twice.
void CloseFile(GDBM_FILE file);

}  // namespace kestan

#endif  // KESTAN_STORAGE_GDBM_FILE_H_
