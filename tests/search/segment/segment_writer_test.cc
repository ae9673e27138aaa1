// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/segment_writer.h"

#include <gtest/gtest.h>
#include <kestan/index_file.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/search/segment/segment_files.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

class SegmentWriterTest : public testing::Test {
 protected:
  std::vector<std::string> FilesLeft() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  kestan_tests::TempDir dir_;
  std::string folder_ = dir_ / "";
  std::vector<WrittenDocument> documents_ = {{"a.txt", "hello world hello", {"Title", "", "host"}},
                                             {"b.txt", "hello there", {}}};
};

TEST_F(SegmentWriterTest, WritesThreeFilesAndSumsThemUp) {
  const Result<SegmentInfo> info = WriteSegment(folder_, 7, documents_);
  ASSERT_TRUE(info.ok());
  EXPECT_EQ(FilesLeft(), (std::vector<std::string>{"7.documents", "7.segment", "7.terms"}));
  EXPECT_EQ(info->number, 7u);
  EXPECT_EQ(info->documents, 2u);
  EXPECT_EQ(info->removed, 0u);
  EXPECT_EQ(info->segment, *SummaryOf(folder_ + "7.segment"));
  EXPECT_EQ(info->terms, *SummaryOf(folder_ + "7.terms"));
  EXPECT_EQ(info->table, *SummaryOf(folder_ + "7.documents"));
}

TEST_F(SegmentWriterTest, TheIndexFileIsOneOfTheEngine) {
  ASSERT_TRUE(WriteSegment(folder_, 1, documents_).ok());
  IndexFile file;
  ASSERT_EQ(file.Open((folder_ + "1.segment").c_str()), StoreError::kNone);
  EXPECT_EQ(file.CountDocuments().documents, 2u);
  EXPECT_EQ(file.DocumentFrequency("hello"), 2u);
  EXPECT_EQ(file.NameOf(2), "b.txt");
  EXPECT_EQ(file.TimestampOf("b.txt"), 1002u);
  EXPECT_TRUE(file.FindSideRecord(SideRecord::kTitle, "a.txt").ptr != nullptr);
}

TEST_F(SegmentWriterTest, ATermThatIsTheKeyOfAnotherRecordIsLeftOut) {
  documents_[0].words = "t-a.txt t-shirt";
  const Result<SegmentInfo> info = WriteSegment(folder_, 1, documents_);
  const auto segment = Segment::Open(folder_, *info, true);
  ASSERT_TRUE(segment.ok());
  EXPECT_FALSE((*segment)->terms().Find("t-a.txt")->has_value());
  EXPECT_TRUE((*segment)->terms().Find("t-shirt")->has_value());
  EXPECT_EQ(*(*segment)->FieldOf(1, DocumentField::kTitle), "Title");
}

TEST_F(SegmentWriterTest, WithoutFinishNothingIsLeft) {
  {
    SegmentWriter writer;
    ASSERT_TRUE(writer.Create(folder_, 1, true, 2, 10).ok());
    FillSegment(documents_, true, &writer);
    EXPECT_EQ(FilesLeft().size(), 3u);
  }
  EXPECT_EQ(FilesLeft(), std::vector<std::string>());
}

TEST_F(SegmentWriterTest, AfterAnErrorNothingIsLeft) {
  {
    SegmentWriter writer;
    ASSERT_TRUE(writer.Create(folder_, 1, true, 2, 10).ok());
    writer.AddTerm("b", 0, "");
    writer.AddTerm("a", 0, "");
    EXPECT_EQ(writer.Finish().status().code(), StatusCode::kInvalidArgument);
    EXPECT_FALSE(writer.Finish().ok());
  }
  EXPECT_EQ(FilesLeft(), std::vector<std::string>());
  {
    SegmentWriter writer;
    ASSERT_TRUE(writer.Create(folder_, 1, true, 2, 10).ok());
    writer.AddDocument({"a", 1, 1, {}});
    writer.AddDocument({"a", 1, 1, {}});  // two documents of one name
    EXPECT_EQ(writer.Finish().status().code(), StatusCode::kSystem);
  }
  EXPECT_EQ(FilesLeft(), std::vector<std::string>());
}

TEST_F(SegmentWriterTest, FilesThatExistAreLeftAlone) {
  for (const char* name : {"1.segment", "2.terms", "3.documents"}) {
    kestan_tests::WriteFile(folder_ + name, "old");
    const Status status =
        WriteSegment(folder_, static_cast<std::uint64_t>(name[0] - '0'), documents_).status();
    EXPECT_EQ(status.message(), "File exists");
    EXPECT_EQ(status.file(), folder_ + "/" + name);
    EXPECT_EQ(kestan_tests::ReadFile(folder_ + name), "old");
  }
  EXPECT_EQ(FilesLeft(), (std::vector<std::string>{"1.segment", "2.terms", "3.documents"}));
}

TEST_F(SegmentWriterTest, AFolderThatIsMissingIsNotFound) {
  EXPECT_EQ(WriteSegment(dir_ / "none", 1, {}).status().code(), StatusCode::kNotFound);
  SegmentWriter writer;
  EXPECT_EQ(writer.Finish().status().code(), StatusCode::kInvalidArgument);
}

TEST_F(SegmentWriterTest, ASegmentMayBeEmpty) {
  const Result<SegmentInfo> info = WriteSegment(folder_, 1, {});
  ASSERT_TRUE(info.ok());
  EXPECT_EQ(info->documents, 0u);
  EXPECT_TRUE(Segment::Open(folder_, *info, true).ok());
}

}  // namespace
}  // namespace kestan::search
