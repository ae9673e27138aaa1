#include "tests/support/gdbm_calls.h"

#include <gdbm.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

namespace kestan_tests {
namespace {

GdbmWatch* watch = nullptr;

// Files that were opened before the watch began are called by their names too.
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

// Notes a call, and sets gdbm's error number if it has to fail.
bool MustFail(const char* function, GDBM_FILE file, datum key = {}, datum value = {}) {
  if (watch == nullptr) return false;
  const auto error = watch->Note({function, OpenFiles()[file], Text(key), Text(StartOf(value))});
  if (error) gdbm_errno = *error;
  return error.has_value();
}

// Options are set as the store likes: they are no part of what a test sees happen to the file.
bool MustFailOption(GDBM_FILE file) {
  if (watch == nullptr) return false;
  const auto error = watch->NoteOption({"setopt", OpenFiles()[file], "", ""});
  if (error) gdbm_errno = *error;
  return error.has_value();
}

std::size_t InflatedBytes(datum key) {
  return watch != nullptr ? watch->InflatedBytes(Text(key)) : 0;
}

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

std::size_t CountOpenFiles() { return OpenFiles().size(); }

}  // namespace kestan_tests

// The linker leads every call of gdbm_NAME to __wrap_gdbm_NAME, and __real_gdbm_NAME to gdbm_NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

using FatalCallback = void (*)(const char*);

GDBM_FILE __real_gdbm_open(const char*, int, int, int, FatalCallback);
int __real_gdbm_close(GDBM_FILE);
int __real_gdbm_store(GDBM_FILE, datum, datum, int);
datum __real_gdbm_fetch(GDBM_FILE, datum);
int __real_gdbm_delete(GDBM_FILE, datum);
datum __real_gdbm_firstkey(GDBM_FILE);
datum __real_gdbm_nextkey(GDBM_FILE, datum);
int __real_gdbm_sync(GDBM_FILE);
int __real_gdbm_reorganize(GDBM_FILE);
int __real_gdbm_setopt(GDBM_FILE, int, void*, int);

GDBM_FILE __wrap_gdbm_open(const char* path, int block_bytes, int flags, int mode,
                           FatalCallback fatal) {
  if (kestan_tests::watch != nullptr) {
    const auto error =
        kestan_tests::watch->Note({path, block_bytes, flags, mode, fatal != nullptr});
    if (error) {
      gdbm_errno = *error;
      return nullptr;
    }
  }
  GDBM_FILE file = __real_gdbm_open(path, block_bytes, flags, mode, fatal);
  if (file != nullptr) kestan_tests::OpenFiles()[file] = path;
  return file;
}

int __wrap_gdbm_close(GDBM_FILE file) {
  const bool fails = kestan_tests::MustFail("close", file);  // it is closed all the same
  const int error = gdbm_errno;
  kestan_tests::OpenFiles().erase(file);
  const int result = __real_gdbm_close(file);
  if (!fails) return result;
  gdbm_errno = error;
  return -1;
}

int __wrap_gdbm_store(GDBM_FILE file, datum key, datum value, int flag) {
  if (kestan_tests::MustFail("store", file, key, value)) return -1;
  return __real_gdbm_store(file, key, value, flag);
}

datum __wrap_gdbm_fetch(GDBM_FILE file, datum key) {
  if (kestan_tests::MustFail("fetch", file, key)) return {};
  datum found = __real_gdbm_fetch(file, key);
  const std::size_t bytes = kestan_tests::InflatedBytes(key);
  if (found.dptr == nullptr || bytes == 0) return found;
  return {static_cast<char*>(std::realloc(found.dptr, bytes)), static_cast<int>(bytes)};
}

int __wrap_gdbm_delete(GDBM_FILE file, datum key) {
  if (kestan_tests::MustFail("delete", file, key)) return -1;
  return __real_gdbm_delete(file, key);
}

datum __wrap_gdbm_firstkey(GDBM_FILE file) {
  if (kestan_tests::MustFail("firstkey", file)) return {};
  return __real_gdbm_firstkey(file);
}

datum __wrap_gdbm_nextkey(GDBM_FILE file, datum key) {
  if (kestan_tests::MustFail("nextkey", file, key)) return {};
  return __real_gdbm_nextkey(file, key);
}

int __wrap_gdbm_sync(GDBM_FILE file) {
  if (kestan_tests::MustFail("sync", file)) return -1;
  return __real_gdbm_sync(file);
}

int __wrap_gdbm_reorganize(GDBM_FILE file) {
  if (kestan_tests::MustFail("reorganize", file)) return -1;
  return __real_gdbm_reorganize(file);
}

int __wrap_gdbm_setopt(GDBM_FILE file, int option, void* value, int size) {
  if (kestan_tests::MustFailOption(file)) return -1;
  return __real_gdbm_setopt(file, option, value, size);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
