#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs the tests of the C interface under valgrind, as the release preset has built them. A test fails if it
# reads or writes outside its memory, uses a value that was never set, or leaks memory. Takes a minute.
#
#   scripts/memcheck-c.sh [TEST...]       TEST is a name as in tests/c/, without c/; CTest runs all of them
set -euo pipefail
cd "$(dirname "$0")/.."
command -v valgrind >/dev/null || { echo 'valgrind is missing' >&2; exit 1; }
program=${KESTAN_C_TESTS:-build/release/tests/c/c_tests}
[ -x "$program" ] || { echo "build the target c_tests first" >&2; exit 1; }

# A child that is forked while threads search has lost what was theirs, which valgrind takes for leaks. The
# tests of failing allocations replace malloc, as valgrind itself does.
tests=("$@")
[ $# -gt 0 ] || mapfile -t tests < <(ls tests/c/*_test.c | grep -v -e allocations_test -e fork_with_threads_test |
  xargs sed -nE 's/^TEST\((\w+)\).*/\1/p')
[ ${#tests[@]} -gt 0 ] || { echo 'there are no tests' >&2; exit 1; }
printf '%s\0' "${tests[@]}" | xargs -0 -n 8 -P "${KESTAN_MEMCHECK_JOBS:-$(nproc)}" \
  valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=definite,possible \
  --errors-for-leak-kinds=definite,possible --suppressions=scripts/memcheck.supp "$program"
