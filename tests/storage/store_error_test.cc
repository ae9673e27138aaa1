// SPDX-License-Identifier: GPL-3.0-or-later
// The error numbers that hosts see are those of the gdbm that the library is built with.
#include <kestan/storage/store_error.h>

#include <gdbm.h>
#include <gtest/gtest.h>
#include <kestan/storage/database.h>

namespace kestan_tests {
namespace {

using kestan::StoreError;

static_assert(static_cast<int>(StoreError::kOutOfMemory) == GDBM_MALLOC_ERROR);
static_assert(static_cast<int>(StoreError::kBlockSize) == GDBM_BLOCK_SIZE_ERROR);
static_assert(static_cast<int>(StoreError::kFileOpen) == GDBM_FILE_OPEN_ERROR);
static_assert(static_cast<int>(StoreError::kFileWrite) == GDBM_FILE_WRITE_ERROR);
static_assert(static_cast<int>(StoreError::kFileSeek) == GDBM_FILE_SEEK_ERROR);
static_assert(static_cast<int>(StoreError::kFileRead) == GDBM_FILE_READ_ERROR);
static_assert(static_cast<int>(StoreError::kBadMagicNumber) == GDBM_BAD_MAGIC_NUMBER);
static_assert(static_cast<int>(StoreError::kEmptyFile) == GDBM_EMPTY_DATABASE);
static_assert(static_cast<int>(StoreError::kCannotBeReader) == GDBM_CANT_BE_READER);
static_assert(static_cast<int>(StoreError::kCannotBeWriter) == GDBM_CANT_BE_WRITER);
static_assert(static_cast<int>(StoreError::kReaderCannotDelete) == GDBM_READER_CANT_DELETE);
static_assert(static_cast<int>(StoreError::kReaderCannotStore) == GDBM_READER_CANT_STORE);
static_assert(static_cast<int>(StoreError::kReaderCannotReorganize) == GDBM_READER_CANT_REORGANIZE);
static_assert(static_cast<int>(StoreError::kUnknown) == GDBM_UNKNOWN_ERROR);
static_assert(static_cast<int>(StoreError::kItemNotFound) == GDBM_ITEM_NOT_FOUND);
static_assert(static_cast<int>(StoreError::kReorganizeFailed) == GDBM_REORGANIZE_FAILED);
static_assert(static_cast<int>(StoreError::kMalformedData) == GDBM_MALFORMED_DATA);
static_assert(static_cast<int>(StoreError::kByteSwapped) == GDBM_BYTE_SWAPPED);
static_assert(static_cast<int>(StoreError::kBadFileOffset) == GDBM_BAD_FILE_OFFSET);
static_assert(static_cast<int>(StoreError::kFileStat) == GDBM_FILE_STAT_ERROR);
static_assert(static_cast<int>(StoreError::kFileEnd) == GDBM_FILE_EOF);
static_assert(static_cast<int>(StoreError::kNeedsRecovery) == GDBM_NEED_RECOVERY);
static_assert(static_cast<int>(StoreError::kDirectoryOverflow) == GDBM_DIR_OVERFLOW);
static_assert(static_cast<int>(StoreError::kBadBucket) == GDBM_BAD_BUCKET);
static_assert(static_cast<int>(StoreError::kBadHeader) == GDBM_BAD_HEADER);
static_assert(static_cast<int>(StoreError::kBadFreeSpace) == GDBM_BAD_AVAIL);
static_assert(static_cast<int>(StoreError::kBadHashTable) == GDBM_BAD_HASH_TABLE);
static_assert(static_cast<int>(StoreError::kBadDirectoryEntry) == GDBM_BAD_DIR_ENTRY);
static_assert(static_cast<int>(StoreError::kFileClose) == GDBM_FILE_CLOSE_ERROR);
static_assert(static_cast<int>(StoreError::kFileSync) == GDBM_FILE_SYNC_ERROR);
static_assert(static_cast<int>(StoreError::kFileTruncate) == GDBM_FILE_TRUNCATE_ERROR);
static_assert(static_cast<int>(StoreError::kBucketCacheCorrupted) == GDBM_BUCKET_CACHE_CORRUPTED);
static_assert(static_cast<int>(StoreError::kBadHashEntry) == GDBM_BAD_HASH_ENTRY);
static_assert(static_cast<int>(StoreError::kRealPath) == GDBM_ERR_REALPATH);

TEST(StoreErrorTest, MissingFileCannotBeOpened) {
  Database store;
  EXPECT_EQ(store.Open("there/is/no/such/file", 0), static_cast<int>(StoreError::kFileOpen));
}

TEST(StoreErrorTest, ClosedStoreIsNotOpen) {
  Database store;
  EXPECT_EQ(store.Flush(), static_cast<int>(StoreError::kNotOpen));
}

TEST(StoreErrorTest, EveryNumberHasAText) {
  EXPECT_STREQ(Database::ErrorString(static_cast<int>(StoreError::kNone)), "No error");
  EXPECT_STREQ(Database::ErrorString(static_cast<int>(StoreError::kItemNotFound)),
               gdbm_strerror(GDBM_ITEM_NOT_FOUND));
  EXPECT_STREQ(ErrorString(StoreError::kFileRead), gdbm_strerror(GDBM_FILE_READ_ERROR));
}

}  // namespace
}  // namespace kestan_tests
