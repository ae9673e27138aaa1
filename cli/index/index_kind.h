// SPDX-License-Identifier: GPL-3.0-or-later
// The two kinds of indexes.
#ifndef KESTAN_CLI_INDEX_INDEX_KIND_H_
#define KESTAN_CLI_INDEX_INDEX_KIND_H_

#include <string>

namespace kestan_cli {

enum class IndexKind {
  kNone,    // there is nothing yet
  kFolder,  // segments and a manifest: what commands change
  kFile,    // one file, made by a program that links the engine: it is read only
};

// Returns what is at `path`, by the kind of file alone.
//   Throws   CommandError if it is neither a folder nor a regular file, or cannot be examined.
IndexKind KindOfIndex(const std::string& path);

// Makes sure that a command may change what is at `path`.
//   Throws   CommandError if there is nothing, or if it is an index of one file: that says how to
//            make a folder of it; and what KindOfIndex() throws.
void CheckIsFolder(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_KIND_H_
