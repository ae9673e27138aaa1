#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Unpacks the 32-bit libraries that the 32bit preset links into build/32bit-root. The machine's own
# packages and package lists stay as they are.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(libgdbm6 libgdbm-dev libgtest-dev libgmock-dev librapidcheck-dev
  libicu72 libicu-dev libstemmer0d libstemmer-dev libxml2 libxml2-dev libxxhash0 libxxhash-dev
  libarchive13 libarchive-dev libgmime-3.0-0 libgmime-3.0-dev libglib2.0-0 libglib2.0-dev)
# What libxml2 and libarchive are linked with beside ICU.
packages+=(liblzma5 zlib1g libacl1 libbz2-1.0 liblz4-1 libnettle8 libzstd1)
# What gmime is linked with.
packages+=(libassuan0 libblkid1 libffi8 libgpg-error0 libgpgme11 libidn2-0 libmount1 libpcre2-8-0
  libselinux1 libunistring2)

# Complete is what was unpacked from this very list.
root=$PWD/build/32bit-root
[ "$(cat "$root/complete" 2>/dev/null)" = "${packages[*]}" ] && exit 0
rm -rf "$root"
mkdir -p "$root/apt/state/lists/partial" "$root/apt/cache/archives/partial" "$root/packages"

apt=(apt-get -q -o "Dir::State=$root/apt/state" -o "Dir::Cache=$root/apt/cache"
  -o Dir::State::status=/dev/null -o APT::Architecture=i386 -o APT::Architectures=i386
  -o APT::Sandbox::User=root)
# One list that cannot be fetched, of some source without this architecture, does not matter.
"${apt[@]}" update || true
(cd "$root/packages" && "${apt[@]}" download "${packages[@]}")
for package in "$root"/packages/*.deb; do dpkg-deb -x "$package" "$root"; done
echo "${packages[*]}" >"$root/complete"
