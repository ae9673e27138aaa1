// SPDX-License-Identifier: GPL-3.0-or-later
// The keys of an index file, and how the engine fetches what they name.
#ifndef KESTAN_FORMAT_KEYS_H_
#define KESTAN_FORMAT_KEYS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/datum_bytes.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
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

inline constexpr std::size_t kFamilyBytes = 2;  // a letter and '-'

// Returns whether the second byte of `key` is '-', as in every family. Words may have it there too.
inline bool HasFamilyMark(std::string_view key) {
  return key.size() >= kFamilyBytes && key[1] == '-';
}

// Returns whether `key` names something else than a word, as far as a key alone can say: words such
// as "e-mail" look like system keys. Two bytes that end in '-' are a word.
inline bool IsSystemKey(std::string_view key) {
  return key.size() > kFamilyBytes && HasFamilyMark(key);
}
inline bool IsSystemKey(const DBDatum& key) { return IsSystemKey(BytesOf(key)); }

// Returns whether a shrink passes over the record of `key`: system records, words of one byte, and
// words whose second byte is '-'. Files in use have always been shrunk this way. So such a word's
// record may list a code that is free, or one code more than once.
inline bool IsNeverPurged(std::string_view key) {
  return key.size() < kFamilyBytes || HasFamilyMark(key);
}
inline bool IsNeverPurged(const DBDatum& key) { return IsNeverPurged(BytesOf(key)); }

// Returns whether the key begins with `family`.
inline bool IsOfFamily(std::string_view key, std::string_view family) {
  return key.substr(0, family.size()) == family;
}

// Returns whether the key begins with a family that the engine writes, "g-" among them.
inline bool IsOfKnownFamily(std::string_view key) {
  constexpr std::string_view kLetters = "gdcwust";
  return HasFamilyMark(key) && kLetters.find(key[0]) != std::string_view::npos;
}

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
