// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/inverter.h"

#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <rapidcheck.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/building/plain_documents.h"
#include "tests/support/stored_records.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::Dump;
using kestan_tests::PlainDocument;
using kestan_tests::Records;
using kestan_tests::Units;

Document Named(const std::string& name, const std::string& words) {
  Document document;
  document.name = name;
  document.words = words;
  return document;
}

// The records of the index file that class Kestan makes of the documents.
Records RecordsOfKestan(const kestan_tests::PlainDocuments& documents, bool with_positions) {
  const kestan_tests::TempDir folder;
  Kestan engine;
  engine.OpenIndex((folder / "index").c_str(), 1);
  if (!with_positions) engine.SetOptionFlag(kFlagNoPositions);
  kestan_tests::AddTo(&engine, documents);
  engine.CloseIndex();
  return Dump(folder / "index");
}

std::string TextOf(const PlainDocument& document, SideRecord kind) {
  const auto found = document.side_records.find(kind);
  return found != document.side_records.end() ? found->second : "";
}

// The records of the segment that the documents make.
Records RecordsOfSegment(const kestan_tests::PlainDocuments& documents,
                         const std::vector<std::uint32_t>& times, bool with_positions) {
  const kestan_tests::TempDir folder;
  Inverter inverter(with_positions);
  for (std::size_t i = 0; i < documents.size(); ++i) {
    Document document = Named(documents[i].name, documents[i].text);
    document.title = TextOf(documents[i], SideRecord::kTitle);
    document.summary = TextOf(documents[i], SideRecord::kSummary);
    document.host_data = TextOf(documents[i], SideRecord::kUser);
    inverter.Add(std::move(document), times[i]);
  }
  const Result<SegmentInfo> info = inverter.Write(folder / "", 7);
  RC_ASSERT(info.ok());
  RC_ASSERT(info->documents == documents.size());
  return Dump(folder / "7.segment");
}

TEST(InverterTest, ASegmentHasTheRecordsThatClassKestanMakes) {
  EXPECT_TRUE(rc::check([](bool with_positions) {
    kestan_tests::PlainDocuments documents;
    const auto count = *rc::gen::inRange<std::size_t>(1, 30);
    for (std::size_t i = 0; i < count; ++i) {
      PlainDocument document;
      document.name = "doc/" + std::to_string(i);
      for (const int word : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 60))) {
        document.text += (word % 2 == 0 ? "Word" : "@_x") + std::to_string(word / 2) + "\t ";
      }
      if (i % 3 == 0) document.side_records[SideRecord::kTitle] = "title " + document.text;
      if (i % 4 == 0) document.side_records[SideRecord::kSummary] = "summary";
      if (i % 5 == 0) document.side_records[SideRecord::kUser] = "user";
      documents.push_back(document);
    }
    const Records expected = RecordsOfKestan(documents, with_positions);
    const auto times = kestan_tests::TimesIn(expected, documents);
    RC_ASSERT(RecordsOfSegment(documents, times, with_positions) == expected);
  }));
}

TEST(InverterTest, WithoutDocumentsWritesNoFiles) {
  const kestan_tests::TempDir folder;
  Inverter inverter(true);
  EXPECT_EQ(inverter.Write(folder / "", 1)->documents, 0u);
  inverter.Add(Named("a", "x"), 1);
  inverter.Drop(0);
  EXPECT_EQ(inverter.Write(folder / "", 1)->documents, 0u);
  EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
}

TEST(InverterTest, DroppedDocumentsLeaveNoTrace) {
  const kestan_tests::TempDir folder;
  Inverter inverter(true);
  inverter.Add(Named("a", "gone x"), 1);
  inverter.Add(Named("b", "x y"), 2);
  inverter.Drop(0);
  inverter.Add(Named("a", "y"), 3);
  inverter.Rename(1, "c", 4);
  inverter.SetField(2, DocumentField::kTitle, "title");
  EXPECT_TRUE(inverter.IsDropped(0));
  const Result<SegmentInfo> info = inverter.Write(folder / "", 1);
  ASSERT_TRUE(info.ok()) << info.status().ToString();
  EXPECT_EQ(info->documents, 2u);
  const Records records = Dump(folder / "1.segment");
  EXPECT_EQ(records.count("gone"), 0u);
  EXPECT_EQ(records.at("x"), Units({1, 1, 1}));
  EXPECT_EQ(records.at("y"), Units({1, 1, 2, 2, 1, 1}));
  EXPECT_EQ(records.at("d-c"), Units({4, 0, 1, 0}));
  EXPECT_EQ(records.at("d-a"), Units({3, 0, 2, 0}));
  EXPECT_EQ(records.at("t-a"), "title");
}

TEST(InverterTest, NulsSeparateWords) {
  const kestan_tests::TempDir folder;
  Inverter inverter(true);
  inverter.Add(Named("a", std::string("x\0y", 3)), 1);
  ASSERT_TRUE(inverter.Write(folder / "", 1).ok());
  EXPECT_EQ(Dump(folder / "1.segment").at("y"), Units({1, 1, 2}));
}

TEST(InverterTest, MemoryGrowsWithTextsAndWords) {
  Inverter inverter(true);
  const std::size_t empty = inverter.memory();
  Document document = Named("a", "x");
  document.summary = std::string(1 << 20, 's');
  inverter.Add(document, 1);
  EXPECT_GE(inverter.memory(), empty + (1 << 20));
  EXPECT_LT(inverter.memory(), empty + (2 << 20));
}

}  // namespace
}  // namespace kestan::search
