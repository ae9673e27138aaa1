// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/root_choice.h"

#include "cli/console/message.h"
#include "cli/files/ignore_rules.h"
#include "cli/files/paths.h"
#include "cli/index/document_names.h"

namespace kestan_cli {
namespace {

RootOptions OptionsFor(const RootRequest& request, const RootOptions& remembered) {
  RootOptions options = request.reset ? RootOptions() : remembered;
  if (request.reading.has_value()) {
    options.reading = *request.reading;
    options.is_given_now = true;
  }
  options.prune = request.prune.value_or(options.prune);
  return options;
}

// Returns whether the root `outer` finds what is at `path`, below it.
bool IsFoundFrom(const std::string& outer, const RootOptions& options, const std::string& path) {
  return options.reading.no_ignore || ReasonToLeaveOut(outer, path).empty();
}

// Adds `path`, which the user named, to the targets, and to the roots unless it is a part of one.
void Name(const std::string& path, const RootRequest& request, RootChoice* choice) {
  choice->named.insert(path);
  const std::string outer = InnermostOf(choice->roots, path);
  const bool is_part = outer != path && !outer.empty() && !request.reading && !request.reset;
  if (is_part) {
    RootOptions& options = choice->targets[path];
    options = choice->roots.at(outer);
    options.prune = request.prune.value_or(options.prune);
    if (!IsFoundFrom(outer, options, path)) choice->roots[path] = options;
  } else {
    RootOptions& options = choice->roots[path];
    options = OptionsFor(request, options);
    choice->targets[path] = options;
  }
}

// Returns whether a root with the options `inner` may be a part of a root above it.
bool IsReadAlike(const RootOptions& inner, const RootOptions& outer) {
  return inner.reading == outer.reading && inner.prune == outer.prune &&
         outer.reading.include.empty() && outer.reading.exclude.empty();
}

// Adds the roots below the root or target `path` to the targets, but for those that the user named.
// Roots that say nothing else than `path`, which is a root, become parts of it.
void AddRootsBelow(const std::string& path, const RootRequest& request, RootChoice* choice) {
  const bool is_root = choice->roots.count(path) != 0;
  const RootOptions outer = choice->targets.at(path);
  auto root = choice->roots.upper_bound(path);
  // What begins with the path lies side by side.
  while (root != choice->roots.end() && root->first.compare(0, path.size(), path) == 0) {
    RootOptions inner = root->second;
    inner.prune = request.prune.value_or(inner.prune);
    const bool is_new = IsBelow(root->first, path) && choice->named.count(root->first) == 0;
    if (is_new && is_root && IsReadAlike(inner, outer) && IsFoundFrom(path, outer, root->first)) {
      root = choice->roots.erase(root);
      continue;
    }
    if (is_new) choice->targets.emplace(root->first, inner);
    ++root;
  }
}

// Outer paths come first: others may be parts of them.
void NameAll(const RootRequest& request, RootChoice* choice) {
  const std::set<std::string> paths(request.paths.begin(), request.paths.end());
  for (const std::string& path : paths) Name(path, request, choice);
  for (const std::string& path : paths) AddRootsBelow(path, request, choice);
}

void ChooseAll(const RootRequest& request, const std::string& index, RootChoice* choice) {
  if (choice->roots.empty()) {
    throw CommandError("nothing to index: no PATH, and index " + Quoted(index) + " remembers none");
  }
  if (request.reading.has_value() && !request.reset) {
    throw CommandError(
        "options of reading files are those of a PATH: name it, or set them for all with --reset");
  }
  for (auto& [path, options] : choice->roots) options = OptionsFor(request, options);
  choice->targets = choice->roots;
}

void Forget(const std::vector<std::string>& paths, const std::string& index, RootChoice* choice) {
  if (paths.empty()) throw CommandError("--forget needs the PATHs to forget");
  for (const std::string& path : paths) {
    if (choice->roots.erase(path) == 0 && choice->forgotten.count(path) == 0) {
      throw CommandError("index " + Quoted(index) + " is not kept up to date with " +
                         Quoted(ShownNames()(path)) + "; kestan stats shows its roots");
    }
    choice->forgotten.insert(path);
  }
}

}  // namespace

RootChoice ChooseRoots(const RootRequest& request, const Roots& remembered,
                       const std::string& index) {
  RootChoice choice;
  choice.roots = remembered;
  if (request.forget) {
    Forget(request.paths, index, &choice);
  } else if (request.paths.empty()) {
    ChooseAll(request, index, &choice);
  } else {
    NameAll(request, &choice);
  }
  return choice;
}

}  // namespace kestan_cli
