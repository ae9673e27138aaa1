// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/mailbox.h"

#include <algorithm>
#include <string_view>

#include "cli/extract/mail/mail_name.h"

namespace kestan_cli {
namespace {

constexpr std::string_view kStart = "\nFrom ";

// A line that is longer than this separates nothing.
constexpr std::size_t kMaxLineBytes = 1000;

// Returns whether the line feed at `at` ends a blank line.
bool FollowsBlankLine(std::string_view bytes, std::size_t at) {
  if (at > 0 && bytes[at - 1] == '\r') --at;
  return at > 0 && bytes[at - 1] == '\n';
}

}  // namespace

// Appends the next piece.
//   Returns  false at the end.
bool Mailbox::Fill() {
  const std::string_view piece = is_at_end_ ? std::string_view() : source_();
  if (piece.empty()) is_at_end_ = true;
  bytes_.erase(0, start_);
  start_ = 0;
  bytes_ += piece;
  return !is_at_end_;
}

// Moves the start of the current message on.
void Mailbox::Drop(std::size_t bytes) {
  start_ += bytes;
  offset_ += bytes;
  looked_at_ -= std::min(looked_at_, bytes);
}

// Finds where the message after the current one begins, counted from the current one; its end if
// that is as far as it is known.
//   Returns  whether one begins there.
bool Mailbox::FindNext(std::size_t* at) {
  const std::string_view bytes = std::string_view(bytes_).substr(start_);
  while (true) {
    const std::size_t found = bytes.find(kStart, looked_at_);
    if (found == std::string_view::npos) break;
    const std::string_view line = bytes.substr(found + 1, kMaxLineBytes);
    const std::size_t end = line.find('\n');
    const bool is_cut = end == std::string_view::npos;
    const bool is_too_long = is_cut && line.size() == kMaxLineBytes;
    if (is_cut && !is_too_long && !is_at_end_) {
      looked_at_ = found;
      *at = bytes.size();
      return false;
    }
    looked_at_ = found + 1;
    if (is_too_long || !FollowsBlankLine(bytes, found)) continue;
    if (!IsMailboxLine(line.substr(0, end))) continue;
    *at = found + 1;
    return true;
  }
  const std::size_t tail = std::min(bytes.size(), kStart.size() - 1);
  looked_at_ = std::max(looked_at_, bytes.size() - tail);
  *at = bytes.size();
  return false;
}

bool Mailbox::Next(MailboxMessage* message) {
  if (start_ == bytes_.size() && !Fill()) return false;
  *message = {++number_, offset_, "", false};
  constexpr std::size_t kBlankLine = 3;  // what must be known of the lines before the next message
  std::size_t end = 0;
  while (!FindNext(&end)) {
    if (!Fill()) {
      FindNext(&end);
      break;
    }
    if (bytes_.size() <= max_bytes_ + kMaxLineBytes || looked_at_ <= kBlankLine) continue;
    // Of a message that is passed over, only what may begin the next one is kept.
    message->is_too_large = true;
    Drop(looked_at_ - kBlankLine);
  }
  message->is_too_large = message->is_too_large || end > max_bytes_;
  if (!message->is_too_large) message->bytes = bytes_.substr(start_, end);
  Drop(end);
  looked_at_ = 0;
  return true;
}

}  // namespace kestan_cli
