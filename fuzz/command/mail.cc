// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a mailbox and, after their first byte, as one message. No byte of the mailbox is
// lost; the texts are UTF-8 without a NUL.
#include <kestan/search/text.h>

#include <string>
#include <string_view>

#include "cli/extract/mail/mail_text.h"
#include "cli/extract/mail/mailbox.h"
#include "cli/files/skip.h"
#include "fuzz/support/reporting.h"

namespace {

using kestan_cli::Mailbox;
using kestan_cli::MailboxMessage;
using kestan_cli::MailText;
using kestan_fuzz::Require;

bool IsShown(const std::string& text) {
  return kestan::search::IsUtf8(text) && text.find('\0') == std::string::npos;
}

void ReadMessage(std::string_view bytes) {
  try {
    const MailText mail = kestan_cli::ReadMail(bytes);
    Require(IsShown(mail.text), "text that is not UTF-8");
    Require(IsShown(mail.facts.from) && IsShown(mail.facts.to), "addresses that are not UTF-8");
  } catch (const kestan_cli::SkipFile& skip) {
    Require(*skip.what() != '\0', "no reason");
  }
}

void ReadMailbox(std::string_view bytes, std::size_t piece_bytes) {
  std::size_t at = 0;
  Mailbox mailbox(
      [&] {
        const std::string_view piece = bytes.substr(at, piece_bytes);
        at += piece.size();
        return piece;
      },
      bytes.size());
  std::string all;
  for (MailboxMessage message; mailbox.Next(&message);) {
    Require(message.offset == all.size(), "a message at another place");
    all += message.bytes;
    ReadMessage(message.bytes);
  }
  Require(all == bytes, "a mailbox that loses bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::size_t piece_bytes = std::size_t{data[0]} + 1;
  // A mailbox has many messages, of which each is the slowest part of all.
  if (bytes.substr(0, 5) == "From ") {
    ReadMailbox(bytes, piece_bytes);
  } else {
    ReadMessage(bytes);
  }
  return 0;
}
