// SPDX-License-Identifier: GPL-3.0-or-later
// The readers that need ICU or libxml2, loaded when the first document needs them.
#ifndef KESTAN_CLI_EXTRACT_MODULE_LOADED_READERS_H_
#define KESTAN_CLI_EXTRACT_MODULE_LOADED_READERS_H_

#include <string>

#include "cli/readers/readers.h"

namespace kestan_cli {

// Returns the readers. The first call loads their module, from where it was installed together with
// this program and from nowhere else. One thread at a time.
//   Throws   SkipFile if it cannot be loaded; it is not tried again.
const Readers& LoadedReaders();

// Returns why the readers could not be loaded, as a line without a line feed: for the user, once a
// run.
//   Returns  "" if nothing went wrong, or nothing needed them.
std::string ReadersProblem();

// Has LoadedReaders() return `readers`, which must outlive its last call: a program that is linked
// with them loads nothing.
void UseReaders(const Readers& readers);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MODULE_LOADED_READERS_H_
