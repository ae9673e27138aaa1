#include "cli/files/skip.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace kestan_cli {
namespace {

TEST(SkipTest, FailuresAreFilesThatShouldHaveBeenIndexed) {
  for (SkipKind kind : {SkipKind::kBinary, SkipKind::kLink, SkipKind::kSpecial, SkipKind::kIndex,
                        SkipKind::kExcluded, SkipKind::kIgnored, SkipKind::kNoConverter}) {
    EXPECT_FALSE(IsFailure(kind));
  }
  for (SkipKind kind : {SkipKind::kUnreadable, SkipKind::kConversion, SkipKind::kChanging,
                        SkipKind::kTooLarge, SkipKind::kName}) {
    EXPECT_TRUE(IsFailure(kind));
  }
}

TEST(SkipTest, CountsAreWords) {
  EXPECT_EQ(CountedSkips(1, SkipKind::kBinary), "1 binary file");
  EXPECT_EQ(CountedSkips(2, SkipKind::kBinary), "2 binary files");
  EXPECT_EQ(CountedSkips(0, SkipKind::kLink), "0 links");
  EXPECT_EQ(CountedSkips(1, SkipKind::kIndex), "1 index");
  EXPECT_EQ(CountedSkips(2, SkipKind::kIndex), "2 indexes");
  EXPECT_EQ(CountedSkips(1, SkipKind::kName), "1 unusable name");
}

TEST(SkipTest, EveryKindHasAKeyOfItsOwn) {
  std::set<std::string> keys;
  for (int kind = 0; kind <= static_cast<int>(SkipKind::kName); ++kind) {
    keys.insert(KeyOf(static_cast<SkipKind>(kind)));
  }
  EXPECT_EQ(keys.size(), static_cast<std::size_t>(SkipKind::kName) + 1);
  EXPECT_EQ(KeyOf(SkipKind::kBinary), "binary");
  EXPECT_EQ(KeyOf(SkipKind::kIndex), "index");
  EXPECT_EQ(KeyOf(SkipKind::kTooLarge), "too_large");
  EXPECT_EQ(KeyOf(SkipKind::kName), "name");
}

TEST(SkipTest, KindsAreCounted) {
  const std::map<SkipKind, unsigned long> expected{{SkipKind::kBinary, 1}, {SkipKind::kLink, 2}};
  EXPECT_EQ(
      CountKinds(
          {{"a", SkipKind::kLink, ""}, {"b", SkipKind::kBinary, ""}, {"c", SkipKind::kLink, ""}}),
      expected);
  EXPECT_TRUE(CountKinds({}).empty());
}

}  // namespace
}  // namespace kestan_cli
