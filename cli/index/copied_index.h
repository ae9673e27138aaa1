// Copies an index file.
#ifndef KESTAN_CLI_INDEX_COPIED_INDEX_H_
#define KESTAN_CLI_INDEX_COPIED_INDEX_H_

#include <kestan/kestan.h>

#include <string>

namespace kestan_cli {

// Copies the index at `index` to a new file at `path`, and compares the two.
//   Throws   CommandError if there is something at `path` already, or the copy is not complete.
void CopyIndex(Kestan& engine, const std::string& index, const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_COPIED_INDEX_H_
