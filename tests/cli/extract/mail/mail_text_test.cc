// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/mail_text.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

using std::string_literals::operator""s;

const std::string kHeaders =
    "From: Ann <ann@example.org>\nTo: Bob <bob@example.org>\nSubject: Greeting\n"
    "Date: Fri, 20 Nov 2026 10:11:12 +0100\nMIME-Version: 1.0\n";
const std::string kAddresses = "From: Ann <ann@example.org>\nTo: Bob <bob@example.org>\n";

TEST(MailTextTest, SubjectComesFirstAndAddressesLast) {
  const MailText mail = ReadMail(kHeaders + "\nbody\n");
  EXPECT_EQ(mail.text, "Greeting\nbody\n" + kAddresses);
  EXPECT_EQ(mail.facts.from, "Ann <ann@example.org>");
  EXPECT_EQ(mail.facts.to, "Bob <bob@example.org>");
  EXPECT_EQ(mail.facts.date, 1795165872);
  EXPECT_EQ(mail.note, "");
}

TEST(MailTextTest, LineOfAMailboxIsNoText) {
  EXPECT_EQ(ReadMail("From a@b Fri Nov 20 10:11:12 2026\n" + kHeaders + "\nbody\n").text,
            "Greeting\nbody\n" + kAddresses);
}

TEST(MailTextTest, EveryPartIsRead) {
  const MailText mail = ReadMail(
      kHeaders +
      "Content-Type: multipart/mixed; boundary=B\n\n--B\n"
      "Content-Type: text/plain; charset=koi8-r\nContent-Transfer-Encoding: base64\n\n"
      "8NLJ18XU\n--B\n"
      "Content-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n"
      "<p>Z=C3=BCrich</p>\n--B\n"
      "Content-Type: application/pdf; name=\"report.pdf\"\n\n%PDF\n--B\n"
      "Content-Type: text/x-log; name=a.log\nContent-Disposition: attachment\n\nlines\n--B--\n");
  EXPECT_EQ(
      mail.text,
      "Greeting\n\u041f\u0440\u0438\u0432\u0435\u0442\nZ\u00fcrich\nreport.pdf\na.log\nlines\n" +
          kAddresses);
}

TEST(MailTextTest, MessageWithinAMessageKeepsItsSubject) {
  const MailText mail = ReadMail(kHeaders +
                                 "Content-Type: message/rfc822\n\nSubject: Inner\nFrom: "
                                 "cy@example.org\n\ninner body\n");
  EXPECT_EQ(mail.text, "Greeting\nInner\ninner body\n" + kAddresses + "From: cy@example.org\n");
  EXPECT_EQ(mail.facts.from, "Ann <ann@example.org>");
}

TEST(MailTextTest, PartsThatAreNestedTooDeeplyAreNoted) {
  std::string message = kHeaders;
  for (int i = 0; i < 200; ++i) {
    const std::string boundary = "b" + std::to_string(i);
    message += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
  }
  const MailText mail = ReadMail(message + "Content-Type: text/plain\n\ndeep\n");
  EXPECT_EQ(mail.note, "its parts are nested too deeply");
  EXPECT_EQ(mail.text, "Greeting\n" + kAddresses);
}

TEST(MailTextTest, PageMayDeclareItsEncodingItself) {
  EXPECT_EQ(ReadMail("Content-Type: text/html\n\n<meta charset=windows-1251><p>\xfc\n").text,
            "\n\u044c\n");
}

TEST(MailTextTest, TextHasNoNul) { EXPECT_EQ(ReadMail("Subject: a\n\nx\0y\n"s).text, "a\nx y\n"); }

TEST(MailTextTest, EveryTruncationIsReadOrRefused) {
  const std::string message = kHeaders +
                              "Content-Type: multipart/mixed; boundary=B\n\n--B\n"
                              "Content-Type: text/plain; charset=koi8-r\n\n\xfc\n--B--\n";
  for (std::size_t size = 0; size <= message.size(); ++size) {
    try {
      EXPECT_EQ(ReadMail(message.substr(0, size)).text.find('\0'), std::string::npos);
    } catch (const SkipFile& skip) {
      EXPECT_EQ(skip.kind(), SkipKind::kUnreadable);
    }
  }
}

}  // namespace
}  // namespace kestan_cli
