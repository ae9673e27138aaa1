// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/declared_charset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

using Charsets = std::vector<std::string>;

TEST(DeclaredCharsetTest, MetaElementsNameIt) {
  EXPECT_EQ(DeclaredCharsets("<meta charset=koi8-r>"), Charsets{"koi8-r"});
  EXPECT_EQ(DeclaredCharsets("<META x='>' / CHARSET = \"koi8-r\" />"), Charsets{"koi8-r"});
  EXPECT_EQ(DeclaredCharsets("<p a=\"'\"><meta charset='a' charset='b'>"), Charsets{"a"});
}

TEST(DeclaredCharsetTest, HeaderInAMetaElementNamesIt) {
  EXPECT_EQ(DeclaredCharsets("<meta http-equiv=Content-Type content='text/html; charset=Big5'>"),
            Charsets{"big5"});
  EXPECT_EQ(
      DeclaredCharsets("<meta content='charset x charset = \"a b\"' http-equiv=content-type>"),
      Charsets{"a b"});
  EXPECT_EQ(DeclaredCharsets("<meta name=x content='charset=big5'>"), Charsets{});
}

TEST(DeclaredCharsetTest, XmlDeclarationComesLast) {
  EXPECT_EQ(DeclaredCharsets("<?xml version='1.0' encoding='a'?><meta charset=b>"),
            (Charsets{"b", "a"}));
  EXPECT_EQ(DeclaredCharsets(" <?xml encoding='a'?>"), Charsets{});
}

TEST(DeclaredCharsetTest, CommentsAndScriptsNameNone) {
  EXPECT_EQ(DeclaredCharsets("<!-- <meta charset=a> --><meta charset=b>"), Charsets{"b"});
  EXPECT_EQ(DeclaredCharsets("<!--><meta charset=a>"), Charsets{"a"});
  EXPECT_EQ(DeclaredCharsets("<script>'<meta charset=a>'</SCRIPT><meta charset=b>"), Charsets{"b"});
  EXPECT_EQ(DeclaredCharsets("<x y='<meta charset=a>'>"), Charsets{});
}

TEST(DeclaredCharsetTest, PlaceDoesNotMatter) {
  EXPECT_EQ(DeclaredCharsets(std::string(100000, 'x') + "<meta charset=a>"), Charsets{"a"});
}

TEST(DeclaredCharsetTest, OnlyTheFirstFewCount) {
  std::string page;
  for (int i = 0; i < 1000; ++i) page += "<meta charset=a>";
  EXPECT_EQ(DeclaredCharsets(page), Charsets(8, "a"));
}

TEST(DeclaredCharsetTest, EveryTruncationIsRead) {
  const std::string page =
      "<?xml encoding='a'?><!DOCTYPE x><!-- c --><style>x</style><meta http-equiv=content-type "
      "content='text/html; charset=\"b\"'><meta charset = 'c'></p>";
  for (std::size_t bytes = 0; bytes <= page.size(); ++bytes) {
    EXPECT_LE(DeclaredCharsets(page.substr(0, bytes)).size(), 3u);
  }
  EXPECT_EQ(DeclaredCharsets(page), (Charsets{"b", "c", "a"}));
}

}  // namespace
}  // namespace kestan_cli
