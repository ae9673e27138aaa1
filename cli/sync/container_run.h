// SPDX-License-Identifier: GPL-3.0-or-later
// Brings the documents of a mailbox, or of an archive, up to date: one a message, or a member.
#ifndef KESTAN_CLI_SYNC_CONTAINER_RUN_H_
#define KESTAN_CLI_SYNC_CONTAINER_RUN_H_

#include "cli/extract/file_text.h"
#include "cli/sync/change_plan.h"
#include "cli/sync/index_change.h"
#include "cli/sync/index_report.h"

namespace kestan_cli {

// What a container is read for. Borrows all of it.
struct ContainerTask {
  const ReadingRules& rules;
  bool all = false;  // unchanged parts are indexed again too
  VanishedDocuments* vanished = nullptr;
  IndexChange* change = nullptr;
  IndexReport* report = nullptr;
};

// Reads the mailbox `candidate`. Its messages are documents of the names "PATH#1", "PATH#2" and so
// on; those of messages that it no longer has are removed, and so is one of the file as a whole.
// A message whose name a file or another document has gets a name with one more "#": "PATH##1".
// The index remembers the state of the file only if no message has failed, so that one that has is
// tried again. A message keeps its user's lines when its number changes.
//   Throws   SkipFile if the file cannot be read or changes meanwhile: then nothing is removed.
//            CommandError if the index refuses a change, Interrupted if a signal has come.
void CarryOutMailbox(const Candidate& candidate, const ContainerTask& task);

// Does the same with the archive `candidate`, whose members are documents of the names
// "PATH#FOLDER/FILE". Archives and mailboxes in it are read too: "PATH#x.zip#FILE", "PATH#box#1".
//   Throws   SkipFile also if it is broken or exceeds the limits of ReadMembers(): what came before
//            is in the index.
void CarryOutArchive(const Candidate& candidate, const ContainerTask& task);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_CONTAINER_RUN_H_
