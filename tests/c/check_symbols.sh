#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The library exports the functions of the header and nothing else, each with the version KESTAN_C_1.0, and is
# found under a name that says which interface it has.
#   usage: check_symbols.sh LIBRARY HEADER
set -euo pipefail
library=$1 header=$2

# A function's name stands before its parenthesis; callbacks are types, with the name in parentheses.
declared=$(tr '\n' ' ' <"$header" | grep -oE 'KESTAN_C_EXPORT [a-z]+ kestan_[a-z0-9_]+\(' |
  grep -oE 'kestan_[a-z0-9_]+' | sort)
exported=$(nm -D --defined-only --with-symbol-versions "$library" | awk '$2 != "A" { print $3 }' | sort)
expected=$(sed 's/$/@@KESTAN_C_1.0/' <<<"$declared")
[ "$(wc -l <<<"$declared")" -gt 50 ] || { echo 'the header was not understood'; exit 1; }
diff <(echo "$expected") <(echo "$exported") || { echo 'header (<) and library (>) differ'; exit 1; }

readelf -d "$library" | grep -q 'SONAME.*\[libkestan-c\.so\.1\]' ||
  { echo 'the SONAME is not libkestan-c.so.1'; exit 1; }
