#!/bin/sh
# Tries the command that was just built in the folder $1: it indexes the pages of the documentation, and
# must find one of them.
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -eu
command=$1/cli/kestan index=$1/pages.index

rm -rf "$index"
"$command" index "$index" docs
"$command" check "$index"
found=$("$command" search --names-only "$index" '"dump of an index"' | head -n 1)
[ "$found" = docs/dump-format.md ] || { echo "found instead: $found"; exit 1; }
