// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/mail_name.h"

#include <algorithm>

#include "cli/extract/charset/ascii.h"
#include "cli/extract/converter/converter.h"

namespace kestan_cli {
namespace {

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

// Returns whether `text` begins with a header: "Subject:".
bool BeginsWithHeader(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](char byte) { return byte > ' ' && byte <= '~'; });
}

// Takes the first line off `*text`.
std::string_view TakeLine(std::string_view* text) {
  const std::string_view line = text->substr(0, text->find('\n'));
  text->remove_prefix(std::min(line.size() + 1, text->size()));
  return Trimmed(line, "\r");
}

bool IsInMaildir(std::string_view name) {
  const std::size_t slash = name.rfind('/');
  if (slash == std::string_view::npos) return false;
  const std::string_view folder = name.substr(0, slash);
  const std::string_view last = folder.substr(folder.find_last_of("/#") + 1);  // # is of archives
  return last == "cur" || last == "new";
}

}  // namespace

bool IsMailboxLine(std::string_view line) {
  if (line.substr(0, 5) != "From ") return false;
  const std::size_t colon = line.find(':');
  const bool has_time = colon != std::string_view::npos && colon + 2 < line.size() &&
                        IsDigit(line[colon - 1]) && IsDigit(line[colon + 1]);
  // A time zone may follow the year.
  for (std::size_t at = colon; has_time && at + 4 < line.size(); ++at) {
    const std::string_view year = line.substr(at, 5);
    if (year[0] != ' ' || !std::all_of(year.begin() + 1, year.end(), IsDigit)) continue;
    if (at + 5 == line.size() || line[at + 5] == ' ' || line[at + 5] == '\r') return true;
  }
  return false;
}

bool IsMailbox(std::string_view head) {
  return IsMailboxLine(TakeLine(&head)) && BeginsWithHeader(head);
}

bool IsMail(std::string_view name, std::string_view head) {
  if (ExtensionOf(name) != "eml" && !IsInMaildir(name)) return false;
  if (head.substr(0, 3) == "\xef\xbb\xbf") head.remove_prefix(3);
  if (head.substr(0, 5) == "From ") TakeLine(&head);
  return BeginsWithHeader(head);
}

}  // namespace kestan_cli
