// SPDX-License-Identifier: GPL-3.0-or-later
// Carries out a plan of changes.
#ifndef KESTAN_CLI_SYNC_INDEX_RUN_H_
#define KESTAN_CLI_SYNC_INDEX_RUN_H_

#include <functional>
#include <string>

#include "cli/console/progress.h"
#include "cli/extract/file_text.h"
#include "cli/sync/change_plan.h"
#include "cli/sync/index_change.h"
#include "cli/sync/index_report.h"

namespace kestan_cli {

// How to treat the file, or the document, of a name.
struct RunRules {
  std::function<const ReadingRules&(const std::string& name)> reading;
  std::function<bool(const std::string& name)> prunes;  // its document if the file has vanished
};

// Reads the files of `plan`, changes the index accordingly and counts the changes in `report`.
// Removes the documents whose files have vanished and did not move, as far as `rules` say so.
//   Throws   CommandError if the index refuses a change, Interrupted if a signal has come.
void CarryOut(ChangePlan plan, const RunRules& rules, IndexChange& change, Progress& progress,
              IndexReport* report);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_RUN_H_
