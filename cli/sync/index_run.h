// Carrying out a plan of changes.
#ifndef KESTAN_CLI_SYNC_INDEX_RUN_H_
#define KESTAN_CLI_SYNC_INDEX_RUN_H_

#include <string>

#include "cli/console/progress.h"
#include "cli/extract/file_text.h"
#include "cli/sync/change_plan.h"
#include "cli/sync/index_report.h"
#include "cli/sync/index_writer.h"

namespace kestan_cli {

// Counts how many documents of `plan` will take a code of the index: those that are new or replace
// an earlier version, and not those that are moved, have the same content, or will be left out.
// Reads the files to tell, so it is for the rare case that their number matters.
unsigned long CountCodesNeeded(const ChangePlan& plan, const ReadingRules& rules,
                               Progress& progress);

// Reads the files of `plan` and changes the index accordingly; what became of each goes to
// `report`. With `prune`, removes the documents whose files have vanished, but for those that were
// moved.
//   Throws   CommandError if the index does not take a change.
void CarryOut(ChangePlan plan, const ReadingRules& rules, bool prune, IndexWriter& writer,
              Progress& progress, IndexReport* report);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_RUN_H_
