// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/upkeep/option_command.h"

#include <charconv>

#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

constexpr const char* kProperty = "option-flags";  // a decimal number

}  // namespace

std::uint32_t FlagsOf(const kestan::search::IndexReader& reader, const std::string& index) {
  std::uint32_t flags = 0;  // of a property that is no number
  const std::string text = ValueOf(reader.Property(kProperty), index);
  std::from_chars(text.data(), text.data() + text.size(), flags);
  return reader.Statistics().with_positions ? flags & ~kNoPositions : flags | kNoPositions;
}

void KeepFlags(OpenedWriter& opened, std::uint32_t flags) {
  opened.writer().SetProperty(kProperty, flags != 0 ? std::to_string(flags) : "");
}

}  // namespace kestan_cli
