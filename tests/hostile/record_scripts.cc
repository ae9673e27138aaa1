// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/hostile/record_scripts.h"

#include <rapidcheck.h>

#include <climits>
#include <filesystem>
#include <functional>

#include "tests/faults/child.h"
#include "tests/indexing/planting.h"

namespace kestan_hostile {
namespace {

using kestan_model::Engine;
using kestan_model::Null;
using kestan_model::Records;
using kestan_model::Taken;
using kestan_model::World;
using kestan_tests::EncodedPosting;
using kestan_tests::Units;

constexpr int kSetsAfterAWord = 100;  // far more than a script makes after its last word

// Calls methods of engine and model side by side.
class Script {
 public:
  explicit Script(World& world) : world_(world) {}

  void Open(int mode) {
    const std::string path = world_.Path("index");
    Same(
        "OpenIndex", [&] { return Engine().OpenIndex(path.c_str(), mode); },
        [&] { return world_.model.OpenIndex(path, mode); });
  }

  void Close() {
    Same(
        "CloseIndex", [] { return Engine().CloseIndex(); },
        [&] { return world_.model.CloseIndex(); });
  }

  void Copy() {
    const std::string path = world_.Path("copy");
    Same(
        "CopyIndexTo", [&] { return Engine().CopyIndexTo(path.c_str()); },
        [&] { return world_.model.CopyIndexTo(path); });
  }

  void SetFlag(std::uint32_t flag) {
    Same(
        "SetOptionFlag", [&] { return Engine().SetOptionFlag(flag); },
        [&] { return world_.model.SetOptionFlag(flag); });
  }

  void Shrink() {
    Same(
        "ShrinkIndex", [] { return Engine().ShrinkIndex(); },
        [&] { return world_.model.ShrinkIndex(); });
  }

  void Add(const std::string& name, const std::string& text) {
    if (world_.model.MustNotAdd()) return SeeEnd(name, "Attempted to use code #0");
    Same(
        "AddDocumentWords " + name,
        [&] { return Taken(Engine().AddDocumentWords(name.c_str(), text.c_str())); },
        [&] { return world_.model.AddDocumentWords(name, text); });
  }

  void Remove(const std::string& name) {
    Same(
        "RemoveDocumentWords " + name, [&] { return Engine().RemoveDocumentWords(name.c_str()); },
        [&] { return world_.model.RemoveDocumentWords(name); });
  }

  void Move(const std::string& from, const std::string& to) {
    Same(
        "MoveDocumentWords " + from,
        [&] { return Engine().MoveDocumentWords(from.c_str(), to.c_str()); },
        [&] { return world_.model.MoveDocumentWords(from, to); });
  }

  void Query() {
    for (const char* word : {"cat", "dog", "x"}) QueryWord(word);
    for (const int distance : {0, 1, INT_MAX}) QueryAnd(distance);
    Same(
        "QueryOr", [&] { return Engine().QueryOr(first_, second_); },
        [&] { return world_.model.QueryOr(first_, second_); });
    List();
    Negate();
  }

  void Walk() {
    Common(0, -1);
    Common(1, 2);
    Common(0.25, 0.5);
    Same(
        "ListDocuments", [] { return Taken(Engine().ListDocuments()); },
        [&] { return world_.model.ListDocuments(); });
  }

  void ReadSideRecords() {
    for (const char* name : {"a", "b", "f", "moved", "nobody"}) Timestamp(name);
    Same(
        "DBGetWords", [] { return Taken(Engine().DBGetWords("list")); },
        [&] { return world_.model.DBGetWords("list"); });
    Same(
        "DBGetTitle", [] { return Taken(Engine().DBGetTitle("a")); },
        [&] { return world_.model.GetSideRecord("t-", "a"); });
    Same(
        "DBGetSummary", [] { return Taken(Engine().DBGetSummary("a")); },
        [&] { return world_.model.GetSideRecord("s-", "a"); });
    Same(
        "DBGetUser", [] { return Taken(Engine().DBGetUser("a")); },
        [&] { return world_.model.GetSideRecord("u-", "a"); });
    Same(
        "Options", [] { return Engine().Options(); }, [&] { return world_.model.Options(); });
  }

 private:
  template <typename Library, typename Naive>
  void Same(const std::string& call, const Library& library, const Naive& naive) {
    world_.Begin(call);
    world_.Same(library, naive);
  }

  void QueryWord(const std::string& word) {
    Same(
        "QueryWord " + word, [&] { return Engine().QueryWord(word.c_str()); },
        [&] { return world_.model.QueryWord(word); });
    first_ = second_;
    second_ = world_.Id(1);
    List();
  }

  void QueryAnd(int distance) {
    Same(
        "QueryAnd", [&] { return Engine().QueryAnd(first_, second_, distance); },
        [&] { return world_.model.QueryAnd(first_, second_, distance); });
    List();
  }

  void Negate() {
    if (world_.model.MustNotNegate()) return SeeEnd("", "Could not locate global-code");
    Same(
        "QueryNegate", [&] { return Engine().QueryNegate(first_); },
        [&] { return world_.model.QueryNegate(first_); });
    List();
  }

  void List() {
    const int id = world_.Id(1);
    Same(
        "QueryResults", [&] { return Taken(Engine().QueryResults(id)); },
        [&] { return world_.model.QueryResults(id); });
  }

  void Common(double low, double high) {
    Same(
        "CommonWords", [&] { return Taken(Engine().CommonWords(low, high)); },
        [&] { return world_.model.CommonWords(low, high); });
  }

  void Timestamp(const std::string& name) {
    Same(
        "DocumentTimestamp " + name, [&] { return Engine().DocumentTimestamp(name.c_str()); },
        [&] { return world_.model.DocumentTimestamp(name); });
  }

  // Sees a child process end while it adds the document `name`, or makes a complement if there is
  // no name. The child works on a copy, made while the index is closed and whole.
  void SeeEnd(const std::string& name, const std::string& reason) {
    Close();
    const std::string path = world_.Path("end");
    std::filesystem::copy_file(world_.Path("index"), path,
                               std::filesystem::copy_options::overwrite_existing);
    const auto outcome = kestan_faults::RunInChild([&](kestan_faults::Transcript* transcript) {
      Kestan engine;
      // The script's result sets, which are this process's now, would be its leaks at the end.
      for (int id = 1; id <= second_ + kSetsAfterAWord; ++id) engine.FreeQueryResult(id);
      transcript->Add("open", engine.OpenIndex(path.c_str(), 1));
      if (name.empty()) {
        transcript->Add("complement", engine.QueryNegate(1));
      } else {
        transcript->Add("add", engine.AddDocumentWords(name.c_str(), "cat"));
      }
    });
    EXPECT_EQ(outcome.exit_status, 1) << Describe(outcome);
    EXPECT_EQ(outcome.transcript, "open: 0\n");
    EXPECT_EQ(outcome.standard_error, "Kestan: " + reason + " (oops!)\n");
    Open(1);
  }

  World& world_;
  int first_ = 0;
  int second_ = 0;
};

void Run(const Records& records, const std::string& damage,
         const std::function<void(Script&)>& steps) {
  try {
    World world;
    world.Begin("open");
    world.PlantAndReopen(records);
    Script script(world);
    steps(script);
    script.Close();
    world.Begin("the files");
    world.CompareFiles();
  } catch (const rc::detail::CaseResult& disagreement) {
    ADD_FAILURE() << damage << "\n" << disagreement.description;
  }
}

Records IndexWith(const Records& words) {
  using kestan_tests::operator+;
  const Records others = {{"g-code", Units({6})},
                          {"g-avail", Units({5, 4})},
                          {"g-deleted", Units({3})},
                          {"w-list", "\x80one\x82wards"},
                          {"t-a", "title"},
                          {"s-a", "summary"},
                          {"u-a", "user"}};
  return words + others + kestan_tests::Document("a", 1) + kestan_tests::Document("b", 2) +
         kestan_tests::Document("f", 6);
}

}  // namespace

Records GoodIndex() {
  return IndexWith({{"g-opts", kestan_tests::kPositions},
                    {"cat", EncodedPosting(1, {1, 3}) + EncodedPosting(2, {2}) +
                                EncodedPosting(3, {7}) + EncodedPosting(6, {4, 5})},
                    {"dog", EncodedPosting(6, {3}) + EncodedPosting(2, {1})},
                    {"x", EncodedPosting(1, {2}) + EncodedPosting(3, {1})}});
}

Records GoodIndexWithoutPositions() {
  return IndexWith({{"g-opts", kestan_tests::kNoPositions},
                    {"cat", Units({1, 2, 3, 6})},
                    {"dog", Units({6, 2})},
                    {"x", Units({1, 3})}});
}

void ReadAndConvert(const Records& records, const std::string& damage) {
  Run(records, damage, [](Script& script) {
    script.Query();
    script.Walk();
    script.ReadSideRecords();
    script.Copy();
    script.SetFlag(1);
    script.Query();
    script.Walk();
  });
}

void ShrinkAndAdd(const Records& records, const std::string& damage) {
  Run(records, damage, [](Script& script) {
    script.Shrink();
    script.Query();
    script.Add("new", "cat new dog cat");
    script.Add("a", "Cat x");
    script.Shrink();
    script.Add("newer", "x dog dog");
    script.Query();
    script.Walk();
  });
}

void RemoveAndMove(const Records& records, const std::string& damage) {
  Run(records, damage, [](Script& script) {
    script.Remove("a");
    script.Move("b", "moved");
    script.Move("f", "a");
    script.ReadSideRecords();
    script.Remove("moved");
    script.Query();
    script.Add("b", "dog cat dog");
    script.Close();
    script.Open(0);
    script.Query();
    script.Walk();
    script.ReadSideRecords();
  });
}

}  // namespace kestan_hostile
