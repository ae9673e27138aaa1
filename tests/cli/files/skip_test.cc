// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/skip.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "cli/console/message.h"

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

TEST(SkipTest, NumbersHaveCommas) {
  EXPECT_EQ(CountedSkips(1234, SkipKind::kBinary), "1,234 binary files");
}

// Returns "FILES KIND: REMEDY" for each reason, with a "!" where there is something to do.
std::string ReasonsOf(const std::vector<Skip>& skips) {
  std::string lines;
  for (const SkipReason& reason : ReasonsFor(skips)) {
    lines += std::to_string(reason.files) + " " + KeyOf(reason.kind) +
             (reason.has_remedy ? "!: " : ": ") + reason.remedy + "\n";
  }
  return lines;
}

TEST(SkipTest, ReasonsAreKindsAndRemedies) {
  const Skip pdf{"a", SkipKind::kNoConverter, "", "install one"};
  const Skip ps{"b", SkipKind::kNoConverter, "", "install another"};
  const Skip link{"c", SkipKind::kLink, "symbolic link"};
  EXPECT_EQ(ReasonsOf({ps, pdf, link, pdf}),
            "2 no_converter!: install one\n"
            "1 link: not followed; name what they lead to, if it lies elsewhere\n"
            "1 no_converter!: install another\n");
  EXPECT_EQ(ReasonsOf({}), "");
}

TEST(SkipTest, PermissionsHaveARemedyOfTheirOwn) {
  EXPECT_EQ(ReasonsOf({{"a", SkipKind::kUnreadable, ReasonOf(EACCES)}}),
            "1 unreadable!: check their permissions\n");
  EXPECT_EQ(ReasonsOf({{"a", SkipKind::kUnreadable, "broken"}}),
            "1 unreadable!: they may be damaged; compare them with the originals\n");
}

TEST(SkipTest, OnlyWhatHoldsNoTextOrIsElsewhereHasNoRemedy) {
  for (int kind = 0; kind <= static_cast<int>(SkipKind::kName); ++kind) {
    const SkipReason reason = ReasonsFor({{"a", static_cast<SkipKind>(kind), ""}}).at(0);
    EXPECT_FALSE(reason.remedy.empty()) << kind;
    EXPECT_EQ(reason.has_remedy, static_cast<SkipKind>(kind) >= SkipKind::kExcluded) << kind;
  }
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
