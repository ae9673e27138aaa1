// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/database.h>

#include <gdbm.h>
#include <kestan/storage/cycle_detector.h>
#include <kestan/storage/dbcache.h>
#include <kestan/storage/gdbm/free_list_guard.h>
#include <kestan/storage/gdbm_file.h>
#include <kestan/storage/memory/diagnostics.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/owned_datum.h>

#include <climits>
#include <utility>

namespace {

constexpr int kBlockBytes = 512;
constexpr int kFileMode = 0644;
constexpr std::size_t kCachedBuckets = 65536;  // of 512 bytes: as many as a million keys fill

// gdbm counts bytes in a signed int.
bool FitsGdbm(const DBDatum& bytes) { return bytes.size <= INT_MAX; }

// gdbm refuses null pointers, even to no bytes at all.
datum ForGdbm(const DBDatum& bytes) {
  static const char kNothing = 0;
  char* const data = bytes.data != nullptr ? bytes.data : const_cast<char*>(&kNothing);
  return {data, static_cast<int>(bytes.size)};
}

// Another process may put another file in the place of this one before gdbm has its lock. What is
// written into the old one would be lost.
//   Returns  null, with gdbm's error number set, if it cannot be opened.
GDBM_FILE OpenForWriting(const char* name) {
  constexpr int kTries = 100;
  for (int i = 0; i < kTries; ++i) {
    GDBM_FILE file = gdbm_open(name, kBlockBytes, GDBM_WRCREAT | GDBM_FAST, kFileMode, nullptr);
    if (file == nullptr || !kestan::HasLostItsName(file, name)) return file;
    kestan::CloseFile(file);
  }
  gdbm_errno = GDBM_CANT_BE_WRITER;
  return nullptr;
}

// A handle to a datum that may be counted; counting changes it, whatever the caller may change.
DBDatumPtr Share(const DBDatum& datum) { return DBDatumPtr(const_cast<DBDatum*>(&datum)); }

// Gives `target` a fresh buffer with the bytes of `source`, which may lie in the old one.
void Rewrite(DBDatum* target, const DBDatum& source) {
  char* const bytes = kestan::CopyBytes(source.data, source.size);
  target->size = source.size;
  std::free(target->data);
  target->data = bytes;
}

// Returns whether gdbm's walk on from `key` never ends, in `file` as it is now.
bool LeadsToCycle(GDBM_FILE file, DBDatumPtr key) {
  kestan::CycleDetector guard;
  while (!guard.HasMet(*key.ptr)) {
    const datum next = gdbm_nextkey(file, ForGdbm(*key.ptr));
    if (next.dptr == nullptr) return false;
    key = kestan::AdoptDatum(next.dptr, static_cast<std::uint32_t>(next.dsize));
  }
  return true;
}

}  // namespace

Database::Database()
    : cycle_detector_(kestan::New<kestan::CycleDetector>()),
      free_list_guard_(kestan::New<kestan::gdbm::FreeListGuard>()),
      cache_(kestan::New<kestan::DBCache>()) {}

Database::~Database() { Close(); }

int Database::Open(const char* name, int writer) {
  if (dbf != nullptr) return -1;
  ++changes_;
  cache_->DropUnheld();  // what was read from an earlier file must not answer for this one
  dbf = writer != 0 ? OpenForWriting(name)
                    : gdbm_open(name, kBlockBytes, GDBM_READER, kFileMode, nullptr);
  if (dbf == nullptr) return kestan::LastError();
  if (const int error = writer != 0 ? kestan::CheckFreeSpace(dbf) : 0; error != 0) {
    kestan::CloseFile(std::exchange(dbf, nullptr));
    return error;
  }
  file_error_ = 0;
  writes_ = writer != 0;
  if (writes_) PrepareToWrite();
  return 0;
}

int Database::Close() {
  if (dbf == nullptr) return 0;
  const int result = Flush();
  free_list_guard_->Release();
  kestan::CloseFile(std::exchange(dbf, nullptr));
  return result;
}

int Database::Flush() {
  if (!IsOpenFor("flush")) return -1;
  ++changes_;
  int result = 0;
  for (const kestan::DBCache::Entry* entry : cache_->DirtyInKeyOrder()) {
    const DBDatum& key = *entry->key.ptr;
    const int error = Store(key, *entry->value.ptr);
    if (error == 0) continue;
    result = error;
    const kestan::String name(key.data, key.size);  // printed up to its first NUL, if it has one
    kestan::PrintDiagnostic("Could not write item '%s' -- %s\n", name.c_str(), ErrorString(error));
  }
  cache_->DropUnheld();
  Sync();
  return result;
}

const char* Database::ErrorString(int error) { return gdbm_strerror(error); }

int Database::Get(DBDatumPtr* value, const DBDatum& key) {
  const DBDatumPtr previous = std::move(*value);  // `key` may be the datum that it held
  if (!IsOpenFor("get")) return -1;
  const kestan::DBCache::Entry* entry = cache_->Find(key);
  if (entry == nullptr) {
    if (!FitsGdbm(key)) return GDBM_ITEM_NOT_FOUND;
    const datum found = gdbm_fetch(dbf, ForGdbm(key));
    if (found.dptr == nullptr) return Remember(kestan::LastError());
    entry = cache_->Insert(kestan::CopyDatum(key),
                           kestan::AdoptDatum(found.dptr, static_cast<std::uint32_t>(found.dsize)));
  }
  *value = entry->value;
  return 0;
}

bool Database::IsReadFailure(int error) { return error > 0 && error != GDBM_ITEM_NOT_FOUND; }

int Database::GetMany(DBDatumPtr* values, const DBDatum* keys, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i].Free();
  if (!IsOpenFor("get")) return -1;
  cache_->FindMany(values, keys, count);
  int result = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const int error = values[i].ptr == nullptr ? Get(&values[i], keys[i]) : 0;
    if (IsReadFailure(error)) result = error;
  }
  return result;
}

int Database::Put(const DBDatum& key, const DBDatum& value) {
  if (!IsOpenFor("put")) return -1;
  ++changes_;
  kestan::DBCache::Entry* entry = cache_->Find(key);
  if (entry == nullptr) {
    const bool counted = value.refs > 0;
    entry = cache_->Insert(counted && key.refs > 0 ? Share(key) : kestan::CopyDatum(key),
                           counted ? Share(value) : kestan::CopyDatum(value));
  } else {
    if (value.refs > 0) {
      entry->value = Share(value);
    } else {
      Rewrite(entry->value.ptr, value);
    }
    entry->value.ptr->dirty = false;
  }
  return Store(*entry->key.ptr, *entry->value.ptr);
}

int Database::Del(const DBDatum& key) {
  if (!IsOpenFor("del")) return -1;
  ++changes_;
  if (FitsGdbm(key) && gdbm_delete(dbf, ForGdbm(key)) != 0) Remember(kestan::LastError());
  cache_->Erase(key);  // last, for it may free the bytes of `key`
  return 0;
}

int Database::First(DBDatumPtr* key, DBDatumPtr* value) {
  key->Free();
  if (!IsOpenFor("first")) return -1;
  MapFile(true);
  cycle_detector_->Restart();
  const datum found = gdbm_firstkey(dbf);
  return Visit(key, value, found.dptr, found.dsize);
}

int Database::Next(DBDatumPtr* key, DBDatumPtr* value) {
  key->Free();
  if (!IsOpenFor("next") || cursor.ptr == nullptr) return -1;
  const datum found = gdbm_nextkey(dbf, ForGdbm(*cursor.ptr));
  return Visit(key, value, found.dptr, found.dsize);
}

// Moves the walk to the key of `found_bytes` bytes at `found`, which it takes; null ends the walk.
// In a damaged file gdbm may come to the same keys for ever. A key that comes twice does not prove
// that: changes of the file may have moved it, and in another file it is another record. So the
// proof is a walk ahead, during which nothing changes.
int Database::Visit(DBDatumPtr* key, DBDatumPtr* value, char* found, int found_bytes) {
  const int error = found == nullptr ? kestan::LastError() : 0;
  walk_error_ = IsReadFailure(error) ? Remember(error) : 0;
  if (found == nullptr) return -1;
  cursor = kestan::AdoptDatum(found, static_cast<std::uint32_t>(found_bytes));
  if (const kestan::DBCache::Entry* entry = cache_->Find(*cursor.ptr)) cursor = entry->key;
  if (cycle_detector_->HasMet(*cursor.ptr) && LeadsToCycle(dbf, cursor)) {
    walk_error_ = Remember(GDBM_BAD_HASH_TABLE);
    return -1;
  }
  *key = cursor;
  return value != nullptr ? Get(value, *cursor.ptr) : 0;
}

int Database::Sync() {
  if (!IsOpenFor("sync")) return -1;
  if (gdbm_sync(dbf) != 0) Remember(kestan::LastError());
  return 0;
}

int Database::Shrink() {
  if (!IsOpenFor("shrink")) return -1;
  Flush();
  // gdbm maps the new file whatever the setting, and unmaps a file only where the setting says that
  // it is mapped. A mapping that stayed would be all that later syncs wait for.
  MapFile(true);
  if (gdbm_reorganize(dbf) != 0) Remember(kestan::LastError());
  if (writes_) PrepareToWrite();  // it is another file now
  return Sync();
}

int Database::Verify() {
  if (!IsOpenFor("verify")) return -1;
  return kestan::DamageOf(dbf);
}

std::int64_t Database::FileBytes() const {
  return IsOpenFor("size") ? kestan::BytesOfFile(dbf) : -1;
}

int Database::Descriptor() const { return IsOpenFor("descriptor") ? gdbm_fdesc(dbf) : -1; }

bool Database::IsOpenFor(const char* operation) const {
  if (dbf != nullptr) return true;
  kestan::PrintDiagnostic("Call to database::%s without an open database\n", operation);
  return false;
}

// Keeps the first error that says more than that there is no such record. Returns `error`.
int Database::Remember(int error) {
  if (file_error_ == 0 && error != GDBM_ITEM_NOT_FOUND) file_error_ = error;
  return error;
}

// Walks are twice as fast over a mapped file, and so are writes after one that find room in it. But
// gdbm maps a file again each time it grows, which costs far more than it saves: the first growth
// ends the mapping, and before a walk there is none.
void Database::MapFile(bool mapped) {
  if (!writes_ || mapped == mapped_ || (mapped && !mappable_)) return;
  int wanted = mapped ? 1 : 0;
  const bool done = gdbm_setopt(dbf, GDBM_SETMMAP, &wanted, sizeof wanted) == 0;
  if (done) mapped_ = mapped;
  mappable_ = done;  // after a failure gdbm would take the next try for done, and read nowhere
  if (mapped_) mapped_bytes_ = kestan::BytesOfFile(dbf);
}

// Sets up the file that gdbm has just opened or made.
void Database::PrepareToWrite() {
  std::size_t buckets = kCachedBuckets;
  gdbm_setopt(dbf, GDBM_SETCACHESIZE, &buckets, sizeof buckets);
  mapped_ = mappable_ = true;  // as gdbm opens files
  MapFile(false);
  free_list_guard_->Watch(gdbm_fdesc(dbf));
}

// Writes one record to the file.
//   Returns  0 or gdbm's error number.
int Database::Store(const DBDatum& key, const DBDatum& value) {
  if (!FitsGdbm(key) || !FitsGdbm(value)) return Remember(GDBM_MALFORMED_DATA);
  if (const int error = free_list_guard_->BeforeStore(); error != 0) return Remember(error);
  const int failed = gdbm_store(dbf, ForGdbm(key), ForGdbm(value), GDBM_REPLACE);
  const int error = failed != 0 ? Remember(kestan::LastError()) : 0;
  if (mapped_ && kestan::BytesOfFile(dbf) != mapped_bytes_) MapFile(false);
  return error;
}
