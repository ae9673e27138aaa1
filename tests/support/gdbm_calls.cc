// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/gdbm_calls.h"

#include <gdbm.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

namespace kestan_tests {
namespace {

GdbmWatch* watch = nullptr;

// The names of files, also of those that were opened before the watch began.
std::map<GDBM_FILE, std::string>& OpenFiles() {
  static std::map<GDBM_FILE, std::string> files;
  return files;
}

std::string Text(datum bytes) {
  if (bytes.dptr == nullptr) return std::string();
  return std::string(bytes.dptr, static_cast<std::size_t>(bytes.dsize));
}

datum StartOf(datum value) {
  return {value.dptr, std::min(value.dsize, static_cast<int>(kNotedBytes))};
}

std::size_t InflatedBytes(datum key) {
  return watch != nullptr ? watch->InflatedBytes(Text(key)) : 0;
}

// Records a call and decides whether it has to fail. The library sets options as it likes, which
// changes nothing that a test sees happen to the file.
std::optional<int> Note(const GdbmRequest& request) {
  if (watch == nullptr) return std::nullopt;
  GdbmCall call{request.function, OpenFiles()[request.file], Text(request.key),
                Text(StartOf(request.value))};
  return call.function == "setopt" ? watch->NoteOption(std::move(call))
                                   : watch->Note(std::move(call));
}

class WatchedGdbm : public GdbmInterposer {
 public:
  bool Make(const GdbmRequest& request, const std::function<void()>& call) override {
    const auto error = Note(request);
    const bool closes = std::string_view(request.function) == "close";
    if (closes) OpenFiles().erase(request.file);
    if (!error || closes) call();  // a close that fails closes the file all the same
    if (error) gdbm_errno = *error;
    return !error;
  }

  GDBM_FILE Open(const GdbmOpening& opening, const std::function<GDBM_FILE()>& open) override {
    if (watch != nullptr) {
      if (const auto error = watch->Note(opening)) {
        gdbm_errno = *error;
        return nullptr;
      }
    }
    GDBM_FILE file = open();
    if (file != nullptr) OpenFiles()[file] = opening.file;
    return file;
  }

  datum Fetched(datum key, datum found) override {
    const std::size_t bytes = InflatedBytes(key);
    if (bytes == 0) return found;
    return {static_cast<char*>(std::realloc(found.dptr, bytes)), static_cast<int>(bytes)};
  }
};

}  // namespace

GdbmWatch::GdbmWatch() { watch = this; }

GdbmWatch::~GdbmWatch() { watch = nullptr; }

void GdbmWatch::Fail(std::string_view function, int nth, int error) {
  failures_.push_back({std::string(function), nth, error, false});
}

void GdbmWatch::FailFrom(std::string_view function, int nth, int error) {
  failures_.push_back({std::string(function), nth, error, true});
}

std::vector<std::string> GdbmWatch::Lines() const {
  std::vector<std::string> lines;
  for (const GdbmCall& call : calls_) {
    lines.push_back(call.key.empty() ? call.function : call.function + " " + call.key);
  }
  return lines;
}

std::size_t GdbmWatch::Count(std::string_view function) const {
  const auto is_such = [function](const GdbmCall& call) { return call.function == function; };
  return static_cast<std::size_t>(std::count_if(calls_.begin(), calls_.end(), is_such));
}

std::optional<int> GdbmWatch::Note(GdbmCall call) {
  const auto error = Decide(call);
  calls_.push_back(std::move(call));
  return error;
}

std::optional<int> GdbmWatch::Note(GdbmOpening opening) {
  const auto error = Decide({"open", opening.file, "", ""});
  openings_.push_back(std::move(opening));
  return error;
}

std::optional<int> GdbmWatch::Decide(const GdbmCall& call) {
  if (observer_) observer_(call);
  std::optional<int> error;
  for (Failure& failure : failures_) {
    if (failure.function != call.function) continue;
    --failure.calls_left;
    if (failure.calls_left == 0 || (failure.lasting && failure.calls_left < 0))
      error = failure.error;
  }
  return error;
}

GdbmInterposer& ProgramsInterposer() {
  static WatchedGdbm gdbm;
  return gdbm;
}

std::size_t CountOpenFiles() { return OpenFiles().size(); }

}  // namespace kestan_tests
