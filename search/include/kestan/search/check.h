// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the files of an index are whole, and making again what can be made again.
#ifndef KESTAN_SEARCH_CHECK_H_
#define KESTAN_SEARCH_CHECK_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kestan::search {

enum class IndexFindingKind {
  kMissingFile,  // a file of the index is not there, or cannot be opened or read
  kNoIndexFile,  // what stands for an index file is none, by its first bytes or for lack of records
  kChangedFile,  // a file has another size or other bytes than MANIFEST says
  kManifest,     // MANIFEST is damaged, or contradicts a segment
  kRecord,       // records of an index file contradict each other
  kWordsMissing,  // a document lacks words. A segment as it was written: refused ones, a note
  kDerivedFile,   // a term dictionary or document table is not that of its segment
  kNameTwice,     // two living documents have one name
  kUnnamedFile,   // a note: MANIFEST does not name a file, which the next writer removes
};

// Something that a check has found.
struct IndexFinding {
  IndexFindingKind kind = IndexFindingKind::kRecord;
  bool is_fault = true;  // false: it harms nothing, but may be worth a look
  std::string file;      // its path
  std::string key;       // of the record, any bytes; "": the file as a whole
  std::string text;
};

struct CheckReport {
  std::uint64_t faults = 0;
  std::uint64_t notes = 0;
  std::vector<IndexFinding> findings;  // the first ones, as many as the options allow
  std::uint64_t segments = 0;
  std::uint64_t documents = 0;  // that live, as far as they could be read
};

struct CheckOptions {
  std::size_t most_findings = 1000;  // that are kept of each file; all are counted

  // Called with every finding, kept or not, as it is found; may be null.
  std::function<void(const IndexFinding&)> take;
};

// Reads all files of the index folder at `path`, and of each segment:
//
//   that every file has the size and the checksum that MANIFEST says,
//   that the records of its index file agree with each other, as kestan::CheckIndex() looks at
//   them, that the term dictionary and the document table are those of the index file: each term,
//   how many documents hold it, where its record lies; each document, its name, time and texts. Of
//   the number of its words, a segment without positions tells only a lower bound. that edits are
//   sound, and that no name lives twice.
//
// Files that no manifest names are notes. Of an index file of class Kestan, which has no checksums,
// only the records are looked at. Changes nothing.
//   Returns  the report, whatever it says; kNotFound where there is no index, kVersion, kSystem,
//            kOutOfMemory.
KESTAN_SEARCH_EXPORT Result<CheckReport> CheckIndex(const std::string& path,
                                                    const CheckOptions& options = {});

// What RebuildDerivedFiles() did, a line each.
struct RebuildReport {
  std::vector<std::string> rebuilt;  // paths of the files that were made
  std::vector<std::string> notes;    // what could not be known
};

// Makes the term dictionaries and document tables again that are missing or whose bytes have
// changed, from the index files of their segments; and a missing or damaged MANIFEST, from the
// segments that are there. What cannot be known then:
//
//   the order of documents, which is that of the numbers of their segments;
//   which edits of a segment were the last: those of the highest number that are sound are taken;
//   whether a segment was merged already: of a name that lives twice, the document in the segment
//   of the higher number stays; properties, which are lost.
//
// Each file is replaced as a whole; `*report` may be null. A damaged index file is not touched.
//   Returns  kBusy while a writer is at work, kNotFound where there is nothing of an index,
//   kDamaged
//            with the first index file or edits that cannot be read, kVersion, kSystem,
//            kOutOfMemory.
KESTAN_SEARCH_EXPORT Status RebuildDerivedFiles(const std::string& folder,
                                                RebuildReport* report = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_CHECK_H_
