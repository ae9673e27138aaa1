// SPDX-License-Identifier: GPL-3.0-or-later
// The records of one file that have been read or written since the last flush.
#ifndef KESTAN_STORAGE_DBCACHE_H_
#define KESTAN_STORAGE_DBCACHE_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/hash.h>
#include <kestan/storage/memory/memory.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestan {

// What a look-up compares before it looks at a key's own bytes, which lie elsewhere in memory.
// Short keys, which most words are, need no more than this.
struct KeyDigest {
  static constexpr std::size_t kShortBytes = 11;

  KeyDigest() = default;
  KeyDigest(const DBDatum& key, const Hasher& hasher);

  bool IsWhole() const { return length <= kShortBytes; }

  std::uint32_t hash = 0;
  std::uint8_t length = 0;                   // of the key; 255: or more
  std::array<char, kShortBytes> start = {};  // the first bytes of the key, padded with zeros
};

// A map from key to value that holds each of its datums. It is hashed, not ordered: words are
// looked up by the million, and only a flush asks for their order.
class DBCache {
 public:
  struct Entry {
    DBDatumPtr key;  // null: the place is free
    DBDatumPtr value;
    KeyDigest digest;
  };

  // Finds the entry of `key`.
  //   Returns  the entry, or null if there is none. Valid until the next change of the map.
  Entry* Find(const DBDatum& key);

  // Finds the values of `count` keys; a null handle stands for a key without an entry. Asks for the
  // memory of several of them before it waits for the first.
  void FindMany(DBDatumPtr* values, const DBDatum* keys, std::size_t count);

  // Adds an entry; there must be none for the key. Takes both handles.
  //   Returns  the entry, as Find does.
  Entry* Insert(DBDatumPtr key, DBDatumPtr value);

  // Removes the entry of `key`, if there is one.
  void Erase(const DBDatum& key);

  // Returns the entries whose values were changed in place, in key order.
  Vector<const Entry*> DirtyInKeyOrder() const;

  // Removes every entry whose value nobody else holds.
  void DropUnheld();

 private:
  // An entry stands at the place that its hash names, or at the first free one after it.
  std::size_t HomeOf(const KeyDigest& digest) const { return digest.hash & (places_.size() - 1); }
  std::size_t After(std::size_t place) const { return (place + 1) & (places_.size() - 1); }
  Entry* Find(const DBDatum& key, const KeyDigest& digest);
  void FindBatch(DBDatumPtr* values, const DBDatum* keys, std::size_t count);
  std::size_t FreePlaceFor(const KeyDigest& digest) const;
  void Rebuild(std::size_t places);
  void CloseGap(std::size_t gap);

  const Hasher hasher_;
  Vector<Entry> places_;  // a power of two of them, at most three quarters taken; or none
  std::size_t count_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_DBCACHE_H_
