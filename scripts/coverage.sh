#!/usr/bin/env bash
# Runs the tests of the library's rooms with counters in the library, and prints which lines and
# branches of kestan/ they reach. Ends with status 1 if a line is missed, more than 2% of the branches
# are, or a missed branch has no reason in scripts/coverage_exclusions.txt.
#
# Only tests that are written for a room count. Those of the whole engine (the model, limits, faults,
# damaged files, the seeds of fuzzing, the command) take most of the time of all tests and are left
# out: what they reach by the way, some test should reach on purpose. For the same reason the random
# files of the repair are fewer than by default. Takes about three minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

build=$PWD/build/coverage
rooms=(storage engine indexing query maintenance repair)
programs=("$build"/tests/{storage/storage,engine/engine,indexing/indexing,query/query}_tests
  "$build"/tests/maintenance/{maintenance,repair}_tests)
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_CXX_FLAGS="-O1 -fprofile-instr-generate -fcoverage-mapping" -DKESTAN_BUILD_CLI=OFF >/dev/null
cmake --build "$build" --target "${rooms[@]/%/_tests}"

rm -rf "$build/counts"
KESTAN_REPAIR_INDEXES=5 KESTAN_REPAIR_FLIPS=20 LLVM_PROFILE_FILE="$build/counts/%4m.profraw" \
  ctest --test-dir "$build" -j 2 --output-on-failure -R "^($(IFS="|" && echo "${rooms[*]}"))/" | tail -n 3

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
