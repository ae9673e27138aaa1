// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/gdbm_fault_messages.h"

#include <gdbm.h>

#include <algorithm>
#include <array>
#include <regex>

namespace kestan_faults {
namespace {

constexpr std::string_view kStart = "Kestan: ";

bool Matches(const std::string& message, const char* pattern) {
  return std::regex_match(message, std::regex(pattern, std::regex::extended));
}

// Returns whether `message` ends with the text of one of gdbm's errors.
bool EndsWithGdbmError(const std::string& message) {
  const std::size_t dashes = message.rfind(" -- ");
  if (dashes == std::string::npos) return false;
  const std::string text = message.substr(dashes + 4);
  for (int error = _GDBM_MIN_ERRNO + 1; error <= _GDBM_MAX_ERRNO; ++error) {
    if (text == gdbm_strerror(error)) return true;
  }
  return false;
}

}  // namespace

std::vector<std::string> Messages(std::string_view standard_error) {
  std::vector<std::string> messages;
  while (!standard_error.empty()) {
    const std::size_t next = standard_error.find(kStart, 1);
    std::string message(standard_error.substr(0, next));
    standard_error.remove_prefix(message.size());
    if (message.back() == '\n') message.pop_back();
    messages.push_back(std::move(message));
  }
  return messages;
}

bool IsPromised(const std::string& message) {
  if (IsOfFlush(message) || Matches(message, "Kestan: Could not open index file '.*' -- .*")) {
    return EndsWithGdbmError(message);
  }
  return Matches(message, "Kestan: Call to database::[a-z]+ without an open database") ||
         Matches(message, "Kestan: Could not fetch document for code [0-9]+ \\(oops!\\)");
}

bool IsOfFlush(const std::string& message) {
  return Matches(message, "Kestan: Could not write item '.*' -- .*");
}

bool IsPromisedEnd(const std::string& message) {
  return message == "Kestan: Could not locate global-code (oops!)";
}

std::string CouldNotWrite(const std::string& key, int error) {
  return "Kestan: Could not write item '" + key + "' -- " + gdbm_strerror(error);
}

}  // namespace kestan_faults
