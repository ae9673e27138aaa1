#!/usr/bin/env bash
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
rm -f "$index"
run index "$index" "$documents"
run search "$index" 'free AND software AND NOT warranty' | head -n 8
run search "$index" 'public NEAR/1 domain' | head -n 8
run search "$index" '(bug OR error) NEAR/3 fixed' | head -n 8
run stats "$index"
