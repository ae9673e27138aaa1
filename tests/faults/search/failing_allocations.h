// SPDX-License-Identifier: GPL-3.0-or-later
// Work of the search library in which each allocation fails in turn.
#ifndef KESTAN_TESTS_FAULTS_SEARCH_FAILING_ALLOCATIONS_H_
#define KESTAN_TESTS_FAULTS_SEARCH_FAILING_ALLOCATIONS_H_

#include <functional>

#include "tests/faults/allocation_trial.h"

namespace kestan_faults {

// Returns how many allocations to go on by from one trial to the next: one if the environment has
// KESTAN_FAULTS_ALL=1, else so many that there are some hundred trials.
long StrideFor(long allocations);

// Returns whether the transcript of the trial has a line "LINE: ...".
bool Has(const Trial& trial, const char* line);

// Expects that the process ended by itself, with status 0 or as one that lacks memory. One that an
// exception left did neither.
void ExpectDocumentedEnd(const Trial& trial);

// What became of trials.
class AllocationFaultCounts {
 public:
  void Note(const Trial& trial);

  // Prints one line.
  void Print(long allocations) const;

  // Returns how many reported an error, in a line "refused".
  int refused() const { return refused_; }

 private:
  int trials_ = 0;
  int refused_ = 0;
  int ended_ = 0;
};

// Has each allocation of `work` fail, once and with all later ones. Expects a documented end, an
// error in a line "refused", or all that `work` does when nothing fails. `work` allocates nothing
// of its own. `prepare` is called before each trial, `check` after it.
void ExpectFailingAllocationsAreErrors(const std::function<void()>& prepare,
                                       const std::function<void(Transcript*)>& work,
                                       const std::function<void(const Trial&)>& check);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SEARCH_FAILING_ALLOCATIONS_H_
