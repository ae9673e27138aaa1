// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/segment.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/search/segment/segment_files.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

constexpr auto kTitle = DocumentField::kTitle;
constexpr auto kSummary = DocumentField::kSummary;
constexpr auto kHostData = DocumentField::kHostData;

using SegmentPtr = std::shared_ptr<const Segment>;

class SegmentTest : public testing::Test {
 protected:
  void Write(bool with_positions = true) {
    with_positions_ = with_positions;
    info_ = *WriteSegment(folder_, 1, documents_, with_positions);
  }

  SegmentPtr Open() const { return *Segment::Open(folder_, info_, with_positions_); }

  SegmentPtr Edited(const Edits& edits) {
    WriteEdits(folder_, edits, info_.edit_number + 1, &info_);
    return Open();
  }

  // Replaces `from` by `to`, of the same length, wherever it stands in the file.
  void Damage(const std::string& name, const std::string& from, const std::string& to) const {
    std::string bytes = kestan_tests::ReadFile(folder_ + name);
    std::size_t count = 0;
    for (std::size_t at = bytes.find(from); at != bytes.npos; at = bytes.find(from, at + 1)) {
      bytes.replace(at, to.size(), to);
      ++count;
    }
    ASSERT_GT(count, 0u);
    kestan_tests::WriteFile(folder_ + name, bytes);
  }

  kestan_tests::TempDir dir_;
  std::string folder_ = dir_ / "";
  std::vector<WrittenDocument> documents_ = {
      {"a.txt", "hello world hello", {"Title A", "", "host A"}},
      {"b.txt", "hello there", {}},
      {"c.txt", "world", {"", "Summary C", ""}}};
  bool with_positions_ = true;
  SegmentInfo info_;
};

std::string Found(const SegmentPtr& segment, const std::string& term) {
  const Result<TermPostings> postings = segment->FindTerm(term);
  EXPECT_TRUE(postings.ok()) << postings.status().ToString();
  return postings.ok() ? std::string(postings->record.view()) : "";
}

void ExpectHas(const SegmentPtr& segment, const std::vector<WrittenDocument>& documents) {
  ASSERT_EQ(segment->size(), documents.size());
  for (const auto& [word, postings] : InvertPlainly(documents)) {
    EXPECT_EQ(Found(segment, word), RecordOf(postings, segment->with_positions())) << word;
    EXPECT_EQ(segment->FindTerm(word)->documents, postings.size());
  }
  Code code = 0;
  for (const WrittenDocument& document : documents) {
    ++code;
    EXPECT_EQ(segment->NameOf(code), document.name);
    EXPECT_EQ(segment->AddedOf(code), 1000u + code);
    EXPECT_EQ(segment->FindDocument(document.name), code);
    for (const DocumentField field : {kTitle, kSummary, kHostData}) {
      const Result<std::string> text = segment->FieldOf(code, field);
      ASSERT_TRUE(text.ok());
      EXPECT_EQ(*text, document.fields[static_cast<std::size_t>(field)]);
    }
  }
  EXPECT_TRUE(segment->status().ok());
}

TEST_F(SegmentTest, HasWhatWasWritten) {
  Write();
  const SegmentPtr segment = Open();
  ExpectHas(segment, documents_);
  EXPECT_EQ(segment->living_documents(), 3u);
  EXPECT_EQ(segment->living_words(), 6u);
  EXPECT_EQ(segment->FindTerm("missing")->documents, 0u);
  EXPECT_EQ(Found(segment, "missing"), "");
  EXPECT_EQ(segment->FindDocument("missing"), std::nullopt);
}

TEST_F(SegmentTest, HasTheSameWithoutPositions) {
  Write(false);
  const SegmentPtr segment = Open();
  EXPECT_FALSE(segment->with_positions());
  ExpectHas(segment, documents_);
  EXPECT_EQ(Found(segment, "world"), std::string("\1\0\3\0", 4));
}

TEST_F(SegmentTest, RemovedDocumentsAreNotFoundAndNotCounted) {
  Write();
  Edits edits(3);
  edits.Remove(1);
  const SegmentPtr segment = Edited(edits);
  EXPECT_EQ(segment->FindDocument("a.txt"), std::nullopt);
  EXPECT_TRUE(segment->IsRemoved(1));
  EXPECT_FALSE(segment->IsRemoved(2));
  EXPECT_EQ(segment->living_documents(), 2u);
  EXPECT_EQ(segment->living_words(), 3u);
}

TEST_F(SegmentTest, CodesThatNoDocumentHasAreRemoved) {
  Write();
  const SegmentPtr segment = Open();
  for (const Code code : {Code{0}, Code{4}, kMaxCode}) {
    EXPECT_TRUE(segment->IsRemoved(code));
    EXPECT_EQ(segment->table().WordsOf(code), 0u);
  }
}

TEST_F(SegmentTest, ARenamedDocumentKeepsItsTexts) {
  Write();
  Edits edits(3);
  edits.Rename(1, "new.txt", 77);
  const SegmentPtr segment = Edited(edits);
  EXPECT_EQ(segment->NameOf(1), "new.txt");
  EXPECT_EQ(segment->AddedOf(1), 77u);
  EXPECT_EQ(segment->FindDocument("new.txt"), Code{1});
  EXPECT_EQ(segment->FindDocument("a.txt"), std::nullopt);
  EXPECT_EQ(*segment->FieldOf(1, kTitle), "Title A");
  EXPECT_EQ(*segment->FieldOf(1, kHostData), "host A");
}

TEST_F(SegmentTest, NewTextsTakeThePlaceOfOldOnes) {
  Write();
  Edits edits(3);
  edits.SetField(1, kTitle, "");
  edits.SetField(2, kSummary, "Summary B");
  const SegmentPtr segment = Edited(edits);
  EXPECT_EQ(*segment->FieldOf(1, kTitle), "");
  EXPECT_EQ(*segment->FieldOf(1, kHostData), "host A");
  EXPECT_EQ(*segment->FieldOf(2, kSummary), "Summary B");
  EXPECT_EQ(segment->NameOf(1), "a.txt");
  EXPECT_EQ(segment->AddedOf(1), 1001u);
}

TEST_F(SegmentTest, FilesAreSharedWithTheSameSegmentOfOtherEdits) {
  Write();
  const SegmentPtr before = Open();
  Edits edits(3);
  edits.Remove(2);
  WriteEdits(folder_, edits, 1, &info_);
  for (const char* name : {"1.segment", "1.terms", "1.documents"}) {
    std::filesystem::remove(folder_ + name);
  }
  const auto after = Segment::Open(folder_, info_, true, before.get());
  ASSERT_TRUE(after.ok());
  EXPECT_FALSE(before->IsRemoved(2));
  EXPECT_TRUE((*after)->IsRemoved(2));
  EXPECT_EQ(&(*after)->terms(), &before->terms());
  EXPECT_EQ(Found(*after, "hello"), Found(before, "hello"));
  ++info_.number;
  EXPECT_EQ(Segment::Open(folder_, info_, true, before.get()).status().code(),
            StatusCode::kNotFound);
}

TEST_F(SegmentTest, FilesThatAreMissingOrOfAnotherSizeAreNamed) {
  Write();
  for (const char* name : {"1.segment", "1.terms", "1.documents"}) {
    const std::string path = folder_ + "/" + name;
    const std::string bytes = kestan_tests::ReadFile(path);
    std::filesystem::remove(path);
    EXPECT_EQ(Segment::Open(folder_, info_, true).status().ToString(),
              path + ": No such file or directory");
    kestan_tests::WriteFile(path, bytes.substr(1));
    EXPECT_EQ(Segment::Open(folder_, info_, true).status().code(), StatusCode::kDamaged);
    EXPECT_EQ(Segment::Open(folder_, info_, true).status().file(), path);
    kestan_tests::WriteFile(path, bytes);
  }
  EXPECT_TRUE(Segment::Open(folder_, info_, true).ok());
}

TEST_F(SegmentTest, FilesThatContradictTheManifestAreDamaged) {
  Write();
  SegmentInfo other = info_;
  other.documents = 4;
  EXPECT_EQ(Segment::Open(folder_, other, true).status().message(),
            "it has other documents than MANIFEST says");
  Edits edits(3);
  edits.Remove(2);
  WriteEdits(folder_, edits, 1, &info_);
  other = info_;
  other.removed = 2;
  EXPECT_EQ(Segment::Open(folder_, other, true).status().message(),
            "it has other removed documents than MANIFEST says");
  other = info_;
  ++other.edits.checksum;
  EXPECT_EQ(Segment::Open(folder_, other, true).status().file(), folder_ + "/1-1.edits");
  std::filesystem::resize_file(folder_ + "1-1.edits", info_.edits.bytes - 1);
  EXPECT_EQ(Segment::Open(folder_, info_, true).status().code(), StatusCode::kDamaged);
}

// Moves the record of "there" by one byte: an entry of its bucket says where it really lies.
TEST_F(SegmentTest, WhereTheKeyIsNotAtItsPlaceTheStoreIsAsked) {
  Write();
  const SegmentInfo good = info_;
  documents_[1].fields[0] = "a title that moves all records";
  std::filesystem::remove(folder_ + "1.terms");
  std::filesystem::remove(folder_ + "1.documents");
  info_ = *WriteSegment(folder_, 2, documents_);
  info_.number = 1;
  info_.segment = good.segment;
  std::filesystem::rename(folder_ + "2.terms", folder_ + "1.terms");
  std::filesystem::rename(folder_ + "2.documents", folder_ + "1.documents");
  Rebind(folder_, info_.segment.checksum, &info_);
  const SegmentPtr segment = Open();
  const PlainPostings postings = InvertPlainly(documents_);
  for (int i = 0; i < 2; ++i) {
    for (const auto& [word, expected] : postings) {
      EXPECT_EQ(Found(segment, word), RecordOf(expected, true)) << word;
    }
  }
  EXPECT_EQ(*segment->FieldOf(3, kSummary), "Summary C");
  EXPECT_EQ(segment->FieldOf(2, kTitle).status().code(), StatusCode::kDamaged);  // there is none
}

TEST_F(SegmentTest, ATermThatTheStoreLacksIsDamage) {
  Write();
  Damage("1.segment", "there", "thexe");
  const Result<TermPostings> postings = Open()->FindTerm("there");
  EXPECT_EQ(postings.status().code(), StatusCode::kDamaged);
  EXPECT_EQ(postings.status().file(), folder_ + "/1.segment");
}

TEST_F(SegmentTest, AFileThatIsNoStoreIsDamage) {
  Write();
  kestan_tests::WriteFile(folder_ + "1.segment",
                          std::string(static_cast<std::size_t>(info_.segment.bytes), 'x'));
  const SegmentPtr segment = Open();  // which does not look
  EXPECT_EQ(segment->FindTerm("there").status().code(), StatusCode::kDamaged);
  EXPECT_EQ(segment->FieldOf(1, kTitle).status().code(), StatusCode::kDamaged);
}

TEST_F(SegmentTest, DamagedNamesAreReported) {
  Write();
  Damage("1.documents", "b.txt", "B.txt");
  const SegmentPtr segment = Open();
  EXPECT_TRUE(segment->status().ok());
  EXPECT_EQ(segment->FindDocument("b.txt"), std::nullopt);
  EXPECT_EQ(segment->status().code(), StatusCode::kDamaged);
  EXPECT_EQ(segment->FieldOf(1, kTitle).status().code(), StatusCode::kDamaged);
}

TEST_F(SegmentTest, ManyThreadsReadAtOnce) {
  Write();
  Damage("1.segment", "there", "thexe");  // which sends all threads to the store
  const SegmentPtr segment = Open();
  std::vector<int> wrong(4);
  std::vector<std::thread> threads;
  for (int& count : wrong) {
    threads.emplace_back([&segment, &count] {
      for (int i = 0; i < 200; ++i) {
        if (segment->FindTerm("there").ok()) ++count;
        if (segment->FindTerm("hello")->documents != 2) ++count;
        if (*segment->FieldOf(1, kTitle) != "Title A") ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
}

TEST_F(SegmentTest, RandomDocumentsComeBack) {
  const bool holds = rc::check("a segment has its documents", [this] {
    documents_.clear();
    const auto count = *rc::gen::inRange(0, 30);
    for (int i = 0; i < count; ++i) {
      WrittenDocument document{"n" + std::to_string(i * 17 % 31), "", {}};
      for (const auto& word : *rc::gen::container<std::vector<std::string>>(
               rc::gen::container<std::string>(rc::gen::inRange('a', 'd')))) {
        document.words += word + " ";
      }
      for (std::string& field : document.fields) field = *rc::gen::arbitrary<std::string>();
      documents_.push_back(std::move(document));
    }
    for (const char* name : {"1.segment", "1.terms", "1.documents"}) {
      std::filesystem::remove(folder_ + name);
    }
    Write(*rc::gen::arbitrary<bool>());
    ExpectHas(Open(), documents_);
    RC_ASSERT(!HasFailure());
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan::search
