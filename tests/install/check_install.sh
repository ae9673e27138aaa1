#!/usr/bin/env bash
# Installs a build into a folder of its own and builds the example host against it: with CMake's
# find_package and with pkg-config, each with the shared and with the static library. Every host must
# print the same lines.
#   usage: check_install.sh BUILD SOURCE COMPILER FLAGS GDBM_FOLDER LIBRARY_FOLDER
set -euo pipefail
build=$1 source=$2 compiler=$3 gdbm_folder=$5 library_folder=$6
read -ra flags <<<"$4"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
libraries=$prefix/$library_folder
host=$source/examples/first_host.cc

# gdbm may lie outside the system's folders, as in the 32-bit build.
link_flags="-L$gdbm_folder -Wl,-rpath-link,$gdbm_folder"
export LD_LIBRARY_PATH=$libraries:$gdbm_folder
export PKG_CONFIG_PATH=$libraries/pkgconfig

cmake -S "$source/tests/install/host" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="${flags[*]}" \
  -DCMAKE_EXE_LINKER_FLAGS="$link_flags" -DHOST_SOURCE="$host" >/dev/null
cmake --build "$work/cmake" >/dev/null

compile() { "$compiler" -std=c++17 "${flags[@]}" "$host" "$@"; }
read -ra shared < <(pkg-config --cflags --libs kestan)
read -ra static < <(pkg-config --cflags --libs --static kestan)
# shellcheck disable=SC2086  # the link flags are several words
{
  compile -o "$work/pkgconfig_shared" "${shared[@]}" $link_flags
  compile -o "$work/pkgconfig_static" "${static[@]/-lkestan/-l:libkestan.a}" $link_flags
}

expected=$'roses:\n100 roses.txt\n100 violets.txt\nroses next to are:\n100 roses.txt'
for program in cmake/shared_host cmake/static_host pkgconfig_shared pkgconfig_static; do
  mkdir "$work/run"
  printed=$(cd "$work/run" && "$work/$program")
  rm -r "$work/run"
  [ "$printed" = "$expected" ] || { printf '%s printed:\n%s\n' "$program" "$printed"; exit 1; }
  needs=$(readelf -d "$work/$program" | grep -c 'NEEDED.*libkestan\.so\.0' || true)
  [[ $program = *shared* ]] && wanted=1 || wanted=0
  [ "$needs" = "$wanted" ] || { echo "$program is linked the wrong way"; exit 1; }
done
