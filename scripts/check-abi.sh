#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Compares the binary interface of libkestan-c with the one that programs were linked with: the functions of
# <kestan/c.h>, their arguments and the structures in them. Fails on every change, also on a function that
# is not in the baseline yet.
#
#   scripts/check-abi.sh [BUILD]           BUILD is build/release, where the library is built
#   scripts/check-abi.sh --renew [BUILD]   writes the baseline again
#
# Renew the baseline in the commit that adds a function, or that breaks the interface on purpose, which needs
# another KESTAN_C_VERSION_MAJOR in c/CMakeLists.txt and another version in c/kestan-c.map.
set -euo pipefail
cd "$(dirname "$0")/.."

renew=false
if [ "${1:-}" = --renew ]; then
  renew=true
  shift
fi
library=$(readlink -f "${1:-build/release}/c/libkestan-c.so")
baseline=c/abi/libkestan-c.x86_64.abi
[ -f "$library" ] || { echo "build the target kestan_c first" >&2; exit 1; }
command -v abidw >/dev/null || { echo 'abidw is missing: install abigail-tools' >&2; exit 1; }
if [ "$(uname -m)" != x86_64 ]; then
  echo 'the baseline is that of x86_64; nothing was compared'
  exit 0
fi

current=$(mktemp)
trap 'rm -f "$current"' EXIT
# What can be seen in the header alone; no paths or lines, which change with every edit.
abidw --headers-dir c/include --drop-private-types --exported-interfaces-only --drop-undefined-syms \
  --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --type-id-style hash --out-file "$current" "$library"
# A library without full debug information has symbols but no types: it would pass for the same.
grep -q "<class-decl name='kestan_search_options'" "$current" ||
  { echo "$library says nothing of its types: build it with -g" >&2; exit 1; }

if $renew; then
  mkdir -p "$(dirname "$baseline")"
  cp "$current" "$baseline"
  echo "wrote $baseline"
  exit 0
fi

# abidiff sets bits: 1 for errors, 4 for any change, 8 for one that breaks programs. What it takes for harmless
# may not be, such as another member's name: only added functions are.
status=0
report=$(abidiff --no-added-syms --harmless "$baseline" "$current") || status=$?
if [ $status -ne 0 ]; then
  printf '%s\n' "$report"
  echo 'The binary interface of libkestan-c has changed. If that is meant: scripts/check-abi.sh --renew'
  exit 1
fi
added=$(comm -13 <(grep -o "elf-symbol name='[a-z_]*'" "$baseline" | sort) \
  <(grep -o "elf-symbol name='[a-z_]*'" "$current" | sort))
if [ -n "$added" ]; then
  printf 'not in the baseline yet:\n%s\nRun scripts/check-abi.sh --renew\n' "$added"
  exit 1
fi
echo 'The binary interface of libkestan-c is that of the baseline.'
