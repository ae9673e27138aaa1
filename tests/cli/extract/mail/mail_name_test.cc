// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/mail_name.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(MailNameTest, MailHasItsNameAndBeginsWithAHeader) {
  for (const char* name : {"a.eml", "/d/A.EML", "md/cur/1.x:2,S", "/m/new/1"}) {
    EXPECT_TRUE(IsMail(name, "Subject: x\n\n")) << name;
    EXPECT_TRUE(IsMail(name, "From a@b Fri Nov 20 10:11:12 2026\nX-Y: z\n")) << name;
    EXPECT_FALSE(IsMail(name, "text")) << name;
    EXPECT_FALSE(IsMail(name, "two words: x")) << name;
    EXPECT_FALSE(IsMail(name, ": x")) << name;
    EXPECT_FALSE(IsMail(name, "")) << name;
  }
  for (const char* name : {"a.txt", "eml", "cur", "md/tmp/1", "newer/1"}) {
    EXPECT_FALSE(IsMail(name, "Subject: x\n\n")) << name;
  }
}

TEST(MailNameTest, MailboxBeginsWithItsLine) {
  EXPECT_TRUE(IsMailbox("From a@b Fri Nov 20 10:11:12 2026\nSubject: x\n"));
  EXPECT_TRUE(IsMailbox("From - Fri Nov 20 10:11 2026 +0100\r\nSubject: x\r\n"));
  EXPECT_FALSE(IsMailbox("From a@b Fri Nov 20 10:11:12 2026\nwords, no header\n"));
  EXPECT_FALSE(IsMailbox("Subject: x\n"));
  EXPECT_FALSE(IsMailbox(""));
}

TEST(MailNameTest, SentenceIsNoLineOfAMailbox) {
  EXPECT_FALSE(IsMailboxLine("From here on, it was 2026"));
  EXPECT_FALSE(IsMailboxLine("From 10:30 on we met"));
  EXPECT_FALSE(IsMailboxLine("From a@b Fri Nov 20 10:11:12 20261"));
  EXPECT_FALSE(IsMailboxLine(">From a@b Fri Nov 20 10:11:12 2026"));
  EXPECT_FALSE(IsMailboxLine("From :"));
  EXPECT_FALSE(IsMailboxLine("From 1:"));
  EXPECT_TRUE(IsMailboxLine("From a@b Fri Nov 20 10:11:12 2026"));
  EXPECT_TRUE(IsMailboxLine("From a@b Fri Nov 20 10:11:12 CET 2026"));
}

}  // namespace
}  // namespace kestan_cli
