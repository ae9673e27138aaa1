// SPDX-License-Identifier: GPL-3.0-or-later
// A new index that is made of another one.
#ifndef KESTAN_CLI_INDEX_NEW_INDEX_H_
#define KESTAN_CLI_INDEX_NEW_INDEX_H_

#include <kestan/search.h>

#include <string>

#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/console/progress.h"

namespace kestan_cli {

// Returns the error that no index can be made at `path`.
CommandError CannotMake(const std::string& path, const std::string& reason);

// Follows a function of the search library that makes the index `target` of `source`, all of it or
// nothing: shows how far it has come, and has it end when a signal asks the process to end.
class NewIndex {
 public:
  // `step` is what progress shows: "copying".
  NewIndex(std::string source, std::string target, std::string step, ProgressStyle style);
  NewIndex(const NewIndex&) = delete;
  NewIndex& operator=(const NewIndex&) = delete;

  // Returns what to call with the progress. It must not outlive this object.
  kestan::search::UpkeepProgress progress();

  // Ends what shows the progress. `status` is what the function returned.
  //   Throws   CommandError for an error, about the one index or the other; Interrupted if a signal
  //            has come.
  void Check(const kestan::search::Status& status);

 private:
  CommandError ErrorOf(const kestan::search::Status& status) const;

  const std::string source_;
  std::string target_;  // "": none
  const std::string step_;
  Progress progress_;
  Interruption interruption_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_NEW_INDEX_H_
