#!/usr/bin/env bash
# Tries the packages in a fresh system of its own: the command alone, all of them in an older version, their
# upgrade, the removal of all, after which every file must be as before, and the tests of debian/tests.
# scripts/check-packages.sh runs this inside a chroot, as root. Never run it on a machine that matters.
#
#   usage: try_in_chroot.sh PACKAGES OLDER_PACKAGES SOURCE
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -euo pipefail
packages=$1 older=$2 source=$3
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin

mapfile -t names < <(for package in "$packages"/*.deb; do dpkg-deb --field "$package" Package; done)
version=$(dpkg-deb --field "$packages"/kestan_*.deb Version)
ours=" ${names[*]} "

say() { printf '\n---- %s\n' "$1"; }
fail() { echo "$1" >&2; exit 1; }
quietly() { "$@" >/tmp/output 2>&1 || { cat /tmp/output >&2; fail "failed: $*"; }; }
install() { quietly apt-get install -y --no-install-recommends "$@"; }
purge() { quietly apt-get purge -y "${names[@]}"; }

# Prints every file but those where apt, dpkg and the loader keep what they know, with its kind, rights,
# target and contents.
all_files() {
  local skip=(-path /proc -o -path /sys -o -path /dev -o -path /run -o -path /tmp -o -path "$packages"
    -o -path "$older" -o -path "$source" -o -path /var/cache -o -path /var/log
    -o -path '/var/lib/dpkg/status*' -o -path /var/lib/apt -o -path /etc/ld.so.cache
    -o -path '/var/lib/dpkg/triggers/*' -o -path /var/lib/dpkg/available)
  find / \( "${skip[@]}" \) -prune -o -printf '%p %y %m %u:%g %l\n' | sort
  find / \( "${skip[@]}" \) -prune -o -type f -print0 | sort -z | xargs -0 sha256sum
}

# Prints the state of the packages in one line each: which are installed, and in which version.
states() { dpkg-query -W -f='${Package} ${Version} ${db:Status-Status}\n' "${names[@]}" 2>/dev/null || true; }

try_the_command_alone() {
  say 'the command alone, as the README installs it'
  (cd "$packages" && quietly apt-get install -y --no-install-recommends ./kestan_*.deb)
  mkdir notes && echo 'The bridges of Zürich' >notes/a.txt
  kestan index --quiet notes.index notes
  [ "$(kestan search --names-only notes.index zurich)" = notes/a.txt ] || fail 'the command finds nothing'
  quietly apt-get purge -y kestan
}

# The files of what the packages need stay, so that nothing hides in their folders.
install_what_they_need() {
  local needed
  mapfile -t needed < <(apt-get install -s --no-install-recommends "$packages"/*.deb |
    awk -v ours="$ours" '/^Inst / && !index(ours, " " $2 " ") {print $2}')
  [ ${#needed[@]} -eq 0 ] || install "${needed[@]}"
}

install_upgrade_purge() {
  say 'an older version of all'
  install "$older"/*.deb
  [ "$(states | grep -c " $version~older installed")" -eq ${#names[@]} ] || fail 'not all are installed'
  kestan index --quiet older.index notes

  say 'the upgrade'
  install "$packages"/*.deb
  states
  [ "$(states | grep -c " $version installed")" -eq ${#names[@]} ] || fail 'not all are upgraded'
  [ -z "$(dpkg --verify "${names[@]}")" ] || fail 'files differ from those of the packages'
  ! ls /usr/share/doc/*/older 2>/dev/null || fail 'a file of the older version is left'
  kestan check older.index

  say 'removing all'
  purge
  [ -z "$(states)" ] || fail 'something is still known to dpkg'
}

cd /tmp
quietly apt-get update
try_the_command_alone
install_what_they_need
all_files >before
[ "$(wc -l <before)" -gt 5000 ] || fail 'the list of files is not whole'
install_upgrade_purge
all_files >after
diff before after || fail 'removing the packages leaves something behind'
echo "$(wc -l <after) lines about files, the same as before"

say 'the tests of the installed packages'
install autopkgtest
autopkgtest --summary-file=summary "$packages"/*.deb "$source" -- null >tests.log 2>&1 || {
  cat tests.log
  fail 'tests of the installed packages fail'
}
cat summary
