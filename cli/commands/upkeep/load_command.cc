// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance.h>
#include <kestan/search.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/index/new_index.h"

namespace kestan_cli {
namespace {

// Gives the lines of a dump. Of a line that is too long, it gives one byte more than is allowed.
class DumpLines {
 public:
  explicit DumpLines(std::istream& input) : input_(input) {}

  // A signal is as good as the end: the dump is not whole then.
  bool Give(std::string_view* line) {
    if (Interruption::HasCome()) return false;
    input_.getline(text_.data(), static_cast<std::streamsize>(text_.size()));
    const auto bytes = static_cast<std::size_t>(input_.gcount());
    if (bytes == 0) return false;
    const bool ended = !input_.fail() && !input_.eof();  // then its line feed counts as a byte
    *line = std::string_view(text_.data(), ended ? bytes - 1 : bytes);
    return true;
  }

 private:
  std::istream& input_;
  // Space for the longest line, one byte more, and the NUL that the stream puts after it.
  std::vector<char> text_ = std::vector<char>(kestan::kMaxDumpLineBytes + 2);
};

void Load(std::istream& input, const std::string& target, const std::string& shown) {
  NewIndex made(shown, target, "loading", ProgressStyle::kNone);
  DumpLines lines(input);
  const auto give = [&](std::string_view* line) { return lines.Give(line); };
  const auto status = kestan::search::LoadIndex(give, target);
  Interruption::Check();
  if (status.code() == kestan::search::StatusCode::kInvalidArgument) {
    throw CommandError("cannot load " + Quoted(shown) + ": " + status.message());
  }
  made.Check(status);
}

int RunLoad(const Values& values) {
  const std::string source = values.Text("FILE", "-");
  std::ifstream file;
  if (source != "-") {
    std::error_code error;
    const bool is_folder = std::filesystem::is_directory(source, error);  // which opens like a file
    if (!is_folder) file.open(source, std::ios::binary);
    if (!file.is_open()) {
      throw CommandError("cannot read " + Quoted(source) + ": " +
                         ReasonOf(is_folder ? EISDIR : errno));
    }
  }
  Load(source == "-" ? std::cin : file, values.Text("NEW"),
       source == "-" ? "standard input" : source);
  return kDone;
}

}  // namespace

Command LoadCommand() {
  return {"load",
          "Make an index of what `kestan dump` printed.",
          {{"NEW", "the index to make, which must not be there"},
           {"FILE", "the dump; without it, or with -, the standard input",
            Positional::Count::kOptional}},
          {},
          "The dump of a folder becomes a folder, that of an index of one file such a file.",
          {"kestan load my.index my.dump"},
          RunLoad};
}

}  // namespace kestan_cli
