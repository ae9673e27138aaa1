// SPDX-License-Identifier: GPL-3.0-or-later
// The boundary between the command and `kestan-mail.so`, the module that it loads for the first
// mail: gmime takes GLib with it, which nothing else needs. The rules are those of
// cli/readers/readers.h.
#ifndef KESTAN_CLI_MAIL_READER_MAIL_READER_H_
#define KESTAN_CLI_MAIL_READER_MAIL_READER_H_

#include <cstddef>

#include "cli/readers/readers.h"

namespace kestan_cli {

enum class MailHeader { kSubject, kFrom, kTo, kCc };

// A part of a message that holds text, or that has a name.
struct MailPart {
  bool is_html;
  bool is_text;         // plain, or HTML; else only the name matters
  const char* name;     // of the file, in UTF-8; "" for none
  const char* charset;  // as it is declared; "" for none
  const char* bytes;    // decoded from base64 and the like
  std::size_t size;
};

// Receives a message as it is read. A message within a message sends its own headers.
struct MailEvents {
  void* context;                                                               // for the functions
  void (*header)(void* context, MailHeader header, const char* raw) noexcept;  // not decoded
  void (*date)(void* context, long long seconds) noexcept;                     // since 1970
  void (*part)(void* context, const MailPart& part) noexcept;
};

struct MailReader {
  // Tells the build: the first member in every version.
  const char* version;

  // Reads a message with everything in it.
  //   Returns  kUnread if parts are missing: `problem` says why.
  ReadStatus (*read)(const char* bytes, std::size_t size, const MailEvents& events,
                     ReadProblem* problem) noexcept;
};

// The one function that the module exports: its name and its type never change.
using MailReaderEntry = const MailReader* (*)() noexcept;
constexpr const char* kMailReaderEntry = "KestanMailReader";

}  // namespace kestan_cli

// Returns the functions of the module, which live as long as the process.
extern "C" const kestan_cli::MailReader* KestanMailReader() noexcept;

#endif  // KESTAN_CLI_MAIL_READER_MAIL_READER_H_
