// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/root_rules.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/console/message.h"
#include "cli/extract/document/stop_words.h"
#include "cli/files/paths.h"
#include "cli/sync/root_trust.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

std::vector<Glob> GlobsOf(const std::vector<std::string>& patterns) {
  std::vector<Glob> globs;
  globs.reserve(patterns.size());
  for (const std::string& pattern : patterns) globs.emplace_back(pattern);
  return globs;
}

// Links stay: a program may look at the name by which it is called.
std::string Absolute(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  if (error) throw CommandError("cannot examine " + Quoted(path) + ": " + ReasonOf(error.value()));
  return absolute.lexically_normal().string();
}

// Returns "EXT=COMMAND" with the absolute path of the program, if it has a relative one.
std::string WithAbsoluteProgram(const std::string& converter) {
  const std::size_t equals = converter.find('=');
  if (equals == std::string::npos) return converter;
  const std::size_t start = converter.find_first_not_of(' ', equals + 1);
  if (start == std::string::npos || converter[start] == '/') return converter;
  const std::size_t end = std::min(converter.find(' ', start), converter.size());
  const std::string program = converter.substr(start, end - start);
  if (program.find('/') == std::string::npos) return converter;  // found in PATH
  const std::string absolute = Absolute(program);
  if (absolute.find(' ') != std::string::npos) {
    throw CommandError("the path of the converter " + Quoted(absolute) +
                       " has a blank, where a command is split; give it another path");
  }
  return converter.substr(0, start) + absolute + converter.substr(end);
}

}  // namespace

RootRules::Made::Made(const ReadingOptions& options, CommandLimits limits, std::uint64_t max_bytes)
    : converters(options.converters),
      rules{converters,
            limits,
            max_bytes,
            {StopWords(options.stop_words), options.strip_encoded},
            options.archives} {}

RootRules::RootRules(Roots roots, std::string index, CommandLimits converter_limits,
                     std::uint64_t max_file_bytes)
    : roots_(std::move(roots)),
      index_(std::move(index)),
      limits_(converter_limits),
      max_bytes_(std::min<std::uint64_t>(max_file_bytes, kMaxTextBytes)) {}

const ReadingRules& RootRules::Of(const std::string& name) {
  const std::string root = InnermostOf(roots_, name);
  std::unique_ptr<Made>& made = made_[root];
  if (made == nullptr) {
    const RootOptions options = root.empty() ? RootOptions() : roots_.at(root);
    CheckConverters(root, options, index_);
    made = std::make_unique<Made>(options.reading, limits_, max_bytes_);
  }
  return made->rules;
}

NameFilter FilterOf(const ReadingOptions& options) {
  return {GlobsOf(options.include), GlobsOf(options.exclude)};
}

ReadingOptions WithAbsolutePaths(ReadingOptions options) {
  for (std::string& converter : options.converters) converter = WithAbsoluteProgram(converter);
  const bool is_file = !options.stop_words.empty() && options.stop_words != "english";
  if (is_file) options.stop_words = Absolute(options.stop_words);
  return options;
}

}  // namespace kestan_cli
