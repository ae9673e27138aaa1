// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an index file, opened for reading and for writing and driven through every method.
//
// gdbm has faults of its own on such files; support/gdbm_guard.h turns those that raise a signal
// or walk in a cycle into errors, and KESTAN_FUZZ_SHOW_GDBM_FAULTS=1 prints them. scripts/fuzz.sh
// separates what the address sanitizer finds inside gdbm from findings in our code.
#include <fcntl.h>
#include <kestan/kestan.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "fuzz/support/gdbm_guard.h"
#include "fuzz/support/input.h"
#include "fuzz/support/reporting.h"
#include "fuzz/support/scratch_index.h"

namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 3> kNames = {"a.txt", "b.txt", "c.txt"};
constexpr std::array<const char*, 4> kWords = {"cat", "Cat", "the", "a"};

const std::string& IndexPath() {
  static const std::string path = kestan_fuzz::Folder() / "index";
  return path;
}

const std::string& CopyPath() {
  static const std::string path = kestan_fuzz::Folder() / "copy";
  return path;
}

// A session with the file, whatever is in it.
class Session {
 public:
  explicit Session(int mode) : is_open_(engine_.OpenIndex(IndexPath().c_str(), mode) == 0) {}

  ~Session() {
    for (const int id : ids_) engine_.FreeQueryResult(id);
  }

  void Read() {
    if (!is_open_) return;
    Query();
    for (const char* name : kNames) {
      engine_.DBGetTitle(name);
      engine_.DBGetSummary(name);
      engine_.DBGetUser(name);
      engine_.DocumentTimestamp(name);
    }
    engine_.DBGetWords("stop");
    engine_.ListDocuments();
    engine_.CommonWords(0, -1);
    engine_.GetOptions();
  }

  void Write() {
    if (!is_open_) return;
    AddDocuments();
    engine_.MoveDocumentWords("b.txt", "moved");
    engine_.RemoveDocumentWords("c.txt");
    PutSideRecords();
    engine_.FlushIndex();
    engine_.CopyIndexTo(CopyPath().c_str());
    engine_.SetOptionFlag(2);
    engine_.UnsetOptionFlag(2);
    engine_.ShrinkIndex();
    Query();
    engine_.SetOptionFlag(1);
    Query();
  }

 private:
  void Query() {
    for (const char* word : kWords) Keep(engine_.QueryWord(word));
    if (ids_.size() >= 2) {
      const int left = ids_[ids_.size() - 1];
      const int right = ids_[ids_.size() - 2];
      Keep(engine_.QueryAnd(left, right, 3));
      Keep(engine_.QueryOr(left, right));
    }
    Negate();
    for (const int id : ids_) engine_.QueryResults(id);
  }

  // An index without a code counter ends the process by design when a set is negated. Asked for as
  // a word, the counter is found or not, and then stays in memory until the negation.
  // The complement is not kept: a damaged counter may make it so large that listing it takes longer
  // than all the rest.
  void Negate() {
    const int counter = engine_.QueryWord("g-code");
    if (counter == -1) return;
    const int others = engine_.QueryNegate(ids_.empty() ? 0 : ids_.front());
    if (!ids_.empty()) Keep(engine_.QueryAnd(others, ids_.back(), 0));
    engine_.FreeQueryResult(others);
    engine_.FreeQueryResult(counter);
  }

  // A code 0 that waits to be reused ends the process by design when a document is added. Until
  // the first shrink the engine only takes codes from the list in the file.
  void AddDocuments() {
    const std::string codes = kestan_fuzz::PeekAt(IndexPath(), "g-avail");
    for (std::size_t i = 0; i + 1 < codes.size(); i += 2) {
      if (codes[i] == '\0' && codes[i + 1] == '\0') return;
    }
    engine_.AddDocumentWords("a.txt", "the Cat sat on a new mat");
    engine_.AddDocumentWords("new", "a cat and the dog");
  }

  void PutSideRecords() {
    engine_.DBPutTitle("a.txt", "A cat");
    engine_.DBPutSummary("b.txt", "It sat.");
    engine_.DBPutUser("c.txt", "read");
    engine_.DBDelTitle("b.txt");
    engine_.DBDelSummary("b.txt");
    engine_.DBDelUser("a.txt");
    engine_.DBPutWords("stop", "the then there");
  }

  void Keep(int id) {
    if (id > 0) ids_.push_back(id);
  }

  Kestan engine_;
  std::vector<int> ids_;
  const bool is_open_;
};

// As a new file, for a lock on an earlier one may be left of a fault.
void WriteFile(const std::uint8_t* bytes, std::size_t size) {
  unlink(IndexPath().c_str());
  const int file = open(IndexPath().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  kestan_fuzz::Require(file >= 0, "cannot make a file");
  const ssize_t written = write(file, bytes, size);
  close(file);
  kestan_fuzz::Require(written == static_cast<ssize_t>(size), "cannot write a file");
}

// gdbm rewrites a file beside the old one, and leaves the new one there when it fails.
void ClearFolder() {
  unlink(CopyPath().c_str());
  if (kestan_fuzz::GdbmFaults().empty()) return;
  for (const auto& entry : fs::directory_iterator(fs::path(IndexPath()).parent_path())) {
    fs::remove(entry.path());
  }
}

void ShowFaults() {
  static const bool wanted = std::getenv("KESTAN_FUZZ_SHOW_GDBM_FAULTS") != nullptr;
  if (!wanted) return;
  for (const std::string& fault : kestan_fuzz::GdbmFaults()) {
    std::printf("gdbm fault: %s\n", fault.c_str());
  }
  std::fflush(stdout);
}

void Run(int mode) {
  Session session(mode);
  session.Read();
  if (mode != 0) session.Write();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::StartGuarding();
  kestan_fuzz::ForgetScratch();
  WriteFile(data, size);
  {
    const kestan_fuzz::Quiet quiet;
    Run(0);
    Run(1);
    Run(0);
  }
  kestan_fuzz::StopGuarding();
  ClearFolder();
  ShowFaults();
  return 0;
}
