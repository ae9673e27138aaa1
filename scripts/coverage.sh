#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs the tests of the library's directories with counters in the library, and prints which lines and
# branches of kestan/ they reach. Ends with status 1 if a line is missed, more than 2% of the branches
# are, or a missed branch has no reason in scripts/coverage_exclusions.txt.
#
# Only tests that are written for a directory count. Those of the whole engine (the model, limits, faults,
# damaged files, the seeds of fuzzing, the command) take most of the time of all tests and are left
# out: a line that they reach by accident should have a test of its own. For the same reason repair gets
# fewer random files than by default. Takes about three minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

build=$PWD/build/coverage
directories=(storage text format indexing query engine maintenance)
programs=()
for directory in "${directories[@]}"; do programs+=("$build/tests/$directory/${directory}_tests"); done
programs+=("$build/tests/maintenance/repair_tests")
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_CXX_FLAGS="-O1 -fprofile-instr-generate -fcoverage-mapping" -DKESTAN_BUILD_CLI=OFF >/dev/null
cmake --build "$build" --target "${programs[@]##*/}"

rm -rf "$build/counts"
KESTAN_REPAIR_INDEXES=5 KESTAN_REPAIR_FLIPS=20 LLVM_PROFILE_FILE="$build/counts/%4m.profraw" \
  ctest --test-dir "$build" -j 2 --output-on-failure -R "^($(IFS="|" && echo "${directories[*]}")|repair)/" | tail -n 3

tool() { command -v "$1" || command -v "$1-14"; }
"$(tool llvm-profdata)" merge -o "$build/counts/all" "$build"/counts/*.profraw
objects=("${programs[0]}")
for program in "${programs[@]:1}"; do objects+=(-object "$program"); done
mapfile -t sources < <(find "$PWD/kestan" -name '*.cc' -o -name '*.h')
export_counts() {
  "$(tool llvm-cov)" export "$@" -instr-profile "$build/counts/all" "${objects[@]}" "${sources[@]}"
}
export_counts -format=text >"$build/counts/all.json"
export_counts -format=lcov >"$build/counts/all.lcov"
scripts/coverage_report.py "$build/counts" scripts/coverage_exclusions.txt
