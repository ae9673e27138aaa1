// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/html/html_repair.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

using std::string_literals::operator""s;

TEST(HtmlRepairTest, WholePagesStayAsTheyAre) {
  for (const char* page : {"", "<p a='&#65;'>x &#xe9; &#9; &amp; \u00fc \ufffd < y\t\r\n<!-- c -->",
                           "&#x10FFFF;&#55295;&#57344;", "no markup"}) {
    EXPECT_EQ(RepairedHtml(page), page);
  }
}

TEST(HtmlRepairTest, ControlCharactersAreBlanks) {
  EXPECT_EQ(RepairedHtml("a\0b\x01"
                         "c\fd\x1f"s),
            "a b c d ");
}

TEST(HtmlRepairTest, WhatIsNoCharacterIsUnknown) {
  EXPECT_EQ(RepairedHtml("a\ufffe"
                         "b\uffff"),
            "a\ufffd"
            "b\ufffd");
  EXPECT_EQ(RepairedHtml("a\xef"), "a\xef");
}

TEST(HtmlRepairTest, ReferencesToNoCharacterAreUnknown) {
  for (const char* reference : {"&#0;", "&#1;", "&#xD800;", "&#xdfff;", "&#xFFFE;", "&#x110000;",
                                "&#99999999999999999999;", "&#X0;"}) {
    EXPECT_EQ(RepairedHtml("a"s + reference + "b"),
              "a\ufffd"
              "b")
        << reference;
  }
  EXPECT_EQ(RepairedHtml("&#0 b"), "\ufffd b");
}

TEST(HtmlRepairTest, ReferencesWithoutDigitsAreText) {
  EXPECT_EQ(RepairedHtml("a&#b &#x; &#"), "a&amp;#b &amp;#x; &amp;#");
}

TEST(HtmlRepairTest, CommentsThatAreOverAtOnceAreClosed) {
  EXPECT_EQ(RepairedHtml("a<!-->b<!--->c<!---->"), "a<!-- -->b<!-- -->c<!---->");
}

TEST(HtmlRepairTest, TagThatTheEndCutsIsText) {
  EXPECT_EQ(RepairedHtml("<p>a <b c"), "<p>a &lt;b c");
  EXPECT_EQ(RepairedHtml("a <b <c"), "a &lt;b &lt;c");
  EXPECT_EQ(RepairedHtml("<"), "&lt;");
}

}  // namespace
}  // namespace kestan_cli
