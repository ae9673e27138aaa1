// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/system_call_session.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

#include "tests/faults/call_log.h"
#include "tests/faults/shared.h"

namespace kestan_faults {
namespace {

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// `text` begins with the engine's name and ends where that comes again.
bool IsPromised(std::string_view text) {
  if (StartsWith(text, "Kestan: Could not open index file '")) return true;  // has no line feed
  constexpr std::array<std::string_view, 5> kStarts = {
      "Kestan: Could not write item '",
      "Kestan: Call to database::", "Kestan: Could not fetch document for code ",
      "Kestan: Could not locate global-code (oops!)", "Kestan: Attempted to use code #0 (oops!)"};
  return text.find('\n') == text.size() - 1 &&
         std::any_of(kStarts.begin(), kStarts.end(),
                     [&](std::string_view start) { return StartsWith(text, start); });
}

}  // namespace

std::string IndexIn(const std::string& folder) { return folder + "/index"; }

Outcome RunWatchedSession(const std::string& folder, const CallRule& rule) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directory(folder);
  return RunInChild([&](Transcript* transcript) {
    WatchCalls(folder, rule, [transcript] { transcript->Add("short write", 1); });
    RunSession({IndexIn(folder), folder + "/copy"}, transcript);
    transcript->Add("files left open", WatchedFilesOpen());
  });
}

std::vector<Function> CallsOfSession(const std::string& folder) {
  const Shared<CallLog> shared;
  CallLog* const log = shared.get();
  RunWatchedSession(folder, [log](const SystemCall& call) -> Ruling {
    log->functions.at(log->count++) = call.function;
    return {};
  });
  return {log->functions.begin(), log->functions.begin() + static_cast<std::ptrdiff_t>(log->count)};
}

bool HoldsOnlyPromisedLines(const std::string& standard_error) {
  constexpr std::string_view kStart = "Kestan: ";
  std::string_view rest = standard_error;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(kStart, 1), rest.size());
    if (!IsPromised(rest.substr(0, end))) return false;
    rest.remove_prefix(end);
  }
  return true;
}

bool EndedAsPromised(const Outcome& outcome) {
  if (!outcome.ended || outcome.signal != 0) return false;
  if (!HoldsOnlyPromisedLines(outcome.standard_error)) return false;
  if (outcome.exit_status != 1) return outcome.exit_status == 0;
  return outcome.standard_error.find("(oops!)\n") != std::string::npos;
}

long NumberIn(std::string_view transcript, std::string_view what) {
  const std::string before = "\n" + std::string(what) + ": ";
  const std::string text = "\n" + std::string(transcript);
  const std::size_t at = text.find(before);
  if (at == std::string::npos) return -1;
  return std::strtol(text.c_str() + at + before.size(), nullptr, 10);
}

}  // namespace kestan_faults
