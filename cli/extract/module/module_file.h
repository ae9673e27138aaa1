// SPDX-License-Identifier: GPL-3.0-or-later
// Opens the module that holds the readers, if it can be trusted.
#ifndef KESTAN_CLI_EXTRACT_MODULE_MODULE_FILE_H_
#define KESTAN_CLI_EXTRACT_MODULE_MODULE_FILE_H_

#include <string>

#include "cli/mail_reader/mail_reader.h"
#include "cli/readers/readers.h"

namespace kestan_cli {

// Where the module of a program lies.
struct ModulePlace {
  std::string program;          // the absolute path of the program, without links
  std::string from_its_folder;  // the way from there to the module: "../lib/kestan/x.so"

  // Returns the absolute path of the module.
  std::string Path() const;
};

// Returns why the module must not be loaded: it, or a folder on the way to it from one that the
// program lies in too, belongs to somebody else than the program does, the user or the superuser,
// or may be written by everybody.
//   Returns  "" if it may be loaded.
std::string ReasonToDistrustModule(const ModulePlace& place);

// Returns why the file at `path` is no module for this machine, or not all of one. The system's
// loader crashes at files that end too early.
//   Returns  "" if it is one.
std::string ReasonNotToLoad(const std::string& path);

// Loads the module of readers at `place`, for as long as the process lives, and checks that its
// version is `version`.
//   Returns  its functions; nullptr if it cannot be used: then `*reason` says why, on one line.
const Readers* OpenModule(const ModulePlace& place, const std::string& version,
                          std::string* reason);

// Does the same with the module that reads mail.
const MailReader* OpenMailModule(const ModulePlace& place, const std::string& version,
                                 std::string* reason);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MODULE_MODULE_FILE_H_
