#!/usr/bin/env bash
# Unpacks the 32-bit libraries that the 32bit preset links into build/32bit-root. The machine's own
# packages and package lists stay as they are.
set -euo pipefail
cd "$(dirname "$0")/.."

root=$PWD/build/32bit-root
[ -e "$root/complete" ] && exit 0
rm -rf "$root"
mkdir -p "$root/apt/state/lists/partial" "$root/apt/cache/archives/partial" "$root/packages"

apt=(apt-get -q -o "Dir::State=$root/apt/state" -o "Dir::Cache=$root/apt/cache"
  -o Dir::State::status=/dev/null -o APT::Architecture=i386 -o APT::Architectures=i386
  -o APT::Sandbox::User=root)
# One list that cannot be fetched, of some source without this architecture, does not matter.
"${apt[@]}" update || true
(cd "$root/packages" &&
  "${apt[@]}" download libgdbm6 libgdbm-dev libgtest-dev libgmock-dev librapidcheck-dev)
for package in "$root"/packages/*.deb; do dpkg-deb -x "$package" "$root"; done
touch "$root/complete"
