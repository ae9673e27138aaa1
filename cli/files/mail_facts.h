// SPDX-License-Identifier: GPL-3.0-or-later
// What the index keeps of a message beside its words, for whoever asks for mail.
#ifndef KESTAN_CLI_FILES_MAIL_FACTS_H_
#define KESTAN_CLI_FILES_MAIL_FACTS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace kestan_cli {

struct MailFacts {
  std::optional<std::int64_t> date;  // seconds since 1970
  std::string from;                  // as it is shown: "Ann Other <ann@example.org>"; UTF-8
  std::string to;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_MAIL_FACTS_H_
