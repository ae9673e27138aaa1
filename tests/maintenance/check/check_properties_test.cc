// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a host calls in whatever order, as long as it moves no document onto another, a check
// finds nothing wrong with what the engine leaves, and a repair changes nothing. More and longer
// scripts:
//   RC_PARAMS="max_success=2000 max_size=300" maintenance_tests
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

// One call, as numbers that RapidCheck makes up and shrinks.
struct Step {
  unsigned call;
  unsigned name;
  std::vector<unsigned> words;
};

void showValue(const Step& step, std::ostream& out) {
  out << "call " << step.call << " name " << step.name << " words";
  for (const unsigned word : step.words) out << ' ' << word;
  out << '\n';
}

rc::Gen<Step> Steps(unsigned calls) {
  return rc::gen::build<Step>(
      rc::gen::set(&Step::call, rc::gen::inRange(0u, calls)),
      rc::gen::set(&Step::name, rc::gen::inRange(0u, 6u)),
      rc::gen::set(&Step::words, rc::gen::nonEmpty(rc::gen::container<std::vector<unsigned>>(
                                     rc::gen::inRange(0u, 14u)))));
}

// A host that keeps side records only for documents that it has.
class Host {
 public:
  // With hyphens, texts also hold words whose keys look like those of system records.
  explicit Host(bool hyphens) : hyphens_(hyphens) { Open(); }

  void Run(const Step& step) {
    const std::string name = NameOf(step.name);
    switch (step.call) {
      case 0:
      case 1:
      case 2:
      case 3:
      case 4:
      case 5:
        return Add(name, TextOf(step.words));
      case 6:
      case 7:
        return Remove(name);
      case 8:
        return Move(name, NameOf(step.words[0]));
      case 9:
        engine_.ShrinkIndex();
        return;
      case 10:
        engine_.FlushIndex();
        return;
      case 11:
        engine_.CloseIndex();
        return Open();
      case 12:
        return PutTexts(name, TextOf(step.words));
      case 13:
        engine_.DBPutWords(name.c_str(), TextOf(step.words).c_str());
        return;
      case 14:
        engine_.SetOptionFlag(6);
        return;
      default:
        engine_.SetOptionFlag(1);
        return;
    }
  }

  // Closes the index; the file is whole then.
  const std::string& Finish() {
    engine_.CloseIndex();
    return path_;
  }

  std::size_t Documents() const { return names_.size(); }

 private:
  static std::string NameOf(unsigned number) { return std::string("doc") + "abcdef"[number % 6]; }

  std::string TextOf(const std::vector<unsigned>& words) const {
    const std::vector<std::string> vocabulary{"cat", "Cat", "CAT", "dog", "Dog", "a",  "A",
                                              "I",   "at",  "x-",  "--",  "hen", "@x", "_Y"};
    const std::vector<std::string> hyphened{"cat",     "d-day", "D-Day", "c-section", "c-ab",
                                            "t-shirt", "s-bad", "u-and", "w-2",       "w-lan",
                                            "e-mail",  "x-",    "g-all", "C-Is"};
    std::string text;
    for (const unsigned word : words) text += (hyphens_ ? hyphened : vocabulary)[word] + ' ';
    return text;
  }

  void Open() { engine_.OpenIndex(path_.c_str(), 1); }

  void Add(const std::string& name, const std::string& text) {
    engine_.AddDocumentWords(name.c_str(), text.c_str());
    names_.insert(name);
  }

  void Remove(const std::string& name) {
    engine_.RemoveDocumentWords(name.c_str());
    names_.erase(name);
    engine_.DBDelTitle(name.c_str());
    engine_.DBDelSummary(name.c_str());
    engine_.DBDelUser(name.c_str());
  }

  void Move(const std::string& from, const std::string& to) {
    if (names_.count(from) == 0 || from == to) return;
    Remove(to);
    engine_.MoveDocumentWords(from.c_str(), to.c_str());
    names_.insert(to);
    Remove(from);  // its texts, for it is no document any more
  }

  void PutTexts(const std::string& name, const std::string& text) {
    if (names_.count(name) == 0) return;
    engine_.DBPutTitle(name.c_str(), text.c_str());
    engine_.DBPutSummary(name.c_str(), "");
    engine_.DBPutUser(name.c_str(), "u");
  }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  const bool hyphens_;
  Kestan engine_;
  std::set<std::string> names_;
};

bool IsHarmless(const std::string& line) {
  for (const char* note : {"index file: note: empty posting records, ", "of a word with a hyphen",
                           ": note: a word with a hyphen, with positions that option flag 1 left",
                           // what no shrink takes away, and queries find
                           ": words of one letter, or with a hyphen, contradict",
                           ": entries of free codes", ": entries of a code listed before"}) {
    if (line.find(note) != std::string::npos) return true;
  }
  return false;
}

// A repair has nothing to do.
void ExpectRepairedAsItIs(const std::string& path) {
  const TempDir folder;
  kestan::RepairResult result;
  std::string said;
  const auto take = [&](std::string_view line) { said.append(line).append("\n"); };
  RC_ASSERT(kestan::RepairIndex(path.c_str(), (folder / "new").c_str(), take, &result) == 0);
  if (Dump(folder / "new") != Dump(path)) RC_FAIL(said);
  if (result.half_written + result.words_missing + result.lost != 0) RC_FAIL(said);
}

void ExpectValid(const std::vector<Step>& steps, bool hyphens = false) {
  Host host(hyphens);
  for (const Step& step : steps) host.Run(step);
  const Checked checked = Check(host.Finish());
  for (const std::string& line : checked.lines) {
    if (!IsHarmless(line)) RC_FAIL(line);
  }
  ExpectRepairedAsItIs(host.Finish());
  Database store;
  RC_ASSERT(store.Open(host.Finish().c_str(), 0) == 0);
  const kestan::IndexStatistics statistics = kestan::ReadStatistics(store);
  RC_ASSERT(statistics.documents == host.Documents());
  RC_ASSERT(statistics.documents + statistics.removed_codes + statistics.reusable_codes ==
            statistics.highest_code);
  RC_ASSERT(statistics.file_error == kestan::StoreError::kNone);
}

RC_GTEST_PROP(CheckPropertiesTest, LeaveAValidIndex, ()) {
  ExpectValid(*rc::gen::container<std::vector<Step>>(Steps(15)));
}

RC_GTEST_PROP(CheckPropertiesTest, LeaveAValidIndexWithoutPositions, ()) {
  ExpectValid(*rc::gen::container<std::vector<Step>>(Steps(17)));
}

RC_GTEST_PROP(CheckPropertiesTest, LeaveAValidIndexOfWordsWithHyphens, ()) {
  ExpectValid(*rc::gen::container<std::vector<Step>>(Steps(15)), true);
}

RC_GTEST_PROP(CheckPropertiesTest, LeaveAValidIndexOfWordsWithHyphensWithoutPositions, ()) {
  ExpectValid(*rc::gen::container<std::vector<Step>>(Steps(17)), true);
}

}  // namespace
}  // namespace kestan_tests
