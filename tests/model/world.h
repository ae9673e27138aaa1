// SPDX-License-Identifier: GPL-3.0-or-later
// One case of a property: the engine and the model side by side, on files of their own.
#ifndef KESTAN_TESTS_MODEL_WORLD_H_
#define KESTAN_TESTS_MODEL_WORLD_H_

#include <functional>
#include <string>
#include <vector>

#include "tests/model/model.h"
#include "tests/support/index_test.h"

namespace kestan_model {

// How a value is compared and reported.
// In quotes, with \x for what is not printable, and long runs of one byte counted.
std::string Shown(const std::string& bytes);
std::string Shown(const Text& text);
template <typename Number>
std::string Shown(Number number) {
  return std::to_string(number);
}

// What the engine handed out.
Text Taken(const char* text);

// The engine of this process; all cases use it, one after the other.
Kestan& Engine();

class World {
  kestan_tests::TempDir folder_;
  Disk disk_;

 public:
  World();
  ~World();  // closes the index and frees every result set
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  // Names what is done next; a disagreement is reported under this name.
  void Begin(const std::string& operation);

  // Calls the engine and then the model, and fails the case unless both return the same, print the
  // same, and leave a buffer of the same size.
  template <typename Library, typename Naive>
  void Same(const Library& library, const Naive& naive) {
    testing::internal::CaptureStderr();
    const std::string returned = Shown(library());
    const std::string printed = testing::internal::GetCapturedStderr();
    process.said.clear();
    const std::string expected = Shown(naive());
    Compare("the result", returned, expected);
    Compare("the diagnostics", Shown(printed), Shown(process.said));
    Compare("the buffer's size", Shown(Kestan::WBSize), Shown(process.buffer_size));
  }

  // Replaces `records` in the index file without the engine, and opens it for writing.
  void PlantAndReopen(const Records& records);

  // Compares what the files hold at this moment, whether an index is open or not.
  void CompareFiles();

  // The path of "index", "copy" or any other file of this case; those in "missing" cannot be made.
  std::string Path(const std::string& file) const { return folder_ / file; }

  // The id of the `back`-th last result set; 0 names the one that comes next.
  int Id(int back) const { return process.next_id - back; }

  void Advance(std::uint32_t seconds);

  Process& process;
  Model model;

 private:
  void Compare(const char* what, const std::string& library, const std::string& naive);
  Records Read(const std::string& path) const;
  void CopyToSeen(const std::string& path) const;
  std::vector<std::string> KeysOf(const std::string& path) const;

  int first_id_;
  int step_ = 0;
  bool disagreed_ = false;
  std::string operation_;
};

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_WORLD_H_
