// SPDX-License-Identifier: GPL-3.0-or-later
// The contents of the system records of an index, in memory.
#ifndef KESTAN_MAINTENANCE_CHECK_TABLES_H_
#define KESTAN_MAINTENANCE_CHECK_TABLES_H_

#include <kestan/format/posting.h>
#include <kestan/format/record_kind.h>
#include <kestan/storage/database.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// Holds the documents' names twice, and nothing of the postings.
struct IndexTables {
  // A record "d-" + name. One that is empty or shaped like the postings of a word such as "d-day"
  // is a document's if a name record names that document.
  struct Document {
    String name;
    std::uint32_t bytes = 0;  // of the record
    Code code = 0;
    bool has_padding = false;  // the two bytes after the code are not 0
  };

  // A record "c-" + code.
  struct Name {
    Code code = 0;
    String name;
  };

  // A record whose length is not what the engine writes; or a "c-" record whose key has such a
  // length.
  struct OddRecord {
    String key;
    std::uint32_t bytes = 0;  // of the value
  };

  // Find a record; null if there is none.
  const Document* FindDocument(std::string_view name) const;
  const Name* FindName(Code code) const;

  // Returns the kind of the record as KindOf() does, but decides of "d-" + name by `documents`.
  RecordKind KindOfRecord(const DBDatum& key, const DBDatum& value) const;

  Vector<Document> documents;  // by ascending name; those with odd records too
  Vector<Name> names;          // by ascending code; only of keys of four bytes
  Vector<Code> reusable;       // "g-avail", in the record's order
  Vector<Code> removed;        // "g-deleted", in the record's order
  Vector<OddRecord> odd;       // system records of odd length, in the file's order
  Vector<String> unreadable;   // keys of records that could not be read, in the file's order
  bool has_counter = false;
  bool has_options = false;
  Code counter = 0;
  PostingRules rules;
  int walk_error = 0;  // gdbm's number if the walk ended early

  // Returns whether records may be missing from the tables.
  bool IsIncomplete() const { return walk_error != 0 || !unreadable.empty(); }
};

// Reads the tables in one walk over `store`, which is open. Flushes it first.
IndexTables ReadTables(Database& store);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_TABLES_H_
