#include <kestan/storage/dbcache.h>

#include <algorithm>

namespace kestan {
namespace {

std::string_view BytesOf(const DBDatum& datum) { return {datum.data, datum.size}; }

}  // namespace

DBCache::Entry* DBCache::Find(const DBDatum& key) {
  const auto found = entries_.find(BytesOf(key));
  return found == entries_.end() ? nullptr : &found->second;
}

DBCache::Entry* DBCache::Insert(DBDatumPtr key, DBDatumPtr value) {
  const std::string_view bytes = BytesOf(*key.ptr);
  return &entries_.emplace(bytes, Entry{std::move(key), std::move(value)}).first->second;
}

void DBCache::Erase(const DBDatum& key) {
  const auto found = entries_.find(BytesOf(key));
  if (found != entries_.end()) entries_.erase(found);
}

Vector<const DBCache::Entry*> DBCache::DirtyInKeyOrder() const {
  Vector<const Entry*> dirty;
  for (const auto& [bytes, entry] : entries_) {
    if (entry.value.ptr->dirty) dirty.push_back(&entry);
  }
  std::sort(dirty.begin(), dirty.end(), [](const Entry* left, const Entry* right) {
    return std::less<>()(*left->key.ptr, *right->key.ptr);
  });
  return dirty;
}

void DBCache::DropUnheld() {
  for (auto entry = entries_.begin(); entry != entries_.end();) {
    entry = entry->second.value.ptr->refs == 1 ? entries_.erase(entry) : std::next(entry);
  }
}

}  // namespace kestan
