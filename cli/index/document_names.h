// SPDX-License-Identifier: GPL-3.0-or-later
// The names of documents, as they are stored and as they are shown.
//
// Documents that were made of files are named after them by canonical paths: absolute, without
// links, ".", ".." and "//". So one file is one document, wherever a user stands. Names that do not
// begin with a slash were given by a program and mean nothing here.
#ifndef KESTAN_CLI_INDEX_DOCUMENT_NAMES_H_
#define KESTAN_CLI_INDEX_DOCUMENT_NAMES_H_

#include <kestan/search.h>

#include <string>

namespace kestan_cli {

// Returns the canonical path of the file at `path`. What does not exist any more is taken as it
// stands below what does.
//   Throws   CommandError if `path` is empty or cannot be followed, or if the working directory is
//            needed and unknown.
std::string CanonicalPath(const std::string& path);

// Shows names to somebody who stands in the working directory.
class ShownNames {
 public:
  // Remembers the working directory. Where it is unknown, names are shown as they are stored.
  ShownNames();

  // Returns the shortest of the paths that open the file: relative below the working directory,
  // elsewhere as the name is stored. A name that is no path is returned as it is.
  std::string operator()(const std::string& name) const;

 private:
  std::string directory_;  // ends with a slash; empty: unknown
};

// Finds the document that a user calls `argument`: by its name as it is stored, or by a path.
//   Returns  its name as it is stored.
//   Throws   CommandError if there is none in the index at `index`, or it cannot be read.
std::string StoredName(const kestan::search::IndexReader& reader, const std::string& argument,
                       const std::string& index);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_DOCUMENT_NAMES_H_
