// SPDX-License-Identifier: GPL-3.0-or-later
// What a run is to bring up to date: what the user asks for, put together with what the index
// remembers.
#ifndef KESTAN_CLI_SYNC_ROOT_CHOICE_H_
#define KESTAN_CLI_SYNC_ROOT_CHOICE_H_

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/sync/roots.h"

namespace kestan_cli {

// What the user asks for.
struct RootRequest {
  std::vector<std::string> paths;         // canonical; none: all roots
  std::optional<ReadingOptions> reading;  // in place of what is remembered
  std::optional<bool> prune;
  bool reset = false;   // what is not given is not remembered either
  bool forget = false;  // `paths` are roots no more; nothing is brought up to date
};

struct RootChoice {
  Roots roots;                      // that the index is to remember after the run
  Roots targets;                    // what to bring up to date now, each with its options
  std::set<std::string> named;      // those of them that the user named
  std::set<std::string> forgotten;  // what was a root and is none any more
};

// Puts `request` together with the roots that the index called `index` remembers. A path that the
// user names is a target, and so are all roots below it; with no path, all roots are. It becomes a
// root, unless it lies below one and comes without options of reading: then it is a part of that
// root. Roots below it that are read alike become parts of it too. What a root leaves out as
// ignored is no part of it: there, such a path becomes or stays a root with the same options.
// Options that are given take the place of the remembered ones, of the roots that are named or,
// with no path, of all.
//   Throws   CommandError for a request that makes no sense.
RootChoice ChooseRoots(const RootRequest& request, const Roots& remembered,
                       const std::string& index);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_ROOT_CHOICE_H_
