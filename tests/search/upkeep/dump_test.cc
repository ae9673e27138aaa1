// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/checksum.h>
#include <kestan/index_file.h>
#include <kestan/kestan.h>
#include <kestan/maintenance.h>
#include <kestan/search.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/search/index/read_index.h"
#include "tests/search/upkeep/kept_index.h"
#include "tests/support/files.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

namespace fs = std::filesystem;

using kestan_tests::Sayings;
using Lines = std::vector<std::string>;

class DumpTest : public testing::Test {
 protected:
  Lines Dump(const std::string& path) const {
    Lines lines;
    const Status status = DumpIndex(path, [&](std::string_view line) {
      lines.emplace_back(line);
      return true;
    });
    EXPECT_TRUE(status.ok()) << status.ToString();
    return lines;
  }

  static Status Load(const Lines& lines, const std::string& path) {
    std::size_t next = 0;
    return LoadIndex(
        [&](std::string_view* line) {
          if (next == lines.size()) return false;
          *line = lines[next++];
          return true;
        },
        path);
  }

  // Returns `lines` with the last one as it has to be.
  static Lines WithEnd(Lines lines, int parts) {
    Crc64 checksum;
    lines.pop_back();
    for (const std::string& line : lines) {
      checksum.Add(line);
      checksum.Add("\n");
    }
    char last[64];
    snprintf(last, sizeof(last), "parts %d %016llx", parts,
             static_cast<unsigned long long>(checksum.Value()));
    lines.emplace_back(last);
    return lines;
  }

  void ExpectNothing(const std::string& path) const {
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(fs::exists(path + ".new"));
  }

  std::string Path(const std::string& name) const { return dir_ / name; }

  kestan_tests::TempDir dir_;
};

TEST_F(DumpTest, ALoadedFolderSaysTheSame) {
  for (const bool with_positions : {true, false}) {
    const std::string kind = with_positions ? "1" : "0";
    kestan_tests::MakeKeptIndex(Path("index" + kind), with_positions);
    const Lines dump = Dump(Path("index" + kind));
    const Status status = Load(dump, Path("loaded" + kind));
    ASSERT_TRUE(status.ok()) << status.ToString();
    EXPECT_EQ(Sayings(Path("loaded" + kind)), Sayings(Path("index" + kind)));
    const auto old = IndexReader::Open(Path("index" + kind));
    const auto loaded = IndexReader::Open(Path("loaded" + kind));
    for (const char* const key : {"key", "roots"}) {
      EXPECT_EQ(*loaded->Property(key), *old->Property(key));
    }
    EXPECT_EQ(kestan_tests::Faults(Path("loaded" + kind)), 0u);
    EXPECT_TRUE(Dump(Path("loaded" + kind)) == dump);
    EXPECT_FALSE(fs::exists(Path("loaded" + kind + ".new")));
    EXPECT_TRUE(IndexWriter::Open(Path("loaded" + kind)).ok());
  }
}

TEST_F(DumpTest, TheDumpDoesNotDependOnTheSegments) {
  kestan_tests::MakeKeptIndex(Path("index"));
  const Lines before = Dump(Path("index"));
  ASSERT_TRUE(IndexWriter::Open(Path("index"))->Compact().ok());
  EXPECT_TRUE(Dump(Path("index")) == before);
}

TEST_F(DumpTest, AnEmptyFolderIsDumpedToo) {
  ASSERT_TRUE(IndexWriter::Open(Path("index"))->Commit().ok());
  EXPECT_EQ(Dump(Path("index")),
            WithEnd({"kestan-folder-dump 1", "positions yes", "property analyzer 1", ""}, 0));
  ASSERT_TRUE(Load(Dump(Path("index")), Path("loaded")).ok());
  EXPECT_TRUE(kestan_tests::ReadIndex(Path("loaded")).empty());
}

TEST_F(DumpTest, PropertiesLongerThanALineAreBroken) {
  std::string value;
  for (int i = 0; i < 900000; ++i) value += i % 3 == 0 ? "\n" : "ab";
  {
    auto writer = IndexWriter::Open(Path("index"));
    writer->SetProperty("key", value);
    ASSERT_TRUE(writer->Commit().ok());
  }
  const Lines dump = Dump(Path("index"));
  EXPECT_GT(dump.size(), 4u);
  for (const std::string& line : dump) EXPECT_LE(line.size(), kMaxDumpLineBytes);
  const Status status = Load(dump, Path("loaded"));
  ASSERT_TRUE(status.ok()) << status.ToString();
  EXPECT_TRUE(*IndexReader::Open(Path("loaded"))->Property("key") == value);
}

TEST_F(DumpTest, TheDumpOfAFileIsThatOfTheEngine) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("file").c_str(), 1), 0);
    engine.AddDocumentWords("a", "some e-mail");
    engine.DBPutWords("colours", "red green");
    engine.CloseIndex();
  }
  Lines expected;
  {
    IndexFile file;
    ASSERT_EQ(file.Open(Path("file").c_str()), StoreError::kNone);
    kestan::DumpIndex(file.store(), [&](std::string_view line) { expected.emplace_back(line); });
  }
  EXPECT_EQ(Dump(Path("file")), expected);
  ASSERT_TRUE(Load(expected, Path("loaded")).ok());
  EXPECT_EQ(kestan_tests::Dump(Path("loaded")), kestan_tests::Dump(Path("file")));
  expected.pop_back();
  const Status status = Load(expected, Path("other"));
  EXPECT_EQ(status.code(), StatusCode::kInvalidArgument);
  EXPECT_EQ(status.message(), "line " + std::to_string(expected.size() + 1) +
                                  ": the dump ends here, without its last line");
  ExpectNothing(Path("other"));
}

TEST_F(DumpTest, EachLostOrChangedLineIsRefused) {
  kestan_tests::MakeKeptIndex(Path("index"));
  const Lines dump = Dump(Path("index"));
  const std::size_t step = dump.size() / 60 + 1;
  for (std::size_t i = 0; i < dump.size(); i += i < 20 ? 1 : step) {
    Lines lost = dump;
    lost.erase(lost.begin() + static_cast<std::ptrdiff_t>(i));
    Lines twice = dump;
    twice.insert(twice.begin() + static_cast<std::ptrdiff_t>(i), dump[i]);
    Lines changed = dump;
    changed[i].back() = changed[i].back() == 'x' ? 'y' : 'x';
    Lines cut(dump.begin(), dump.begin() + static_cast<std::ptrdiff_t>(i));
    for (const Lines& bad : {lost, twice, changed, cut}) {
      const Status status = Load(bad, Path("loaded"));
      ASSERT_EQ(status.code(), StatusCode::kInvalidArgument) << i << " " << status.ToString();
      ASSERT_EQ(status.message().rfind("line ", 0), 0u) << status.message();
      ASSERT_EQ(status.file(), "");
      ExpectNothing(Path("loaded"));
    }
  }
  Lines longer = dump;
  longer.emplace_back("more");
  EXPECT_EQ(Load(longer, Path("loaded")).message(),
            "line " + std::to_string(dump.size() + 1) + ": something follows the last line");
}

TEST_F(DumpTest, LinesOfPartsAreCountedFromTheStartOfTheDump) {
  kestan_tests::MakeKeptIndex(Path("index"));
  Lines dump = Dump(Path("index"));
  std::size_t at = 0;
  while (dump[at] != "kestan-dump 1") ++at;
  dump[at + 2] = "\x01\t";
  EXPECT_EQ(Load(dump, Path("loaded")).message(),
            "line " + std::to_string(at + 3) + ": a byte that should have been escaped");
}

TEST_F(DumpTest, PartsThatContradictThemselvesAreRefused) {
  kestan_tests::MakeKeptIndex(Path("index"));
  const Lines dump = Dump(Path("index"));
  std::size_t part = 0;
  while (dump[part].rfind("part ", 0) != 0) ++part;
  const auto expect_refused = [&](const Lines& lines, const std::string& what) {
    const Status status = Load(lines, Path("loaded"));
    EXPECT_EQ(status.code(), StatusCode::kInvalidArgument);
    EXPECT_NE(status.message().find(what), std::string::npos) << status.message();
    ExpectNothing(Path("loaded"));
  };
  Lines twice = dump;
  twice.insert(twice.end() - 1, dump.begin() + static_cast<std::ptrdiff_t>(part), dump.end() - 1);
  expect_refused(WithEnd(twice, 2), "a document is in two parts");
  Lines other = dump;
  other[1] = "positions no";
  expect_refused(WithEnd(other, 1), "contradicts what is said of it");
  Lines fewer = dump;
  fewer[part] = "part 10";
  fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(part) + 1);
  expect_refused(WithEnd(fewer, 1), "the part contradicts ");
}

TEST_F(DumpTest, ItEndsWhereTheHostSays) {
  kestan_tests::MakeKeptIndex(Path("index"));
  for (std::size_t most : {0u, 5u, 40u}) {
    std::size_t lines = 0;
    const Status status =
        DumpIndex(Path("index"), [&](std::string_view) { return ++lines <= most; });
    EXPECT_EQ(status.code(), StatusCode::kInterrupted);
    EXPECT_EQ(lines, most + 1);
  }
}

TEST_F(DumpTest, WhatIsThereStaysAndWhatIsNoIndexIsAnError) {
  kestan_tests::MakeKeptIndex(Path("index"));
  kestan_tests::WriteFile(Path("taken"), "text");
  EXPECT_EQ(Load(Dump(Path("index")), Path("taken")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(kestan_tests::ReadFile(Path("taken")), "text");
  const auto take = [](std::string_view) { return true; };
  EXPECT_EQ(DumpIndex(Path("taken"), take).code(), StatusCode::kDamaged);
  EXPECT_EQ(DumpIndex(Path("missing"), take).code(), StatusCode::kNotFound);
  EXPECT_EQ(Load({}, Path("loaded")).message(),
            "line 1: the dump ends here, without its last line");
  EXPECT_EQ(Load({"kestan-folder-dump 2"}, Path("loaded")).message(),
            "line 1: a dump in a form that is not known here");
  EXPECT_EQ(Load({"text"}, Path("loaded")).message(), "line 1: not a dump of an index");
  ExpectNothing(Path("loaded"));
}

TEST_F(DumpTest, DamagedSegmentsAreNotDumped) {
  kestan_tests::MakeKeptIndex(Path("index"));
  ASSERT_TRUE(IndexWriter::Open(Path("index"))->Compact().ok());
  for (const auto& file : fs::directory_iterator(Path("index"))) {
    if (file.path().extension() != ".segment") continue;
    std::string bytes = kestan_tests::ReadFile(file.path().string());
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    kestan_tests::WriteFile(file.path().string(), bytes);
  }
  EXPECT_EQ(DumpIndex(Path("index"), [](std::string_view) { return true; }).code(),
            StatusCode::kDamaged);
}

}  // namespace
}  // namespace kestan::search
