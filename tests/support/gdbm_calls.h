// A witness of the gdbm calls of a test program, which can also make a call fail. The calls of the
// library and those of the test itself both pass through it; kestan_watch_gdbm(TARGET) links it in.
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

namespace kestan_tests {

// As many bytes of a value are looked at, so that tests can store values that only claim to be
// long.
inline constexpr std::size_t kNotedBytes = 4096;

struct GdbmCall {
  std::string function;  // without its "gdbm_": "store", "fetch", "delete", "sync", ...
  std::string file;      // the path that the file was opened with
  std::string key;       // empty where the function takes none
  std::string value;     // of a store, its first kNotedBytes bytes
};

// How gdbm_open was called.
struct GdbmOpening {
  std::string file;
  int block_bytes = 0;
  int flags = 0;
  int mode = 0;
  bool has_fatal_callback = false;
};

// Records every call from its construction to its end. One at a time.
class GdbmWatch {
 public:
  GdbmWatch();
  ~GdbmWatch();
  GdbmWatch(const GdbmWatch&) = delete;
  GdbmWatch& operator=(const GdbmWatch&) = delete;

  // Makes the `nth` call of `function` from now on, counted from 1, do nothing and report `error`.
  // The calls before it and after it take their course.
  void Fail(std::string_view function, int nth, int error);

  // The same for the `nth` call and every later one.
  void FailFrom(std::string_view function, int nth, int error);

  // Calls `observer` with each call before it takes its course, those of "open" and "setopt" too,
  // which Calls() leaves out.
  void Observe(std::function<void(const GdbmCall&)> observer) { observer_ = std::move(observer); }

  // Makes fetches of `key` answer with `bytes` bytes, the first of them those that are stored.
  void Inflate(std::string_view key, std::size_t bytes) { inflated_[std::string(key)] = bytes; }

  // Returns how many bytes a fetch of `key` has to answer with, 0 if as many as are stored.
  std::size_t InflatedBytes(const std::string& key) const {
    const auto found = inflated_.find(key);
    return found != inflated_.end() ? found->second : 0;
  }

  const std::vector<GdbmCall>& Calls() const { return calls_; }
  const std::vector<GdbmOpening>& Openings() const { return openings_; }

  // Returns the calls as "store KEY" or "sync", in the order they were made.
  std::vector<std::string> Lines() const;

  std::size_t Count(std::string_view function) const;

  // For the stand-ins of the gdbm functions: notes a call.
  //   Returns  the error that the call has to report, nothing if it is to take its course.
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

// Returns how many files are open that were opened through a stand-in of gdbm_open.
std::size_t CountOpenFiles();

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_GDBM_CALLS_H_
