// SPDX-License-Identifier: GPL-3.0-or-later
// Records the gdbm calls of a test program and can make a call fail. It sees the calls of the
// library and those of the test itself. kestan_watch_gdbm(TARGET) links it in.
#ifndef KESTAN_TESTS_SUPPORT_GDBM_CALLS_H_
#define KESTAN_TESTS_SUPPORT_GDBM_CALLS_H_

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/gdbm_interposer.h"

namespace kestan_tests {

// The watch reads at most this many bytes of a value: tests store values that only claim to be
// long.
inline constexpr std::size_t kNotedBytes = 4096;

struct GdbmCall {
  std::string function;  // without its "gdbm_": "store", "fetch", "delete", "sync", ...
  std::string file;      // the path that the file was opened with
  std::string key;       // empty where the function takes none
  std::string value;     // of a store, its first kNotedBytes bytes
};

// Records every call from its construction to its end. One at a time.
class GdbmWatch {
 public:
  GdbmWatch();
  ~GdbmWatch();
  GdbmWatch(const GdbmWatch&) = delete;
  GdbmWatch& operator=(const GdbmWatch&) = delete;

  // Makes the `nth` call of `function` from now on, counted from 1, do nothing and report `error`.
  // The calls before and after it go through.
  void Fail(std::string_view function, int nth, int error);

  // The same for the `nth` call and every later one.
  void FailFrom(std::string_view function, int nth, int error);

  // Calls `observer` with each call before gdbm gets it, and with those of "open" and "setopt",
  // which Calls() leaves out.
  void Observe(std::function<void(const GdbmCall&)> observer) { observer_ = std::move(observer); }

  // Makes fetches of `key` return `bytes` bytes, which begin with the stored ones.
  void Inflate(std::string_view key, std::size_t bytes) { inflated_[std::string(key)] = bytes; }

  // Returns how many bytes a fetch of `key` has to return; 0 means as many as are stored.
  std::size_t InflatedBytes(const std::string& key) const {
    const auto found = inflated_.find(key);
    return found != inflated_.end() ? found->second : 0;
  }

  const std::vector<GdbmCall>& Calls() const { return calls_; }
  const std::vector<GdbmOpening>& Openings() const { return openings_; }

  // Returns the calls as "store KEY" or "sync", in the order they were made.
  std::vector<std::string> Lines() const;

  std::size_t Count(std::string_view function) const;

  // For the interposer: records a call.
  //   Returns  the error that the call has to report; nothing if gdbm is to get it.
  std::optional<int> Note(GdbmCall call);
  std::optional<int> Note(GdbmOpening opening);
  std::optional<int> NoteOption(GdbmCall call) { return Decide(call); }

 private:
  struct Failure {
    std::string function;
    int calls_left;
    int error;
    bool lasting;
  };

  std::optional<int> Decide(const GdbmCall& call);

  std::vector<GdbmCall> calls_;
  std::vector<GdbmOpening> openings_;
  std::vector<Failure> failures_;
  std::function<void(const GdbmCall&)> observer_;
  std::map<std::string, std::size_t> inflated_;
};

// Returns how many files this program has opened with gdbm_open and not closed.
std::size_t CountOpenFiles();

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_GDBM_CALLS_H_
