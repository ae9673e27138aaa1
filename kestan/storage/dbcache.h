// The records of one file that have been read or written since the last flush.
#ifndef KESTAN_STORAGE_DBCACHE_H_
#define KESTAN_STORAGE_DBCACHE_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory.h>

#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace kestan {

// A map from key to value that holds each of its datums. It is hashed, not ordered: words are
// looked up by the million, and only a flush asks for their order.
class DBCache {
 public:
  struct Entry {
    DBDatumPtr key;
    DBDatumPtr value;
  };

  // Finds the entry of `key`.
  //   Returns  the entry, or null if there is none. Valid until it is erased or dropped.
  Entry* Find(const DBDatum& key);

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
  // The views look at the bytes of the entries' own keys.
  using Map =
      std::unordered_map<std::string_view, Entry, std::hash<std::string_view>, std::equal_to<>,
                         Allocator<std::pair<const std::string_view, Entry>>>;

  Map entries_;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_DBCACHE_H_
