// SPDX-License-Identifier: GPL-3.0-or-later
// The errors that each function of gdbm may report.
#ifndef KESTAN_TESTS_FAULTS_GDBM_FAULT_ERRORS_H_
#define KESTAN_TESTS_FAULTS_GDBM_FAULT_ERRORS_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_faults {

// The functions that the store calls, without their "gdbm_".
const std::vector<std::string>& FaultyFunctions();

// Returns gdbm's error numbers for `function`, the likeliest first.
const std::vector<int>& ErrorsOf(std::string_view function);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_GDBM_FAULT_ERRORS_H_
