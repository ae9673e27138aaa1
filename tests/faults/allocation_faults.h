// SPDX-License-Identifier: GPL-3.0-or-later
// Stands between a test program and its memory: every malloc, calloc, realloc and aligned
// allocation of the process comes through here, those of shared libraries too, and can be made to
// fail.
#ifndef KESTAN_TESTS_FAULTS_ALLOCATION_FAULTS_H_
#define KESTAN_TESTS_FAULTS_ALLOCATION_FAULTS_H_

#include <array>
#include <cstddef>

namespace kestan_faults {

// What became of the allocations. It may lie in memory that processes share.
struct AllocationLog {
  static constexpr long kNotedSizes = 256;

  // Returns whether one of the first failures that were not gdbm's was of so many bytes.
  bool HasFailed(std::size_t bytes) const;

  long calls = 0;
  long failed_in_gdbm = 0;
  long failed_elsewhere = 0;
  std::array<std::size_t, kNotedSizes> sizes = {};  // of the first that failed elsewhere
};

enum class Failing { kOnce, kFromThenOn };

// Makes the `nth` allocation from now on return null with ENOMEM in errno, and with kFromThenOn
// every later one; 0 makes none fail. Counts in `*log`, which must outlive the counting.
void FailAllocations(long nth, Failing failing, AllocationLog* log);

// Ends the failing and the counting.
void StopFailing();

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_ALLOCATION_FAULTS_H_
