// SPDX-License-Identifier: GPL-3.0-or-later
// What a flush waits for. Nothing is written through a mapping while a file grows, so a flush must
// sync the file itself: a mapping that was left behind covers only what the file was once.
#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <string>

#include "tests/faults/child.h"
#include "tests/faults/system_call_watch.h"
#include "tests/support/index_test.h"

namespace {

using kestan_faults::Function;
using kestan_faults::Outcome;
using kestan_faults::Transcript;

void AddDocuments(Kestan* engine, int count, const std::string& word) {
  for (int i = 0; i < count; ++i) {
    const std::string name = word + std::to_string(i);
    engine->AddDocumentWords(name.c_str(), (name + " " + word).c_str());
  }
}

// Notes the functions that wait for the disk while FlushIndex runs after `before` and 200 more
// documents.
template <typename Action>
std::string SyncsOfFlushAfter(Action before) {
  const kestan_tests::TempDir folder;
  const Outcome outcome = kestan_faults::RunInChild([&](Transcript* transcript) {
    bool is_flushing = false;
    kestan_faults::WatchCalls(folder / "", [&](const kestan_faults::SystemCall& call) {
      const bool waits = call.function == Function::kSync || call.function == Function::kMapSync;
      if (is_flushing && waits) transcript->Add("waits", NameOf(call.function));
      return kestan_faults::Ruling();
    });
    Kestan engine;
    engine.OpenIndex((folder / "index").c_str(), 1);
    AddDocuments(&engine, 1, "first");
    before(&engine);
    AddDocuments(&engine, 200, "more");
    is_flushing = true;
    engine.FlushIndex();
    is_flushing = false;
  });
  EXPECT_EQ(outcome.exit_status, 0) << Describe(outcome);
  return outcome.transcript;
}

const std::string kWholeFile = "waits: fsync\n";

TEST(FlushTest, WaitsForTheWholeFile) {
  EXPECT_EQ(SyncsOfFlushAfter([](Kestan*) {}), kWholeFile);
}

TEST(FlushTest, WaitsForTheWholeFileAfterAShrink) {
  EXPECT_EQ(SyncsOfFlushAfter([](Kestan* engine) { engine->ShrinkIndex(); }), kWholeFile);
}

TEST(FlushTest, WaitsForTheWholeFileAfterAWalk) {
  EXPECT_EQ(SyncsOfFlushAfter([](Kestan* engine) { engine->ListDocuments(); }), kWholeFile);
}

TEST(FlushTest, WaitsForTheWholeFileAfterAWalkAndAShrink) {
  EXPECT_EQ(SyncsOfFlushAfter([](Kestan* engine) {
              engine->RemoveDocumentWords("first0");
              engine->ShrinkIndex();
            }),
            kWholeFile);
}

}  // namespace
