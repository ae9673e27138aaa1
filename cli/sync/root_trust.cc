// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/root_trust.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "cli/console/message.h"
#include "cli/index/document_names.h"

namespace kestan_cli {
namespace {

constexpr mode_t kWritableByOthers = S_IWGRP | S_IWOTH;

std::string ReasonToDistrustFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return ReasonOf(errno);
  if (status.st_uid != geteuid()) return "it belongs to another user";
  return (status.st_mode & kWritableByOthers) != 0 ? "other users may write it" : "";
}

}  // namespace

std::string FolderIdentity(const std::string& path) {
  struct statx status {};
  if (statx(AT_FDCWD, path.c_str(), 0, STATX_INO | STATX_BTIME, &status) != 0) return "";
  const bool is_known = (status.stx_mask & STATX_BTIME) != 0 && status.stx_btime.tv_sec != 0;
  if (!is_known) return "";
  return std::to_string(status.stx_ino) + " " + std::to_string(status.stx_btime.tv_sec) + "." +
         std::to_string(status.stx_btime.tv_nsec);
}

std::string ReasonToDistrust(const std::string& path) {
  const std::string reason = ReasonToDistrustFile(path);
  return reason.empty() ? ReasonToDistrustFile(path + "/MANIFEST") : reason;
}

void CheckConverters(const std::string& path, const RootOptions& options,
                     const std::string& index) {
  if (options.reading.converters.empty() || options.is_given_now) return;
  std::string reason = ReasonToDistrust(index);
  const bool is_here = !options.given_in.empty() && options.given_in == FolderIdentity(index);
  if (reason.empty() && !is_here) reason = "they were not given in this folder, which is a copy";
  if (reason.empty()) return;
  throw CommandError("the converters that index " + Quoted(index) + " remembers for " +
                     Quoted(ShownNames()(path)) + " are not run: " + reason +
                     "; give them again with --converter, or none with --reset");
}

void SignConverters(const std::string& index, Roots* roots) {
  for (auto& [path, options] : *roots) {
    if (!options.is_given_now) continue;
    options.given_in = options.reading.converters.empty() ? "" : FolderIdentity(index);
  }
}

}  // namespace kestan_cli
