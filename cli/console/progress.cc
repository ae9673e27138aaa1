// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "cli/console/columns.h"
#include "cli/console/diagnostics.h"

namespace kestan_cli {
namespace {

constexpr std::chrono::milliseconds kBetweenBars{100};
constexpr std::chrono::seconds kBetweenLines{10};
constexpr std::size_t kMaxBar = 40;
constexpr std::size_t kMinBar = 5;
constexpr std::uint64_t kMegabyte = 1000000;
constexpr double kSecondsToTrust = 1;  // earlier, the rate means little

// Bytes show progress better than files, which differ in size. Files count for the empty ones.
double ShareOf(const ProgressState& state) {
  const auto total = static_cast<double>(state.total_bytes + state.total_files);
  return total > 0 ? static_cast<double>(state.bytes + state.files) / total : 1;
}

std::string Padded(const std::string& text, std::size_t width, char with) {
  return std::string(width - std::min(width, text.size()), with) + text;
}

std::string Duration(double seconds) {
  const auto whole = static_cast<unsigned long>(std::lround(seconds));
  const std::string tail = Padded(std::to_string(whole % 60), 2, '0');
  const unsigned long minutes = whole / 60;
  if (minutes < 60) return std::to_string(minutes) + ":" + tail;
  return std::to_string(minutes / 60) + ":" + Padded(std::to_string(minutes % 60), 2, '0') + ":" +
         tail;
}

std::string TimeLeft(const ProgressState& state) {
  const double share = ShareOf(state);
  if (state.seconds < kSecondsToTrust || share <= 0) return "";
  return ", " + Duration(state.seconds * (1 - share) / share) + " left";
}

std::string Rate(const ProgressState& state) {
  if (!state.step.empty() || state.seconds < kSecondsToTrust) return "";
  return ", " +
         std::to_string(
             static_cast<unsigned long>(static_cast<double>(state.files) / state.seconds)) +
         "/s";
}

// Returns "1200/2400 files" or "merging 12/24 MB", with `between` instead of the slash.
std::string Done(const ProgressState& state, const std::string& between) {
  if (state.step.empty()) {
    return std::to_string(state.files) + between + std::to_string(state.total_files) + " files";
  }
  return state.step + " " + std::to_string(state.bytes / kMegabyte) + between +
         std::to_string(state.total_bytes / kMegabyte) + " MB";
}

bool IsComplete(const ProgressState& state) {
  return state.files >= state.total_files && state.bytes >= state.total_bytes;
}

}  // namespace

std::string ProgressBar(const ProgressState& state, std::size_t columns) {
  const double share = std::min(ShareOf(state), 1.0);
  const auto percent = static_cast<unsigned>(share * 100);
  const std::string text = Padded(std::to_string(percent), 3, ' ') + "%  " + Done(state, "/") +
                           Rate(state) + TimeLeft(state);
  const std::size_t free_columns = columns - std::min(columns, text.size() + 3);
  if (free_columns < kMinBar) return text.substr(0, columns);
  const std::size_t width = std::min(free_columns, kMaxBar);
  const auto done = static_cast<std::size_t>(share * static_cast<double>(width));
  return "[" + std::string(done, '#') + std::string(width - done, ' ') + "] " + text;
}

std::string ProgressWords(const ProgressState& state) {
  return Done(state, " of ") + TimeLeft(state);
}

ProgressStyle StyleOfStandardError(bool quiet) {
  if (quiet) return ProgressStyle::kNone;
  return isatty(STDERR_FILENO) != 0 ? ProgressStyle::kBar : ProgressStyle::kLines;
}

Progress::Progress(ProgressStyle style, unsigned long total_files, std::uint64_t total_bytes)
    : Progress(style, total_files, total_bytes, Clock::now,
               [](const std::string& text) { PrintProgress(text); }) {}

Progress::Progress(ProgressStyle style, unsigned long total_files, std::uint64_t total_bytes,
                   Now now, Write write)
    : style_(style),
      now_(std::move(now)),
      write_(std::move(write)),
      start_(now_()),
      next_(start_ + Pause()),
      state_{0, total_files, 0, total_bytes, 0} {}

void Progress::Advance(std::uint64_t bytes) {
  ++state_.files;
  state_.bytes += bytes;
  ShowWhenDue();
}

void Progress::Reach(const std::string& step, std::uint64_t bytes, std::uint64_t total_bytes) {
  if (state_.step != step) {
    start_ = now_();
    next_ = start_ + Pause();
  }
  state_ = {0, 0, bytes, total_bytes, 0, step};
  ShowWhenDue();
}

Progress::Clock::duration Progress::Pause() const {
  if (style_ == ProgressStyle::kBar) return kBetweenBars;
  return kBetweenLines;
}

void Progress::ShowWhenDue() {
  if (style_ == ProgressStyle::kNone) return;
  const Clock::time_point now = now_();
  if (now < next_) return;
  state_.seconds = std::chrono::duration<double>(now - start_).count();
  next_ = now + Pause();
  if (style_ == ProgressStyle::kBar) {
    // Room for "^C" stays free, and one column more: some terminals start a new line after the
    // last.
    const std::size_t columns = ColumnsOfTerminal(STDERR_FILENO);
    write_("\r" + ProgressBar(state_, columns - std::min<std::size_t>(columns, 3)) + "\x1b[K");
    drawn_ = true;
  } else if (!IsComplete(state_)) {  // the report follows at the end
    write_("kestan: " + ProgressWords(state_) + "\n");
  }
}

void Progress::Clear() {
  if (drawn_) write_("\r\x1b[K");
  drawn_ = false;
}

}  // namespace kestan_cli
