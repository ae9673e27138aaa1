// SPDX-License-Identifier: GPL-3.0-or-later
// For programs in which system calls fail under gdbm.

// gdbm 1.23 does not free everything when it fails to open a file. The leak check of the sanitised
// build is to pass over what gdbm allocated, and to say nothing of it.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
const char* __lsan_default_suppressions();
const char* __lsan_default_options();
const char* __lsan_default_suppressions() { return "leak:libgdbm"; }
const char* __lsan_default_options() { return "print_suppressions=0"; }
}
// NOLINTEND(bugprone-reserved-identifier)
