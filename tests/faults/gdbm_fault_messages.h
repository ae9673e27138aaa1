// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine may say when gdbm fails.
#ifndef KESTAN_TESTS_FAULTS_GDBM_FAULT_MESSAGES_H_
#define KESTAN_TESTS_FAULTS_GDBM_FAULT_MESSAGES_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_faults {

// Cuts what a process wrote to its standard error stream into the engine's messages, without their
// line feeds. The message of a failed copy has none, so another may follow it on its line.
std::vector<std::string> Messages(std::string_view standard_error);

// Returns whether a session in which gdbm fails may print `message` and go on.
bool IsPromised(const std::string& message);

// Returns whether `message` is the last of a process that ends because it has no code counter.
bool IsPromisedEnd(const std::string& message);

// Returns whether `message` is that of a flush about a record that it could not write.
bool IsOfFlush(const std::string& message);

// Returns what a flush prints of a record that it could not write.
std::string CouldNotWrite(const std::string& key, int error);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_GDBM_FAULT_MESSAGES_H_
