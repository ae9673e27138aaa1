// SPDX-License-Identifier: GPL-3.0-or-later
// The reader of mail, loaded when the first message needs it.
#ifndef KESTAN_CLI_EXTRACT_MODULE_LOADED_MAIL_READER_H_
#define KESTAN_CLI_EXTRACT_MODULE_LOADED_MAIL_READER_H_

#include <string>

#include "cli/mail_reader/mail_reader.h"

namespace kestan_cli {

// These do for mail what LoadedReaders(), ReadersProblem() and UseReaders() do for all else.

// Throws   SkipFile if the module cannot be loaded; it is not tried again.
const MailReader& LoadedMailReader();

// Returns "" if nothing went wrong, or no mail was read.
std::string MailReaderProblem();

void UseMailReader(const MailReader& reader);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MODULE_LOADED_MAIL_READER_H_
