// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/new_index.h"

#include <utility>

#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

using kestan::search::Status;
using kestan::search::StatusCode;

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

}  // namespace

CommandError CannotMake(const std::string& path, const std::string& reason) {
  return CommandError("cannot make " + Quoted(path) + ": " + reason);
}

NewIndex::NewIndex(std::string source, std::string target, std::string step, ProgressStyle style)
    : source_(std::move(source)),
      target_(std::move(target)),
      step_(std::move(step)),
      progress_(style) {
  while (target_.size() > 1 && target_.back() == '/') target_.pop_back();
}

kestan::search::UpkeepProgress NewIndex::progress() {
  return [this](std::uint64_t done_bytes, std::uint64_t all_bytes) {
    progress_.Reach(step_, done_bytes, all_bytes);
    return !Interruption::HasCome();
  };
}

void NewIndex::Check(const Status& status) {
  progress_.Clear();
  if (status.code() != StatusCode::kInterrupted && !status.ok()) throw ErrorOf(status);
  Interruption::Check();
}

CommandError NewIndex::ErrorOf(const Status& status) const {
  const bool is_of_target =
      !target_.empty() && (status.file() == target_ || StartsWith(status.file(), target_ + ".new"));
  if (!is_of_target) return kestan_cli::ErrorOf(status, source_);
  if (status.code() == StatusCode::kAlreadyExists && status.file() == target_) {
    return CannotMake(target_, "there is something already; choose another name");
  }
  if (status.code() == StatusCode::kNotFound) return CannotMake(target_, "no such folder");
  return CannotMake(target_, status.message());
}

}  // namespace kestan_cli
