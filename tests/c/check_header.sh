#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The header compiles by itself, as C99 and newer and as C++, without a warning; and so do its initialisers.
#   usage: check_header.sh INCLUDE_FOLDER C_COMPILER CXX_COMPILER
set -euo pipefail
include=$1 c=$2 cxx=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat >"$work/header.c" <<'END'
#include <kestan/c.h>
kestan_writer_options writing = KESTAN_WRITER_OPTIONS_INIT;
kestan_search_options searching = KESTAN_SEARCH_OPTIONS_INIT;
kestan_document document = KESTAN_DOCUMENT_INIT;
kestan_statistics statistics = KESTAN_STATISTICS_INIT;
size_t length = KESTAN_ZERO_TERMINATED;
END
cp "$work/header.c" "$work/header.cc"
warnings=(-Wall -Wextra -pedantic -Wconversion -Wshadow -Werror)
for standard in c99 c11 gnu17; do
  "$c" -std=$standard "${warnings[@]}" -Wstrict-prototypes -I"$include" -fsyntax-only "$work/header.c"
done
for standard in c++11 c++17 c++20; do
  "$cxx" -std=$standard "${warnings[@]}" -Wextra-semi -I"$include" -fsyntax-only "$work/header.cc"
done
