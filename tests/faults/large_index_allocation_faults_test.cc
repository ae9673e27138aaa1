// SPDX-License-Identifier: GPL-3.0-or-later
// No memory for gdbm, at each of its allocations in a session with an index of many buckets: no
// document that was there before loses a word.
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/maintenance.h>
#include <kestan/storage/database.h>

#include <filesystem>
#include <iostream>
#include <map>
#include <string>

#include "tests/faults/allocation_trial.h"
#include "tests/maintenance/index_files.h"

namespace kestan_faults {
namespace {

// Each document's words with their positions, as one text.
using Texts = std::map<std::string, std::string>;

Texts ReadTexts(const std::string& path) {
  Texts texts;
  Database store;
  EXPECT_EQ(store.Open(path.c_str(), 0), 0);
  EXPECT_EQ(kestan::ReadDocuments(store,
                                  [&](const kestan::StoredDocument& document) {
                                    std::string& text = texts[std::string(document.name)];
                                    for (std::size_t i = 0; i < document.word_count; ++i) {
                                      const kestan::PlacedWord& word = document.words[i];
                                      text.append(word.bytes) += " ";
                                      text += std::to_string(word.position) + " ";
                                    }
                                  }),
            kestan::StoreError::kNone);
  return texts;
}

void Change(const std::string& path, Transcript* transcript) {
  Kestan engine;
  transcript->Add("open", engine.OpenIndex(path.c_str(), 1));
  transcript->Add("add", engine.AddDocumentWords("added", "one two three word1 word2 word3"));
  transcript->Add("flush", engine.FlushIndex());
  const int id = engine.QueryWord("word1");
  transcript->Add("results", engine.QueryResults(id));
  engine.FreeQueryResult(id);
  transcript->Add("remove", engine.RemoveDocumentWords("added"));
  transcript->Add("shrink", engine.ShrinkIndex());
  transcript->Add("add again", engine.AddDocumentWords("again", "word4 five word5 six word6"));
  transcript->Add("close", engine.CloseIndex());
}

TEST(LargeIndexAllocationFaultsTest, CostNoDocumentThatWasThere) {
  constexpr int kDocuments = 40;
  constexpr unsigned kSeed = 1;
  const kestan_tests::TempDir folder;
  const std::string good = folder / "good";
  const std::string index = folder / "index";
  kestan_maintenance::MakeIndex(good, kDocuments, kSeed);
  const Texts before = ReadTexts(good);
  ASSERT_GT(before.size(), kDocuments / 2U);

  long failed_in_gdbm = 0;
  for (long nth = 1;; ++nth) {
    std::filesystem::copy_file(good, index, std::filesystem::copy_options::overwrite_existing);
    const Trial trial = RunWithFault(nth, Failing::kOnce,
                                     [&](Transcript* transcript) { Change(index, transcript); });
    if (trial.log.calls < nth) break;
    if (trial.log.failed_in_gdbm == 0) continue;  // the process ended
    ++failed_in_gdbm;
    EXPECT_EQ(trial.outcome.exit_status, 0);
    const Texts after = ReadTexts(index);
    for (const auto& [name, text] : before) {
      const auto found = after.find(name);
      EXPECT_TRUE(found != after.end() && found->second == text) << name;
    }
    if (HasFailure()) FAIL() << Describe(trial);
  }
  EXPECT_GT(failed_in_gdbm, 1000);
  std::cout << failed_in_gdbm << " allocations of gdbm's\n";
}

}  // namespace
}  // namespace kestan_faults
