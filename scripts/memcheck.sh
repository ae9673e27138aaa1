#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs the tests under valgrind. A test fails if it reads or writes outside its memory, uses a value that
# was never set, or leaks memory. Takes an hour or two.
#
#   scripts/memcheck.sh [CTEST ARGUMENT...]        -R '^query/' runs one program
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
command -v valgrind >/dev/null || { echo 'valgrind is missing' >&2; exit 1; }

valgrind='valgrind;--quiet;--error-exitcode=99;--leak-check=full;--show-leak-kinds=definite,possible'
valgrind+=';--errors-for-leak-kinds=definite,possible;--child-silent-after-fork=yes'
valgrind+=";--suppressions=$PWD/scripts/memcheck.supp"
build=$PWD/build/memcheck
cmake --preset release -B "$build" -DCMAKE_CROSSCOMPILING_EMULATOR="$valgrind" >/dev/null
cmake --build "$build"
# valgrind is slow: properties try a tenth of their usual cases, and fewer calls fail, processes are killed
# and files are damaged. The tests of failing allocations replace malloc, as valgrind itself does.
export RC_PARAMS=max_success=10
export KESTAN_FAULTS_STRIDE=20 KESTAN_KILL_TRIALS=20 KESTAN_HOSTILE_STRIDE=20 KESTAN_CHILD_SECONDS=60
export KESTAN_CHILD_SPARE_KIB=100000
ctest --test-dir "$build" -j 2 -E '^allocation_faults/' --output-on-failure "$@"
