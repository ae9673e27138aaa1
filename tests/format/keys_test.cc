// The keys of the index file.
#include <kestan/format/keys.h>

#include <string>
#include <string_view>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

TEST(Keys, OfTheGlobalRecordsAreFixed) {
  EXPECT_EQ(kestan::kCounterKey, "g-code");
  EXPECT_EQ(kestan::kAvailableKey, "g-avail");
  EXPECT_EQ(kestan::kDeletedKey, "g-deleted");
  EXPECT_EQ(kestan::kOptionsKey, "g-opts");
}

TEST(Keys, OfItemsAreTheFamilyAndTheName) {
  EXPECT_EQ(kestan::ItemKey(kestan::kDocumentFamily, "name"), "d-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kNameFamily, "name"), "c-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kWordListFamily, "name"), "w-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kUserFamily, "name"), "u-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kSummaryFamily, "name"), "s-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kTitleFamily, "name"), "t-name");
  EXPECT_EQ(kestan::ItemKey(kestan::kTitleFamily, ""), "t-");
}

TEST(Keys, ASystemKeyIsLongerThanTwoBytesWithADashAsItsSecond) {
  for (std::string_view key : {"g-code"sv, "w-x"sv, "x-y"sv, "---"sv, "c-\0\1"sv, "\xff-\0"sv}) {
    EXPECT_TRUE(kestan::IsSystemKey(Datum(key))) << key;
  }
}

TEST(Keys, EveryOtherKeyIsAWord) {
  for (std::string_view key :
       {""sv, "-"sv, "a"sv, "a-"sv, "--"sv, "ab"sv, "abc"sv, "-ab"sv, "ab-"sv, "ab-c"sv}) {
    EXPECT_FALSE(kestan::IsSystemKey(Datum(key))) << key;
  }
}

TEST(Keys, FetchFindsARecordOrNothing) {
  const TempDir folder;
  const std::string path = folder / "file";
  Plant(path, {{"key", "value"}});
  Database store;
  ASSERT_EQ(store.Open(path.c_str(), 0), 0);
  EXPECT_EQ(Bytes(*kestan::Fetch(store, "key").ptr), "value");
  EXPECT_EQ(kestan::Fetch(store, "other").ptr, nullptr);
}

TEST(Keys, ADatumBorrowsTheBytesOfAView) {
  const std::string_view bytes = "ab\0c"sv;
  const DBDatum datum = kestan::AsDatum(bytes);
  EXPECT_EQ(datum.data, bytes.data());
  EXPECT_EQ(datum.size, 4u);
  EXPECT_LT(datum.refs, 1);
}

}  // namespace
}  // namespace kestan_tests
