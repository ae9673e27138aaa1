// SPDX-License-Identifier: GPL-3.0-or-later
// Programs that convert files of other formats to text.
#ifndef KESTAN_CLI_EXTRACT_CONVERTER_CONVERTER_H_
#define KESTAN_CLI_EXTRACT_CONVERTER_CONVERTER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/extract/converter/limited_command.h"

namespace kestan_cli {

struct Converter {
  std::string extension;  // in lower case, without the dot
  // What the first kHeadBytes of every file of the format hold. A file without it is of another
  // format, whatever its name says. Empty for any file.
  std::string magic;
  std::vector<std::string> command;  // the program and its arguments; {} stands for the file
  std::string package{};             // of Debian, that has the program; empty for one of the user's
};

constexpr std::size_t kHeadBytes = 1024;

// The known converters, by extension.
class Converters {
 public:
  // Holds `given` ("EXT=COMMAND"), and after them those that come with the command.
  //   Throws   CommandError for one that is not of that form.
  explicit Converters(const std::vector<std::string>& given);

  // Returns the table of those that come with the command, and no others.
  static const Converters& BuiltIn();

  // Finds the converter for the file `name`, which begins with `head`.
  //   Returns  nullptr if there is none. The table owns it.
  const Converter* Find(std::string_view name, std::string_view head) const;

  // Returns whether there is a converter for the extension of `name`, whatever the file holds.
  bool MayConvert(std::string_view name) const;

 private:
  std::vector<Converter> converters_;
};

// Returns what follows the last dot of the file name in `name`, in lower case; nothing if there is
// no dot, or only one at the start.
std::string ExtensionOf(std::string_view name);

// Runs `converter` for the file `name`.
//   Returns  what it writes to its standard output.
//   Throws   SkipFile if the program is missing, fails or exceeds `limits`.
std::string Convert(const Converter& converter, const std::string& name,
                    const CommandLimits& limits);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CONVERTER_CONVERTER_H_
