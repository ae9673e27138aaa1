// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/keys.h>

#include <string>
#include <string_view>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

TEST(KeysTest, OfTheGlobalRecordsAreFixed) {
  EXPECT_EQ(kestan::kCounterKey, "g-code");
  EXPECT_EQ(kestan::kAvailableKey, "g-avail");
  EXPECT_EQ(kestan::kDeletedKey, "g-deleted");
  EXPECT_EQ(kestan::kOptionsKey, "g-opts");
}

TEST(KeysTest, OfItemsAreTheFamilyAndTheName) {
  EXPECT_EQ(kestan::ItemKey(kestan::kDocumentFamily, "name"), "d-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kNameFamily, "name"), "c-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kWordListFamily, "name"), "w-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kUserFamily, "name"), "u-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kSummaryFamily, "name"), "s-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kTitleFamily, "name"), "t-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kTitleFamily, ""), "t-");
}

TEST(KeysTest, ASystemKeyIsLongerThanTwoBytesWithADashAsItsSecond) {
  for (std::string_view key : {"g-code"sv, "w-x"sv, "x-y"sv, "---"sv, "c-\0\1"sv, "\xff-\0"sv}) {
    EXPECT_TRUE(kestan::IsSystemKey(Datum(key))) << key;
  }
}

TEST(KeysTest, EveryOtherKeyIsAWord) {
  for (std::string_view key :
       {""sv, "-"sv, "a"sv, "a-"sv, "--"sv, "ab"sv, "abc"sv, "-ab"sv, "ab-"sv, "ab-c"sv}) {
    EXPECT_FALSE(kestan::IsSystemKey(Datum(key))) << key;
  }
}

TEST(KeysTest, FetchFindsARecordOrNothing) {
  const TempDir folder;
  const std::string path = folder / "file";
  Plant(path, {{"key", "value"}});
  Database store;
  ASSERT_EQ(store.Open(path.c_str(), 0), 0);
  EXPECT_EQ(Bytes(*kestan::Fetch(store, "key").ptr), "value");
  EXPECT_EQ(kestan::Fetch(store, "other").ptr, nullptr);
}

TEST(KeysTest, AFamilyMarkIsTheSecondByte) {
  for (std::string_view key : {"a-"sv, "--"sv, "d-name"sv, "e-mail"sv, "\0-"sv}) {
    EXPECT_TRUE(kestan::HasFamilyMark(key)) << key;
  }
  for (std::string_view key : {""sv, "-"sv, "a"sv, "-a"sv, "ab-"sv}) {
    EXPECT_FALSE(kestan::HasFamilyMark(key)) << key;
  }
}

TEST(KeysTest, ShrinksPassOverShortWordsAndHyphens) {
  for (const char* key : {"", "a", "a-", "a-b"}) EXPECT_TRUE(kestan::IsNeverPurged(Datum(key)));
  for (const char* key : {"ab", "-a", "ab-"}) EXPECT_FALSE(kestan::IsNeverPurged(Datum(key)));
}

TEST(KeysTest, AreOfTheFamilyThatTheyBeginWith) {
  EXPECT_TRUE(kestan::IsOfFamily("d-", kestan::kDocumentFamily));
  EXPECT_TRUE(kestan::IsOfFamily("d-name", kestan::kDocumentFamily));
  EXPECT_FALSE(kestan::IsOfFamily("d", kestan::kDocumentFamily));
  EXPECT_FALSE(kestan::IsOfFamily("t-name", kestan::kDocumentFamily));
}

TEST(KeysTest, OfSevenFamiliesAreKnown) {
  for (int letter = 0; letter < 256; ++letter) {
    const std::string key = std::string(1, static_cast<char>(letter)) + "-name";
    const bool is_known = letter != 0 && std::string_view("gdcwust").find(key[0]) != key.npos;
    EXPECT_EQ(kestan::IsOfKnownFamily(key), is_known) << letter;
  }
  EXPECT_TRUE(kestan::IsOfKnownFamily("t-"));
  EXPECT_FALSE(kestan::IsOfKnownFamily("t"));
  EXPECT_FALSE(kestan::IsOfKnownFamily("ta-"));
}

}  // namespace
}  // namespace kestan_tests
