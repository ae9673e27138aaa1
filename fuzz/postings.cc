// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as posting records and as the engine's own records, read and rewritten by every method
// that looks into them. Nothing is compared here (the target `operations` does that); the engine
// must only stay inside its memory, come to an end, and leave a file that can be opened.
//
// Input: the number of steps (mod 24), 4 bytes for each, then records until the end: a byte that
// chooses the key, a number of 2 bytes (mod 1024) that says how long the value is, the value.
#include <kestan/kestan.h>

#include <array>

#include "fuzz/support/input.h"
#include "fuzz/support/reporting.h"
#include "fuzz/support/scratch_index.h"

namespace {

using kestan_fuzz::Input;
using kestan_fuzz::RecordList;
using kestan_fuzz::Require;

constexpr unsigned kMostSteps = 24;
constexpr unsigned kLongestRecord = 1024;
constexpr unsigned kManyCodes = 300;

constexpr std::array<const char*, 4> kWords = {"cat", "dog", "a", "d-"};
constexpr std::array<const char*, 3> kNames = {"a", "b", ""};

// The numbers by which one step chooses.
struct Step {
  unsigned a, b, c;
};

class Session {
 public:
  explicit Session(const std::string& path) : path_(path) {
    Require(engine_.OpenIndex(path.c_str(), 1) == 0, "cannot open the index");
  }

  ~Session() {
    for (const int id : ids_) engine_.FreeQueryResult(id);
  }

  void Run(unsigned method, Step step) { (this->*kMethods[method % kMethods.size()])(step); }

  // What reads without a choice, so that no input passes it by.
  void ReadEverything() {
    for (const char* word : kWords) Keep(engine_.QueryWord(word));
    for (const int id : ids_) engine_.QueryResults(id);
    engine_.ListDocuments();
    engine_.CommonWords(0, -1);
    for (const char* name : kNames) engine_.DocumentTimestamp(name);
  }

 private:
  void Word(Step step) { Keep(engine_.QueryWord(kWords[step.a % kWords.size()])); }
  void And(Step step) {
    const int distance = static_cast<int>(step.c) - 64;
    Keep(engine_.QueryAnd(Id(step.a), Id(step.b), distance));
  }
  void Or(Step step) { Keep(engine_.QueryOr(Id(step.a), Id(step.b))); }

  // An index without a code counter ends the process by design when a set is negated.
  // The complement in an index of very many codes is a large set, whose listing would take longer
  // than everything else: there only what an AND leaves of it is kept.
  void Not(Step step) {
    if (!HasCounter()) return;
    const int others = engine_.QueryNegate(Id(step.a));
    if (CountedCodes() <= kManyCodes) return Keep(others);
    Keep(engine_.QueryAnd(others, Id(step.b), 0));
    engine_.FreeQueryResult(others);
  }
  void List(Step step) { engine_.QueryResults(Id(step.a)); }
  void Common(Step step) { engine_.CommonWords(step.a / 4.0, step.b / 4.0 - 1); }
  void Documents(Step) { engine_.ListDocuments(); }
  void DropPositions(Step) { engine_.SetOptionFlag(1); }
  void Shrink(Step) { engine_.ShrinkIndex(); }

  // A code 0 that waits to be reused ends the process by design when a document is added. What an
  // index that is only read would reuse does not show in its file.
  void Add(Step step) {
    if (!is_writer_ || kestan_fuzz::WouldReuseCodeZero(engine_, path_)) return;
    const std::string text =
        std::string(kWords[step.b % kWords.size()]) + " Cat new" + std::to_string(step.c % 8);
    engine_.AddDocumentWords(kNames[step.a % kNames.size()], text.c_str());
  }
  void Remove(Step step) { engine_.RemoveDocumentWords(kNames[step.a % kNames.size()]); }
  void Move(Step step) {
    engine_.MoveDocumentWords(kNames[step.a % kNames.size()], kNames[step.b % kNames.size()]);
  }
  void Timestamp(Step step) { engine_.DocumentTimestamp(kNames[step.a % kNames.size()]); }
  void Flush(Step) { engine_.FlushIndex(); }
  void Reopen(Step step) {
    engine_.CloseIndex();
    is_writer_ = step.a % 4 != 0;
    Require(engine_.OpenIndex(path_.c_str(), static_cast<int>(step.a % 4)) == 0,
            "cannot open the index again");
  }

  void Keep(int id) {
    if (id > 0) ids_.push_back(id);
  }

  // One of the sets made so far; an unknown one if there is none.
  int Id(unsigned number) const { return ids_.empty() ? 0 : ids_[number % ids_.size()]; }

  // Asked for as a word, the counter is found or not just as it is when a set is negated.
  bool HasCounter() {
    const int id = engine_.QueryWord("g-code");
    engine_.FreeQueryResult(id);
    return id != -1;
  }

  unsigned CountedCodes() {
    engine_.FlushIndex();
    std::string counter = kestan_fuzz::PeekAt(path_, "g-code");
    counter.resize(2);
    return static_cast<unsigned char>(counter[0]) |
           static_cast<unsigned>(static_cast<unsigned char>(counter[1])) << 8;
  }

  using Method = void (Session::*)(Step);
  static constexpr std::array<Method, 15> kMethods = {
      &Session::Word,   &Session::And,       &Session::Or,        &Session::Not,
      &Session::List,   &Session::Common,    &Session::Documents, &Session::DropPositions,
      &Session::Shrink, &Session::Add,       &Session::Remove,    &Session::Move,
      &Session::Flush,  &Session::Timestamp, &Session::Reopen};

  const std::string& path_;
  Kestan engine_;
  std::vector<int> ids_;
  bool is_writer_ = true;
};

std::string KeyOf(unsigned number) {
  static const std::array<std::string, 16> kKeys = {"cat",
                                                    "dog",
                                                    "a",
                                                    "d-",
                                                    "g-deleted",
                                                    "g-avail",
                                                    "g-code",
                                                    "g-opts",
                                                    "d-a",
                                                    "d-b",
                                                    std::string("c-\1\0", 4),
                                                    std::string("c-\2\0", 4),
                                                    std::string("c-\3\0", 4),
                                                    std::string("c-\0\0", 4),
                                                    "w-a",
                                                    "t-a"};
  return kKeys[number % kKeys.size()];
}

RecordList RecordsOf(Input* input) {
  RecordList records;
  while (!input->IsEmpty()) {
    std::string key = KeyOf(input->Byte());
    const unsigned length = input->Unit() % kLongestRecord;
    records.emplace_back(std::move(key), input->Bytes(length));
  }
  return records;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string path = kestan_fuzz::Folder() / "index";
  Input input(data, size);
  const unsigned steps = input.Below(kMostSteps);
  const std::string chosen = input.Bytes(std::size_t{4} * steps);
  Input choices(chosen);
  kestan_fuzz::MakeIndex(path, RecordsOf(&input));

  const kestan_fuzz::Quiet quiet;
  kestan_fuzz::ForgetScratch();
  Session session(path);
  for (unsigned i = 0; i < steps; ++i) {
    const unsigned method = choices.Byte();
    const unsigned a = choices.Byte();
    const unsigned b = choices.Byte();
    session.Run(method, {a, b, choices.Byte()});
  }
  session.ReadEverything();
  return 0;
}
