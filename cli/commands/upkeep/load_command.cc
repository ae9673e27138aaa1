#include <kestan/maintenance.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/message.h"
#include "cli/index/atomic_create.h"
#include "cli/index/captured_stderr.h"

namespace kestan_cli {
namespace {

// Gives the lines of a dump. Of a line that is too long, it gives one byte more than is allowed.
class DumpLines {
 public:
  explicit DumpLines(std::istream& input) : input_(input) {}

  bool Give(std::string_view* line) {
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

// Fills the new file at `part`, which will become `path`, from the dump in `input`.
void Load(std::istream& input, const std::string& part, const std::string& path,
          const std::string& shown) {
  const CapturedStderr lines_of_store;
  Database target;
  if (const int error = target.Open(part.c_str(), 1); error != 0) {
    throw CannotMake(path, Database::ErrorString(error));
  }
  DumpLines lines(input);
  const auto give = [&](std::string_view* line) { return lines.Give(line); };
  std::string reason;
  const bool loaded =
      kestan::LoadIndex(give, target, [&](std::string_view line) { reason = line; });
  if (!loaded) throw CommandError("cannot load " + Quoted(shown) + ": " + reason);
}

int RunLoad(Kestan&, const Values& values) {
  const std::string source = values.Text("FILE", "-");
  const std::string target = values.Text("NEW");
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
  CreateAtomically(target, "", [&](const std::string& part) {
    Load(source == "-" ? std::cin : file, part, target, source == "-" ? "standard input" : source);
  });
  return kDone;
}

}  // namespace

Command LoadCommand() {
  return {"load",
          "Make an index of what `kestan dump` printed.",
          {{"NEW", "the file to make, which must not be there"},
           {"FILE", "the dump; without it, or with -, the standard input",
            Positional::Count::kOptional}},
          {},
          "",
          {"kestan load my.index my.dump"},
          RunLoad};
}

}  // namespace kestan_cli
