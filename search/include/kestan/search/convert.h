// SPDX-License-Identifier: GPL-3.0-or-later
// Index files of class Kestan to index folders, and the other way.
#ifndef KESTAN_SEARCH_CONVERT_H_
#define KESTAN_SEARCH_CONVERT_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>
#include <kestan/search/upkeep_progress.h>

#include <cstdint>
#include <string>

namespace kestan::search {

// What of an index file has no place in an index folder.
struct ConversionReport {
  // Records whose keys look like those of documents and texts but are none: words such as "t-shirt"
  // and "e-mail". A word such as "t-shirt" where there is a document "shirt" is taken for its
  // title, as class Kestan takes it. And words that gdbm gives one hash, past the first 4,096.
  std::uint64_t words_left_out = 0;

  // Titles, summaries and user records of names that no document has.
  std::uint64_t texts_left_out = 0;
};

// Makes an index folder at `folder` of the index file `file`, with the living documents in order of
// their codes and what is kept for them. A named word list becomes the property "wordlist:NAME",
// each word followed by a line feed; option flags of the host's own become "option-flags", a
// decimal number. Says in `*report`, which may be null, what was left out.
//
// All or nothing: FOLDER.new, into which only this user can look, is made, put on the disk and
// renamed. There must be nothing at `folder`. What an earlier conversion left at FOLDER.new is
// replaced. Others may do no more with the folder than with the file.
//   Returns  kAlreadyExists; kNotFound, kBusy while another process changes the file, kDamaged,
//            kVersion, kSystem, kOutOfMemory, kInterrupted.
KESTAN_SEARCH_EXPORT Status ConvertIndexFile(const std::string& file, const std::string& folder,
                                             ConversionReport* report = nullptr,
                                             const UpkeepProgress& progress = nullptr);

// Makes an index file at `file` of the index folder `folder`: what class Kestan makes of the living
// documents, added in their order, with the times at which they were. Properties are left out.
//
// All or nothing as above, by way of the folder FILE.new.
//   Returns  kInvalidArgument for more than 65,535 living documents; kAlreadyExists, kNotFound,
//            kDamaged, kVersion, kSystem, kOutOfMemory, kInterrupted.
KESTAN_SEARCH_EXPORT Status WriteIndexFile(const std::string& folder, const std::string& file,
                                           const UpkeepProgress& progress = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_CONVERT_H_
