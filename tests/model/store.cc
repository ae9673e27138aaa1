// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/store.h"

#include <gdbm.h>

namespace kestan_model {

bool Store::Refuses(const char* operation) {
  if (IsOpen()) return false;
  said_ += std::string("Kestan: Call to database::") + operation + " without an open database\n";
  return true;
}

void Store::DropWhatNobodyHolds() {
  for (auto entry = cache_.begin(); entry != cache_.end();) {
    entry = entry->second.use_count() == 1 ? cache_.erase(entry) : std::next(entry);
  }
}

bool Store::Open(const std::string& path, bool writer) {
  const bool exists = disk_.files.count(path) != 0;
  if (disk_.no_such_folder.count(path) != 0 || (!exists && !writer)) return false;
  DropWhatNobodyHolds();
  disk_.files[path];
  path_ = path;
  writer_ = writer;
  return true;
}

void Store::Close() {
  if (!IsOpen()) return;
  Flush();
  path_.clear();
}

// A file that is open for reading refuses, and the cache then differs from it until a flush.
int Store::Write(const std::string& key, const std::string& bytes) {
  if (!writer_) return GDBM_READER_CANT_STORE;
  disk_.files[path_][key] = bytes;
  return 0;
}

int Store::Flush() {
  if (Refuses("flush")) return -1;
  int result = 0;
  for (const auto& [key, value] : cache_) {
    if (!value->dirty) continue;
    const int error = Write(key, value->bytes);
    if (error == 0) continue;
    said_ += std::string("Kestan: Could not write item '") + key.c_str() + "' -- " +
             gdbm_strerror(error) + "\n";
    result = error;
  }
  DropWhatNobodyHolds();
  return result;
}

int Store::Shrink() {
  if (Refuses("shrink")) return -1;
  Flush();
  return 0;
}

Value Store::Peek(const std::string& key) const {
  if (!IsOpen()) return nullptr;
  if (const auto cached = cache_.find(key); cached != cache_.end()) return cached->second;
  const Records& file = disk_.files[path_];
  const auto stored = file.find(key);
  if (stored == file.end()) return nullptr;
  return std::make_shared<Cell>(Cell{stored->second, false});
}

Value Store::Get(const std::string& key) {
  if (Refuses("get")) return nullptr;
  const Value value = Peek(key);
  if (value != nullptr) cache_[key] = value;
  return value;
}

int Store::Put(const std::string& key, const std::string& bytes) {
  if (Refuses("put")) return -1;
  Value& cached = cache_[key];
  if (cached == nullptr) cached = std::make_shared<Cell>();
  *cached = Cell{bytes, false};
  return Write(key, bytes);
}

int Store::Share(const std::string& key, const Value& value) {
  if (Refuses("put")) return -1;
  if (cache_.count(key) != 0) value->dirty = false;
  cache_[key] = value;
  return Write(key, value->bytes);
}

int Store::Del(const std::string& key) {
  if (Refuses("del")) return -1;
  cache_.erase(key);
  if (writer_) disk_.files[path_].erase(key);
  return 0;
}

void Store::ForEach(const std::function<void(const std::string&, const Value&)>& visit) {
  if (Refuses("first")) return;
  for (const std::string& key : order_(path_)) visit(key, Get(key));
}

}  // namespace kestan_model
