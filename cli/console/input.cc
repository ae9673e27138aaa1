// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/input.h"

#include <cerrno>
#include <vector>

#include "cli/console/message.h"

namespace kestan_cli {

std::string ReadInput(std::FILE* stream, std::size_t max_bytes) {
  std::string text;
  std::vector<char> piece(std::size_t{1} << 16);
  std::size_t bytes = 0;
  while ((bytes = std::fread(piece.data(), 1, piece.size(), stream)) > 0) {
    if (bytes > max_bytes - text.size()) {
      throw CommandError("the standard input holds more than " + std::to_string(max_bytes) +
                         " bytes");
    }
    text.append(piece.data(), bytes);
  }
  if (std::ferror(stream) == 0) return text;
  throw CommandError("cannot read the standard input: " + ReasonOf(errno));
}

}  // namespace kestan_cli
