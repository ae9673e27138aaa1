// SPDX-License-Identifier: GPL-3.0-or-later
// The two records of a document: by its name, and by its code. docs/index-file.md has the tables.
#ifndef KESTAN_FORMAT_DOCUMENT_RECORD_H_
#define KESTAN_FORMAT_DOCUMENT_RECORD_H_

#include <kestan/format/keys.h>
#include <kestan/format/posting.h>
#include <kestan/format/units.h>
#include <kestan/storage/dbdatum.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace kestan {

// ---- Document record: "d-" and the name; when it was added, its code, and two bytes of 0 ----

inline constexpr std::uint32_t kTimestampBytes = 4;
inline constexpr std::uint32_t kPaddingBytes = 2;
inline constexpr std::uint32_t kDocumentRecordBytes = kTimestampBytes + kUnitBytes + kPaddingBytes;

std::array<char, kDocumentRecordBytes> EncodeDocument(std::uint32_t timestamp, Code code);
std::uint32_t DocumentTimestamp(const DBDatum& record);
Code DocumentCode(const DBDatum& record);

// Returns the bytes after the code, which are 0 in every record that the engine has written.
std::uint16_t DocumentPadding(const DBDatum& record);

// Overwrites the timestamp in place; a shorter record grows to its full size.
void SetDocumentTimestamp(DBDatum* record, std::uint32_t timestamp);

// ---- Name record: the key is "c-" and the code, the value is the document's name ----

inline constexpr std::uint32_t kNameKeyBytes = kNameFamily.size() + kUnitBytes;

std::array<char, kNameKeyBytes> NameKey(Code code);

// Returns the code that a key of kNameKeyBytes bytes names.
Code CodeOfNameKey(const DBDatum& key);

// Overwrites the name in place. Not marked dirty here.
void SetName(DBDatum* record, std::string_view name);

}  // namespace kestan

#endif  // KESTAN_FORMAT_DOCUMENT_RECORD_H_
