// SPDX-License-Identifier: GPL-3.0-or-later
// Clocks, memory and sizes.
#ifndef KESTAN_BENCH_PEERS_MEASURE_H_
#define KESTAN_BENCH_PEERS_MEASURE_H_

#include <cstdint>
#include <string>

namespace kestan_bench {

// Time since it was made, or since an earlier Elapsed was taken.
struct Elapsed {
  double wall_seconds = 0;
  double cpu_seconds = 0;  // of all threads of the process, in and out of the kernel
};

class Stopwatch {
 public:
  Stopwatch();
  Elapsed Read() const;

 private:
  double wall_start_;
  double cpu_start_;
};

Elapsed operator+(const Elapsed& left, const Elapsed& right);

// Returns the most memory that the process ever had resident, in bytes.
std::uint64_t PeakMemoryBytes();

// Returns how much of the disk the files in `folder` and below take; holes in them take none.
std::uint64_t FolderBytes(const std::string& folder);

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_PEERS_MEASURE_H_
