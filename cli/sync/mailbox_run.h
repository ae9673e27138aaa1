// Brings the documents of a mailbox up to date: one a message.
#ifndef KESTAN_CLI_SYNC_MAILBOX_RUN_H_
#define KESTAN_CLI_SYNC_MAILBOX_RUN_H_

#include "cli/extract/file_text.h"
#include "cli/sync/change_plan.h"
#include "cli/sync/index_change.h"
#include "cli/sync/index_report.h"

namespace kestan_cli {

// What a mailbox is read for. Borrows all of it.
struct MailboxTask {
  const ReadingRules& rules;
  bool all = false;  // unchanged messages are indexed again too
  VanishedDocuments* vanished = nullptr;
  IndexChange* change = nullptr;
  IndexReport* report = nullptr;
};

// Reads the mailbox `candidate`. Its messages are documents of the names "PATH#1", "PATH#2" and so
// on; those of messages that it no longer has are removed, and so is one of the file as a whole.
// The index remembers the state of the file only if every message was indexed, so that one that was
// not is tried again. A message keeps its user's lines when its number changes.
//   Throws   SkipFile if the file cannot be read or changes meanwhile: then nothing is removed.
//            CommandError if the index refuses a change, Interrupted if a signal has come.
void CarryOutMailbox(const Candidate& candidate, const MailboxTask& task);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_MAILBOX_RUN_H_
