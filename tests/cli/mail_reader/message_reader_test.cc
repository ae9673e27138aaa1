// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/mail_reader/message_reader.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

// Returns what a message sends, one line each.
std::string EventsOf(const std::string& message) {
  std::string lines;
  const MailEvents events{
      &lines,
      [](void* to, MailHeader header, const char* raw) noexcept {
        *static_cast<std::string*>(to) +=
            "header " + std::to_string(static_cast<int>(header)) + ":" + raw + "\n";
      },
      [](void* to, long long seconds) noexcept {
        *static_cast<std::string*>(to) += "date " + std::to_string(seconds) + "\n";
      },
      [](void* to, const MailPart& part) noexcept {
        *static_cast<std::string*>(to) += std::string(part.is_html   ? "html"
                                                      : part.is_text ? "text"
                                                                     : "other") +
                                          " [" + part.name + "] [" + part.charset + "] " +
                                          std::string(part.bytes, part.size) + "\n";
      }};
  ReadProblem problem{};
  const ReadStatus status = ReadMessage(message.data(), message.size(), events, &problem);
  return status == ReadStatus::kRead ? lines : lines + problem.text;
}

TEST(MessageReaderTest, HeadersAreNotDecoded) {
  EXPECT_EQ(EventsOf("Subject: =?utf-8?q?x?=\nDate: Thu, 1 Jan 1970 00:00:07 +0000\n\nbody"),
            "header 0: =?utf-8?q?x?=\n\ndate 7\ntext [] [] body\n");
}

TEST(MessageReaderTest, PartsAreDecodedButForTheirCharacters) {
  EXPECT_EQ(EventsOf("Content-Type: text/html; charset=koi8-r\n"
                     "Content-Transfer-Encoding: base64\n\n/PwA"),
            "html [] [koi8-r] \xfc\xfc" + std::string(1, '\0') + "\n");
}

TEST(MessageReaderTest, OfOtherPartsOnlyTheNameComes) {
  EXPECT_EQ(EventsOf("Content-Type: image/png; name*=utf-8''%C3%BC.png\n\nbytes"),
            "other [\u00fc.png] [] \n");
}

TEST(MessageReaderTest, AnythingIsRead) {
  for (const char* bytes : {"", "\n", "x", "Subject", ":\n\n", "\xff\xfe\xfd"}) {
    EXPECT_EQ(EventsOf(bytes).find("header 0"), std::string::npos) << bytes;
  }
}

}  // namespace
}  // namespace kestan_cli
