// SPDX-License-Identifier: GPL-3.0-or-later
// One gdbm file with a write-back cache in front of it.
#ifndef KESTAN_STORAGE_DATABASE_H_
#define KESTAN_STORAGE_DATABASE_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>

struct gdbm_file_info;

namespace kestan {
class DBCache;
class CycleDetector;
namespace gdbm {
class FreeListGuard;
}
}  // namespace kestan

// A key/value file whose records, once read or written, stay in a cache.
//
// Put() writes to the file at once. A holder of a value from Get(), First() or Next() may change it
// in place and mark it `dirty`; it reaches the file at the next Flush(), which then drops every
// cached record that nobody else holds. So a record that grows many times is written once.
//
// Every operation but Open(), Close() and ErrorString() needs an open file. Without one it prints
// "Kestan: Call to database::NAME without an open database" on the standard error stream and
// returns -1. Each object has a cache of its own. One thread at a time.
class KESTAN_EXPORT Database {
 public:
  Database();
  ~Database();  // closes the file
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Opens the file `name`. With `writer` 0 it must exist and is only read; otherwise it is read and
  // written, and created with mode 0644 where it is missing; should another file take its name
  // before it is locked, that one is opened. Drops what the cache holds from an earlier file,
  // except records that somebody still holds.
  //   Returns  0; -1 if a file is open already, which stays open; or gdbm's error number, also for
  //            a file whose record of its own free space is damaged, if `writer` is not 0.
  int Open(const char* name, int writer);

  // Flushes and closes the file; records that somebody holds stay in the cache.
  //   Returns  what Flush() returned; 0 if no file was open.
  int Close();

  // Writes every dirty record, in key order, drops every record that only the cache holds, and
  // syncs. A dirty record that somebody holds stays dirty, and the next Flush() writes it again.
  //   Returns  0, -1 without a file, or gdbm's error number of the last record that failed.
  //   Prints   "Kestan: Could not write item 'KEY' -- ERROR" for each record that failed.
  int Flush();

  // Returns gdbm's text for `error`, a constant string.
  static const char* ErrorString(int error);

  // Fetches the value of `key` into `*value`, which first gives up what it held. `key` may be the
  // very datum that `*value` held.
  //   Returns  0; -1 without a file; or gdbm's error number, with `*value` null: that of
  //            kestan::StoreError::kItemNotFound if there is no such record.
  //   Owner    shared with the cache: `*value` sees what others do to the value and keeps it alive.
  int Get(DBDatumPtr* value, const DBDatum& key);

  // Returns whether `error`, which Get() returned, means that the file could not be read. There may
  // be a record then, and nothing should be put in its place.
  static bool IsReadFailure(int error);

  // Fetches the values of `count` keys, as that many calls of Get() would. Much faster where most
  // of them are cached, since it waits for the memory of many at a time. `keys` must not be datums
  // that only `values` hold.
  //   Returns  0; -1 without a file; or gdbm's error number of the last read failure. Each of
  //            `values` is null where its key has no record or that could not be read.
  int GetMany(DBDatumPtr* values, const DBDatum* keys, std::size_t count);

  // Stores `value` under `key`, replacing an earlier one, in the file at once. Copies bytes of
  // datums that are not counted; a counted value is shared, and so is the counted key of one that
  // was not cached. Those who hold the cached value see the new bytes.
  //   Returns  0, -1 without a file, or gdbm's error number; then the cache has the new value and
  //            the file the old one. Prints nothing then.
  int Put(const DBDatum& key, const DBDatum& value);

  // Removes the record of `key` from the cache and the file; those who hold its value keep it.
  //   Returns  0 whether there was such a record or not; -1 without a file.
  int Del(const DBDatum& key);

  // Starts (First) or continues (Next) a walk over the keys of the file, in gdbm's order. `*key`
  // first gives up what it held. Where `value` is not null, fetches the value as Get() does. The
  // file may change between two steps, or be another one: each step is what gdbm makes it. A walk
  // that would never end in a damaged file is ended.
  //   Returns  0; -1 at the end, before any First(), or without a file, with `*key` null and
  //            `*value` as it was; or what Get() returned.
  int First(DBDatumPtr* key, DBDatumPtr* value = nullptr);
  int Next(DBDatumPtr* key, DBDatumPtr* value = nullptr);

  // Returns 0 if the last walk ended because there are no more keys, else gdbm's error number,
  // which is that of
  // kestan::StoreError::kBadHashTable where the walk would never have ended.
  int WalkError() const { return walk_error_; }

  // Returns gdbm's number of the first error since Open() that kept a record from being read or
  // from reaching the file, 0 if there was none. Stays after Close(), which may be the one to meet
  // it.
  int FileError() const { return file_error_; }

  // Asks gdbm whether it has met damage in the file, and has it look at its list of free space.
  // Once gdbm calls a file damaged it reads no more of it, so this comes last.
  //   Returns  0, -1 without a file, or gdbm's error number.
  int Verify();

  // Returns the size of the file in bytes, -1 without a file. Changes that wait for a flush may
  // change it.
  std::int64_t FileBytes() const;

  // Returns the descriptor of the open file, for reading its bytes as they are on the disk; -1
  // without a file. It belongs to the store, which closes it.
  int Descriptor() const;

  // Returns a number that grows with every call that may change what some key answers: Open(),
  // Put(), Del(), Flush() and what they are part of. Changes in place do not show in it.
  std::uint64_t Changes() const { return changes_; }

  // Waits until the file is on the disk.
  //   Returns  0, or -1 without a file.
  int Sync();

  // Flushes, has gdbm rewrite the file without its free space, and syncs.
  //   Returns  0 whatever these returned; -1 without a file.
  int Shrink();

 private:
  bool IsOpenFor(const char* operation) const;
  int Remember(int error);
  int Visit(DBDatumPtr* key, DBDatumPtr* value, char* found, int found_bytes);
  int Store(const DBDatum& key, const DBDatum& value);
  void PrepareToWrite();
  void MapFile(bool mapped);

  gdbm_file_info* dbf = nullptr;
  DBDatumPtr cursor;  // the key that First() or Next() found last
  std::unique_ptr<kestan::CycleDetector> cycle_detector_;
  std::unique_ptr<kestan::gdbm::FreeListGuard> free_list_guard_;
  int walk_error_ = 0;
  int file_error_ = 0;
  std::unique_ptr<kestan::DBCache> cache_;
  std::uint64_t changes_ = 0;
  bool writes_ = false;  // the open file was opened for writing
  bool mapped_ = false;  // and is mapped into memory at the moment
  bool mappable_ = false;
  std::int64_t mapped_bytes_ = 0;  // its size when it was mapped
};

#endif  // KESTAN_STORAGE_DATABASE_H_
