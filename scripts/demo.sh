#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds, indexes the documentation of this machine and searches it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
cmake --preset release -DKESTAN_BUILD_TESTS=OFF >/dev/null
cmake --build --preset release

kestan=build/release/cli/kestan
index=build/demo.index
documents=${1:-/usr/share/doc}

run() {
  printf '\n$ kestan %s\n' "$*"
  "$kestan" "$@"
}

# Status 1 says that some files could not be read in full, which may be so on any machine.
index() {
  run index "$@" || [ $? -eq 1 ]
}

# Shows the best six; `sed` reads to the end, so that the command never writes to a closed pipe.
search() {
  printf "\n\$ kestan search %s '%s' | head -n 6\n" "$index" "$1"
  "$kestan" search "$index" "$1" | sed -n 1,6p
}

rm -rf "$index"
index "$index" "$documents"
search 'free software NOT warranty'
search 'public NEAR/1 domain'
search '(bug OR error) NEAR/3 fixed'
index "$index"  # brings it up to date
printf '\n$ kestan stats %s | head -n 6\n' "$index"
"$kestan" stats "$index" | sed -n 1,6p
