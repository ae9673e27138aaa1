// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/office/office.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/files/skip.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::PackedMembers;

std::string Zip(const PackedMembers& members) {
  return kestan_tests::Archive("zip", "none", members);
}

std::string TextOf(const std::string& name, const PackedMembers& members) {
  return TextOfOffice(name, Zip(members), 1 << 24);
}

const std::string kCore = "<cp:coreProperties><dc:title>Title</dc:title></cp:coreProperties>";

std::string Refusal(const std::string& bytes, std::uint64_t max_bytes = 1 << 24) {
  try {
    TextOfOffice("a.docx", bytes, max_bytes);
  } catch (const SkipFile& skip) {
    return KeyOf(skip.kind()) + ": " + skip.what();
  }
  return "";
}

TEST(OfficeTest, DocxHasItsParagraphs) {
  EXPECT_EQ(TextOf("a.docx",
                   {{"word/document.xml",
                     "<w:document><w:p><w:r><w:t>One</w:t><w:tab/><w:t>tw</w:t></w:r><w:r>"
                     "<w:t>o</w:t><w:instrText>LINK</w:instrText></w:r></w:p><w:p><w:t>&#252;</w:t>"
                     "</w:p></w:document>"},
                    {"word/footnotes.xml", "<w:f><w:p><w:t>note</w:t></w:p></w:f>"},
                    {"word/styles.xml", "<w:s><w:p><w:t>hidden</w:t></w:p></w:s>"},
                    {"docProps/core.xml", kCore}}),
            "Title\nOne two\n\u00fc\n\nnote\n\n");
}

TEST(OfficeTest, SlidesComeInTheirOrder) {
  PackedMembers slides;
  for (const int number : {10, 2, 1}) {
    const std::string text = std::to_string(number);
    slides.emplace_back("ppt/slides/slide" + text + ".xml",
                        "<p:s><a:p><a:t>slide " + text + "</a:t></a:p></p:s>");
  }
  EXPECT_EQ(TextOf("a.pptx", slides), "slide 1\n\nslide 2\n\nslide 10\n\n");
}

TEST(OfficeTest, TablesHaveTheirTexts) {
  EXPECT_EQ(TextOf("a.xlsx",
                   {{"xl/sharedStrings.xml", "<sst><si><t>one</t></si><si><t>two</t></si></sst>"},
                    {"xl/worksheets/sheet1.xml",
                     "<w><row><c><v>0</v></c><c><is><t>three</t></is></c></row></w>"}}),
            "one\ntwo\n\n\nthree\n\n\n\n");
}

TEST(OfficeTest, OpenDocumentHasAllItsText) {
  EXPECT_EQ(TextOf("a.odt",
                   {{"mimetype", "application/vnd.oasis.opendocument.text"},
                    {"content.xml",
                     "<o><text:h>Head</text:h><text:p>a<text:s/>b<text:span>c</text:span></text:p>"
                     "</o>"},
                    {"meta.xml", "<m><dc:title>Title</dc:title></m>"}}),
            "Title\nHead\na bc\n\n");
}

TEST(OfficeTest, BooksHaveTheirPages) {
  EXPECT_EQ(TextOf("a.epub", {{"OEBPS/c1.xhtml", "<title>x</title><p>One"},
                              {"OEBPS/c2.html", "<p>Two"},
                              {"OEBPS/style.css", "hidden"},
                              {"OEBPS/content.opf", "<p><dc:title>Book</dc:title></p>"}}),
            "Book\nOne\n\nTwo\n\n");
}

TEST(OfficeTest, NameAndFirstBytesTellTogether) {
  const std::string zip = Zip({{"a", "b"}});
  for (const char* name : {"a.docx", "a.PPTX", "a.xlsx", "a.odt", "a.ods", "a.odp", "a.epub"}) {
    EXPECT_TRUE(IsOffice(name, zip)) << name;
    EXPECT_FALSE(IsOffice(name, "text")) << name;
  }
  EXPECT_FALSE(IsOffice("a.zip", zip));
  EXPECT_FALSE(IsOffice("docx", zip));
}

TEST(OfficeTest, LimitHoldsForWhatIsUnpacked) {
  const std::string xml = "<w:t>" + std::string(100, 'x') + "</w:t>";
  const std::string zip = Zip({{"word/document.xml", xml}});
  EXPECT_EQ(Refusal(zip, xml.size()), "");
  EXPECT_EQ(Refusal(zip, xml.size() - 1),
            "too_large: unpacks to more than " + std::to_string(xml.size() - 1) + " bytes");
}

TEST(OfficeTest, BombIsRefused) {
  const std::string zip = Zip({{"word/document.xml", std::string(20 << 20, ' ')}});
  ASSERT_LT(zip.size(), std::size_t{1} << 16);
  EXPECT_EQ(Refusal(zip, 1 << 28), "too_large: unpacks to more than 16777216 bytes");
}

TEST(OfficeTest, BrokenXmlIsUnreadable) {
  EXPECT_EQ(Refusal(Zip({{"word/document.xml", "<w:t>cut"}})), "unreadable: its XML is broken");
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  EXPECT_EQ(Refusal(Zip({{"word/document.xml", deep}})), "unreadable: its XML is broken");
}

TEST(OfficeTest, EntitiesDoNotGrow) {
  std::string xml = "<!DOCTYPE x [<!ENTITY a0 'aaaaaaaaaa'>";
  for (int i = 1; i < 10; ++i) {
    const std::string inner = "&a" + std::to_string(i - 1) + ";";
    xml += "<!ENTITY a" + std::to_string(i) + " '";
    for (int k = 0; k < 10; ++k) xml += inner;
    xml += "'>";
  }
  const std::string zip = Zip({{"word/document.xml", xml + "]><x><w:t>&a9;</w:t></x>"}});
  try {
    EXPECT_LT(TextOfOffice("a.docx", zip, 1 << 24).size(), 1000u);
  } catch (const SkipFile& skip) {
    EXPECT_EQ(skip.kind(), SkipKind::kUnreadable);
  }
}

TEST(OfficeTest, EveryTruncationAndChangeIsReadOrRefused) {
  const std::string zip = Zip({{"word/document.xml", "<x><w:p><w:t>some text</w:t></w:p></x>"},
                               {"docProps/core.xml", kCore}});
  for (std::size_t size = 0; size < zip.size(); ++size) Refusal(zip.substr(0, size));
  int refused = 0;
  for (std::size_t at = 0; at < zip.size(); ++at) {
    std::string changed = zip;
    changed[at] = static_cast<char>(changed[at] ^ 0xff);
    if (!Refusal(changed).empty()) ++refused;
  }
  EXPECT_GT(refused, 10);
}

}  // namespace
}  // namespace kestan_cli
