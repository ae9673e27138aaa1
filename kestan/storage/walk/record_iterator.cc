// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/walk/record_iterator.h>

namespace kestan {

WalkOptions WalkOptions::Keys() {
  WalkOptions options;
  options.fetches_values = false;
  options.guards_size = true;
  return options;
}

WalkOptions WalkOptions::BoundedMemory() {
  WalkOptions options;
  options.visits_unreadable = true;
  options.guards_size = true;
  options.flushes_at_end = true;
  options.flush_policy = FlushPolicy();
  options.releases_before_flush = true;
  return options;
}

RecordIterator::RecordIterator(Database& store, const WalkOptions& options)
    : store_(store), options_(options), flush_(store, options.flush_policy), guard_(store) {
  Visit(store_.First(&key_, options_.fetches_values ? &value_ : nullptr));
}

void RecordIterator::Next() {
  const std::size_t bytes = RecordBytes();
  if (options_.releases_before_flush) {
    key_.Free();
    value_.Free();
  }
  flush_.Note(bytes);  // the walk goes on where changes cannot be written
  Visit(store_.Next(&key_, options_.fetches_values ? &value_ : nullptr));
}

// Takes in the record that a step of the store has reached, which returned `error`.
void RecordIterator::Visit(int error) {
  if (!Valid()) {
    value_.Free();
    walk_error_ = store_.WalkError();
    if (options_.flushes_at_end) store_.Flush();
    return;
  }
  error_ = error;
  if (error != 0) all_read_ = false;
  if (error != 0 && !options_.visits_unreadable) return key_.Free();
  if (!options_.guards_size) return;
  walk_error_ = guard_.Count(RecordBytes());
  if (walk_error_ != 0) {
    store_.Flush();  // values that have grown may not be in the file yet
    walk_error_ = guard_.Count(0);
  }
  if (walk_error_ != 0) key_.Free();
}

std::size_t RecordIterator::RecordBytes() const {
  return key_.ptr->size + (value_.ptr != nullptr ? std::size_t{value_.ptr->size} : 0);
}

}  // namespace kestan
