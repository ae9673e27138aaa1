// SPDX-License-Identifier: GPL-3.0-or-later
// Names of documents that are long or hold unusual bytes, through the whole life of a document.
#include <ostream>

#include "tests/indexing/planting.h"
#include "tests/model/clock.h"

namespace kestan_tests {
namespace {

constexpr std::uint32_t kTime = 1000000000;

// A name and what is unusual about it.
struct Unusual {
  const char* what;
  std::string name;

  friend std::ostream& operator<<(std::ostream& out, const Unusual& unusual) {
    return out << unusual.what;
  }
};

class UnusualNameTest : public IndexTest, public testing::WithParamInterface<Unusual> {
 protected:
  void SetUp() override {
    kestan_model::SetClock(kTime);
    IndexTest::SetUp();
  }

  const std::string name_ = GetParam().name;
  const char* const bytes_ = name_.c_str();
};

std::string EveryByteAbove127() {
  std::string bytes;
  for (int byte = 128; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Of, UnusualNameTest,
    testing::Values(Unusual{"10000 bytes", std::string(10000, 'n')},
                    Unusual{"70000 bytes", std::string(70000, '\xff')},
                    Unusual{"two lines", "two\nlines"}, Unusual{"a line feed", "\n"},
                    Unusual{"blanks", " \t "}, Unusual{"every byte above 127", EveryByteAbove127()},
                    Unusual{"an accent", "caf\xc3\xa9"}, Unusual{"formats", "%s%n"},
                    Unusual{"a dash", "-"}, Unusual{"a document key", "d-x"},
                    Unusual{"a system key", "g-code"}, Unusual{"a line of a listing", "100 name"}));

TEST_P(UnusualNameTest, IsListedByQueriesAndWalks) {
  engine_.AddDocumentWords("other", "cat cat");
  engine_.AddDocumentWords(bytes_, "cat");
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 other\n50 " + name_ + "\n");
  const std::string documents = "\n" + std::string(engine_.ListDocuments());
  EXPECT_NE(documents.find("\n" + name_ + "\n"), std::string::npos);
  EXPECT_EQ(engine_.DocumentTimestamp(bytes_), kTime);
}

TEST_P(UnusualNameTest, IsStoredWithoutATerminator) {
  engine_.AddDocumentWords(bytes_, "cat");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(1)), name_);
  EXPECT_EQ(stored.at("d-" + name_).substr(4), Units({1, 0}));
}

TEST_P(UnusualNameTest, HasATitleASummaryAndAUserRecord) {
  engine_.DBPutTitle(bytes_, "title");
  engine_.DBPutSummary(bytes_, "summary");
  engine_.DBPutUser(bytes_, "user");
  EXPECT_STREQ(engine_.DBGetTitle(bytes_), "title");
  EXPECT_STREQ(engine_.DBGetSummary(bytes_), "summary");
  EXPECT_STREQ(engine_.DBGetUser(bytes_), "user");
  EXPECT_EQ(engine_.DBDelTitle(bytes_), 0);
  EXPECT_EQ(engine_.DBGetTitle(bytes_), nullptr);
  EXPECT_STREQ(engine_.DBGetSummary(bytes_), "summary");
}

TEST_P(UnusualNameTest, IsReplacedMovedAndRemoved) {
  engine_.AddDocumentWords(bytes_, "cat");
  engine_.AddDocumentWords(bytes_, "dog");
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "");
  EXPECT_EQ(engine_.MoveDocumentWords(bytes_, "plain"), 0);
  EXPECT_EQ(Listing(engine_.QueryWord("dog")), "100 plain\n");
  EXPECT_EQ(engine_.MoveDocumentWords("plain", bytes_), 0);
  EXPECT_EQ(Listing(engine_.QueryWord("dog")), "100 " + name_ + "\n");
  EXPECT_EQ(engine_.RemoveDocumentWords(bytes_), 0);
  EXPECT_EQ(engine_.RemoveDocumentWords(bytes_), 1);
  EXPECT_STREQ(engine_.ListDocuments(), "");
}

TEST_P(UnusualNameTest, IsCopiedAndOutlivesAShrink) {
  engine_.AddDocumentWords("gone", "cat");
  engine_.AddDocumentWords(bytes_, "cat");
  engine_.RemoveDocumentWords("gone");
  EXPECT_EQ(engine_.ShrinkIndex(), 0);
  EXPECT_EQ(engine_.CopyIndexTo((folder_ / "copy").c_str()), 0);
  engine_.CloseIndex();
  ASSERT_EQ(engine_.OpenIndex((folder_ / "copy").c_str(), 0), 0);
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 " + name_ + "\n");
}

}  // namespace
}  // namespace kestan_tests
