// SPDX-License-Identifier: GPL-3.0-or-later
// No exception leaves a public function of the search library: each of their allocations fails,
// once or with all later ones, and nothing here catches what would come out.
//
// In the environment, KESTAN_FAULTS_ALL=1 tries every allocation; by default some hundreds.
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search.h>

#include <array>
#include <filesystem>
#include <string>
#include <utility>

#include "tests/faults/search/asked_index.h"
#include "tests/faults/search/failing_allocations.h"
#include "tests/search/index/read_index.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

using kestan::search::Document;
using kestan::search::DocumentField;
using kestan::search::IndexReader;
using kestan::search::IndexWriter;
using kestan::search::Status;
using kestan::search::WriterOptions;

const auto kNothing = [] {};
const auto kNoCheck = [](const Trial&) {};

// Returns whether there was no error; one is noted without allocating.
bool IsOk(const Status& status, Transcript* transcript) {
  if (!status.ok()) transcript->Add("refused", static_cast<long>(status.code()));
  return status.ok();
}

// Calls each function of a reader that has a `visit`.
void AskForEach(const IndexReader& reader, Transcript* transcript) {
  long matches = 0;
  const auto count_match = [&matches](const kestan::search::Match&) { return ++matches > 0; };
  if (IsOk(reader.ForEachMatch("common rivre~", {}, count_match), transcript)) {
    transcript->Add("matches", matches);
  }
  long documents = 0;
  const auto count = [&documents](const kestan::search::DocumentInfo&) { return ++documents > 0; };
  if (IsOk(reader.ForEachDocument(count), transcript)) transcript->Add("listed", documents);
}

// Calls the other functions of a reader, in ways that allocate in every part of a search.
void AskReader(const IndexReader& reader, Transcript* transcript) {
  const auto found = reader.Search("common \"cold river\" ba* rivre~ NOT missing");
  if (IsOk(found.status(), transcript)) {
    const auto snippet = IndexReader::Snippet(*found, "a common caf\xc3\xa9 at the cold river");
    if (IsOk(snippet.status(), transcript)) {
      transcript->Add("fragments", static_cast<long>(snippet->size()));
    }
  }
  const auto count = reader.Count("common");
  if (IsOk(count.status(), transcript)) transcript->Add("count", static_cast<long>(*count));
  const auto terms = reader.Terms("");
  if (IsOk(terms.status(), transcript)) transcript->Add("terms", static_cast<long>(terms->size()));
  const auto one = reader.FindDocument("moved");
  if (IsOk(one.status(), transcript)) transcript->Add("title", one->title);
  const auto property = reader.Property("key");
  if (IsOk(property.status(), transcript)) transcript->Add("property", *property);
  transcript->Add("documents", static_cast<long>(reader.Statistics().documents));
}

// Has ICU make its transliterator, which crashes where an allocation fails meanwhile.
void PrepareIcu() {
  kestan::search::SearchResults results;
  results.matched_terms = {"zurich"};
  ASSERT_EQ(IndexReader::Snippet(results, "Z\xc3\xbcrich")->size(), 1u);
}

TEST(NoExceptionsTest, ReaderReportsFailingAllocations) {
  PrepareIcu();
  const kestan_tests::TempDir folder;
  const std::string index = folder / "index";
  MakeIndex(index);
  ExpectFailingAllocationsAreErrors(
      kNothing,
      [&index](Transcript* transcript) {
        const auto reader = IndexReader::Open(index);
        if (!IsOk(reader.status(), transcript)) return;
        AskReader(*reader, transcript);
        AskForEach(*reader, transcript);
      },
      kNoCheck);
}

TEST(NoExceptionsTest, RefreshThatFailsLeavesTheSnapshot) {
  const kestan_tests::TempDir folder;
  const std::string index = folder / "index";
  MakeIndex(index);
  auto reader = IndexReader::Open(index);
  ASSERT_TRUE(reader.ok());
  const auto documents = static_cast<long>(reader->Statistics().documents);
  auto writer = OpenWriter(index);
  ASSERT_TRUE(writer.ok() && ChangeIndex(&*writer).ok());
  ExpectFailingAllocationsAreErrors(
      kNothing,
      [&](Transcript* transcript) {
        const bool is_new = IsOk(reader->Refresh().status(), transcript);
        const auto found = static_cast<long>(reader->Statistics().documents);
        transcript->Add(is_new || found == documents ? "snapshot" : "half a snapshot", found);
      },
      [](const Trial& trial) { EXPECT_FALSE(Has(trial, "half a snapshot")) << Describe(trial); });
}

TEST(NoExceptionsTest, WriterReportsFailingAllocations) {
  const kestan_tests::TempDir folder;
  const std::string original = folder / "original";
  const std::string index = folder / "index";
  MakeIndex(original);
  const auto before = kestan_tests::ReadIndex(original);
  std::array<Document, 3> documents;
  for (std::size_t i = 0; i < documents.size(); ++i) {
    documents[i].name = "a document with a long name " + std::to_string(i);
    documents[i].text = "words of a document that take more memory than a string has of its own";
    documents[i].title = "a title that takes memory of its own";
  }
  const std::string long_text(100, 'x');
  const WriterOptions options = [] {
    WriterOptions one_thread;
    one_thread.threads = 1;
    one_thread.merge_factor = 3;
    return one_thread;
  }();
  ExpectFailingAllocationsAreErrors(
      [&] {
        std::filesystem::remove_all(index);
        std::filesystem::copy(original, index);
      },
      [&](Transcript* transcript) {
        auto writer = IndexWriter::Open(index, options);
        if (!IsOk(writer.status(), transcript)) return;
        bool is_ok = true;
        for (Document& document : documents) {
          is_ok = IsOk(writer->Add(std::move(document)), transcript) && is_ok;
        }
        is_ok = IsOk(writer->Remove("a0"), transcript) && is_ok;
        is_ok = IsOk(writer->Rename("a2", long_text), transcript) && is_ok;
        is_ok = IsOk(writer->SetField("a4", DocumentField::kTitle, long_text), transcript) && is_ok;
        writer->SetProperty(long_text, long_text);
        is_ok = IsOk(writer->Commit(), transcript) && is_ok;
        is_ok = is_ok && IsOk(writer->Compact(), transcript);
        // This may fail too, where all allocations do.
        transcript->Add(IsOk(writer->Rollback(), transcript) ? "back" : "not back", is_ok ? 1 : 0);
      },
      [&](const Trial& trial) {
        const auto found = kestan_tests::ReadIndex(index);
        const bool is_new = found.count(long_text) == 1;
        EXPECT_TRUE(is_new ? found.size() == before.size() + 2 : found == before)
            << Describe(trial);
      });
}

// An index file of class Kestan, an index folder, and what is made of them.
class NoExceptionsOfMaintenanceTest : public testing::Test {
 protected:
  NoExceptionsOfMaintenanceTest() {
    MakeIndex(index_);
    EXPECT_TRUE(kestan::search::WriteIndexFile(index_, file_).ok());
  }

  void ExpectMadeUnlessRefused(const Trial& trial) const {
    const bool is_refused = trial.outcome.exit_status != 0 || Has(trial, "refused");
    EXPECT_TRUE(is_refused || std::filesystem::exists(made_)) << Describe(trial);
  }

  // Removes what a trial left.
  void Clean() const {
    for (const std::string& path : {made_, made_ + ".new"}) std::filesystem::remove_all(path);
  }

  void CopyIndex() const {
    std::filesystem::remove_all(made_);
    std::filesystem::copy(index_, made_);
  }

  const kestan_tests::TempDir folder_;
  const std::string index_ = folder_ / "an-index-folder-with-a-long-name";
  const std::string file_ = folder_ / "an-index-file-with-a-long-name";
  const std::string made_ = folder_ / "what-is-made-with-a-long-name";
};

TEST_F(NoExceptionsOfMaintenanceTest, ConvertingReportsFailingAllocations) {
  ExpectFailingAllocationsAreErrors(
      [this] { Clean(); },
      [this](Transcript* transcript) {
        IsOk(kestan::search::ConvertIndexFile(file_, made_), transcript);
      },
      [this](const Trial& trial) {
        ExpectMadeUnlessRefused(trial);
        if (!std::filesystem::exists(made_)) return;
        EXPECT_EQ(kestan_tests::ReadIndex(made_).size(), kestan_tests::ReadIndex(index_).size());
      });
}

TEST_F(NoExceptionsOfMaintenanceTest, WritingAnIndexFileReportsFailingAllocations) {
  ExpectFailingAllocationsAreErrors([this] { Clean(); },
                                    [this](Transcript* transcript) {
                                      IsOk(kestan::search::WriteIndexFile(index_, made_),
                                           transcript);
                                    },
                                    [this](const Trial& trial) {
                                      ExpectMadeUnlessRefused(trial);
                                      if (!std::filesystem::exists(made_)) return;
                                      const auto report = kestan::search::CheckIndex(made_);
                                      EXPECT_TRUE(report.ok() && report->faults == 0);
                                    });
}

TEST_F(NoExceptionsOfMaintenanceTest, CopyingReportsFailingAllocations) {
  for (const std::string& path : {index_, file_}) {
    ExpectFailingAllocationsAreErrors(
        [this] { Clean(); },
        [&](Transcript* transcript) { IsOk(kestan::search::CopyIndex(path, made_), transcript); },
        [this](const Trial& trial) {
          ExpectMadeUnlessRefused(trial);
          if (!std::filesystem::exists(made_)) return;
          const auto report = kestan::search::CheckIndex(made_);
          EXPECT_TRUE(report.ok() && report->faults == 0);
        });
  }
}

TEST_F(NoExceptionsOfMaintenanceTest, MeasuringReportsFailingAllocations) {
  ExpectFailingAllocationsAreErrors(
      kNothing,
      [this](Transcript* transcript) {
        IsOk(kestan::search::MeasureCompaction(index_).status(), transcript);
      },
      kNoCheck);
}

TEST_F(NoExceptionsOfMaintenanceTest, CheckingReportsFailingAllocations) {
  ExpectFailingAllocationsAreErrors(
      kNothing,
      [this](Transcript* transcript) {
        const auto report = kestan::search::CheckIndex(index_);
        if (IsOk(report.status(), transcript)) {
          // A file that could not be read for lack of memory is found as a fault.
          transcript->Add(report->faults == 0 ? "sound" : "refused",
                          static_cast<long>(report->documents));
        }
      },
      kNoCheck);
}

TEST_F(NoExceptionsOfMaintenanceTest, RebuildingReportsFailingAllocations) {
  for (const char* const lost : {"MANIFEST", "1.terms", "2.documents"}) {
    SCOPED_TRACE(lost);
    ExpectFailingAllocationsAreErrors(
        [&] {
          CopyIndex();
          std::filesystem::remove(made_ + "/" + lost);
        },
        [this](Transcript* transcript) {
          IsOk(kestan::search::RebuildDerivedFiles(made_), transcript);
        },
        [this](const Trial& trial) {
          if (Has(trial, "refused") || trial.outcome.exit_status != 0) return;
          EXPECT_EQ(kestan_tests::ReadIndex(made_).size(), kestan_tests::ReadIndex(index_).size());
        });
  }
}

}  // namespace
}  // namespace kestan_faults
