// SPDX-License-Identifier: GPL-3.0-or-later
// A new index from what a damaged one still holds.
#ifndef KESTAN_SEARCH_REPAIR_H_
#define KESTAN_SEARCH_REPAIR_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <string>

namespace kestan::search {

enum class RepairKind {
  // Of documents, one for each. The name is the document's, as far as it is known.
  kSaved,         // nothing of it is seen to be missing
  kWordsMissing,  // a loss: positions of its text have no word
  kHalfWritten,   // a loss: its words had not all been written
  kLost,          // a loss: only its name was found
  kLostCode,      // a loss: only words of it were found; the name is its code, in decimal digits
  kTextLost,      // a loss: its title, summary or host data; the text says which

  // Of records of an index file. The name is the key of the record.
  kRestored,  // it was restored, or dropped in part
  kDropped,   // the new index does not have it
  kFileNote,  // what is wrong with the file itself; no name

  // Of the files of a folder. No name.
  kSegmentSalvaged,  // a damaged index file: what could be read of it is in the new index
  kSegmentLost,      // a loss: nothing of an index file could be read, or it is missing
  kWordsLost,        // a loss: words of a damaged index file of which nothing was found
  kDerivedFile,      // a term dictionary or document table was made again
  kWordCounts,       // a document table was, and may count fewer words of documents than there are
  kEditsLost,        // a loss: which documents were removed or renamed, and texts set later
  kEditsChosen,      // without a MANIFEST, these edits were taken for the last ones
  kManifestRebuilt,  // MANIFEST was made from the segments: their order is that of their numbers
  kPropertiesLost,   // a loss: the properties that MANIFEST had
  kNameTwice,        // a name lived twice; the document of that name in this segment was left out
};

// Something that a repair has saved, lost or done.
struct RepairItem {
  RepairKind kind = RepairKind::kSaved;
  bool is_loss = false;
  std::string file;  // of the damaged index; its path
  std::string name;  // any bytes
  std::string text;  // more about it, for people; may be empty
};

// How much of the index was saved. Each document is counted once.
struct RepairReport {
  std::uint64_t saved = 0;
  std::uint64_t words_missing = 0;
  std::uint64_t half_written = 0;
  std::uint64_t lost = 0;     // documents
  std::uint64_t losses = 0;   // items that are losses
  std::uint64_t records = 0;  // in the index files that were rewritten
  std::uint64_t dropped = 0;  // records that were found, and contradict the others
  bool was_damaged = false;   // a file itself, not only what its records say
};

// Called with each item, which is lent for the call; may be null. What is known of documents of a
// segment follows what is known of its files. Returns whether to go on.
using TakeRepairItem = std::function<bool(const RepairItem& item)>;

// Makes a new index at `new_path`, where there must be nothing, of what can be read of the one at
// `path`, which stays as it is. Of an index file, this is what kestan::RepairIndex() makes. Of a
// folder, each segment whose index file is damaged is salvaged by itself, and the others are taken
// over; derived files are made again where they are missing or damaged, and so is MANIFEST. A
// segment that was salvaged is written again, so that its words agree with each other, with what
// its document table and its term dictionary say if they are whole: docs/check-and-repair.md has
// the rules. Of a folder, CheckIndex() finds no fault in the new index.
//
// All or nothing, as CopyIndex() makes an index.
//   Returns  kAlreadyExists; kNotFound where there is nothing of an index; kBusy while a writer is
//            at work; kDamaged where nothing could be read; kVersion, kSystem, kOutOfMemory;
//            kInterrupted where `take` does not go on.
KESTAN_SEARCH_EXPORT Result<RepairReport> RepairIndex(const std::string& path,
                                                      const std::string& new_path,
                                                      const TakeRepairItem& take = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_REPAIR_H_
