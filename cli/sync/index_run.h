// Carries out a plan of changes.
#ifndef KESTAN_CLI_SYNC_INDEX_RUN_H_
#define KESTAN_CLI_SYNC_INDEX_RUN_H_

#include <string>

#include "cli/console/progress.h"
#include "cli/extract/file_text.h"
#include "cli/sync/change_plan.h"
#include "cli/sync/index_report.h"
#include "cli/sync/index_writer.h"

namespace kestan_cli {

// Counts the documents of `plan` that will take a document code: those that are new or replace an
// earlier version. Those that move, keep their content or are skipped take none. Reads all files,
// so it is for indexes that are almost full.
unsigned long CountCodesNeeded(const ChangePlan& plan, const ReadingRules& rules,
                               Progress& progress);

// Reads the files of `plan`, changes the index accordingly and counts the changes in `report`. With
// `prune`, removes the documents whose files have vanished and did not move.
//   Throws   CommandError if the index refuses a change.
void CarryOut(ChangePlan plan, const ReadingRules& rules, bool prune, IndexWriter& writer,
              Progress& progress, IndexReport* report);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_RUN_H_
