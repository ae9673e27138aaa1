// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/session.h"

#include <kestan/kestan.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace kestan_faults {
namespace {

constexpr std::size_t kKeptBytes = 120;  // of a result

// Calls one method after the other and notes what each returned.
class Session {
 public:
  Session(const SessionFiles& files, Transcript* transcript)
      : files_(files), transcript_(transcript) {}

  void Run() {
    running_ = this;
    std::atexit(
        FreeSetsOfRunning);  // where the engine ends the process, or they would count as lost
    StripTexts();
    Note("open", engine_.OpenIndex(files_.index.c_str(), 1));
    AddDocuments();
    KeepSideRecords();
    Note("flush", engine_.FlushIndex());
    Query();
    ChangeDocuments();
    Walk();
    Note("copy", engine_.CopyIndexTo(files_.copy.c_str()));
    Note("shrink", engine_.ShrinkIndex());
    Note("purge", engine_.PurgeShortWords());
    AddMoreDocuments();
    ChangeOptions();
    Query();
    Note("close", engine_.CloseIndex());
    ReadOnly();
    running_ = nullptr;
  }

 private:
  static void FreeSetsOfRunning() {
    if (running_ != nullptr) running_->FreeSets();
  }

  void FreeSets() {
    for (const int id : sets_) engine_.FreeQueryResult(id);
  }

  void Note(std::string_view what, long result) { transcript_->Add(what, result); }
  void Note(std::string_view what, const char* result) {
    transcript_->Add(what, result != nullptr ? result : "(null)");
  }

  void StripTexts() {
    std::array<char, 64> text{};
    std::strcpy(text.data(), "Don't panic, the cat said.\nM\n");
    auto length = static_cast<unsigned>(std::strlen(text.data()));
    length = static_cast<unsigned>(Kestan::StripBadLines(text.data(), length));
    length = static_cast<unsigned>(Kestan::StripNonWords(text.data(), length));
    const std::array<const char*, 2> more = {"panic", nullptr};
    length =
        static_cast<unsigned>(Kestan::StripWords(text.data(), length, "the and said", more.data()));
    text[length] = '\0';
    Note("strip", text.data());
  }

  void AddDocuments() {
    Note("add a", engine_.AddDocumentWords("a.txt", "the Cat sat on the mat"));
    Note("add b", engine_.AddDocumentWords("b.txt", "a dog sat by the other dog and a cat"));
    Note("add c", engine_.AddDocumentWords("c.txt", "birds sing while the cat sleeps"));
    Note("add a again", engine_.AddDocumentWords("a.txt", "the Cat sat on the new mat"));
    const std::array<const char*, 3> names = {"d.txt", "e.txt", "f.txt"};
    for (const char* name : names) {
      Note("add", engine_.AddDocumentWords(name, "one two three four five six seven cat"));
    }
  }

  void KeepSideRecords() {
    Note("put title", engine_.DBPutTitle("a.txt", "A cat"));
    Note("put summary", engine_.DBPutSummary("a.txt", "It sat."));
    Note("put user", engine_.DBPutUser("a.txt", "read"));
    Note("get title", engine_.DBGetTitle("a.txt"));
    Note("get summary", engine_.DBGetSummary("a.txt"));
    Note("get user", engine_.DBGetUser("a.txt"));
    Note("put words", engine_.DBPutWords("stop", "the then there a an and"));
    Note("get words", engine_.DBGetWords("stop"));
    Note("put title b", engine_.DBPutTitle("b.txt", "A dog"));
    Note("delete title b", engine_.DBDelTitle("b.txt"));
    Note("delete summary b", engine_.DBDelSummary("b.txt"));
    Note("put user b", engine_.DBPutUser("b.txt", "new"));
    Note("delete user b", engine_.DBDelUser("b.txt"));
  }

  void Query() {
    const int cat = engine_.QueryWord("cat");
    const int sat = engine_.QueryWord("sat");
    const int both = engine_.QueryAnd(cat, sat, 0);
    const int near = engine_.QueryAnd(cat, sat, 1);
    const int either = engine_.QueryOr(cat, sat);
    sets_ = {cat, sat, both, near, either};
    for (const int id : sets_) Note("results", engine_.QueryResults(id));
    NoteComplement(sat);
    FreeSets();
  }

  // Without a counter of codes a complement would end the process.
  void NoteComplement(int id) {
    if (*engine_.ListDocuments() == '\0') return;
    const int others = engine_.QueryNegate(id);
    Note("complement", engine_.QueryResults(others));
    engine_.FreeQueryResult(others);
  }

  void ChangeDocuments() {
    Note("remove", engine_.RemoveDocumentWords("d.txt"));
    Note("remove unknown", engine_.RemoveDocumentWords("nobody"));
    Note("move", engine_.MoveDocumentWords("b.txt", "moved.txt"));
    Note("has timestamp", engine_.DocumentTimestamp("moved.txt") != 0 ? 1 : 0);
  }

  void Walk() {
    Note("list", engine_.ListDocuments());
    Note("common", engine_.CommonWords(0.5, -1));
  }

  void AddMoreDocuments() {
    std::array<char, 16> name{};
    std::array<char, 96> text{};
    for (int i = 0; i < 5; ++i) {
      std::snprintf(name.data(), name.size(), "more%d", i);
      std::snprintf(text.data(), text.size(), "cat number%d fresh%d words%d here%d once%d more%d",
                    i, i, i, i, i, i);
      Note("add more", engine_.AddDocumentWords(name.data(), text.data()));
    }
  }

  void ChangeOptions() {
    Note("set flag 4", engine_.SetOptionFlag(4));
    Note("unset flag 4", engine_.UnsetOptionFlag(4));
    Note("set flag 1", engine_.SetOptionFlag(1));
    Note("unset flag 1", engine_.UnsetOptionFlag(1));
    Note("put options", engine_.PutOptions());
    engine_.GetOptions();
    Note("options", static_cast<long>(engine_.Options()));
  }

  void ReadOnly() {
    Note("open to read", engine_.OpenIndex(files_.index.c_str(), 0));
    Note("list again", engine_.ListDocuments());
    Query();
    Note("close again", engine_.CloseIndex());
  }

  const SessionFiles& files_;
  static inline Session* running_ = nullptr;

  Transcript* const transcript_;
  Kestan engine_;
  std::array<int, 5> sets_{};
};

}  // namespace

void Transcript::Add(std::string_view what, std::string_view result) {
  Append(what);
  Append(": ");
  Append(result.substr(0, kKeptBytes));
  Append("\n");
}

void Transcript::Add(std::string_view what, long result) {
  std::array<char, 24> digits{};
  std::snprintf(digits.data(), digits.size(), "%ld", result);
  Add(what, std::string_view(digits.data()));
}

bool Transcript::Has(std::string_view what) const {
  const std::string line = std::string(what) + ": ";
  return text().substr(0, line.size()) == line ||
         text().find("\n" + line) != std::string_view::npos;
}

void Transcript::Append(std::string_view bytes) {
  const std::size_t count = std::min(bytes.size(), std::size(text_) - size_);
  bytes.copy(text_ + size_, count);
  size_ += count;
}

void RunSession(const SessionFiles& files, Transcript* transcript) {
  Session(files, transcript).Run();
}

}  // namespace kestan_faults
