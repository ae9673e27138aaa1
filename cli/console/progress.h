// SPDX-License-Identifier: GPL-3.0-or-later
// Shows how far a long run has come.
#ifndef KESTAN_CLI_CONSOLE_PROGRESS_H_
#define KESTAN_CLI_CONSOLE_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace kestan_cli {

// Of files one by one or, with a `step` such as "merging", of bytes alone.
struct ProgressState {
  unsigned long files = 0;
  unsigned long total_files = 0;
  std::uint64_t bytes = 0;
  std::uint64_t total_bytes = 0;
  double seconds = 0;  // since the start
  std::string step{};
};

// Returns "[####    ]  50%  1200/2400 files, 300/s, 0:04 left" or "[####    ]  50%  merging 12/24
// MB, 0:04 left", in at most `columns` characters.
std::string ProgressBar(const ProgressState& state, std::size_t columns);

// Returns "1200 of 2400 files, 0:04 left" or "merging 12 of 24 MB, 0:04 left".
std::string ProgressWords(const ProgressState& state);

enum class ProgressStyle {
  kNone,
  kBar,    // redrawn in place, at most ten times a second
  kLines,  // a line every ten seconds
};

// Returns the style that suits the standard error stream: a bar on a terminal.
ProgressStyle StyleOfStandardError(bool quiet);

// Follows a run and shows its progress on the standard error stream.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;
  using Write = std::function<void(const std::string& text)>;

  // The run starts now. One of steps alone has no files.
  explicit Progress(ProgressStyle style, unsigned long total_files = 0,
                    std::uint64_t total_bytes = 0);
  // The same with its own clock and its own stream, for tests.
  Progress(ProgressStyle style, unsigned long total_files, std::uint64_t total_bytes, Now now,
           Write write);
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Counts a file of `bytes` that was processed, and shows the progress when it is time to.
  void Advance(std::uint64_t bytes);

  // Shows that `bytes` of `total_bytes` of a step are done, when it is time to. A step begins when
  // it is named for the first time after another one.
  void Reach(const std::string& step, std::uint64_t bytes, std::uint64_t total_bytes);

  // Erases the bar, so that something else can be printed.
  void Clear();

 private:
  void ShowWhenDue();
  Clock::duration Pause() const;

  const ProgressStyle style_;
  const Now now_;
  const Write write_;
  Clock::time_point start_;
  Clock::time_point next_;
  ProgressState state_;
  bool drawn_ = false;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_PROGRESS_H_
