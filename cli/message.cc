#include "message.h"

#include <cctype>
#include <system_error>

namespace kestan_cli {
namespace {

bool IsControl(unsigned char byte) { return byte < 0x20 || byte == 0x7f; }

std::string Escaped(unsigned char byte) {
  if (byte == '\n') return "\\n";
  constexpr std::string_view kDigits = "0123456789abcdef";
  return {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
}

}  // namespace

std::string OneLine(std::string_view text) {
  std::string line;
  for (char byte : text) {
    if (IsControl(static_cast<unsigned char>(byte))) {
      line += Escaped(static_cast<unsigned char>(byte));
    } else {
      line += byte;
    }
  }
  return line;
}

std::string Quoted(std::string_view text) { return "'" + OneLine(text) + "'"; }

std::string ReasonOf(int error) {
  std::string reason = std::generic_category().message(error);
  if (!reason.empty()) {
    reason[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(reason[0])));
  }
  return reason;
}

std::string Counted(unsigned long long count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace kestan_cli
