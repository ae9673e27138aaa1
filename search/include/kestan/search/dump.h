// SPDX-License-Identifier: GPL-3.0-or-later
// Indexes as text that any machine can load. docs/dump-format.md describes it.
#ifndef KESTAN_SEARCH_DUMP_H_
#define KESTAN_SEARCH_DUMP_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <functional>
#include <string>
#include <string_view>

namespace kestan::search {

// Takes a line, without its line feed and lent for the call. Returns whether to go on.
using TakeDumpLine = std::function<bool(std::string_view line)>;

// Gives the next line, without its line feed, which stays as it is until the next call. Of a line
// that is longer than kMaxDumpLineBytes, its first kMaxDumpLineBytes + 1 bytes are enough.
//   Returns  false, with `*line` as it was, if there is none.
using GiveDumpLine = std::function<bool(std::string_view* line)>;

// Hands the dump of the index folder, or of the index file of class Kestan, at `path` to `take`.
// That of a file is the one of kestan::DumpIndex(). That of a folder has the properties and the
// living documents, in parts that take as much memory as the keys of 60,000 documents; parts that
// have to be merged first take room in the folder for temporary files ($TMPDIR, else /tmp).
//   Returns  kNotFound, kDamaged, kVersion, kSystem, kOutOfMemory; kInterrupted where `take` does
//            not go on; kBusy where a writer has removed files meanwhile: a copy can be dumped.
//            After an error the dump lacks its end, and LoadIndex() refuses it.
KESTAN_SEARCH_EXPORT Status DumpIndex(const std::string& path, const TakeDumpLine& take);

// Makes an index of the dump that `give` gives: a folder or a file, as that was, at `new_path`,
// where there must be nothing. All or nothing, as CopyIndex() makes one.
//   Returns  kAlreadyExists; kInvalidArgument "line N: WHAT", without a file, for what is no dump
//            or not whole; kSystem, kOutOfMemory.
KESTAN_SEARCH_EXPORT Status LoadIndex(const GiveDumpLine& give, const std::string& new_path);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_DUMP_H_
