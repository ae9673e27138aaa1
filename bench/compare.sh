#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Compares Kestan with SQLite FTS5, Xapian, Lucene++ and Groonga: installs what is missing, builds,
# makes the corpus and the queries, measures, and prints the tables.
#
#   bench/compare.sh [--documents N] [--rounds N] [--forms words,as-is] [--clock wall|cpu]
#                    [--with-32bit]
#
# All that it makes goes to build/bench, or to the folder that KESTAN_BENCH_FOLDER names. With
# KESTAN_BENCH_BIN it builds nothing and measures the peer_ programs of that folder.
set -euo pipefail
cd "$(dirname "$0")/.."

documents=65535
with_32bit=no
options=()
while [ $# -gt 0 ]; do
  case $1 in
    --with-32bit) with_32bit=yes ;;
    --documents | --rounds | --forms | --clock)
      [ "$1" = --documents ] && documents=$2 || options+=("$1" "$2")
      shift
      ;;
    *)
      sed -n '3,11s/^# \{0,1\}//p' "$0" >&2
      exit 2
      ;;
  esac
  shift
done

build=${KESTAN_BENCH_FOLDER:-$PWD/build/bench}
corpus=$build/corpus-$documents
peers=$PWD/bench/peers

# The texts of the corpus, which are unpacked into the build folder and not installed.
texts=(debian-policy debian-reference-en developers-reference erlang-doc git-doc linux-doc-6.1
  manpages manpages-dev octave-doc perl-doc postgresql-doc-15 python3.11-doc sqlite3-doc vim-doc)
needed=(g++ g++-multilib cmake ninja-build pkg-config python3 libgdbm-dev libbenchmark-dev bible-kjv
  libsqlite3-dev libxapian-dev liblucene++-dev libboost-dev libgroonga-dev)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_missing() {
  local missing=() package
  for package in "${needed[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  as_root apt-get update
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
    "${missing[@]}"
}

# The first try fails where the machine has no package lists yet.
download() {
  apt-get download -q "$1" || { as_root apt-get update && apt-get download -q "$1"; }
}

unpack_texts() {
  local package
  mkdir -p "$build/packages" "$build/texts/bible-kjv-text"
  for package in "${texts[@]}"; do
    [ -d "$build/texts/$package" ] && continue
    rm -f "$build/packages/${package}"_*.deb
    (cd "$build/packages" && download "$package")
    dpkg-deb -x "$build/packages/${package}"_*.deb "$build/texts/$package.part"
    mv "$build/texts/$package.part" "$build/texts/$package"
  done
  echo 'gen1:1-rev22:21' | bible -f >"$build/texts/bible-kjv-text/kjv.txt" 2>/dev/null
}

make_corpus() {
  [ -f "$corpus/queries" ] && return
  unpack_texts
  python3 "$peers/make_corpus.py" "$build/texts" "$corpus" --documents "$documents"
  python3 "$peers/draw_queries.py" "$corpus/words" "$corpus/queries.part"
  mv "$corpus/queries.part" "$corpus/queries"
}

build_in() {
  local folder=$1
  shift
  cmake -S . -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKESTAN_BUILD_BENCH=ON \
    -DKESTAN_BUILD_TESTS=OFF -DKESTAN_BUILD_CLI=OFF "$@" >/dev/null
  cmake --build "$folder"
}

build_all() {
  build_in "$build/release"
  [ "$with_32bit" = no ] && return
  scripts/install-32bit.sh
  build_in "$build/32bit" --toolchain "$PWD/cmake/linux32.cmake"
  cp "$build/32bit/bench/peer_kestan" "$build/release/bench/peer_kestan32"
}

install_missing >&2
[ -n "${KESTAN_BENCH_BIN:-}" ] || build_all >&2
make_corpus >&2
python3 "$peers/compare.py" --bin "${KESTAN_BENCH_BIN:-$build/release/bench}" \
  --corpus "$corpus" --work "$build/indexes" "${options[@]}"
