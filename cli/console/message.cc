// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/message.h"

#include <cerrno>
#include <system_error>

#include "cli/console/ascii.h"
#include "cli/console/control_characters.h"

namespace kestan_cli {
namespace {

std::string Escaped(std::string_view bytes) {
  if (bytes == "\n") return "\\n";
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string escaped;
  for (const char each : bytes) {
    const auto byte = static_cast<unsigned char>(each);
    escaped.append("\\x") += kDigits[byte >> 4];
    escaped += kDigits[byte & 15];
  }
  return escaped;
}

std::string EscapedUnlessBlank(std::string_view bytes) {
  return bytes == "\n" || bytes == "\t" ? std::string(bytes) : Escaped(bytes);
}

}  // namespace

std::string OneLine(std::string_view text) { return EscapeControls(text, Escaped); }

std::string Readable(std::string_view text) { return EscapeControls(text, EscapedUnlessBlank); }

std::string Quoted(std::string_view text) { return "'" + OneLine(text) + "'"; }

std::string ReasonOf(int error) {
  if (error == ENOENT) return "no such file or folder";
  if (error == EISDIR) return "is a folder";
  if (error == ENOTDIR) return "not in a folder";
  std::string reason = std::generic_category().message(error);
  if (!reason.empty()) reason[0] = LowerCase(reason[0]);
  return reason;
}

std::string Counted(unsigned long long count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string WithCommas(unsigned long long number) {
  std::string text = std::to_string(number);
  for (std::size_t end = text.size(); end > 3; end -= 3) text.insert(end - 3, ",");
  return text;
}

}  // namespace kestan_cli
