// SPDX-License-Identifier: GPL-3.0-or-later
// Mail, by the names of files and their first bytes.
#ifndef KESTAN_CLI_EXTRACT_MAIL_MAIL_NAME_H_
#define KESTAN_CLI_EXTRACT_MAIL_MAIL_NAME_H_

#include <string_view>

namespace kestan_cli {

// Returns whether the file `name`, which begins with `head`, is one message: it ends in .eml or
// lies in the folder cur or new of a maildir, and begins with a header.
bool IsMail(std::string_view name, std::string_view head);

// Returns whether a file that begins with `head` is a mailbox of any number of messages: its first
// line is that of the mbox format, and a header follows.
bool IsMailbox(std::string_view head);

// Returns whether `line`, which has no line feed, separates two messages of a mailbox: "From ", a
// sender, and a time such as "Fri Nov 20 10:11:12 2026".
bool IsMailboxLine(std::string_view line);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MAIL_MAIL_NAME_H_
