// The subcommands. Each takes the process's one engine, the path of an index and its further
// arguments, prints what it has to say and returns the exit status. Each throws CommandError for
// whatever is wrong, with nothing changed where its input or the index file was at fault.
#ifndef KESTAN_CLI_COMMANDS_H_
#define KESTAN_CLI_COMMANDS_H_

#include <kestan/kestan.h>

#include <string>
#include <vector>

namespace kestan_cli {

constexpr int kDone = 0;
constexpr int kNoHits = 1;  // of a search
constexpr int kFailed = 2;

using Arguments = std::vector<std::string>;

// Adds the text files at and below `paths`, each under its path, in place of earlier versions.
int RunIndex(Kestan& engine, const std::string& index, const Arguments& paths);

// Prints "PERCENT NAME" for each document that the words of `query`, joined by blanks, ask for; the
// best comes first.
int RunSearch(Kestan& engine, const std::string& index, const Arguments& query);

// Prints the names of all documents, in order of their bytes.
int RunList(Kestan& engine, const std::string& index, const Arguments& none);

// Prints how much the index holds.
int RunStats(Kestan& engine, const std::string& index, const Arguments& none);

// Removes documents with their titles, summaries and user records.
int RunRemove(Kestan& engine, const std::string& index, const Arguments& names);

// Purges what removed documents left behind and compacts the file.
int RunShrink(Kestan& engine, const std::string& index, const Arguments& none);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_H_
