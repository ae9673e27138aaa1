// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/mail_reader/mail_reader.h"

#include "cli/mail_reader/message_reader.h"

extern "C" __attribute__((visibility("default"))) const kestan_cli::MailReader*
KestanMailReader() noexcept {
  static constexpr kestan_cli::MailReader kReader{KESTAN_MAIL_READER_VERSION,
                                                  kestan_cli::ReadMessage};
  return &kReader;
}
