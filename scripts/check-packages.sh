#!/usr/bin/env bash
# Makes the Debian packages and checks them. docs/packaging.md tells what each step proves.
#
#   scripts/check-packages.sh            everything
#   scripts/check-packages.sh --quick    one build and what looks at it; no second build, no chroot
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -euo pipefail
cd "$(dirname "$0")/.."

quick=false
case ${1:-} in
  --quick) quick=true ;;
  ?*) sed -n '2,5p' "$0" >&2; exit 2 ;;
esac
work=$PWD/build/package-checks
first=$work/first
second=$work/another/folder/second

step() { printf '\n==== %s (%ss)\n' "$1" "$SECONDS"; }
fail() { echo "$1" >&2; exit 1; }

tools=(autopkgtest blhc devscripts lintian mmdebstrap reuse)
install_tools() {
  local missing=() tool as_root=()
  for tool in "${tools[@]}"; do
    dpkg-query -W -f='${Status}' "$tool" 2>/dev/null | grep -q 'ok installed' || missing+=("$tool")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}"
}

# Each package says how it may be used, and of what it is made.
check_papers() {
  local package name listing
  for package in "$first"/*.deb; do
    [[ $package != *-dbgsym_* ]] || continue
    name=$(dpkg-deb --field "$package" Package)
    listing=$(dpkg-deb --contents "$package")
    for page in copyright kestan.spdx.gz; do
      grep -q "/usr/share/doc/$name/$page\$" <<<"$listing" || fail "$name has no $page"
    done
  done
}

# Builds again where nearly everything around the build differs, without a cache of compiled files.
build_elsewhere() (
  umask 0027
  CCACHE_DISABLE=1 LC_ALL=C TZ=Asia/Tokyo DEB_BUILD_OPTIONS='parallel=2 nocheck' scripts/package.sh "$second"
)

# Compares the packages of both builds, bit for bit.
compare_builds() {
  diff <(cd "$first" && sha256sum -- *.deb) <(cd "$second" && sha256sum -- *.deb) ||
    fail 'the two builds differ'
  (cd "$first" && sha256sum -- *.deb)
}

try_in_chroot() {
  local packages=$work/now older=$work/older
  rm -rf "$packages" "$older" "$work/source"
  mkdir -p "$packages" "$work/source"
  for package in "$first"/*.deb; do [[ $package = *-dbgsym_* ]] || cp "$package" "$packages"; done
  scripts/packages/older_packages.sh "$packages" "$older"
  git ls-files -z | tar --create --null --files-from - | tar --extract --directory "$work/source"
  # shellcheck disable=SC2016  # "$1", the folder of the new system, is for the shell of the hook
  local try='env -i PATH=/usr/sbin:/usr/bin chroot "$1" /source/scripts/packages/try_in_chroot.sh'
  mmdebstrap --quiet --variant=apt --customize-hook="cp -r '$packages' '$older' '$work/source' \"\$1\"" \
    --customize-hook="$try /now /older /source" \
    "$(. /etc/os-release && echo "$VERSION_CODENAME")" /dev/null
}

step 'the tools'
install_tools

step 'building'
scripts/package.sh "$first"

step 'lintian'
lintian --allow-root --fail-on error,warning "$first"/*.changes

step 'hardening, as the build log shows it'
blhc --all --debian "$first/build.log"

step 'licences and the bill of materials'
reuse lint
check_papers
! $quick || exit 0

step 'building again, elsewhere'
build_elsewhere
compare_builds

step 'a fresh system'
try_in_chroot
step 'done'
