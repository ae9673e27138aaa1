// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search/check.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "search/index/manifest/manifest.h"
#include "tests/search/index/read_index.h"
#include "tests/search/segment/segment_files.h"
#include "tests/support/environment.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::FilesIn;
using kestan_tests::ReadFile;
using kestan_tests::ReadIndex;
using kestan_tests::WriteFile;

class CheckTest : public testing::Test {
 protected:
  // Makes an index of three segments, two of them with edits.
  void SetUp() override { Write(true); }

  void Write(bool with_positions) {
    std::filesystem::remove_all(folder_);
    WriterOptions options;
    options.with_positions = with_positions;
    auto writer = IndexWriter::Open(folder_, options);
    ASSERT_TRUE(writer.ok());
    for (int segment = 0; segment < 3; ++segment) {
      for (int i = 0; i < 4; ++i) Add(&*writer, segment * 4 + i);
      ASSERT_TRUE(writer->Commit().ok());
    }
    ASSERT_TRUE(writer->Remove("n1").ok());
    ASSERT_TRUE(writer->Rename("n6", "other").ok());
    writer->SetProperty("key", "value");
    ASSERT_TRUE(writer->Commit().ok());
  }

  static void Add(IndexWriter* writer, int number) {
    const std::string digits = std::to_string(number);
    Document document;
    document.name = "n" + digits;
    document.words = "Hello hello hello t-shirt d-day e-mail c-ab w-boson x" + digits;
    if (number % 2 == 0) document.title = "Title " + digits;
    if (number % 3 == 0) document.summary = "Summary " + digits;
    document.host_data = std::string("host\0", 5) + digits;
    ASSERT_TRUE(writer->Add(document).ok());
  }

  CheckReport Check() const {
    auto report = CheckIndex(folder_);
    EXPECT_TRUE(report.ok()) << report.status().ToString();
    return report.ok() ? *report : CheckReport();
  }

  // What was found, a line each.
  std::string Findings() const {
    std::string lines;
    for (const IndexFinding& finding : Check().findings) {
      lines += std::filesystem::path(finding.file).filename().string() + " " + finding.key + ": " +
               finding.text + "\n";
    }
    return lines;
  }

  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const std::string& name : FilesIn(folder_)) files[name] = ReadFile(Path(name));
    return files;
  }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  kestan_tests::TempDir dir_;
  const std::string folder_ = dir_ / "index";
};

TEST_F(CheckTest, NothingIsFoundInAGoodIndex) {
  EXPECT_EQ(Findings(), "");
  const CheckReport report = Check();
  EXPECT_EQ(report.faults + report.notes, 0u);
  EXPECT_EQ(report.segments, 3u);
  EXPECT_EQ(report.documents, 11u);
  Write(false);
  EXPECT_EQ(Findings(), "");
}

// A segment never had earlier documents, whose words a last word of one letter could be.
TEST_F(CheckTest, WordsOfOneLetterBehindRefusedOnesAreNoFaults) {
  {
    auto writer = IndexWriter::Open(folder_);
    Document document;
    document.name = "shirt";
    document.title = "Title";
    document.words = "t-shirt more a";
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }
  EXPECT_EQ(Findings(), "4.segment d-shirt: words of it have the keys of other records\n");
  EXPECT_EQ(Check().faults, 0u);
}

// Where positions begin again at the first one, several words may share one.
TEST_F(CheckTest, WordsRefusedInALongTextAreNotes) {
  {
    auto writer = IndexWriter::Open(folder_);
    Document document;
    document.name = "shirt";
    document.title = "Title";
    document.words = "t-shirt";
    for (int i = 0; i < 35'000; ++i) document.words += " more less";
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }
  EXPECT_EQ(Findings(), "4.segment d-shirt: words of it have the keys of other records\n");
  EXPECT_EQ(Check().faults, 0u);
}

TEST_F(CheckTest, WordsThatWereRefusedAreNotes) {
  {
    auto writer = IndexWriter::Open(folder_);
    Document document;
    document.name = "shirt";
    document.title = "Title";
    document.words = "t-shirt more";
    ASSERT_TRUE(writer->Add(document).ok());
    ASSERT_TRUE(writer->Commit().ok());
  }
  EXPECT_EQ(Check().faults, 0u);
  EXPECT_EQ(Findings(), "4.segment d-shirt: words of it have the keys of other records\n");
  const auto good = Files();
  std::filesystem::remove(Path("4.terms"));
  std::filesystem::remove(Path("4.documents"));
  ASSERT_TRUE(RebuildDerivedFiles(folder_).ok());
  EXPECT_TRUE(Files() == good);
}

TEST_F(CheckTest, EachChangedByteIsReportedInItsFile) {
  const auto stride =
      static_cast<std::size_t>(kestan_tests::NumberFromEnvironment("KESTAN_CHECK_STRIDE", 97));
  for (const auto& [name, good] : Files()) {
    if (name == "writer.lock") continue;
    for (std::size_t i = 0; i < good.size(); i += stride) {
      std::string bad = good;
      bad[i] = static_cast<char>(bad[i] ^ 1);
      WriteFile(Path(name), bad);
      const auto report = CheckIndex(folder_);
      if (!report.ok()) {
        ASSERT_EQ(report.status().code(), StatusCode::kVersion) << name << " " << i;
        continue;
      }
      ASSERT_GT(report->faults, 0u) << name << " " << i;
      ASSERT_EQ(report->findings.front().file, Path(name)) << i;
    }
    WriteFile(Path(name), good);
  }
  EXPECT_EQ(Findings(), "");
}

TEST_F(CheckTest, EachMissingOrShorterFileIsReported) {
  for (const auto& [name, good] : Files()) {
    if (name == "writer.lock") continue;
    WriteFile(Path(name), good.substr(0, good.size() / 2));
    EXPECT_NE(Findings().find(name), std::string::npos) << name;
    std::filesystem::remove(Path(name));
    EXPECT_NE(Findings().find(name), std::string::npos) << name;
    WriteFile(Path(name), good);
  }
}

TEST_F(CheckTest, DerivedFilesOfAnotherSegmentAreReported) {
  auto manifest = *ReadManifest(folder_);
  WriteFile(Path("1.terms"), ReadFile(Path("2.terms")));
  WriteFile(Path("1.documents"), ReadFile(Path("3.documents")));
  manifest.segments[0].terms = manifest.segments[1].terms;
  manifest.segments[0].table = manifest.segments[2].table;
  ASSERT_TRUE(WriteManifest(folder_, manifest).ok());
  const std::string findings = Findings();
  EXPECT_NE(findings.find("1.terms"), std::string::npos) << findings;
  EXPECT_NE(findings.find("1.documents"), std::string::npos) << findings;
  EXPECT_NE(findings.find("it belongs to another segment"), std::string::npos) << findings;
}

TEST_F(CheckTest, DerivedFilesThatContradictTheirSegmentAreReported) {
  auto manifest = *ReadManifest(folder_);
  WriteFile(Path("1.terms"), ReadFile(Path("2.terms")));
  WriteFile(Path("1.documents"), ReadFile(Path("3.documents")));
  SegmentInfo& info = manifest.segments[0];
  info.terms = manifest.segments[1].terms;
  info.table = manifest.segments[2].table;
  Rebind(folder_, info.segment.checksum, &info);
  ASSERT_TRUE(WriteManifest(folder_, manifest).ok());
  const std::string findings = Findings();
  EXPECT_NE(findings.find("1.terms"), std::string::npos) << findings;
  EXPECT_NE(findings.find("1.documents"), std::string::npos) << findings;
  EXPECT_NE(findings.find("two documents have this name"), std::string::npos) << findings;
}

TEST_F(CheckTest, FilesThatNoManifestNamesAreNotes) {
  WriteFile(Path("9.terms"), "what a writer left");
  EXPECT_EQ(Check().notes, 1u);
  EXPECT_EQ(Check().faults, 0u);
}

TEST_F(CheckTest, AnIndexFileIsCheckedByItself) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex((dir_ / "file").c_str(), 1), 0);
  engine.AddDocumentWords("a", "some words");
  engine.CloseIndex();
  const auto report = CheckIndex(dir_ / "file");
  ASSERT_TRUE(report.ok());
  EXPECT_EQ(report->faults, 0u);
  EXPECT_EQ(report->documents, 1u);
  WriteFile(dir_ / "text", "no index");
  EXPECT_EQ(CheckIndex(dir_ / "text")->faults, 1u);
}

// ---- Making files again ----

TEST_F(CheckTest, DerivedFilesAreMadeAgainByteForByte) {
  const auto good = Files();
  for (const auto& [name, bytes] : good) {
    const auto kind = std::filesystem::path(name).extension();
    if (kind != ".terms" && kind != ".documents") continue;
    for (const bool missing : {true, false}) {
      if (missing) std::filesystem::remove(Path(name));
      if (!missing) WriteFile(Path(name), bytes + "x");
      RebuildReport report;
      const Status status = RebuildDerivedFiles(folder_, &report);
      ASSERT_TRUE(status.ok()) << status.ToString();
      EXPECT_EQ(report.rebuilt, std::vector<std::string>{Path(name)});
      EXPECT_TRUE(report.notes.empty());
      EXPECT_TRUE(ReadFile(Path(name)) == bytes) << name;
    }
  }
  EXPECT_EQ(Findings(), "");
}

TEST_F(CheckTest, WithoutPositionsTheNumbersOfWordsAreLost) {
  Write(false);
  const auto good = ReadIndex(folder_);
  const auto words_of_n0 = [&] { return IndexReader::Open(folder_)->FindDocument("n0")->words; };
  EXPECT_EQ(words_of_n0(), 9u);
  std::filesystem::remove(Path("1.documents"));
  RebuildReport report;
  ASSERT_TRUE(RebuildDerivedFiles(folder_, &report).ok());
  EXPECT_EQ(report.notes.size(), 2u);  // why, and that it is another table
  EXPECT_EQ(words_of_n0(), 7u);
  EXPECT_EQ(ReadIndex(folder_), good);
  EXPECT_EQ(Findings(), "");
}

TEST_F(CheckTest, NothingIsMadeFromADamagedSegment) {
  std::string bytes = ReadFile(Path("1.segment"));
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
  WriteFile(Path("1.segment"), bytes);
  std::filesystem::remove(Path("1.terms"));
  EXPECT_EQ(RebuildDerivedFiles(folder_).code(), StatusCode::kDamaged);
  EXPECT_FALSE(std::filesystem::exists(Path("1.terms")));
}

TEST_F(CheckTest, ALostManifestIsMadeFromTheSegments) {
  const auto good = ReadIndex(folder_);
  std::filesystem::remove(Path("MANIFEST"));
  std::filesystem::remove(Path("2.documents"));
  RebuildReport report;
  const Status status = RebuildDerivedFiles(folder_, &report);
  ASSERT_TRUE(status.ok()) << status.ToString();
  EXPECT_EQ(report.rebuilt.size(), 2u);
  EXPECT_EQ(ReadIndex(folder_), good);
  EXPECT_EQ(Findings(), "");
  EXPECT_TRUE(IndexWriter::Open(folder_).ok());
}

TEST_F(CheckTest, OfALostManifestSegmentsThatWereMergedAreLeftOut) {
  const auto before = Files();
  {
    auto writer = IndexWriter::Open(folder_);
    ASSERT_TRUE(writer->Compact().ok());
  }
  const auto good = ReadIndex(folder_);
  for (const auto& [name, bytes] : before) WriteFile(Path(name), bytes);
  std::filesystem::remove(Path("MANIFEST"));
  RebuildReport report;
  ASSERT_TRUE(RebuildDerivedFiles(folder_, &report).ok());
  EXPECT_EQ(ReadIndex(folder_), good);
  EXPECT_EQ(ReadManifest(folder_)->segments.size(), 1u);
}

TEST_F(CheckTest, OtherFoldersAreNoIndex) {
  std::filesystem::create_directory(dir_ / "empty");
  EXPECT_EQ(RebuildDerivedFiles(dir_ / "empty").code(), StatusCode::kNotFound);
  EXPECT_EQ(RebuildDerivedFiles(dir_ / "missing").code(), StatusCode::kNotFound);
  for (const char* name : {"empty", "missing"}) {
    const Status status = CheckIndex(dir_ / name).status();
    EXPECT_EQ(status.code(), StatusCode::kNotFound) << name;
    EXPECT_EQ(status.message(), "there is no index") << name;
  }
}

TEST_F(CheckTest, AWriterAtWorkIsNotDisturbed) {
  const auto writer = IndexWriter::Open(folder_);
  ASSERT_TRUE(writer.ok());
  EXPECT_EQ(RebuildDerivedFiles(folder_).code(), StatusCode::kBusy);
}

}  // namespace
}  // namespace kestan::search
