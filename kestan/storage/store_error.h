// SPDX-License-Identifier: GPL-3.0-or-later
// The error numbers of the store.
#ifndef KESTAN_STORAGE_STORE_ERROR_H_
#define KESTAN_STORAGE_STORE_ERROR_H_

#include <kestan/storage/export.h>

namespace kestan {

// The error numbers that Database and what stands on it hand out. But for kNotOpen they are gdbm's,
// and one that has no name here may come out too. StoreError{number} is the one of a number.
enum class StoreError : int {
  kNotOpen = -1,  // no file is open, or one is open already
  kNone = 0,
  kOutOfMemory = 1,
  kBlockSize = 2,
  kFileOpen = 3,  // errno says why
  kFileWrite = 4,
  kFileSeek = 5,
  kFileRead = 6,
  kBadMagicNumber = 7,  // no gdbm file
  kEmptyFile = 8,
  kCannotBeReader = 9,   // another process has the file open for writing
  kCannotBeWriter = 10,  // another process has the file open
  kReaderCannotDelete = 11,
  kReaderCannotStore = 12,
  kReaderCannotReorganize = 13,
  kUnknown = 14,
  kItemNotFound = 15,  // there is no such record
  kReorganizeFailed = 16,
  kMalformedData = 18,
  kByteSwapped = 21,    // written by a machine of the other byte order
  kBadFileOffset = 22,  // written by a machine with other file offsets
  kFileStat = 24,
  kFileEnd = 25,            // the file is shorter than its records
  kNeedsRecovery = 29,      // damaged, or a write failed earlier
  kDirectoryOverflow = 31,  // too many keys of one hash
  kBadBucket = 32,
  kBadHeader = 33,
  kBadFreeSpace = 34,
  kBadHashTable = 35,  // also of records that share their bytes
  kBadDirectoryEntry = 36,
  kFileClose = 37,
  kFileSync = 38,
  kFileTruncate = 39,
  kBucketCacheCorrupted = 40,
  kBadHashEntry = 41,
  kRealPath = 43,
};

// Returns gdbm's text for `error`, a constant string, as Database::ErrorString() does.
KESTAN_EXPORT const char* ErrorString(StoreError error);

}  // namespace kestan

#endif  // KESTAN_STORAGE_STORE_ERROR_H_
