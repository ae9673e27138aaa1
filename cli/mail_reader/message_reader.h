// SPDX-License-Identifier: GPL-3.0-or-later
// Reads mail with gmime.
#ifndef KESTAN_CLI_MAIL_READER_MESSAGE_READER_H_
#define KESTAN_CLI_MAIL_READER_MESSAGE_READER_H_

#include <cstddef>

#include "cli/mail_reader/mail_reader.h"

namespace kestan_cli {

// As MailReader::read. Without memory, GLib ends the process.
ReadStatus ReadMessage(const char* bytes, std::size_t size, const MailEvents& events,
                       ReadProblem* problem) noexcept;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_MAIL_READER_MESSAGE_READER_H_
