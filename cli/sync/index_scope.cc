// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_scope.h"

#include <utility>

#include "cli/files/paths.h"
#include "cli/index/document_names.h"
#include "cli/sync/root_rules.h"

namespace kestan_cli {
namespace {

std::set<std::string> PathsOf(const Roots& roots) {
  std::set<std::string> paths;
  for (const auto& [path, options] : roots) paths.insert(path);
  return paths;
}

}  // namespace

IndexScope IndexScope::OfRoots(const RootChoice& choice, bool prunes) {
  IndexScope scope;
  const ShownNames shown;
  scope.reading_ = choice.targets;
  scope.reading_.insert(choice.roots.begin(), choice.roots.end());
  scope.owners_ = scope.reading_;
  scope.borders_ = PathsOf(scope.reading_);
  scope.targets_ = PathsOf(choice.targets);
  for (const auto& [path, options] : choice.targets) {
    const bool is_named = choice.named.count(path) != 0;
    scope.to_scan_.push_back({path, shown(path), FilterOf(options.reading),
                              is_named ? MissingPath::kThrow : MissingPath::kSkip,
                              InnermostOf(choice.roots, path), options.reading.no_ignore});
  }
  if (!prunes) return scope;
  for (const std::string& path : choice.forgotten) scope.owners_.try_emplace(path);
  scope.forgotten_ = choice.forgotten;
  return scope;
}

IndexScope IndexScope::OfList(const std::vector<std::string>& paths, const RootOptions& options,
                              const Roots& roots) {
  IndexScope scope;
  const ShownNames shown;
  const NameFilter filter = FilterOf(options.reading);
  for (const std::string& path : paths) {
    scope.owners_.emplace(path, options);
    scope.to_scan_.push_back(
        {path, shown(path), filter, MissingPath::kSkip, "", options.reading.no_ignore});
  }
  scope.reading_ = options.is_given_now ? scope.owners_ : roots;
  scope.targets_ = PathsOf(scope.owners_);
  return scope;
}

Scan IndexScope::FindFiles(const std::string& index) {
  Scan scan = ScanRoots(to_scan_, borders_, index);
  for (const Skip& skip : scan.skips) {
    if (skip.kind == SkipKind::kIgnored) ignored_.insert(skip.name);
  }
  if (borders_.empty()) return scan;  // of a list, what is missing has vanished
  for (const std::string& path : scan.missing) targets_.erase(path);
  for (Skip& skip : scan.skips) {
    if (scan.missing.count(skip.name) != 0) skip.reason += "; --forget takes it from the roots";
  }
  return scan;
}

bool IndexScope::HasVanished(const std::string& name) const {
  const std::string owner = InnermostOf(owners_, name);
  if (forgotten_.count(owner) != 0) return true;
  if (targets_.count(owner) == 0) return false;
  return IsBelow(InnermostOf(ignored_, name), owner) || kestan_cli::HasVanished(name);
}

bool IndexScope::Prunes(const std::string& name) const {
  const std::string owner = InnermostOf(owners_, name);
  if (owner.empty()) return false;
  return forgotten_.count(owner) != 0 || owners_.at(owner).prune;
}

}  // namespace kestan_cli
