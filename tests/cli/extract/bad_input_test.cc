// SPDX-License-Identifier: GPL-3.0-or-later
// Every decoder, given every change and every truncation of something good. It must end, with a
// text of bounded size or a reason for none; the sanitizers see to the rest.
#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/extract/file_text.h"
#include "cli/extract/mail/mailbox.h"
#include "cli/extract/packed/archive.h"
#include "cli/files/skip.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Archive;
using kestan_tests::Packed;

// Returns the words of a file called `name` that holds `bytes`, or why there are none.
std::string WordsOf(const std::string& name, const std::string& bytes) {
  const ReadingRules rules{Converters::BuiltIn(), {}, 1 << 20, {}};
  try {
    const Document document = DocumentOf(MemberOf("a.zip#" + name, "a.zip", bytes, rules), rules);
    return document.title + "\n" + document.summary + "\n" + document.text + document.words;
  } catch (const SkipFile& skip) {
    EXPECT_STRNE(skip.what(), "");
    return std::string("skipped: ") + skip.what();
  }
}

// Calls `read` with `good`, with every change of each of its bytes, and with each of its
// beginnings.
void ForEachDamage(const std::string& good, const std::function<void(const std::string&)>& read) {
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const int change : {0x01, 0x20, 0x80, 0xff}) {
      std::string bad = good;
      bad[at] = static_cast<char>(bad[at] ^ change);
      read(bad);
    }
    std::string zero = good;
    zero[at] = '\0';
    read(zero);
    read(good.substr(0, at));
  }
}

struct Sample {
  std::string name;
  std::string bytes;
};

void PrintTo(const Sample& sample, std::ostream* stream) { *stream << sample.name; }

constexpr const char* kDocument =
    "<w:document><w:p><w:r><w:t>walrus &#252;</w:t></w:r></w:p></w:document>";

std::vector<Sample> Samples() {
  const std::string mail =
      "From: =?utf-8?q?J=C3=BCrgen?= <j@example.org>\nSubject: =?koi8-r?B?98HM0tXT?=\n"
      "Date: Fri, 20 Nov 2026 10:11:12 +0100\nMIME-Version: 1.0\n"
      "Content-Type: multipart/mixed; boundary=\"b\"\n\n--b\n"
      "Content-Type: text/plain; charset=iso-2022-jp\nContent-Transfer-Encoding: base64\n\n"
      "d2FscnVz\n--b\nContent-Type: text/html\nContent-Transfer-Encoding: quoted-printable\n\n"
      "<p>walrus=20=C3=BC\n--b\nContent-Type: message/rfc822\n\nSubject: inner\n\nwalrus\n--b--\n";
  return {
      {"a.txt.gz", Packed("a walrus in gzip")},
      {"a.txt.bz2", Packed("a walrus in bzip2", "bzip2")},
      {"a.txt.xz", Packed("a walrus in xz", "xz")},
      {"a.txt.zst", Packed("a walrus in zstd", "zstd")},
      {"a.html.gz.xz", Packed(Packed("<p>walrus"), "xz")},
      {"a.docx", Archive("zip", "none", {{"word/document.xml", kDocument}})},
      {"a.odt", Archive("zip", "none", {{"content.xml", "<o><text:p>walrus</text:p></o>"}})},
      {"a.epub", Archive("zip", "none", {{"1.xhtml", "<html><p>walrus</p></html>"}})},
      {"a.xlsx",
       Archive("zip", "none", {{"xl/sharedStrings.xml", "<sst><si><t>walrus</t></si></sst>"}})},
      {"a.eml", mail},
      {"a.html",
       "<!DOCTYPE html><html><head><meta charset=\"shift_jis\"><title>\x83\x65\x83X</title></head>"
       "<body><!-- c --><p>walrus &uuml;&#x1f600;<script>x()</script><table><tr><td>1</table>"},
      {"a.xhtml", "<?xml version=\"1.0\" encoding=\"euc-jp\"?><html><p>walrus \xa4\xa2</p></html>"},
      {"a.1",
       ".TH LS 1\n.SH NAME\nls \\- walrus\n.de XX\n.if n \\fBx\\fP\n..\n.XX\n.ds s "
       "t\n\\*s\\(co\\[u0041]\n"
       ".TS\nl l.\na\tb\n.TE\n.ie t x\n.el y\n"},
      {"a.md", "---\ntitle: walrus\n---\n# Walrus\n"},
      {"utf16.txt", std::string("\xff\xfew\0a\0l\0\x3d\xd8\x00\xde", 12)},
      {"utf16-unmarked.txt", std::string("w\0a\0l\0r\0u\0s\0 \0i\0s\0 \0h\0e\0r\0e\0", 28)},
      {"koi8.txt",
       "\xf0\xd2\xc9\xd7\xc5\xd4, \xcd\xd9 \xd0\xc9\xdb\xc5\xcd \xd0\xcf-\xd2\xd5\xd3\xd3\xcb\xc9"},
      {"jis.txt", "\x1b$B$\"$$\x1b(B walrus"},
  };
}

class BadInputTest : public testing::TestWithParam<Sample> {};

TEST_P(BadInputTest, EveryChangeAndTruncationIsReadOrRefused) {
  const Sample& sample = GetParam();
  ASSERT_EQ(WordsOf(sample.name, sample.bytes).find("skipped"), std::string::npos)
      << WordsOf(sample.name, sample.bytes);
  ForEachDamage(sample.bytes, [&](const std::string& bad) {
    EXPECT_LT(WordsOf(sample.name, bad).size(), 100000u);
  });
}

std::string TestNameOf(const testing::TestParamInfo<Sample>& tested) {
  std::string name = tested.param.name;
  for (char& byte : name) {
    if (std::isalnum(static_cast<unsigned char>(byte)) == 0) byte = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Decoders, BadInputTest, testing::ValuesIn(Samples()), TestNameOf);

TEST(BadMailboxTest, EveryChangeAndTruncationIsSplitWithoutLoss) {
  const std::string line = "From a@b Fri Nov 20 10:11:12 2026\n";
  const std::string box =
      line + "Subject: one\n\nbody\n\n" + line + "Subject: two\r\n\r\nbody\r\n\r\n";
  ForEachDamage(box, [&](const std::string& bad) {
    Mailbox mailbox(ArchiveBytesOf(std::string_view(bad)).next, 1 << 20);
    std::string all;
    for (MailboxMessage message; mailbox.Next(&message);) all += message.bytes;
    EXPECT_EQ(all, bad);
  });
}

TEST(BadMailTest, WhatIsNoMailIsReadOrRefused) {
  std::string boundaries = "Content-Type: multipart/mixed; boundary=b\n\n";
  std::string nested;
  for (int i = 0; i < 2000; ++i) {
    boundaries += "--b\n";
    nested += "Content-Type: multipart/mixed; boundary=b" + std::to_string(i) + "\n\n--b" +
              std::to_string(i) + "\n";
  }
  const std::string header = "Subject: " + std::string(1 << 20, 'x') + "\n\nwalrus\n";
  std::string folded = "Subject: walrus";
  for (int i = 0; i < 20000; ++i) folded += "\n =?utf-8?q?=";
  for (const std::string& mail :
       {boundaries, nested + "walrus", header, folded, "Subject: x\n" + std::string(1 << 20, '='),
        std::string("Subject: x\nContent-Transfer-Encoding: base64\n\n") + std::string(99999, '='),
        std::string("Subject: x\nContent-Type: text/plain; charset=\xff\n\nwalrus"),
        std::string("Content-Type: text/plain; charset=") + std::string(100000, 'u') +
            "\n\nwalrus"}) {
    EXPECT_LT(WordsOf("a.eml", mail).size(), std::size_t{1} << 22);
  }
}

TEST(BadHtmlTest, HundredThousandLevelsAreNoTrouble) {
  for (const char* element : {"<div>", "<b>", "<table><tr><td>", "<ul><li>", "<a href=x>"}) {
    std::string page;
    for (int i = 0; i < 100000; ++i) page += element;
    EXPECT_NE(WordsOf("a.html", page + "deep").find("deep"), std::string::npos) << element;
  }
}

TEST(BadRoffTest, DefinitionsOfThemselvesEnd) {
  for (const char* page :
       {".TH A 1\n.de XX\n.XX\n..\n.XX\nwalrus\n", ".TH A 1\n.ds a \\*a\\*a\n\\*a walrus\n",
        ".TH A 1\n.so a.1\n.so /dev/zero\nwalrus\n", ".TH A 1\n.while 1 .br\nwalrus\n"}) {
    EXPECT_LT(WordsOf("a.1", page).size(), 100000u) << page;
  }
}

TEST(BombTest, ZerosInEveryCompressionAreNotUnpackedToTheirEnd) {
  struct Case {
    const char* name;
    const char* filter;
  };
  for (const Case& each :
       {Case{"a.gz", "gzip"}, Case{"a.bz2", "bzip2"}, Case{"a.xz", "xz"}, Case{"a.zst", "zstd"}}) {
    const std::string bomb = Packed(std::string(std::size_t{1} << 25, '\0'), each.filter);
    ASSERT_LT(bomb.size(), std::size_t{1} << 16) << each.name;
    EXPECT_EQ(WordsOf(each.name, bomb), "skipped: binary file");
    std::string blanks = Packed(std::string(std::size_t{1} << 25, ' '), each.filter);
    EXPECT_EQ(WordsOf(each.name, blanks), "skipped: unpacks to more than 1048576 bytes");
  }
}

}  // namespace
}  // namespace kestan_cli
