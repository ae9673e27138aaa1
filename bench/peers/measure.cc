// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/peers/measure.h"

#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>

namespace kestan_bench {
namespace {

constexpr std::uint64_t kBytesOfABlock = 512;  // what stat() counts in

double Now(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

}  // namespace

Stopwatch::Stopwatch()
    : wall_start_(Now(CLOCK_MONOTONIC)), cpu_start_(Now(CLOCK_PROCESS_CPUTIME_ID)) {}

Elapsed Stopwatch::Read() const {
  return {Now(CLOCK_MONOTONIC) - wall_start_, Now(CLOCK_PROCESS_CPUTIME_ID) - cpu_start_};
}

Elapsed operator+(const Elapsed& left, const Elapsed& right) {
  return {left.wall_seconds + right.wall_seconds, left.cpu_seconds + right.cpu_seconds};
}

std::uint64_t PeakMemoryBytes() {
  std::ifstream status("/proc/self/status");
  for (std::string field; status >> field;) {
    if (field == "VmHWM:") {
      std::uint64_t kibibytes = 0;
      status >> kibibytes;
      return kibibytes * 1024;
    }
    status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return 0;
}

std::uint64_t FolderBytes(const std::string& folder) {
  std::uint64_t bytes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    struct stat status {};
    if (stat(entry.path().c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
      bytes += static_cast<std::uint64_t>(status.st_blocks) * kBytesOfABlock;
    }
  }
  return bytes;
}

}  // namespace kestan_bench
