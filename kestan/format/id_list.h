// SPDX-License-Identifier: GPL-3.0-or-later
// Records of document codes: the lists of free and of removed codes, and the code counter.
// docs/index-file.md has the tables.
#ifndef KESTAN_FORMAT_ID_LIST_H_
#define KESTAN_FORMAT_ID_LIST_H_

#include <kestan/format/posting.h>
#include <kestan/format/units.h>
#include <kestan/storage/dbdatum.h>

#include <array>
#include <bitset>
#include <cstddef>

namespace kestan {

using CodeSet = std::bitset<kMaxCode + 1>;

// ---- Code lists: "g-avail" and "g-deleted" ----
//
// Codes side by side. An odd last byte is ignored, and overwritten by the next code.

// Encodes a list of one code, which is also what the code counter looks like.
std::array<char, kUnitBytes> EncodeCode(Code code);

std::size_t CountCodes(const DBDatum& list);
Code CodeAt(const DBDatum& list, std::size_t index);

// Adds every code of `list` to `codes`.
void CollectCodes(const DBDatum& list, CodeSet* codes);

// Adds `code`, or all codes of `more`, at the end. Not marked dirty here.
void AppendCode(DBDatum* list, Code code);
void AppendCodes(DBDatum* list, const DBDatum& more);

// Takes the last code off; there must be one. Not marked dirty here.
Code TakeLastCode(DBDatum* list);

// ---- Code counter: "g-code", the highest code handed out so far, one unit ----

Code DecodeCounter(const DBDatum& record);

// Overwrites the counter in place; a shorter record grows to hold it. Not marked dirty here.
void SetCounter(DBDatum* record, Code code);

}  // namespace kestan

#endif  // KESTAN_FORMAT_ID_LIST_H_
