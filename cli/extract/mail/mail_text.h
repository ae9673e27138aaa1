// SPDX-License-Identifier: GPL-3.0-or-later
// From the bytes of a message to its text.
#ifndef KESTAN_CLI_EXTRACT_MAIL_MAIL_TEXT_H_
#define KESTAN_CLI_EXTRACT_MAIL_MAIL_TEXT_H_

#include <string>
#include <string_view>

#include "cli/files/mail_facts.h"

namespace kestan_cli {

struct MailText {
  // UTF-8, without a NUL: the subject, the text of all parts, the names of files, and last who sent
  // the message to whom.
  std::string text;
  MailFacts facts;
  std::string note;  // why some of the text is missing; empty if none is
};

// Reads the message `bytes`, which may begin with the line of a mailbox.
//   Throws   SkipFile if it is no message or the module cannot be loaded; bad_alloc.
MailText ReadMail(std::string_view bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MAIL_MAIL_TEXT_H_
