#include "message.h"

#include <cctype>
#include <cerrno>
#include <system_error>

namespace kestan_cli {
namespace {

bool IsControl(unsigned char byte) { return byte < 0x20 || byte == 0x7f; }

// Some terminals take the letters U+0080 to U+009F for orders, too.
bool IsSecondControl(std::string_view text, std::size_t at) {
  return text[at] == '\xc2' && at + 1 < text.size() && (text[at + 1] & 0xe0) == 0x80;
}

std::string Escaped(unsigned char byte) {
  if (byte == '\n') return "\\n";
  constexpr std::string_view kDigits = "0123456789abcdef";
  return {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
}

}  // namespace

std::string OneLine(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (IsSecondControl(text, at)) {
      line += Escaped(byte) + Escaped(static_cast<unsigned char>(text[++at]));
    } else {
      line += IsControl(byte) ? Escaped(byte) : std::string(1, text[at]);
    }
  }
  return line;
}

std::string Quoted(std::string_view text) { return "'" + OneLine(text) + "'"; }

std::string ReasonOf(int error) {
  if (error == ENOENT) return "no such file or folder";
  if (error == EISDIR) return "is a folder";
  if (error == ENOTDIR) return "not in a folder";
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
