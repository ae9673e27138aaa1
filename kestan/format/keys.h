// The keys of an index file, and how the engine fetches what they name.
#ifndef KESTAN_FORMAT_KEYS_H_
#define KESTAN_FORMAT_KEYS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// The records that an index has one of. The bare text of a word names that word's posting record.
inline constexpr std::string_view kCounterKey = "g-code";     // the highest code handed out
inline constexpr std::string_view kAvailableKey = "g-avail";  // codes free for reuse
inline constexpr std::string_view kDeletedKey = "g-deleted";  // codes of removed documents
inline constexpr std::string_view kOptionsKey = "g-opts";     // the option flags

// The families of records that an item has one of; the key is the family and the item's name.
inline constexpr std::string_view kDocumentFamily = "d-";
inline constexpr std::string_view kNameFamily = "c-";  // its items are codes: see NameKey()
inline constexpr std::string_view kWordListFamily = "w-";
inline constexpr std::string_view kUserFamily = "u-";
inline constexpr std::string_view kSummaryFamily = "s-";
inline constexpr std::string_view kTitleFamily = "t-";

// Returns the key of the item `name` in `family`.
inline String ItemKey(std::string_view family, std::string_view name) {
  String key(family);
  return key.append(name);
}

// Returns a datum around `bytes`, which it borrows.
inline DBDatum AsDatum(std::string_view bytes) {
  return {bytes.data(), static_cast<std::uint32_t>(bytes.size())};
}

// Tells whether `key` names something else than a word. Words of two bytes may end in '-'.
inline bool IsSystemKey(const DBDatum& key) { return key.size > 2 && key.data[1] == '-'; }

// Fetches the value of `key`.
//   Returns  a handle shared with the store's cache; a null one if there is no such record. Where
//            `is_unreadable` is given, it says whether there may be one that cannot be read.
inline DBDatumPtr Fetch(Database& store, std::string_view key, bool* is_unreadable = nullptr) {
  DBDatumPtr value;
  const int error = store.Get(&value, AsDatum(key));
  if (is_unreadable != nullptr) *is_unreadable = Database::IsReadFailure(error);
  return value;
}

}  // namespace kestan

#endif  // KESTAN_FORMAT_KEYS_H_
