#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian packages that building and testing need, if any is missing.
set -euo pipefail

packages=(abigail-tools g++ clang clang-format clang-tidy cmake ninja-build pkg-config libgdbm-dev libcli11-dev
  libclang-rt-dev libgtest-dev librapidcheck-dev g++-multilib libarchive-dev libgmime-3.0-dev locales
  libicu-dev libstemmer-dev libxml2-dev mypy python3-cffi python3-dev python3-pytest
  python3-setuptools python3-wheel
  libxxhash-dev nlohmann-json3-dev postgresql valgrind zlib1g-dev)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
