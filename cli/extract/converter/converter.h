// Programs that turn files of other formats into text.
#ifndef KESTAN_CLI_EXTRACT_CONVERTER_CONVERTER_H_
#define KESTAN_CLI_EXTRACT_CONVERTER_CONVERTER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/extract/converter/limited_command.h"

namespace kestan_cli {

struct Converter {
  std::string extension;  // in small letters, without the dot
  // What a file of the format holds in its first kHeadBytes; other files are no such files,
  // whatever their names say. Empty where that is not looked at.
  std::string magic;
  std::vector<std::string> command;  // the program, and its arguments; {} stands for the file
};

constexpr std::size_t kHeadBytes = 1024;

// The converters that are known, by extension.
class Converters {
 public:
  // Knows those that come with the command, and `given` ("EXT=COMMAND") in front of them.
  //   Throws   CommandError for one that cannot be read.
  explicit Converters(const std::vector<std::string>& given);

  // Returns the table of those that come with the command, and no others.
  static const Converters& BuiltIn();

  // Finds the converter for the file `name`, which begins with `head`.
  //   Returns  nullptr if there is none. The table owns it.
  const Converter* Find(std::string_view name, std::string_view head) const;

  // Whether some converter takes files with the extension of `name`, whatever is in them.
  bool MayConvert(std::string_view name) const;

 private:
  std::vector<Converter> converters_;
};

// Returns the part of `name` after its last dot, in small letters; nothing if it has none, or only
// one at its beginning.
std::string ExtensionOf(std::string_view name);

// Turns the file `name` into what `converter` writes to its standard output.
//   Throws   SkipFile if the program is not there or does not come to a good end.
std::string Convert(const Converter& converter, const std::string& name,
                    const CommandLimits& limits);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CONVERTER_CONVERTER_H_
