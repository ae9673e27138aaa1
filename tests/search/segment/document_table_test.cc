// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/document_table.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::ReadFile;
using kestan_tests::WriteFile;

// A document with a name of its own.
struct Row {
  std::string name;
  DocumentEntry entry;
};

bool operator==(const DocumentEntry& left, const DocumentEntry& right) {
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    const RecordPlace& a = left.fields[i];
    const RecordPlace& b = right.fields[i];
    if (a.offset != b.offset || a.key_bytes != b.key_bytes || a.value_bytes != b.value_bytes) {
      return false;
    }
  }
  return left.name == right.name && left.words == right.words && left.added == right.added;
}

Row RowOf(std::string name, std::uint32_t words, std::uint32_t added, unsigned fields,
          std::uint64_t offset) {
  Row row{std::move(name), {}};
  row.entry.words = words;
  row.entry.added = added;
  for (unsigned i = 0; i < kDocumentFields; ++i) {
    if ((fields >> i & 1) == 0) continue;
    const auto key_bytes = static_cast<std::uint32_t>(row.name.size() + 2);
    row.entry.fields[i] = {offset, key_bytes, words % 100};
    offset += key_bytes + words % 100;
  }
  return row;
}

std::vector<Row> SomeRows(std::uint32_t count) {
  std::vector<Row> rows;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::string name = "mail/" + std::to_string(i * 7919 % 100003) + ".txt";
    rows.push_back(RowOf(name, i * 31, 1'700'000'000 + i, i % 8, 5000 + std::uint64_t{i} * 200));
  }
  return rows;
}

class DocumentTableTest : public testing::Test {
 protected:
  Result<FileSummary> Write(const std::vector<Row>& rows) {
    std::filesystem::remove(path_);
    DocumentTableWriter writer;
    EXPECT_TRUE(writer.Create(path_).ok());
    for (Row row : rows) {
      row.entry.name = row.name;
      writer.Add(row.entry);
    }
    return writer.Finish();
  }

  Result<DocumentTable> Open() const {
    return DocumentTable::Open(*FileBytes::Open(path_, std::filesystem::file_size(path_)));
  }

  Result<DocumentTable> OpenBytes(const std::string& bytes) const {
    WriteFile(path_, bytes);
    return Open();
  }

  kestan_tests::TempDir dir_;
  std::string path_ = dir_ / "1.documents";
};

// Returns whether the table says what is in `rows`.
bool Agrees(const DocumentTable& table, const std::vector<Row>& rows) {
  if (table.size() != rows.size()) return false;
  std::uint64_t words = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto code = static_cast<Code>(i + 1);
    DocumentEntry expected = rows[i].entry;
    expected.name = rows[i].name;
    words += expected.words;
    if (!(table.EntryOf(code) == expected) || table.NameOf(code) != expected.name) return false;
    if (table.WordsOf(code) != expected.words || table.AddedOf(code) != expected.added)
      return false;
    if (table.Find(expected.name) != code) return false;
  }
  return table.words() == words && table.status().ok();
}

TEST_F(DocumentTableTest, SaysWhatWasWritten) {
  const std::vector<Row> rows = SomeRows(1000);
  const Result<FileSummary> summary = Write(rows);
  ASSERT_TRUE(summary.ok());
  EXPECT_EQ(*summary, *SummaryOf(path_));
  const Result<DocumentTable> table = Open();
  ASSERT_TRUE(table.ok());
  EXPECT_TRUE(Agrees(*table, rows));
  EXPECT_TRUE(table->Verify().ok());
}

TEST_F(DocumentTableTest, SaysToWhichSegmentItBelongs) {
  DocumentTableWriter writer;
  ASSERT_TRUE(writer.Create(path_).ok());
  writer.SetSegment(0x0123456789abcdef);
  ASSERT_TRUE(writer.Finish().ok());
  EXPECT_EQ(Open()->segment_checksum(), 0x0123456789abcdefu);
}

TEST_F(DocumentTableTest, FindsNoNameThatIsNotThere) {
  ASSERT_TRUE(Write(SomeRows(300)).ok());
  const Result<DocumentTable> table = Open();
  for (const char* name : {"", "mail/", "mail/0.tx", "mail/0.txtx", "a", "z"}) {
    EXPECT_EQ(table->Find(name), std::nullopt) << name;
  }
}

TEST_F(DocumentTableTest, ATableCanBeEmpty) {
  ASSERT_TRUE(Write({}).ok());
  const Result<DocumentTable> table = Open();
  ASSERT_TRUE(table.ok());
  EXPECT_EQ(table->size(), 0u);
  EXPECT_EQ(table->words(), 0u);
  EXPECT_EQ(table->Find("a"), std::nullopt);
  EXPECT_TRUE(table->Verify().ok());
}

TEST_F(DocumentTableTest, NamesAndNumbersMayBeAsLargeAsTheyGet) {
  const std::vector<Row> rows = {
      RowOf(std::string(4096, '\xff'), UINT32_MAX, UINT32_MAX, 7, UINT64_MAX - 1'000'000),
      RowOf(std::string(60'000, 'x'), 0, 0, 5, 1), RowOf(std::string("a\0b", 3), 1, 1, 0, 0)};
  ASSERT_TRUE(Write(rows).ok());
  EXPECT_TRUE(Agrees(*Open(), rows));
}

TEST_F(DocumentTableTest, HoldsAsManyDocumentsAsThereAreCodesAndNoMore) {
  std::vector<Row> rows = SomeRows(kMaxCode);
  ASSERT_TRUE(Write(rows).ok());
  EXPECT_TRUE(Agrees(*Open(), rows));
  rows.push_back(RowOf("one more", 1, 1, 0, 0));
  EXPECT_EQ(Write(rows).status().code(), StatusCode::kInvalidArgument);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(DocumentTableTest, ADocumentTakesFewBytesBesideItsName) {
  std::vector<Row> rows;
  std::size_t names = 0;
  for (std::uint32_t i = 0; i < 10'000; ++i) {
    rows.push_back(RowOf("n" + std::to_string(i), 300, 1'700'000'000, 7, 100'000'000 + i));
    names += rows.back().name.size();
  }
  EXPECT_LE((Write(rows)->bytes - names) / rows.size(), 28u);
}

TEST_F(DocumentTableTest, EveryChangedByteIsNoticed) {
  const std::vector<Row> rows = SomeRows(400);
  ASSERT_TRUE(Write(rows).ok());
  const std::string good = ReadFile(path_);
  ASSERT_GT(good.size(), 3 * 4096u);  // several parts
  for (std::size_t at = 0; at < good.size(); ++at) {
    std::string bytes = good;
    bytes[at] = static_cast<char>(bytes[at] ^ 1 << at % 8);
    const Result<DocumentTable> table = OpenBytes(bytes);
    const StatusCode expected = at >= 8 && at < 16 ? StatusCode::kVersion : StatusCode::kDamaged;
    if (!table.ok()) {
      EXPECT_EQ(table.status().code(), expected) << at;
    } else {
      EXPECT_EQ(table->Verify().code(), expected) << at;
    }
  }
}

TEST_F(DocumentTableTest, WhatIsDamagedIsAsIfItWereNotThere) {
  const std::vector<Row> rows = SomeRows(2000);
  ASSERT_TRUE(Write(rows).ok());
  std::string bytes = ReadFile(path_);
  bytes.back() = static_cast<char>(bytes.back() ^ 1);
  const Result<DocumentTable> table = OpenBytes(bytes);
  ASSERT_TRUE(table.ok());
  EXPECT_EQ(table->NameOf(1), rows[0].name);
  EXPECT_TRUE(table->status().ok());
  EXPECT_EQ(table->NameOf(2000), "");
  EXPECT_EQ(table->status().ToString(), path_ + ": the document table is damaged");
  EXPECT_EQ(table->EntryOf(2000).fields[0].offset, 0u);
  EXPECT_EQ(table->WordsOf(2000), 1999u * 31);
  EXPECT_EQ(table->NameOf(1), rows[0].name);
}

// Returns where the parts of a whole table begin, the first of which hold the numbers of words.
std::size_t PartsAt(const std::string& table) {
  std::size_t parts = 1;
  while (48 + parts * (8 + 4096) < table.size()) ++parts;
  return 48 + parts * 8;
}

std::string Changed(std::string bytes, std::size_t at) {
  bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
  return bytes;
}

TEST_F(DocumentTableTest, DamagedNumbersOfWordsAreNoticedWhenTheyAreRead) {
  ASSERT_TRUE(Write(SomeRows(2000)).ok());
  const std::string good = ReadFile(path_);
  const Result<DocumentTable> table = OpenBytes(Changed(good, PartsAt(good) + 4096));
  ASSERT_TRUE(table.ok());
  EXPECT_EQ(table->WordsOf(1024), 1023u * 31);
  EXPECT_TRUE(table->status().ok());
  EXPECT_EQ(table->WordsOf(1025), 0u);
  EXPECT_EQ(table->status().code(), StatusCode::kDamaged);
}

TEST_F(DocumentTableTest, VisitsTheWordsOfAnyDocuments) {
  const std::vector<Row> rows = SomeRows(5000);
  ASSERT_TRUE(Write(rows).ok());
  for (const std::size_t step : {std::size_t{1}, std::size_t{7}, std::size_t{1024}}) {
    const Result<DocumentTable> table = Open();
    std::vector<Code> codes;
    for (std::size_t code = step; code <= rows.size(); code += step) {
      codes.push_back(static_cast<Code>(code));
    }
    std::vector<std::uint32_t> words(codes.size());
    table->VisitWords(codes, [&](std::size_t i, std::uint32_t count) { words[i] = count; });
    for (std::size_t i = 0; i < codes.size(); ++i) {
      ASSERT_EQ(words[i], rows[codes[i] - 1U].entry.words) << step << " " << i;
    }
    EXPECT_TRUE(table->status().ok());
  }
}

TEST_F(DocumentTableTest, VisitsNoWordsWhereTheyAreDamaged) {
  ASSERT_TRUE(Write(SomeRows(3000)).ok());
  const std::string good = ReadFile(path_);
  const Result<DocumentTable> table = OpenBytes(Changed(good, PartsAt(good) + 2 * 4096 - 1));
  std::vector<std::uint32_t> words;
  table->VisitWords({1, 1024, 1025, 2048, 2049, 3000},
                    [&](std::size_t, std::uint32_t count) { words.push_back(count); });
  EXPECT_EQ(words, (std::vector<std::uint32_t>{0, 1023 * 31, 0, 0, 2048 * 31, 2999 * 31}));
  EXPECT_EQ(table->status().code(), StatusCode::kDamaged);
}

TEST_F(DocumentTableTest, AnnouncedNamesAreReadAsOthers) {
  const std::vector<Row> rows = SomeRows(2000);
  ASSERT_TRUE(Write(rows).ok());
  const Result<DocumentTable> table = Open();
  const std::vector<Code> codes = {0, 1, 1000, 2000, 2001, 65535};
  for (const Code code : codes) table->WillReadStart(code);
  for (const Code code : codes) table->WillReadRecord(code);
  EXPECT_TRUE(Agrees(*table, rows));
}

TEST_F(DocumentTableTest, AnAnnouncedPartThatIsDamagedIsNoticed) {
  const std::vector<Row> rows = SomeRows(10);
  ASSERT_TRUE(Write(rows).ok());
  std::string bytes = ReadFile(path_);
  bytes.back() ^= 1;
  const Result<DocumentTable> table = OpenBytes(bytes);
  ASSERT_TRUE(table.ok());
  table->WillReadStart(1);
  table->WillReadRecord(1);
  EXPECT_EQ(table->NameOf(1), "");
  EXPECT_EQ(table->status().code(), StatusCode::kDamaged);
}

TEST_F(DocumentTableTest, EveryTruncationIsDamage) {
  ASSERT_TRUE(Write(SomeRows(150)).ok());
  const std::string good = ReadFile(path_);
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_EQ(OpenBytes(good.substr(0, size)).status().code(), StatusCode::kDamaged) << size;
  }
  EXPECT_EQ(OpenBytes(good + '\0').status().code(), StatusCode::kDamaged);
}

// Changes bytes and mends the checksums, as only somebody who means it does. The table has one
// part.
std::string Forged(std::string bytes, std::size_t at, char byte) {
  bytes[at] = byte;
  const std::size_t checksum = 32;
  if (at < checksum || at >= checksum + 16) {
    std::string checksum_bytes;
    AppendChecksumOf(std::string_view(bytes).substr(checksum + 16), &checksum_bytes);
    bytes.replace(checksum, 8, checksum_bytes);
  }
  std::string checksum_bytes;
  AppendChecksumOf(std::string_view(bytes).substr(0, checksum + 8), &checksum_bytes);
  return bytes.replace(checksum + 8, 8, checksum_bytes);
}

TEST_F(DocumentTableTest, NumbersThatLeadAnywhereLeadOutOfNoTable) {
  const std::vector<Row> rows = SomeRows(20);
  ASSERT_TRUE(Write(rows).ok());
  const std::string good = ReadFile(path_);
  std::size_t refused = 0;
  for (std::size_t at = 16; at < good.size(); ++at) {
    for (const char byte : {'\0', '\1', '\x7f', '\x80', '\xff'}) {
      const Result<DocumentTable> table = OpenBytes(Forged(good, at, byte));
      if (!table.ok()) {
        ++refused;
        continue;
      }
      if (!table->Verify().ok()) ++refused;
      for (const Row& row : rows) table->Find(row.name);  // comes to an end
    }
  }
  EXPECT_GT(refused, 500u);
}

TEST_F(DocumentTableTest, ManyThreadsReadAtOnce) {
  const std::vector<Row> rows = SomeRows(3000);
  ASSERT_TRUE(Write(rows).ok());
  const Result<DocumentTable> table = Open();
  std::vector<std::thread> threads;
  std::vector<char> agrees(4);
  for (std::size_t i = 0; i < agrees.size(); ++i) {
    threads.emplace_back([&, i] { agrees[i] = Agrees(*table, rows) ? 1 : 0; });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(agrees, std::vector<char>(4, 1));
}

TEST_F(DocumentTableTest, RandomTablesSayWhatWasWritten) {
  const bool holds = rc::check("a table is a list of rows", [this] {
    const auto names = *rc::gen::scale(4, rc::gen::arbitrary<std::set<std::string>>());
    std::vector<Row> rows;
    for (const std::string& name : names) {
      const auto words = *rc::gen::arbitrary<std::uint32_t>();
      const auto added = *rc::gen::arbitrary<std::uint32_t>();
      const auto fields = *rc::gen::inRange<unsigned>(0, 8);
      const auto offset = *rc::gen::inRange<std::uint64_t>(1, std::uint64_t{1} << 50);
      const auto at = *rc::gen::inRange<std::size_t>(0, rows.size() + 1);
      rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(at),
                  RowOf(name, words, added, fields, offset));
    }
    RC_ASSERT(Write(rows).ok());
    const Result<DocumentTable> table = Open();
    RC_ASSERT(table.ok() && Agrees(*table, rows) && table->Verify().ok());
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan::search
