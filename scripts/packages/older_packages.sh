#!/usr/bin/env bash
# Makes packages of an older version out of the packages in the folder FROM, for trying upgrades: the
# contents are the same but for one file in each, which the upgrade must take away.
#
#   usage: older_packages.sh FROM TO
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -euo pipefail
from=$1 to=$2

mkdir -p "$to"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for package in "$from"/*.deb; do
  [[ $package != *-dbgsym_* ]] || continue
  version=$(dpkg-deb --field "$package" Version)
  name=$(dpkg-deb --field "$package" Package)
  dpkg-deb --raw-extract "$package" "$work/$name"
  # Its own version, and those of the others that it needs.
  sed -i "s/^Version: $version$/&~older/; s/\(kestan[a-z0-9-]* (>*= $version\))/\1~older)/g" \
    "$work/$name/DEBIAN/control"
  echo 'gone after an upgrade' >"$work/$name/usr/share/doc/$name/older"
  dpkg-deb --root-owner-group --build "$work/$name" "$to" >/dev/null
done
