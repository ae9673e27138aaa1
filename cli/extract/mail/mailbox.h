// SPDX-License-Identifier: GPL-3.0-or-later
// Mailboxes in the mbox format: messages one after the other in one file.
#ifndef KESTAN_CLI_EXTRACT_MAIL_MAILBOX_H_
#define KESTAN_CLI_EXTRACT_MAIL_MAILBOX_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "cli/extract/packed/unpack.h"

namespace kestan_cli {

struct MailboxMessage {
  std::uint64_t number = 0;  // the first is 1
  std::uint64_t offset = 0;  // where it begins in the mailbox, with its line "From "
  std::string bytes;         // from there to the next one; empty if it is too large
  bool is_too_large = false;
};

// Splits a mailbox of any size. A message begins at the start, and at each line of IsMailboxLine()
// after a blank one. Keeps one message and one piece in memory.
class Mailbox {
 public:
  // Messages of more than `max_bytes` are passed over.
  Mailbox(PieceSource source, std::size_t max_bytes)
      : source_(std::move(source)), max_bytes_(max_bytes) {}

  // Reads the next message.
  //   Returns  false at the end.
  bool Next(MailboxMessage* message);

 private:
  bool Fill();
  void Drop(std::size_t bytes);
  bool FindNext(std::size_t* at);

  PieceSource source_;
  const std::size_t max_bytes_;
  std::string bytes_;          // what has been read and not been dropped
  std::size_t start_ = 0;      // of the current message in bytes_
  std::uint64_t offset_ = 0;   // of the current message in the mailbox
  std::size_t looked_at_ = 0;  // so many bytes of the current message hold no other one
  std::uint64_t number_ = 0;   // of the last message
  bool is_at_end_ = false;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MAIL_MAILBOX_H_
