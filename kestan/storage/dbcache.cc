// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/dbcache.h>

#include <kestan/storage/datum_bytes.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace kestan {
namespace {

constexpr std::size_t kFirstPlaces = 64;
constexpr std::size_t kMostPlacesKept = 2048;  // for the 1000 records of a walk between flushes
constexpr std::size_t kBatch = 16;             // look-ups that wait for memory at the same time

// The table for `count` entries, so that the next one fits as well.
std::size_t PlacesFor(std::size_t count) {
  std::size_t places = kFirstPlaces;
  while (count * 4 >= places * 3) places *= 2;
  return places;
}

bool IsSame(const KeyDigest& left, const KeyDigest& right) {
  return left.hash == right.hash && left.length == right.length && left.start == right.start;
}

}  // namespace

KeyDigest::KeyDigest(const DBDatum& key, const Hasher& hasher)
    : hash(hasher(BytesOf(key))), length(static_cast<std::uint8_t>(std::min(key.size, 255u))) {
  const std::size_t count = std::min<std::size_t>(key.size, kShortBytes);
  if (count != 0) std::memcpy(start.data(), key.data, count);
}

DBCache::Entry* DBCache::Find(const DBDatum& key) {
  return count_ != 0 ? Find(key, KeyDigest(key, hasher_)) : nullptr;
}

DBCache::Entry* DBCache::Find(const DBDatum& key, const KeyDigest& digest) {
  for (std::size_t place = HomeOf(digest); places_[place].key.ptr != nullptr;
       place = After(place)) {
    Entry& entry = places_[place];
    if (!IsSame(entry.digest, digest)) continue;
    if (digest.IsWhole() || BytesOf(*entry.key.ptr) == BytesOf(key)) return &entry;
  }
  return nullptr;
}

void DBCache::FindMany(DBDatumPtr* values, const DBDatum* keys, std::size_t count) {
  if (count_ == 0) return;
  for (std::size_t done = 0; done < count; done += kBatch) {
    FindBatch(values + done, keys + done, std::min(kBatch, count - done));
  }
}

void DBCache::FindBatch(DBDatumPtr* values, const DBDatum* keys, std::size_t count) {
  std::array<KeyDigest, kBatch> digests;
  std::array<DBDatum*, kBatch> found;
  for (std::size_t i = 0; i < count; ++i) {
    digests[i] = KeyDigest(keys[i], hasher_);
    __builtin_prefetch(&places_[HomeOf(digests[i])]);
  }
  for (std::size_t i = 0; i < count; ++i) {
    const Entry* const entry = Find(keys[i], digests[i]);
    found[i] = entry != nullptr ? entry->value.ptr : nullptr;
    if (entry != nullptr) __builtin_prefetch(found[i]);
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (found[i] == nullptr) continue;
    __builtin_prefetch(found[i]->data);  // where it begins and where it will grow
    __builtin_prefetch(found[i]->data + found[i]->size);
    values[i] = DBDatumPtr(found[i]);
  }
}

DBCache::Entry* DBCache::Insert(DBDatumPtr key, DBDatumPtr value) {
  if (count_ * 4 >= places_.size() * 3) Rebuild(std::max(kFirstPlaces, places_.size() * 2));
  const KeyDigest digest(*key.ptr, hasher_);
  Entry& entry = places_[FreePlaceFor(digest)];
  entry = {std::move(key), std::move(value), digest};
  ++count_;
  return &entry;
}

std::size_t DBCache::FreePlaceFor(const KeyDigest& digest) const {
  std::size_t place = HomeOf(digest);
  while (places_[place].key.ptr != nullptr) place = After(place);
  return place;
}

void DBCache::Rebuild(std::size_t places) {
  Vector<Entry> old(places);
  old.swap(places_);
  for (Entry& entry : old) {
    if (entry.key.ptr != nullptr) places_[FreePlaceFor(entry.digest)] = std::move(entry);
  }
}

void DBCache::Erase(const DBDatum& key) {
  Entry* const entry = Find(key);
  if (entry == nullptr) return;
  *entry = Entry();
  --count_;
  CloseGap(static_cast<std::size_t>(entry - places_.data()));
}

// Moves entries that stand after the free place `gap` back into it where a look-up would stop at
// it.
void DBCache::CloseGap(std::size_t gap) {
  for (std::size_t place = After(gap); places_[place].key.ptr != nullptr; place = After(place)) {
    const std::size_t mask = places_.size() - 1;
    const std::size_t from_home = (place - HomeOf(places_[place].digest)) & mask;
    const std::size_t from_gap = (place - gap) & mask;
    if (from_home < from_gap) continue;
    places_[gap] = std::move(places_[place]);
    gap = place;
  }
}

Vector<const DBCache::Entry*> DBCache::DirtyInKeyOrder() const {
  Vector<const Entry*> dirty;
  for (const Entry& entry : places_) {
    if (entry.key.ptr != nullptr && entry.value.ptr->dirty) dirty.push_back(&entry);
  }
  std::sort(dirty.begin(), dirty.end(), [](const Entry* left, const Entry* right) {
    const int order =
        std::memcmp(left->digest.start.data(), right->digest.start.data(), KeyDigest::kShortBytes);
    return order != 0 ? order < 0 : *left->key.ptr < *right->key.ptr;
  });
  return dirty;
}

void DBCache::DropUnheld() {
  if (count_ == 0) return;
  Vector<Entry> held;
  for (Entry& entry : places_) {
    if (entry.key.ptr != nullptr && entry.value.ptr->refs != 1) held.push_back(std::move(entry));
  }
  // A walk caches as many records until its next flush: the table need not grow again. It gets its
  // size at once: held entries come in order of their hashes and would crowd a table that grows.
  const std::size_t places =
      std::max(PlacesFor(held.size()), std::min(PlacesFor(count_), kMostPlacesKept));
  places_.clear();
  count_ = 0;
  Rebuild(places);
  for (Entry& entry : held) Insert(std::move(entry.key), std::move(entry.value));
}

}  // namespace kestan
