#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs a build into a folder of its own and builds the example hosts against it: with CMake's
# find_package and with pkg-config, each with the shared and with the static library. Every host must
# print the same lines. An installed command must start without the libraries of its module, and read a
# page with them wherever its tree has been moved to.
#   usage: check_install.sh BUILD SOURCE COMPILER FLAGS GDBM_FOLDER LIBRARY_FOLDER C_COMPILER C_FLAGS
set -euo pipefail
build=$1 source=$2 compiler=$3 gdbm_folder=$5 library_folder=$6
c_compiler=$7
read -ra flags <<<"$4"
read -ra c_flags <<<"$8"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
libraries=$prefix/$library_folder

# gdbm and ICU may lie outside the system's folders, as in the 32-bit build.
link_flags="-L$gdbm_folder -Wl,-rpath-link,$gdbm_folder"
export LD_LIBRARY_PATH=$libraries:$gdbm_folder
export PKG_CONFIG_PATH=$libraries/pkgconfig

build_with_cmake() {
  local host=$1 target=$2 folder=$3
  cmake -S "$source/tests/install/host" -B "$folder" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="${flags[*]}" \
    -DCMAKE_EXE_LINKER_FLAGS="$link_flags" -DHOST_SOURCE="$host" -DHOST_LIBRARY="$target" >/dev/null
  cmake --build "$folder" >/dev/null
}

compile() { "$compiler" -std=c++17 "${flags[@]}" "$@"; }

build_with_pkg_config() {
  local host=$1 package=$2 folder=$3 shared static
  read -ra shared < <(pkg-config --cflags --libs "$package")
  read -ra static < <(pkg-config --cflags --libs --static "$package")
  static=("${static[@]/-lkestan-search/-l:libkestan-search.a}")
  static=("${static[@]/#-lkestan/-l:libkestan.a}")
  # shellcheck disable=SC2086  # the link flags are several words
  {
    compile -o "$folder/pkgconfig_shared" "$host" "${shared[@]}" $link_flags
    compile -o "$folder/pkgconfig_static" "$host" "${static[@]}" $link_flags
  }
}

# Builds the host SOURCE in all ways, and compares what it prints.
check_hosts() {
  local host=$1 target=$2 package=$3 expected=$4 program printed needs wanted
  local folder=$work/$package
  mkdir "$folder"
  build_with_cmake "$host" "$target" "$folder/cmake"
  build_with_pkg_config "$host" "$package" "$folder"
  for program in cmake/shared_host cmake/static_host pkgconfig_shared pkgconfig_static; do
    mkdir "$work/run"
    printed=$(cd "$work/run" && "$folder/$program")
    rm -r "$work/run"
    [ "$printed" = "$expected" ] || { printf '%s %s printed:\n%s\n' "$package" "$program" "$printed"; exit 1; }
    needs=$(readelf -d "$folder/$program" | grep -c "NEEDED.*lib$package\.so\.0" || true)
    [[ $program = *shared* ]] && wanted=1 || wanted=0
    [ "$needs" = "$wanted" ] || { echo "$package $program is linked the wrong way"; exit 1; }
  done
}

check_hosts "$source/examples/first_host.cc" kestan::kestan kestan \
  $'roses:\n100 roses.txt\n100 violets.txt\nroses next to are:\n100 roses.txt'
if [ -f "$libraries/pkgconfig/kestan-search.pc" ]; then
  check_hosts "$source/examples/search_host.cc" kestan::search kestan-search \
    $'roses.txt\nviolets.txt'
fi

# The host in C, with pkg-config and with CMake.
if [ -f "$libraries/pkgconfig/kestan-c.pc" ]; then
  folder=$work/kestan-c
  mkdir "$folder"
  read -ra compiling < <(pkg-config --cflags kestan-c)
  read -ra linking < <(pkg-config --libs kestan-c)
  "$c_compiler" -std=c99 "${c_flags[@]}" "${compiling[@]}" -c "$source/examples/search.c" -o "$folder/search.o"
  # shellcheck disable=SC2086  # the link flags are several words
  "$compiler" "${flags[@]}" "$folder/search.o" "${linking[@]}" $link_flags -o "$folder/pkgconfig"
  cmake -S "$source/tests/install/c_host" -B "$folder/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_COMPILER="$c_compiler" -DCMAKE_C_FLAGS="${c_flags[*]}" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="${flags[*]}" -DCMAKE_EXE_LINKER_FLAGS="$link_flags" \
    -DHOST_SOURCE="$source/examples/search.c" >/dev/null
  cmake --build "$folder/cmake" >/dev/null
  for program in pkgconfig cmake/c_host; do
    mkdir "$work/run"
    printed=$(cd "$work/run" && "$folder/$program" roses)
    rm -r "$work/run"
    [ "$(wc -l <<<"$printed")" = 2 ] && [[ $printed = '100%  roses.txt (Roses)  Roses are red'* ]] ||
      { printf 'kestan-c %s printed:\n%s\n' "$program" "$printed"; exit 1; }
    readelf -d "$folder/$program" | grep -q 'NEEDED.*libkestan-c\.so\.1' ||
      { echo "$program is not linked with libkestan-c.so.1"; exit 1; }
  done
fi

# Indexes and finds a page with the command below the prefix $1.
check_command() {
  local command=$1/bin/kestan folder=$work/pages printed
  mkdir "$folder"
  printf '<meta charset=windows-1251><p>caf&eacute; \xf0\xee\xe7\xfb' >"$folder/page.html"
  "$command" index --quiet "$folder.index" "$folder"
  printed=$("$command" search --names-only "$folder.index" 'café розы')
  [ "$printed" = "$folder/page.html" ] || { echo "$command found: $printed"; exit 1; }
  rm -r "$folder" "$folder.index"
}

if [ -f "$build/cli/kestan" ]; then
  if readelf -d "$prefix/bin/kestan" | grep 'NEEDED.*lib\(icu\|xml2\)'; then
    echo 'the command is linked with what its module loads'
    exit 1
  fi
  [ -f "$libraries/kestan/kestan-readers.so" ] || { echo 'the module is not installed'; exit 1; }
  for page in man/man1/kestan-search.1 man/man7/kestan-query.7 doc/kestan/README.md doc/kestan/docs/queries.md; do
    [ -f "$prefix/share/$page" ] || { echo "$page is not installed"; exit 1; }
  done
  check_command "$prefix"
  mv "$prefix" "$work/moved"
  check_command "$work/moved"
  DESTDIR=$work/stage cmake --install "$build" --prefix /opt/kestan >/dev/null
  check_command "$work/stage/opt/kestan"
fi
