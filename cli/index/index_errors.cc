// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

using kestan::StoreError;
using kestan::search::Status;
using kestan::search::StatusCode;

// Returns whether the system refused an operation on the file, so that errno gives the reason.
bool IsFromSystem(StoreError error) {
  return error >= StoreError::kFileOpen && error <= StoreError::kFileRead;
}

// Returns why the store refused to open a file; errno was `system_error` right after.
std::string ReasonOfStore(StoreError error, int system_error) {
  if (error == StoreError::kNeedsRecovery) return std::string("damaged; ") + kSeeRepair;
  if (IsFromSystem(error) && system_error != 0) return ReasonOf(system_error);
  return std::string("not an index file (") + ErrorString(error) + ")" + kIfItWasOne;
}

// Returns what `status` says of a file, which is named unless it is the index itself.
std::string ReasonOf(const Status& status, const std::string& path) {
  const std::string& file = status.file();
  std::string folder = path;
  while (!folder.empty() && folder.back() == '/') folder.pop_back();
  if (file.empty() || file == path || file == folder) return status.message();
  folder += '/';
  const bool is_inside = file.compare(0, folder.size(), folder) == 0;
  const std::string name = is_inside ? file.substr(folder.size()) : file;
  return OneLine(status.message()) + " (" + OneLine(name) + ")";
}

}  // namespace

CommandError CannotOpen(const std::string& path, const std::string& reason, int status) {
  return CommandError("cannot open index " + Quoted(path) + ": " + reason, status);
}

CommandError CannotChange(const std::string& path, const std::string& reason, int status) {
  return CommandError("cannot change index " + Quoted(path) + ": " + reason, status);
}

CommandError StoreNotOpened(const std::string& path, StoreError error, int system_error) {
  if (error == StoreError::kCannotBeReader) {
    return CannotOpen(path, "another process is changing it; try again later", kBusy);
  }
  return CannotOpen(path, ReasonOfStore(error, system_error));
}

CommandError CannotRead(const std::string& path, StoreError error) {
  return CommandError("cannot read index " + Quoted(path) + ": " + ErrorString(error) +
                      "; see kestan check");
}

CommandError ErrorOf(const Status& status, const std::string& path) {
  const std::string reason = ReasonOf(status, path);
  const std::string start = "index " + Quoted(path) + ": ";
  switch (status.code()) {
    case StatusCode::kNotFound:
      return CommandError(start + reason + "; kestan index makes one");
    case StatusCode::kBusy:
      return CommandError(start + reason + "; try again later", kBusy);
    case StatusCode::kDamaged:
      return CommandError(start + reason + "; see kestan check and kestan repair");
    default:
      return CommandError(start + reason);
  }
}

void CheckStatus(const Status& status, const std::string& path) {
  if (!status.ok()) throw ErrorOf(status, path);
}

}  // namespace kestan_cli
