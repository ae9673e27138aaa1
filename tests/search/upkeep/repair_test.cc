// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/search/upkeep/kept_index.h"
#include "tests/support/environment.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

namespace fs = std::filesystem;

using kestan_tests::ReadFile;
using kestan_tests::ReadIndex;
using kestan_tests::Sayings;
using kestan_tests::WriteFile;

class RepairTest : public testing::Test {
 protected:
  using Files = std::map<std::string, std::string>;

  void SetUp() override {
    kestan_tests::MakeKeptIndex(folder_);
    good_ = FilesOf(folder_);
  }

  static Files FilesOf(const std::string& folder) {
    Files files;
    for (const std::string& name : kestan_tests::FilesIn(folder)) {
      files[name] = ReadFile(folder + "/" + name);
    }
    return files;
  }

  // Repairs the index, which must stay as it is and become one without faults.
  RepairReport Repair() {
    items_.clear();
    const Files before = FilesOf(folder_);
    fs::remove_all(new_);
    const auto report = RepairIndex(folder_, new_, [&](const RepairItem& item) {
      items_.push_back(item);
      return true;
    });
    EXPECT_TRUE(report.ok()) << report.status().ToString();
    EXPECT_TRUE(FilesOf(folder_) == before);
    EXPECT_FALSE(fs::exists(new_ + ".new"));
    if (!report.ok()) return {};
    EXPECT_TRUE(IndexWriter::Open(new_).ok());
    EXPECT_NO_THROW(ReadIndex(new_));
    EXPECT_EQ(kestan_tests::Faults(new_), 0u);
    return *report;
  }

  // Returns the items of one kind: file, name, text.
  std::vector<std::string> Items(RepairKind kind) const {
    std::vector<std::string> lines;
    for (const RepairItem& item : items_) {
      if (item.kind != kind) continue;
      lines.push_back(fs::path(item.file).filename().string() + " " + item.name + " " + item.text);
    }
    return lines;
  }

  std::set<std::string> Names(RepairKind kind) const {
    std::set<std::string> names;
    for (const RepairItem& item : items_) {
      if (item.kind == kind) names.insert(item.name);
    }
    return names;
  }

  void Restore() {
    for (const auto& [name, bytes] : good_) WriteFile(Path(name), bytes);
  }

  void Change(const std::string& name, std::size_t at) {
    std::string bytes = ReadFile(Path(name));
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    WriteFile(Path(name), bytes);
  }

  // Calls `look` with a byte of the second segment changed, one after the other.
  template <typename Look>
  void ForEachChangedByte(Look look) {
    const auto stride =
        static_cast<std::size_t>(kestan_tests::NumberFromEnvironment("KESTAN_REPAIR_STRIDE", 131));
    const std::string good = good_["2.segment"];
    for (std::size_t i = 0; i < good.size() && !HasFailure(); i += stride) {
      SCOPED_TRACE(i);
      Change("2.segment", i);
      look();
      WriteFile(Path("2.segment"), good);
    }
  }

  static bool IsOfSecond(const std::string& name) {
    return name == "n4" || name == "n5" || name == "other" || name == "n7";
  }

  static std::set<std::string> NamesOf(const kestan_tests::ReadDocuments& documents) {
    std::set<std::string> names;
    for (const auto& [name, document] : documents) names.insert(name);
    return names;
  }

  // Returns how many words of `other`, each at each of its positions, `document` lacks.
  static std::size_t Lacking(const kestan_tests::ReadDocument& document,
                             const kestan_tests::ReadDocument& other) {
    std::size_t lacking = 0;
    for (const auto& [word, positions] : other.words) {
      const auto found = document.words.find(word);
      for (const unsigned position : positions) {
        const bool is_there = found != document.words.end() &&
                              std::count(found->second.begin(), found->second.end(), position) != 0;
        lacking += is_there ? 0 : 1;
      }
    }
    return lacking;
  }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  kestan_tests::TempDir dir_;
  const std::string folder_ = dir_ / "index";
  const std::string new_ = dir_ / "new";
  Files good_;
  std::vector<RepairItem> items_;
};

TEST_F(RepairTest, AGoodIndexIsTakenOverAsItIs) {
  const RepairReport report = Repair();
  EXPECT_EQ(report.saved, 11u);
  EXPECT_EQ(report.losses, 0u);
  EXPECT_FALSE(report.was_damaged);
  EXPECT_EQ(Sayings(new_), Sayings(folder_));
  EXPECT_EQ(*IndexReader::Open(new_)->Property("roots"), "/home/me");
  Files files = FilesOf(new_);
  for (const auto& [name, bytes] : good_) {
    if (name != "MANIFEST" && name != "writer.lock") {
      EXPECT_TRUE(files[name] == bytes) << name;
    }
  }
}

TEST_F(RepairTest, DerivedFilesAreMadeAgain) {
  const auto sayings = Sayings(folder_);
  for (const auto& [name, bytes] : good_) {
    const auto kind = fs::path(name).extension();
    if (kind != ".terms" && kind != ".documents") continue;
    for (const bool missing : {true, false}) {
      if (missing) fs::remove(Path(name));
      if (!missing) Change(name, bytes.size() / 2);
      const RepairReport report = Repair();
      EXPECT_EQ(Items(RepairKind::kDerivedFile), std::vector<std::string>{name + "  made again"});
      EXPECT_EQ(report.losses, 0u);
      EXPECT_TRUE(report.was_damaged);
      EXPECT_EQ(Sayings(new_), sayings);
      WriteFile(Path(name), bytes);
    }
  }
}

TEST_F(RepairTest, WithoutPositionsTheNumbersOfWordsMayBeLost) {
  fs::remove_all(folder_);
  kestan_tests::MakeKeptIndex(folder_, false);
  fs::remove(Path("1.documents"));
  EXPECT_EQ(Repair().losses, 0u);
  EXPECT_EQ(Items(RepairKind::kWordCounts).size(), 1u);
  EXPECT_EQ(IndexReader::Open(new_)->Statistics().documents, 11u);
}

TEST_F(RepairTest, ADamagedHeaderOfASegmentLosesNothing) {
  const auto sayings = Sayings(folder_);
  for (const char* const name : {"1.segment", "2.segment", "3.segment"}) {
    std::string bytes = ReadFile(Path(name));
    bytes.replace(0, 40, 40, '\xff');
    WriteFile(Path(name), bytes);
    const RepairReport report = Repair();
    EXPECT_EQ(report.losses, 0u) << name;
    EXPECT_EQ(report.saved, 11u);
    EXPECT_EQ(Items(RepairKind::kSegmentSalvaged).size(), 1u);
    EXPECT_EQ(Names(RepairKind::kSaved).count("n1"), 0u);
    EXPECT_EQ(Names(RepairKind::kSaved).count("other"), 1u);
    EXPECT_EQ(Sayings(new_), sayings) << name;
    Restore();
  }
}

// Whatever byte of a segment is changed: all other segments are as they were, and its documents are
// all there. No more is lost than one word of each, and one word may be taken for another.
TEST_F(RepairTest, AChangedByteOfASegmentCostsOnlyWhatItHolds) {
  const auto before = ReadIndex(folder_);
  ForEachChangedByte([&] {
    const RepairReport report = Repair();
    const auto after = ReadIndex(new_);
    EXPECT_EQ(NamesOf(after), NamesOf(before));
    EXPECT_EQ(report.saved + report.words_missing + report.half_written, 11u);
    EXPECT_EQ(report.lost, 0u);
    std::size_t lost = 0;
    for (const auto& [name, document] : before) {
      if (!IsOfSecond(name)) {
        EXPECT_TRUE(after.at(name) == document) << name;
      }
      lost += Lacking(after.at(name), document);
      EXPECT_LE(Lacking(document, after.at(name)), 1u) << name;
    }
    EXPECT_LE(lost, 4u);
  });
}

// Without what stands beside the segment, a name of which a byte has changed stands beside what
// else speaks of the document, and a word of which one has changed stands for the other.
TEST_F(RepairTest, AChangedByteCostsLittleWithoutDerivedFiles) {
  const auto before = ReadIndex(folder_);
  const std::vector<std::vector<std::string>> cases = {
      {"2.terms"}, {"2.documents"}, {"2.terms", "2.documents"}};
  for (const auto& missing : cases) {
    for (const std::string& name : missing) fs::remove(Path(name));
    ForEachChangedByte([&] {
      const RepairReport report = Repair();
      const auto after = ReadIndex(new_);
      for (const auto& [name, document] : before) {
        if (!IsOfSecond(name)) {
          EXPECT_TRUE(after.count(name) != 0 && after.at(name) == document) << name;
        }
      }
      const auto items = report.saved + report.words_missing + report.half_written + report.lost;
      EXPECT_GE(items, 11u);
      EXPECT_LE(items, missing.front() == "2.terms" && missing.size() == 1 ? 11u : 12u);
    });
    Restore();
  }
}

// Its positions begin again after the last, so that several of its words share one.
TEST_F(RepairTest, ADamagedLongTextIsRepaired) {
  {
    auto writer = IndexWriter::Open(folder_);
    Document document;
    document.name = "long";
    for (int i = 0; i < 70'000; ++i) {
      document.words += (i % 3 == 0 ? " More" : " more") + std::string(1, char('a' + i % 26));
    }
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }
  const std::string good = ReadFile(Path("4.segment"));
  for (std::size_t at = 512; at + 512 < good.size(); at += good.size() / 23) {
    SCOPED_TRACE(at);
    std::string bytes = good;
    bytes.replace(at, 100, 100, '\x05');
    WriteFile(Path("4.segment"), bytes);
    const RepairReport report = Repair();
    EXPECT_EQ(report.saved + report.words_missing, 12u);
    if (HasFailure()) return;
  }
}

TEST_F(RepairTest, WordsThatAreLostAreReported) {
  const std::string good = ReadFile(Path("2.segment"));
  const std::size_t at = good.find("t-shirt");
  ASSERT_NE(at, std::string::npos);
  WriteFile(Path("2.segment"), std::string(good).replace(at, 20, 20, '\xff'));
  const RepairReport report = Repair();
  EXPECT_EQ(Items(RepairKind::kWordsLost),
            std::vector<std::string>{"2.segment  words of which nothing was found: 1"});
  EXPECT_EQ(Items(RepairKind::kSegmentSalvaged).size(), 1u);
  EXPECT_EQ(report.words_missing, 4u);
  EXPECT_EQ(report.losses, 5u);
  EXPECT_EQ(*IndexReader::Open(new_)->Count("hello"), 11u);
}

TEST_F(RepairTest, AWordBehindADamagedKeyIsFoundByItsPlace) {
  const auto sayings = Sayings(folder_);
  const std::string good = ReadFile(Path("2.segment"));
  const std::size_t at = good.find("t-shirt");
  ASSERT_NE(at, std::string::npos);
  WriteFile(Path("2.segment"), std::string(good).replace(at, 7, "d-xhirt"));
  EXPECT_EQ(Repair().losses, 0u);
  EXPECT_EQ(Sayings(new_), sayings);
}

// Without MANIFEST nothing says that the table is that of the segment, but what both say.
TEST_F(RepairTest, WithoutManifestATableOfAnotherSegmentIsNotBelieved) {
  const auto names = NamesOf(ReadIndex(folder_));
  fs::remove(Path("MANIFEST"));
  for (const char* const ending : {".documents", ".terms"}) {
    const std::string second = ReadFile(Path(std::string("2") + ending));
    WriteFile(Path(std::string("2") + ending), ReadFile(Path(std::string("3") + ending)));
    WriteFile(Path(std::string("3") + ending), second);
  }
  Change("3.segment", 0);
  Repair();
  EXPECT_EQ(NamesOf(ReadIndex(new_)), names);
}

// The time of a document is in no other record.
TEST_F(RepairTest, WithoutManifestTheTableKnowsBetterThanASegmentThatIsDamaged) {
  const auto sayings = Sayings(folder_);
  const std::string good = ReadFile(Path("2.segment"));
  const std::size_t at = good.find("d-n5");
  ASSERT_NE(at, std::string::npos);
  fs::remove(Path("MANIFEST"));
  Change("2.segment", at + 4);
  Repair();
  EXPECT_EQ(Items(RepairKind::kSegmentSalvaged).size(), 1u);
  EXPECT_EQ(Sayings(new_), sayings);
}

TEST_F(RepairTest, ALostSegmentIsReportedDocumentByDocument) {
  for (const bool missing : {true, false}) {
    if (missing) fs::remove(Path("2.segment"));
    if (!missing) WriteFile(Path("2.segment"), "none");
    const RepairReport report = Repair();
    EXPECT_EQ(report.saved, 7u);
    EXPECT_EQ(report.lost, 4u);
    EXPECT_EQ(report.losses, 5u);
    EXPECT_EQ(Items(RepairKind::kSegmentLost).size(), 1u);
    EXPECT_EQ(Names(RepairKind::kLost), (std::set<std::string>{"n4", "n5", "other", "n7"}));
  }
}

TEST_F(RepairTest, LostEditsAreReported) {
  const std::string edits = EditsFile(ReadManifest(folder_)->segments.front());
  ASSERT_EQ(good_.count(edits), 1u);
  for (const bool missing : {true, false}) {
    Restore();
    if (missing) fs::remove(Path(edits));
    if (!missing) Change(edits, good_[edits].size() / 2);
    const RepairReport report = Repair();
    EXPECT_EQ(report.losses, 1u);
    EXPECT_EQ(Items(RepairKind::kEditsLost).size(), 1u);
    EXPECT_EQ(Names(RepairKind::kSaved).count("n1"), 1u);  // it is back
    EXPECT_EQ(report.saved, 12u);
  }
}

TEST_F(RepairTest, ManifestIsMadeFromTheSegments) {
  const auto sayings = Sayings(folder_);
  for (const bool missing : {true, false}) {
    if (missing) fs::remove(Path("MANIFEST"));
    if (!missing) WriteFile(Path("MANIFEST"), good_["MANIFEST"].substr(0, 30));
    const RepairReport report = Repair();
    EXPECT_EQ(Sayings(new_), sayings);
    EXPECT_EQ(report.losses, 1u);
    EXPECT_EQ(Items(RepairKind::kPropertiesLost).size(), 1u);
    EXPECT_EQ(Items(RepairKind::kManifestRebuilt).size(), 1u);
    EXPECT_EQ(Items(RepairKind::kEditsChosen).size(), 2u);
    EXPECT_EQ(IndexReader::Open(new_)->Refresh().ok(), true);
  }
}

TEST_F(RepairTest, WithoutManifestSegmentsThatWereMergedAreLeftOut) {
  ASSERT_TRUE(IndexWriter::Open(folder_)->Compact().ok());
  const auto sayings = Sayings(folder_);
  for (const auto& [name, bytes] : good_) WriteFile(Path(name), bytes);
  fs::remove(Path("MANIFEST"));
  const RepairReport report = Repair();
  EXPECT_EQ(report.saved, 11u);
  EXPECT_EQ(Items(RepairKind::kNameTwice).size(), 11u);
  EXPECT_EQ(Sayings(new_), sayings);
  EXPECT_EQ(ReadManifest(new_)->segments.size(), 1u);
}

TEST_F(RepairTest, EverythingAtOnce) {
  fs::remove(Path("MANIFEST"));
  fs::remove(Path("1.terms"));
  Change("2.segment", 0);
  fs::remove(Path("3.documents"));
  const RepairReport report = Repair();
  EXPECT_EQ(report.saved, 11u);
  EXPECT_EQ(report.losses, 1u);  // the properties
  const auto reader = IndexReader::Open(new_);
  EXPECT_EQ(*reader->Count("hello"), 11u);
  EXPECT_EQ(reader->FindDocument("n7")->title, "later");
}

TEST_F(RepairTest, AnIndexFileIsRepairedAsTheEngineDoes) {
  const std::string file = dir_ / "file";
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(file.c_str(), 1), 0);
    engine.AddDocumentWords("a", "some words");
    engine.CloseIndex();
  }
  std::string bytes = ReadFile(file);
  bytes.replace(0, 400, 400, '\xff');
  WriteFile(file, bytes);
  const auto report = RepairIndex(file, new_);
  ASSERT_TRUE(report.ok()) << report.status().ToString();
  EXPECT_EQ(report->saved, 1u);
  EXPECT_TRUE(report->was_damaged);
  EXPECT_EQ(kestan_tests::Faults(new_), 0u);
  EXPECT_TRUE(ReadFile(file) == bytes);
}

TEST_F(RepairTest, WhereNothingIsThereIsAnError) {
  WriteFile(dir_ / "text", std::string(5000, 'x'));
  fs::create_directory(dir_ / "empty");
  EXPECT_EQ(RepairIndex(dir_ / "text", new_).status().code(), StatusCode::kDamaged);
  EXPECT_EQ(RepairIndex(dir_ / "empty", new_).status().code(), StatusCode::kNotFound);
  EXPECT_EQ(RepairIndex(dir_ / "missing", new_).status().code(), StatusCode::kNotFound);
  EXPECT_EQ(RepairIndex(folder_, dir_ / "text").status().code(), StatusCode::kAlreadyExists);
  for (const char* const name : {"1.segment", "2.segment", "3.segment"}) WriteFile(Path(name), "x");
  fs::remove(Path("MANIFEST"));
  EXPECT_EQ(RepairIndex(folder_, new_).status().code(), StatusCode::kDamaged);
  EXPECT_FALSE(fs::exists(new_));
  EXPECT_FALSE(fs::exists(new_ + ".new"));
}

TEST_F(RepairTest, ItEndsWhereTheHostSays) {
  Change("2.segment", 0);
  for (const std::size_t most : {0U, 1U, 5U}) {
    std::size_t items = 0;
    const auto report =
        RepairIndex(folder_, new_, [&](const RepairItem&) { return ++items <= most; });
    EXPECT_EQ(report.status().code(), StatusCode::kInterrupted);
    EXPECT_EQ(items, most + 1);
    EXPECT_FALSE(fs::exists(new_));
    EXPECT_FALSE(fs::exists(new_ + ".new"));
  }
}

TEST_F(RepairTest, AWriterAtWorkIsNotDisturbed) {
  const auto writer = IndexWriter::Open(folder_);
  ASSERT_TRUE(writer.ok());
  EXPECT_EQ(RepairIndex(folder_, new_).status().code(), StatusCode::kBusy);
}

}  // namespace
}  // namespace kestan::search
