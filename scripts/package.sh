#!/usr/bin/env bash
# Makes the Debian packages of the files that git has, as they are in the working tree: installs what is
# missing, copies them to a folder of their own, builds there, and prints the names of the packages.
#
#   scripts/package.sh            into build/packages; the packages to install also here, in the root
#   scripts/package.sh FOLDER     into FOLDER only
#
# What is built is tried for a moment, not tested: scripts/test.sh does that.
# DEB_BUILD_OPTIONS=nocheck leaves that out too. docs/packaging.md tells more.
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -euo pipefail
called_from=$PWD
cd "$(dirname "$0")/.."
root=$PWD

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
install_missing() {
  dpkg-checkbuilddeps 2>/dev/null && return
  "${as_root[@]}" apt-get update
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends build-essential fakeroot
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get build-dep -y --no-install-recommends ./
}

folder=$root/build/packages
if [ $# -gt 0 ]; then
  folder=$(cd "$called_from" && mkdir -p "$1" && cd "$1" && pwd)
fi

install_missing >&2
rm -rf "$folder"
mkdir -p "$folder"
version=$(dpkg-parsechangelog --show-field Version)
source=$folder/kestan-$version
mkdir "$source"
git ls-files -z | tar --create --null --files-from - | tar --extract --directory "$source"

options=${DEB_BUILD_OPTIONS:-}
[[ $options = *parallel=* ]] || options+=" parallel=$(nproc)"
log=$folder/build.log
build() (
  cd "$source"
  export DEB_BUILD_OPTIONS=$options
  export PATH=/usr/sbin:/usr/bin:/sbin:/bin  # the tools of Debian, whatever else is installed
  unset CCACHE_BASEDIR CCACHE_NOHASHDIR      # they would put other paths into the line tables
  dpkg-buildpackage --no-sign
)
build >"$log" 2>&1 || {
  tail -n 20 "$log" | cut -c 1-200 >&2
  echo "the build failed; all of its output is in $log" >&2
  exit 1
}
rm -rf "$source"

if [ $# -eq 0 ]; then
  rm -f ./*.deb
  for package in "$folder"/*.deb; do
    [[ $package = *-dbgsym_* ]] || ln -f "$package" .
  done
fi
ls "$folder"/*.deb
