// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/html/html.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/extract/document/document.h"

namespace kestan_cli {
namespace {

std::string TextOf(const std::string& html) {
  const std::string text = ReadHtml(html).text;
  return Excerpt(text, text.size());
}

TEST(HtmlTest, TitleIsThatOfTheTitleElement) {
  EXPECT_EQ(ReadHtml("<title> My\n page &amp; more</title><p>Text").title, "My page & more");
  EXPECT_EQ(ReadHtml("<p>Text").title, "");
}

TEST(HtmlTest, OnlyTheFirstTitleCounts) {
  EXPECT_EQ(ReadHtml("<title>One</title><title>Two</title>").title, "One");
}

TEST(HtmlTest, TextIsWithoutTagsAndTitle) {
  EXPECT_EQ(TextOf("<title>My page</title><h1 class='x'>Head</h1><p>Some <i>text</i>."),
            "Head Some text.");
}

TEST(HtmlTest, ScriptsStylesAndCommentsAreLeftOut) {
  EXPECT_EQ(TextOf("a<script>var b = '<p>';</script><style>c {}</style><!-- d -->e"), "a e");
}

TEST(HtmlTest, WordsGoOnAcrossInlineElementsOnly) {
  EXPECT_EQ(TextOf("<p>Zu<b>ri</b>ch<p>two<br>three<table><tr><td>four<td>five</table>six"),
            "Zurich two three four five six");
}

TEST(HtmlTest, BlocksStandOnTheirOwnLines) {
  EXPECT_NE(ReadHtml("<p>one<p>two").text.find("one\ntwo"), std::string::npos);
}

TEST(HtmlTest, EntitiesAreCharacters) {
  EXPECT_EQ(TextOf("Z&uuml;rich &#8364; &amp; &lt;x&gt;"), "Z\u00fcrich \u20ac & <x>");
}

TEST(HtmlTest, Utf8NeedsNoDeclaration) { EXPECT_EQ(TextOf("<p>Z\u00fcrich"), "Z\u00fcrich"); }

TEST(HtmlTest, Utf8IsReadWhateverThePageSays) {
  EXPECT_EQ(TextOf("<meta charset=iso-8859-1><p>Z\u00fcrich"), "Z\u00fcrich");
}

TEST(HtmlTest, DeclaredEncodingIsRead) {
  EXPECT_EQ(TextOf("<meta charset=koi8-r><p>\xcd\xc9\xd2"), "\u043c\u0438\u0440");
}

TEST(HtmlTest, UndeclaredEncodingIsLatin1) { EXPECT_EQ(TextOf("<p>Z\xfcrich"), "Z\u00fcrich"); }

TEST(HtmlTest, MarkGoesBeforeDeclarations) {
  EXPECT_EQ(TextOf("\xef\xbb\xbf<meta charset=koi8-r><p>\u043c\u0438\u0440"), "\u043c\u0438\u0440");
}

TEST(HtmlTest, DeclarationGoesBeforeTheLookOfUtf8) {
  EXPECT_EQ(TextOf("<meta charset=windows-1251><p>\xc2\xb3"), "\u0412\u0456");
}

TEST(HtmlTest, DeclarationThatCannotBeTrueIsPassedOver) {
  EXPECT_EQ(TextOf("<meta charset=utf-16le><p>Z\u00fcrich"), "Z\u00fcrich");
  EXPECT_EQ(TextOf("<meta charset=utf-16><p>Z\xfcrich"), "Z\u00fcrich");
  EXPECT_EQ(TextOf("<meta charset=nonsense><meta charset=koi8-r><p>\xcd"), "\u043c");
  EXPECT_EQ(TextOf("<meta charset=utf-8><p>Z\xfcrich Gen\u00e8ve"), "Z\u00fcrich Gen\u00e8ve");
}

TEST(HtmlTest, XmlDeclarationIsRead) {
  EXPECT_EQ(TextOf("<?xml version='1.0' encoding='koi8-r'?><p>\xcd"), "\u043c");
}

TEST(HtmlTest, ParserDoesNotSwitchTheEncoding) {
  EXPECT_EQ(TextOf("<meta charset=gb2312><meta http-equiv=content-type content='text/html; "
                   "charset=us-ascii'><p>\xe9\x46 end"),
            "\u9555 end");
}

TEST(HtmlTest, BytesUnknownToTheEncodingPartWords) {
  EXPECT_EQ(TextOf("<meta charset=us-ascii><p>caf\xe9 end"), "caf\u00e9 end");
  EXPECT_EQ(TextOf("<meta charset=iso-8859-3><p>one\xa5two"), "one\ufffdtwo");
  EXPECT_EQ(TextOf("<meta charset=big5><p>one \xff two"), "one \ufffd two");
}

TEST(HtmlTest, WordsOfATitleThatIsNotClosedAreParted) {
  const HtmlPage page = ReadHtml("<title>One<p>two<p>three");
  EXPECT_EQ(page.title + "|" + page.text, "One two three|");
}

TEST(HtmlTest, LargePartsAreNoTrouble) {
  const std::string large(11000000, 'x');
  EXPECT_EQ(TextOf("one " + large + " two").size(), large.size() + 8);
  for (const std::string& part :
       {"<!-- " + large + " -->", "<a href='" + large + "'>", "<" + large + ">",
        "<a " + large + ">", "<?" + large + "?>", "<script>" + large + "</script>"}) {
    EXPECT_EQ(TextOf("one " + part + " two"), "one two") << part.substr(0, 9);
  }
}

TEST(HtmlTest, BrokenPagesAreReadAsFarAsTheyGo) {
  EXPECT_EQ(TextOf("<p>one</b></div><x y='<td>two"), "one");
  EXPECT_EQ(TextOf("<<<>>>three"), TextOf("<<<>>>three"));
  EXPECT_EQ(TextOf(""), "");
}

TEST(HtmlTest, EveryTruncationOfAPageIsRead) {
  const std::string page =
      "<!DOCTYPE html><html><head><meta charset=utf-8><title>T\u00fc</title>"
      "<script>x</script></head><body><p a='b'>Z&uuml;rich <![CDATA[x]]><!-- c --></body></html>";
  for (std::size_t bytes = 0; bytes < page.size(); ++bytes) {
    EXPECT_LE(ReadHtml(page.substr(0, bytes)).text.size(), page.size());
  }
}

TEST(HtmlTest, BrokenMarkupIsNotReportedOnTheErrorStream) {
  testing::internal::CaptureStderr();
  ReadHtml("<p><a<b></x>&nonsense; <!DOCTYPE> </table> &#0; <meta charset=nonsense>\xff\xfe");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(HtmlTest, DeepNestingIsNoTrouble) {
  std::string page;
  for (int i = 0; i < 50000; ++i) page += "<div>";
  EXPECT_EQ(TextOf(page + "deep"), "deep");
}

}  // namespace
}  // namespace kestan_cli
