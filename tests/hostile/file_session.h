// SPDX-License-Identifier: GPL-3.0-or-later
// What a host does with an index file, damaged or not, in a child process that has little time and
// little space.
#ifndef KESTAN_TESTS_HOSTILE_FILE_SESSION_H_
#define KESTAN_TESTS_HOSTILE_FILE_SESSION_H_

#include <cstddef>
#include <string>

#include "tests/faults/child.h"

namespace kestan_hostile {

// Leaves this process little time and space: if it loops it is ended by a signal, and if it writes
// too much it finds the disk full.
void LimitThisProcess();

// Opens the file `path` for reading and calls every method that reads, for every word and every
// document that the index lists.
kestan_faults::Outcome ReadInChild(const std::string& path);

// Opens the file `path` for writing, calls every method, and in the end removes every document that
// the index lists, shrinks, and adds again. Copies go to `path` + ".copy".
kestan_faults::Outcome WriteInChild(const std::string& path);

// Returns how many KiB of memory a child may take for a file of so many bytes. `base_kib` is what
// one takes that does nothing. A sanitizer takes memory of its own, without a known limit;
// for what valgrind takes, the environment may allow more.
long MostKib(long base_kib, std::size_t file_bytes);

// Says what a host must not live to see of an end; empty if the end is good: of itself, or of the
// engine with its promised line.
std::string Complaint(const kestan_faults::Outcome& outcome, long most_kib);

}  // namespace kestan_hostile

#endif  // KESTAN_TESTS_HOSTILE_FILE_SESSION_H_
