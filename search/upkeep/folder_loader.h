// SPDX-License-Identifier: GPL-3.0-or-later
// An index folder from its dump.
#ifndef KESTAN_SEARCH_UPKEEP_FOLDER_LOADER_H_
#define KESTAN_SEARCH_UPKEEP_FOLDER_LOADER_H_

#include <kestan/checksum.h>
#include <kestan/search/dump.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "search/index/manifest/manifest.h"
#include "search/segment/derived_files.h"

namespace kestan::search {

// The lines of a dump, counted.
class DumpLines {
 public:
  // Borrows `give`.
  explicit DumpLines(const GiveDumpLine& give) : give_(give) {}

  // Goes to the next line. Returns false if there is none.
  bool Next() {
    ++number_;
    return give_(&line_);
  }

  // Lent until Next().
  std::string_view line() const { return line_; }

  // Returns the error that the line is to blame for.
  Status Refuse(std::string_view what) const;

  // Returns the number of the line, from 1.
  std::uint64_t number() const { return number_; }

 private:
  const GiveDumpLine& give_;
  std::string_view line_;
  std::uint64_t number_ = 0;
};

// Stores the records of the dump of an index file in the new file at `path`. `give` gives its
// lines, of which the first has the number `first_line`.
//   Returns  kInvalidArgument "line N: WHAT", kSystem.
Status LoadFile(const GiveDumpLine& give, const std::string& path, std::uint64_t first_line);

// Loads the dump of a folder into files in a folder, which is the caller's to publish.
class FolderLoader {
 public:
  // Borrows `lines`, which stand at the first one.
  FolderLoader(DumpLines* lines, std::string folder) : lines_(*lines), folder_(std::move(folder)) {}

  Status Load();

 private:
  Status ReadHead();
  Status ReadProperty();
  Status ReadPart();
  Status ReadDocuments(std::uint64_t count);
  Status LoadPart();
  Status AddSegment(std::uint64_t count, std::uint64_t first_line);
  Status ReadEnd();
  Status Next();

  DumpLines& lines_;
  const std::string folder_;
  Manifest manifest_;
  Crc64 checksum_;
  std::uint64_t last_checksum_ = 0;  // of all lines before this one
  std::uint64_t parts_ = 0;
  std::vector<KnownDocument> known_;
  std::unordered_set<std::string> names_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_FOLDER_LOADER_H_
