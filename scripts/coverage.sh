#!/usr/bin/env bash
# Runs all tests with counters in the library, and prints which lines and branches of kestan/ they
# reach. Ends with status 1 if a line is missed, more than 2% of the branches are, or a missed branch
# has no reason in scripts/coverage_exclusions.txt. Takes about four minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

build=$PWD/build/coverage
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_CXX_FLAGS="-O0 -fprofile-instr-generate -fcoverage-mapping" -DKESTAN_BUILD_CLI=OFF >/dev/null
cmake --build "$build"

rm -rf "$build/counts"
LLVM_PROFILE_FILE="$build/counts/%4m.profraw" \
  ctest --test-dir "$build" -j 2 --output-on-failure -E "^install" | tail -n 3

tool() { command -v "$1" || command -v "$1-14"; }
"$(tool llvm-profdata)" merge -o "$build/counts/all" "$build"/counts/*.profraw
programs=("$build"/tests/{storage,engine,indexing,query,model,faults}/*_tests)
objects=("${programs[0]}")
for program in "${programs[@]:1}"; do objects+=(-object "$program"); done
mapfile -t sources < <(find "$PWD/kestan" -name '*.cc' -o -name '*.h')
export_counts() {
  "$(tool llvm-cov)" export "$@" -instr-profile "$build/counts/all" "${objects[@]}" "${sources[@]}"
}
export_counts -format=text >"$build/counts/all.json"
export_counts -format=lcov >"$build/counts/all.lcov"
scripts/coverage_report.py "$build/counts" scripts/coverage_exclusions.txt
