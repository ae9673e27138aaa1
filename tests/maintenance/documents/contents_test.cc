// SPDX-License-Identifier: GPL-3.0-or-later
// Which documents and words the keys of an index show.
#include <kestan/maintenance/documents/contents.h>

#include <string>
#include <vector>

#include "tests/maintenance/maintenance_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

class ContentsTest : public testing::Test {
 protected:
  void Gather(const Records& records) {
    Plant(path_, records);
    Database store;
    ASSERT_EQ(store.Open(path_.c_str(), 0), 0);
    ASSERT_EQ(contents_.Gather(store), 0);
  }

  using Strings = std::vector<std::string>;

  Strings Words() const { return {contents_.words().begin(), contents_.words().end()}; }

  // Returns the documents as "code name@time".
  Strings Documents() const {
    Strings documents;
    for (const kestan::Document& document : contents_.documents()) {
      documents.push_back(std::to_string(document.code) + " " + std::string(document.name) + "@" +
                          std::to_string(document.timestamp));
    }
    return documents;
  }

  const TempDir folder_;
  const std::string path_ = folder_ / "index";
  kestan::Contents contents_;
};

TEST_F(ContentsTest, DocumentsComeByCodeAndWordsInOrderOfTheirBytes) {
  Gather({{"d-a", Units({7, 0, 256, 0})},
          {"c-" + Units({256}), "a"},
          {"d-b", Units({8, 1, 2, 0})},
          {"c-" + Units({2}), "b"},
          {"cat", Units({2, 1, 1})},
          {"Zoo", Units({2, 1, 2})},
          {"\xc3\xa9t\xc3\xa9", Units({2, 1, 3})}});
  EXPECT_EQ(Documents(), Strings({"2 b@65544", "256 a@7"}));
  EXPECT_EQ(Words(), Strings({"Zoo", "cat", "\xc3\xa9t\xc3\xa9"}));
}

TEST_F(ContentsTest, OnlyWhatTheNameRecordOfItsCodeNamesIsADocument) {
  Gather({{"d-a", Units({7, 0, 1, 0})},
          {"d-b", Units({7, 0, 1, 0})},
          {"d-c", Units({7, 0, 3, 0})},
          {"c-" + Units({1}), "b"}});
  EXPECT_EQ(Documents(), Strings({"1 b@7"}));
}

TEST_F(ContentsTest, KeysOfKnownFamiliesAreNoWordsAndOthersWithAHyphenAre) {
  Records records{{"e-mail", "x"}, {"x", "x"}, {"-", "x"}};
  for (const char family : "gdcwust"s) records[family + "-key"s] = "x";
  Gather(records);
  EXPECT_EQ(Words(), Strings({"-", "e-mail", "x"}));
}

TEST_F(ContentsTest, KeysOfTwoBytesAreWordsUnlessADocumentHasTheEmptyName) {
  const Records words{{"d-", "x"}, {"t-", "x"}, {"x-", "x"}};
  Gather(words);
  EXPECT_EQ(Words(), Strings({"d-", "t-", "x-"}));
  Plant(path_, {{"d-", Units({7, 0, 1, 0})}, {"c-" + Units({1}), ""}});
  contents_ = kestan::Contents();
  Gather({});
  EXPECT_EQ(Documents(), Strings({"1 @7"}));
  EXPECT_EQ(Words(), Strings({"x-"}));
}

TEST_F(ContentsTest, AWordKnowsItsFoldedFormIfThatHasARecord) {
  Gather({{"Cat", "x"}, {"Dog", "x"}, {"cat", "x"}});
  EXPECT_EQ(contents_.FoldedWord(0), 2U);
  EXPECT_EQ(contents_.FoldedWord(1), kestan::kNoWord);
  EXPECT_EQ(contents_.FoldedWord(2), kestan::kNoWord);
}

TEST_F(ContentsTest, OptionFlagOneKeepsNoPositions) {
  Gather({{"g-opts", Units({4, 0})}});
  EXPECT_TRUE(contents_.has_positions());
  Gather({{"g-opts", Units({5, 0})}});
  EXPECT_FALSE(contents_.has_positions());
}

TEST(ReadRecordTest, AMissingRecordIsNoError) {
  const TempDir folder;
  Plant(folder / "index", {{"key", "value"}});
  Database store;
  ASSERT_EQ(store.Open((folder / "index").c_str(), 0), 0);
  DBDatumPtr value;
  EXPECT_EQ(kestan::ReadRecord(store, "key", &value), 0);
  ASSERT_NE(value.ptr, nullptr);
  EXPECT_EQ(Bytes(*value.ptr), "value");
  EXPECT_EQ(kestan::ReadRecord(store, "other", &value), 0);
  EXPECT_EQ(value.ptr, nullptr);
}

}  // namespace
}  // namespace kestan_tests
