// SPDX-License-Identifier: GPL-3.0-or-later
// What a run of `kestan index` reports at its end.
#ifndef KESTAN_CLI_SYNC_INDEX_REPORT_H_
#define KESTAN_CLI_SYNC_INDEX_REPORT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "cli/files/skip.h"

namespace kestan_cli {

// A file that was indexed in part.
struct Note {
  std::string name;
  std::string reason;
};

struct IndexReport {
  unsigned long added = 0;
  unsigned long updated = 0;
  unsigned long moved = 0;
  unsigned long removed = 0;
  unsigned long unchanged = 0;
  unsigned long new_words = 0;  // new to the index
  unsigned long documents = 0;  // of the index, after the run
  unsigned long segments = 0;   // likewise
  std::vector<Skip> skips;
  std::vector<Note> notes;
};

// Returns "added 1, updated 0, moved 0, removed 0, unchanged 7, skipped 2 (1 binary file, 1 link),
// 1,234 documents in 4 segments" as a line.
std::string ReportLine(const IndexReport& report);

// Returns what can be done about the files that were skipped: for each of the three most frequent
// reasons a line such as "  9 without converter: install poppler-utils, which reads .pdf". Where
// there are more, those about which nothing can be done come last. "" if nothing was skipped.
std::string RemedyLines(const std::vector<Skip>& skips);

// Returns ReportLine() and RemedyLines(), in lines of at most `columns` if that is not 0.
std::string Summary(const IndexReport& report, std::size_t columns);

// Returns a line for each file that should have been indexed, whole or in part, without line feeds;
// if there are more than `max_lines`, the first of them and one that says how many more there are.
std::vector<std::string> FailureLines(const IndexReport& report, std::size_t max_lines);

// Returns "skipped 'NAME': REASON", without a line feed. Names are shown as ShownNames shows them.
std::string SkipLine(const Skip& skip);

// Returns such a line for each of `skips`.
std::string SkipLines(const std::vector<Skip>& skips);

// Returns "indexed 'NAME' in part: REASON", without a line feed.
std::string NoteLine(const Note& note);

// Returns such a line for each of `notes`.
std::string NoteLines(const std::vector<Note>& notes);

// Returns the report as one line of JSON: the numbers of ReportLine under its words, names as they
// are stored, "skipped" as an object with a "total" and a number for each kind, and, if anything
// was skipped, the "skipped_reasons", the most frequent first. "skipped_files" lists the files if
// `with_files` is set, and "partial_files" those that were indexed in part, if any. Bytes of names
// that are not UTF-8 become U+FFFD.
std::string ReportJson(const IndexReport& report, bool with_files);

// Returns why a run did nothing, without a line feed.
std::string NothingToIndex(const std::vector<Skip>& skips);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_REPORT_H_
