// SPDX-License-Identifier: GPL-3.0-or-later
// The files and folders that an index is kept up to date with, as it remembers them.
//
// They are the property "roots" of the index, an object in JSON:
//
//   {"version":1,"roots":[{"path":"/home/me/notes","exclude":["*.log"],"prune":true}]}
//
// A root has a "path" and, where they were given, "include", "exclude" and "converters" (lists of
// texts), "given_in" (a text), "stop_words" (a text), "strip_encoded", "no_ignore",
// "archives" and "prune" (true). A text that is not UTF-8 is a list of its bytes as numbers.
#ifndef KESTAN_CLI_SYNC_ROOTS_H_
#define KESTAN_CLI_SYNC_ROOTS_H_

#include <kestan/search.h>

#include <map>
#include <string>
#include <vector>

namespace kestan_cli {

inline constexpr const char* kRootsProperty = "roots";

// Which files below a root are indexed, and how they are read.
struct ReadingOptions {
  std::vector<std::string> include;  // patterns
  std::vector<std::string> exclude;
  std::vector<std::string> converters;  // "EXT=COMMAND"; programs are absolute paths or bare names
  std::string stop_words;               // "english", the absolute path of a file, or "" for none
  bool strip_encoded = false;
  bool no_ignore = false;  // also files that ignore files or version control leave out
  bool archives = false;   // their members are documents
};

bool operator==(const ReadingOptions& left, const ReadingOptions& right);

struct RootOptions {
  ReadingOptions reading;
  bool prune = false;         // remove the documents of files that are gone
  std::string given_in;       // as FolderIdentity() says: where the converters were given; "" if
                              // unknown
  bool is_given_now = false;  // the user has given `reading` in this run; not remembered
};

using Roots = std::map<std::string, RootOptions>;  // by canonical paths

// Returns the value of the property; "" for no roots.
std::string EncodeRoots(const Roots& roots);

// Returns the roots in a `property` of the index that is called `index` in messages.
//   Throws   CommandError if the property is none of EncodeRoots().
Roots DecodeRoots(const std::string& property, const std::string& index);

// Returns the roots that an open index remembers.
//   Throws   CommandError as DecodeRoots() does.
Roots RememberedRoots(const kestan::search::IndexReader& reader, const std::string& index);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_ROOTS_H_
