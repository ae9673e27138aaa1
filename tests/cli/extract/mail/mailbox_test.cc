// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/mailbox.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

const std::string kLine = "From a@b Fri Nov 20 10:11:12 2026\n";

std::vector<MailboxMessage> Split(const std::string& bytes, std::size_t piece_bytes,
                                  std::size_t max_bytes = 1 << 20) {
  std::size_t at = 0;
  const PieceSource source = [&] {
    const std::string_view piece = std::string_view(bytes).substr(at, piece_bytes);
    at += piece.size();
    return piece;
  };
  Mailbox mailbox(source, max_bytes);
  std::vector<MailboxMessage> messages;
  for (MailboxMessage message; mailbox.Next(&message);) messages.push_back(message);
  return messages;
}

TEST(MailboxTest, PiecesDoNotMatter) {
  const std::string one = kLine + "Subject: one\n\nbody\nFrom here on\n\n";
  const std::string two = kLine + "Subject: two\r\n\r\nbody\r\n\r\n";
  const std::string three = kLine + "Subject: three\n\n";
  const std::string box = one + two + three;
  for (std::size_t piece = 1; piece <= box.size(); ++piece) {
    const auto messages = Split(box, piece);
    ASSERT_EQ(messages.size(), 3u) << piece;
    EXPECT_EQ(messages[0].bytes, one) << piece;
    EXPECT_EQ(messages[1].bytes, two) << piece;
    EXPECT_EQ(messages[2].bytes, three) << piece;
    EXPECT_EQ(messages[2].number, 3u);
    for (const MailboxMessage& message : messages) {
      EXPECT_EQ(box.substr(static_cast<std::size_t>(message.offset), message.bytes.size()),
                message.bytes)
          << piece;
    }
  }
}

TEST(MailboxTest, MessageBeginsAfterABlankLine) {
  EXPECT_EQ(Split(kLine + "A: b\n\ntext\n" + kLine + "more\n", 100).size(), 1u);
  EXPECT_EQ(Split(kLine + "A: b\n\ntext\n\n" + kLine, 100).size(), 2u);
  EXPECT_EQ(Split(kLine + "A: b\n\ntext\n\n" + kLine.substr(0, 20), 100).size(), 1u);
}

TEST(MailboxTest, NothingHasNoMessage) { EXPECT_TRUE(Split("", 10).empty()); }

TEST(MailboxTest, MessageMayBeAsLargeAsIsSaid) {
  const std::string one = kLine + std::string(5000, 'x') + "\n\n";
  const std::string box = one + kLine + "A: b\n";
  for (const std::size_t piece : {1u, 7u, 100u, 10000u}) {
    const auto fits = Split(box, piece, one.size());
    ASSERT_EQ(fits.size(), 2u);
    EXPECT_EQ(fits[0].bytes, one);
    const auto messages = Split(box, piece, one.size() - 1);
    ASSERT_EQ(messages.size(), 2u) << piece;
    EXPECT_TRUE(messages[0].is_too_large);
    EXPECT_EQ(messages[0].bytes, "");
    EXPECT_FALSE(messages[1].is_too_large);
    EXPECT_EQ(messages[1].bytes, kLine + "A: b\n") << piece;
    EXPECT_EQ(messages[1].offset, one.size());
  }
}

TEST(MailboxTest, LongLineSeparatesNothing) {
  const std::string line = "From a@b Fri Nov 20 10:11:12 2026 " + std::string(2000, 'x');
  EXPECT_EQ(Split(kLine + "A: b\n\n" + line + "\nA: b\n", 10).size(), 1u);
}

}  // namespace
}  // namespace kestan_cli
