#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The program of docs/c.md is examples/search.c, and prints what the page says. The other blocks of code are one
# program, in their order, that prints the other outputs: blocks that begin with "static" stand before its main(),
# after the functions of the example.
#   usage: check_page.sh SOURCE INCLUDE_FOLDER LIBRARY_FOLDERS C_COMPILER C_FLAGS CXX_COMPILER
# LIBRARY_FOLDERS are separated by colons; libkestan-c is in the first one.
set -euo pipefail
source=$1 include=$2 libraries=$3 c=$4 cxx=$6
read -ra flags <<<"$5"
page=$source/docs/c.md example=$source/examples/search.c
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LD_LIBRARY_PATH=$libraries

# Writes the blocks of the language $1 to files block.1.$1, block.2.$1 and so on.
extract() {
  awk -v language="$1" -v folder="$work" '
    $0 == "```" && inside { inside = 0; next }
    inside { print > file }
    $0 == "```" language { inside = 1; file = folder "/block." ++count "." language; printf "" > file }' "$page"
}

build_and_run() {
  local program=$1
  "$c" -std=c99 -Wall -Wextra -pedantic -Werror "${flags[@]}" -I"$include" -c "$work/$program.c" -o "$work/$program.o"
  "$cxx" "${flags[@]}" "$work/$program.o" -L"${libraries%%:*}" -lkestan-c -Wl,--allow-shlib-undefined -o "$work/$program"
  mkdir -p "$work/run"
  (cd "$work/run" && "$work/$program") >"$work/$program.out" 2>"$work/$program.err"
}

extract c
extract text
diff "$work/block.1.c" "$example" || { echo 'the page does not show examples/search.c'; exit 1; }
[ "$(wc -l <"$example")" -le 40 ] || { echo 'examples/search.c has become long'; exit 1; }

mv "$work/block.1.c" "$work/example.c"
build_and_run example
diff "$work/block.1.text" "$work/example.out" || { echo 'the example prints something else'; exit 1; }
[ ! -s "$work/example.err" ] || { cat "$work/example.err"; exit 1; }

functions=() statements=()
for ((i = 2; ; ++i)); do
  block=$work/block.$i.c
  [ -f "$block" ] || break
  if head -n 1 "$block" | grep -q '^static'; then functions+=("$block"); else statements+=("$block"); fi
done
[ ${#statements[@]} -ge 8 ] || { echo 'the page has lost its code'; exit 1; }
{
  echo '#include <string.h>'
  sed '/^int main/,$d' "$work/example.c"
  cat "${functions[@]}"
  echo 'int main(void) {'
  echo 'kestan_reader* reader; kestan_hits* hits; const kestan_hit* hit; kestan_snippet* snippet;'
  cat "${statements[@]}"
  echo 'return 0; }'
} >"$work/blocks.c"
build_and_run blocks || { cat "$work/blocks.err"; exit 1; }
rm "$work/block.1.text"
cat $(ls "$work"/block.*.text | sort -t. -k"$(($(tr -cd . <<<"$work" | wc -c) + 2))" -n) >"$work/expected"
diff "$work/expected" "$work/blocks.out" || { echo 'the blocks print something else'; exit 1; }
