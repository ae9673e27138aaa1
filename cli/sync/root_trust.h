// SPDX-License-Identifier: GPL-3.0-or-later
// Whether what an index remembers of its roots may be acted upon.
//
// An index folder may come from somebody else, who could have it run commands, or gather files for
// others to read. So its roots are believed only where nobody else can have written them, and its
// converters only in the very folder in which they were given: a copy, wherever it comes from, is
// another folder.
#ifndef KESTAN_CLI_SYNC_ROOT_TRUST_H_
#define KESTAN_CLI_SYNC_ROOT_TRUST_H_

#include <string>

#include "cli/sync/roots.h"

namespace kestan_cli {

// Returns what tells the folder at `path` from every other, also from its copies: the number that
// the file system gave it and the time at which it was made, which nobody can choose.
//   Returns  "" if the system does not say it.
std::string FolderIdentity(const std::string& path);

// Returns why what the index at `path` remembers cannot be believed: its folder, or the file that
// remembers, belongs to another user or may be written by others.
//   Returns  "" if it can be believed.
std::string ReasonToDistrust(const std::string& path);

// Makes sure that the converters of the root `path` may be run: that they were given in this run,
// or in this folder, the index at `index`, and that nobody else can have written them there.
//   Throws   CommandError if not.
void CheckConverters(const std::string& path, const RootOptions& options, const std::string& index);

// Gives the converters that were given in this run the identity of the folder at `index`.
void SignConverters(const std::string& index, Roots* roots);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_ROOT_TRUST_H_
