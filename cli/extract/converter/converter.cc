// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/converter/converter.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

#include "cli/console/message.h"
#include "cli/extract/charset/ascii.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

constexpr std::string_view kFile = "{}";

struct KnownConverter {
  const char* extension;
  const char* magic;
  const char* command;
  const char* package;
};

constexpr std::array kKnown{
    KnownConverter{"pdf", "%PDF-", "pdftotext -q -enc UTF-8 {} -", "poppler-utils"},
    KnownConverter{"ps", "%!", "ps2ascii {}", "ghostscript"},
    KnownConverter{"doc", "\xd0\xcf\x11\xe0", "antiword -m UTF-8.txt {}", "antiword"},
    KnownConverter{"doc", "\xd0\xcf\x11\xe0", "catdoc -d utf-8 {}", "catdoc"},
    KnownConverter{"rtf", "{\\rtf", "unrtf --text --nopict --quiet {}", "unrtf"},
    KnownConverter{"djvu", "AT&TFORM", "djvutxt {}", "djvulibre-bin"},
};

// Splits at blanks. Quotes mean nothing, for there is no shell.
std::vector<std::string> WordsOf(std::string_view command) {
  std::vector<std::string> words;
  while (true) {
    command.remove_prefix(std::min(command.find_first_not_of(kWhiteSpace), command.size()));
    if (command.empty()) return words;
    words.emplace_back(command.substr(0, command.find_first_of(kWhiteSpace)));
    command.remove_prefix(words.back().size());
  }
}

Converter ParseConverter(const std::string& given) {
  const std::size_t equals = given.find('=');
  std::string extension = LowerCase(std::string_view(given).substr(0, equals));
  if (!extension.empty() && extension.front() == '.') extension.erase(0, 1);
  const std::string command = equals == std::string::npos ? "" : given.substr(equals + 1);
  const bool names_file = command.find(kFile) != std::string::npos;
  if (extension.empty() || extension.find_first_of("./") != std::string::npos || !names_file) {
    throw CommandError("converter " + Quoted(given) +
                       " is not of the form EXT=COMMAND with {} for the file");
  }
  return {extension, "", WordsOf(command)};
}

bool IsProgram(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

// Finds `program` as a shell would.
//   Returns  its path; an empty string if it is missing.
std::string FindProgram(const std::string& program) {
  if (program.find('/') != std::string::npos) return IsProgram(program) ? program : "";
  const char* const set = std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe)
  std::string_view folders = set != nullptr ? set : "/usr/local/bin:/usr/bin:/bin";
  while (!folders.empty()) {
    const std::string_view folder = folders.substr(0, folders.find(':'));
    folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
    std::string path = (folder.empty() ? "." : std::string(folder)) + "/" + program;
    if (IsProgram(path)) return path;
  }
  return "";
}

// Replaces {} by the name of the file, which never looks like an option.
std::string WithName(std::string word, const std::string& name) {
  const std::string safe_name = name.front() == '-' ? "./" + name : name;
  for (std::size_t at = word.find(kFile); at != std::string::npos;
       at = word.find(kFile, at + safe_name.size())) {
    word.replace(at, kFile.size(), safe_name);
  }
  return word;
}

}  // namespace

std::string ExtensionOf(std::string_view name) {
  name.remove_prefix(name.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return "";
  return LowerCase(name.substr(dot + 1));
}

Converters::Converters(const std::vector<std::string>& given) {
  // The last one given for an extension counts.
  for (auto text = given.rbegin(); text != given.rend(); ++text) {
    converters_.push_back(ParseConverter(*text));
  }
  for (const KnownConverter& known : kKnown) {
    converters_.push_back({known.extension, known.magic, WordsOf(known.command), known.package});
  }
}

const Converters& Converters::BuiltIn() {
  static const Converters built_in({});
  return built_in;
}

const Converter* Converters::Find(std::string_view name, std::string_view head) const {
  const std::string extension = ExtensionOf(name);
  const Converter* missing = nullptr;
  for (const Converter& converter : converters_) {
    const bool is_for_it =
        converter.extension == extension &&
        head.substr(0, kHeadBytes).find(converter.magic) != std::string_view::npos;
    if (!is_for_it) continue;
    // The user's own is never passed over.
    const bool is_missing = !converter.package.empty() && FindProgram(converter.command[0]).empty();
    if (!is_missing) return &converter;
    if (missing == nullptr) missing = &converter;
  }
  return missing;
}

bool Converters::MayConvert(std::string_view name) const {
  const std::string extension = ExtensionOf(name);
  return std::any_of(converters_.begin(), converters_.end(),
                     [&](const Converter& converter) { return converter.extension == extension; });
}

std::string Convert(const Converter& converter, const std::string& name,
                    const CommandLimits& limits) {
  const std::string& program = converter.command.front();
  const std::string path = FindProgram(program);
  if (path.empty()) {
    const bool is_known = !converter.package.empty();
    const std::string remedy = "install " + (is_known ? converter.package : OneLine(program));
    throw SkipFile(SkipKind::kNoConverter,
                   "no converter for ." + converter.extension + " (" + OneLine(program) +
                       " is missing" + (is_known ? "; " + remedy : "") + ")",
                   remedy + ", which reads ." + converter.extension);
  }
  std::vector<std::string> arguments;
  for (const std::string& word : converter.command) arguments.push_back(WithName(word, name));
  CommandOutcome outcome = RunLimited(path, arguments, limits);
  if (!outcome.failure.empty()) {
    throw SkipFile(SkipKind::kConversion, OneLine(program) + " " + outcome.failure);
  }
  return std::move(outcome.output);
}

}  // namespace kestan_cli
