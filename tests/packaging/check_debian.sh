#!/usr/bin/env bash
# The Debian packages say the same as what they are made of: one version everywhere, and every function of
# the C header in the list of symbols.
#   usage: check_debian.sh SOURCE VERSION
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -euo pipefail
source=$1 version=$2
fail() { echo "$1"; exit 1; }

packaged=$(sed -n '1s/^kestan (\(.*\)) .*/\1/p' "$source/debian/changelog")
[ "$packaged" = "$version" ] || fail "debian/changelog has version $packaged, CMakeLists.txt $version"

packaged=$(sed -n 's/^version = "\(.*\)"/\1/p' "$source/python/pyproject.toml")
[ "$packaged" = "$version" ] || fail "python/pyproject.toml has version $packaged, CMakeLists.txt $version"

declared=$(grep -A2 '^KESTAN_C_EXPORT' "$source/c/include/kestan/c.h" | grep -oE 'kestan_[a-z_0-9]+\(' |
  tr -d '(' | sort -u)
[ "$(wc -l <<<"$declared")" -gt 50 ] || fail 'the functions of <kestan/c.h> are not found'
listed=$(sed -n 's/^ \(kestan_[a-z_0-9]*\)@KESTAN_C_1\.0 .*/\1/p' "$source/debian/libkestan-c1.symbols" | sort -u)
diff <(echo "$declared") <(echo "$listed") ||
  fail 'debian/libkestan-c1.symbols does not list what <kestan/c.h> declares'
