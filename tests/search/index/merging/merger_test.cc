// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/merging/merger.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "search/files/output_file.h"
#include "search/index/inverting/inverter.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::Dump;

using Segments = std::vector<std::shared_ptr<const Segment>>;
using Added = std::vector<std::pair<Document, std::uint32_t>>;  // with the times

SegmentInfo Write(const std::string& folder, std::uint64_t number, const Added& documents,
                  bool with_positions = true) {
  Inverter inverter(with_positions);
  for (const auto& [document, added] : documents) inverter.Add(document, added);
  Result<SegmentInfo> info = inverter.Write(folder, number);
  if (!info.ok()) throw std::runtime_error(info.status().ToString());
  return *info;
}

void WriteEdits(const std::string& folder, const Edits& edits, SegmentInfo* info) {
  info->edit_number = 1;
  OutputFile file;
  if (!file.Create(folder + "/" + EditsFile(*info)).ok()) throw std::runtime_error("edits");
  file.Write(edits.Encode());
  info->edits = *file.Finish();
  info->removed = static_cast<std::uint32_t>(edits.removed_count());
}

std::shared_ptr<const Segment> Open(const std::string& folder, const SegmentInfo& info,
                                    bool with_positions = true) {
  auto segment = Segment::Open(folder, info, with_positions);
  if (!segment.ok()) throw std::runtime_error(segment.status().ToString());
  return *segment;
}

Document RandomDocument(const std::string& name) {
  Document document;
  document.name = name;
  for (const int word : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 40))) {
    document.words += "W" + std::to_string(word) + " ";
  }
  document.title = *rc::gen::element<std::string>("", "title of " + name);
  document.host_data = *rc::gen::element<std::string>("", "data");
  return document;
}

// Returns each term of a segment with its number of documents.
std::map<std::string, std::uint32_t> TermsOf(const Segment& segment) {
  std::map<std::string, std::uint32_t> terms;
  const Status status = segment.terms().ForEach("", [&terms](const TermEntry& entry) {
    terms[std::string(entry.term)] = entry.documents;
    return true;
  });
  RC_ASSERT(status.ok());
  return terms;
}

// Returns all that a segment says of a document but its words.
std::string DocumentOf(const Segment& segment, std::size_t index) {
  const auto code = static_cast<Code>(index);
  std::string text(segment.NameOf(code));
  text += " " + std::to_string(segment.AddedOf(code)) + " " +
          std::to_string(segment.table().WordsOf(code));
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    text += " " + *segment.FieldOf(code, static_cast<DocumentField>(i));
  }
  return text;
}

// Writes a segment of random documents, edits some of them and adds those that live to `*living`.
std::shared_ptr<const Segment> RandomSegment(const std::string& folder, std::uint64_t number,
                                             bool with_positions, Added* living) {
  Added documents;
  const auto count = *rc::gen::inRange<std::size_t>(1, 12);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string name = std::to_string(number) + "/" + std::to_string(i);
    documents.emplace_back(RandomDocument(name), static_cast<std::uint32_t>(number * 100 + i));
  }
  SegmentInfo info = Write(folder, number, documents, with_positions);
  Edits edits(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto code = static_cast<Code>(i + 1);
    auto [document, added] = documents[i];
    const int kind = *rc::gen::inRange(0, 8);
    if (kind == 0) {
      document.name += " renamed";
      added = 5000;
      edits.Rename(code, document.name, added);
    } else if (kind == 1) {
      document.title = *rc::gen::element<std::string>("", "new title");
      edits.SetField(code, DocumentField::kTitle, document.title);
    } else if (kind < 5) {
      edits.Remove(code);
      continue;
    }
    living->emplace_back(std::move(document), added);
  }
  if (!edits.empty()) WriteEdits(folder, edits, &info);
  return Open(folder, info, with_positions);
}

TEST(MergerTest, MakesTheSegmentThatTheLivingDocumentsWouldMake) {
  EXPECT_TRUE(rc::check([](bool with_positions) {
    const kestan_tests::TempDir temporary;
    const std::string folder = temporary / "";
    Added living;
    Segments segments;
    const auto count = *rc::gen::inRange<std::uint64_t>(1, 6);
    for (std::uint64_t number = 1; number <= count; ++number) {
      segments.push_back(RandomSegment(folder, number, with_positions, &living));
    }
    const Result<SegmentInfo> merged = MergeSegments(segments, folder, 10, nullptr);
    RC_ASSERT(merged.ok());
    RC_ASSERT(merged->documents == living.size());
    if (living.empty()) return;
    const SegmentInfo expected = Write(folder, 11, living, with_positions);
    RC_ASSERT(Dump(folder + "10.segment") == Dump(folder + "11.segment"));
    const auto segment = Open(folder, *merged, with_positions);
    const auto plain = Open(folder, expected, with_positions);
    RC_ASSERT(TermsOf(*segment) == TermsOf(*plain));
    for (std::size_t i = 1; i <= living.size(); ++i) {
      RC_ASSERT(DocumentOf(*segment, i) == DocumentOf(*plain, i));
    }
  }));
}

class MergerFailureTest : public testing::Test {
 protected:
  void SetUp() override {
    for (std::uint64_t number = 1; number <= 2; ++number) {
      Document document;
      document.name = std::to_string(number);
      document.words = "some words";
      segments_.push_back(Open(folder_, Write(folder_, number, {{document, 1}})));
    }
  }

  bool NothingIsLeft() const {
    return !std::filesystem::exists(folder_ + "3.segment") &&
           !std::filesystem::exists(folder_ + "3.terms") &&
           !std::filesystem::exists(folder_ + "3.documents");
  }

  const kestan_tests::TempDir temporary_;
  const std::string folder_ = temporary_ / "";
  Segments segments_;
};

TEST_F(MergerFailureTest, AnInterruptedMergeLeavesNothing) {
  std::uint64_t sum = 0;
  const auto merged = MergeSegments(segments_, folder_, 3, [&sum](std::uint64_t bytes) {
    sum += bytes;
    return false;
  });
  EXPECT_EQ(merged.status().code(), StatusCode::kInterrupted);
  EXPECT_EQ(sum, 4 * 6u);  // four records of one posting
  EXPECT_TRUE(NothingIsLeft());
}

TEST_F(MergerFailureTest, AMissingFileIsAnError) {
  std::filesystem::remove(folder_ + "2.segment");
  const auto merged = MergeSegments(segments_, folder_, 3, nullptr);
  EXPECT_EQ(merged.status().code(), StatusCode::kNotFound);
  EXPECT_TRUE(NothingIsLeft());
}

TEST_F(MergerFailureTest, ASegmentThatIsThereAlreadyIsNotWrittenOver) {
  const auto merged = MergeSegments(segments_, folder_, 2, nullptr);
  EXPECT_EQ(merged.status().code(), StatusCode::kSystem);
  EXPECT_TRUE(std::filesystem::exists(folder_ + "2.segment"));
}

}  // namespace
}  // namespace kestan::search
