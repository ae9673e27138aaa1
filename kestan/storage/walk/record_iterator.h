// SPDX-License-Identifier: GPL-3.0-or-later
// A walk over all records of a store.
#ifndef KESTAN_STORAGE_WALK_RECORD_ITERATOR_H_
#define KESTAN_STORAGE_WALK_RECORD_ITERATOR_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/walk/flush_policy.h>
#include <kestan/storage/walk/size_guard.h>

#include <cstddef>

namespace kestan {

// What a walk reads, where it ends, and when it flushes the store, which caches every record read.
// The default reads values, ends at the first unreadable one, and never flushes.
struct WalkOptions {
  // Reads the keys alone, and ends where they have more bytes together than the file.
  static WalkOptions Keys();

  // Visits unreadable records too, in bounded memory: flushes the store now and then and at the
  // end, and ends where the records have more bytes together than the file.
  static WalkOptions BoundedMemory();

  bool fetches_values = true;
  bool visits_unreadable = false;  // otherwise the walk ends at the first one
  bool guards_size = false;        // ends where records overlap, as in a file made to do harm
  bool flushes_at_end = false;     // or the last records would wait in the cache for the next walk

  FlushPolicy flush_policy = FlushPolicy::Never();
  // Lets go of a record before the flush that comes after it. A changed record that is held during
  // a flush stays in the cache, and the next flush writes it again.
  bool releases_before_flush = false;
};

// Visits the records of a store in the file's order:
//
//   RecordIterator record(store);
//   for (; record.Valid(); record.Next()) Use(record.key(), record.value());
//   if (!record.all_read()) return false;
//
// The store has one cursor, so that only one walk can be under way at a time. Get() and changes in
// place are allowed between two steps. A cycle of keys in a damaged file ends the walk.
class RecordIterator {
 public:
  // Goes to the first record. Borrows `store`, which is open.
  explicit RecordIterator(Database& store, const WalkOptions& options = {});

  // Returns whether there is a record at hand. The next four need one.
  bool Valid() const { return key_.ptr != nullptr; }

  // Goes to the next record. Before that, lets go of this one and flushes as the options say.
  void Next();

  const DBDatum& key() const { return *key_.ptr; }

  // Returns a handle to the value, shared with the cache; null where it was not fetched or cannot
  // be read.
  const DBDatumPtr& value() const { return value_; }

  // Returns 0, or gdbm's number of the error that made the value unreadable.
  int error() const { return error_; }

  // Returns 0 while there is a record at hand and after the last one, else gdbm's number of the
  // error that hides the rest: an unreadable bucket, a cycle, or overlapping records.
  int walk_error() const { return walk_error_; }

  // Returns whether no error has hidden the rest or made a value unreadable so far.
  bool all_read() const { return all_read_ && walk_error_ == 0; }

 private:
  void Visit(int error);
  std::size_t RecordBytes() const;

  Database& store_;
  const WalkOptions options_;
  PeriodicFlush flush_;
  SizeGuard guard_;
  DBDatumPtr key_;
  DBDatumPtr value_;
  int error_ = 0;
  int walk_error_ = 0;
  bool all_read_ = true;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_WALK_RECORD_ITERATOR_H_
