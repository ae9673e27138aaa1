#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs clang-tidy on all sources, with the compile commands of the build in build/sanitised.
#
#   scripts/lint.sh           the analyzer follows each function for 20,000 steps: half the time of all
#   scripts/lint.sh --deep    as far as it goes
set -euo pipefail
cd "$(dirname "$0")/.."

steps=(--extra-arg=-Xclang --extra-arg=-analyzer-config --extra-arg=-Xclang --extra-arg=max-nodes=20000)
[ "${1:-}" != --deep ] || steps=()
git ls-files 'kestan/*.cc' 'search/*.cc' 'c/*.cc' 'cli/*.cc' |
  xargs -P "$(nproc)" -n 4 clang-tidy -p build/sanitised --quiet "${steps[@]}"
