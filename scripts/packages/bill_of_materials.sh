#!/usr/bin/env bash
# Prints the bill of materials in the SPDX format: each file of the source with its checksum, licence and
# copyright. The same source gives the same bytes: the date is SOURCE_DATE_EPOCH (1970 if it is not set),
# and the name of the document is made from what it says.
#
# SPDX-FileCopyrightText: 2026 The Kestan authors
# SPDX-License-Identifier: GPL-3.0-or-later
set -euo pipefail
cd "$(dirname "$0")/../.."

version=$(sed -n 's/^project(kestan VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
created=$(date --utc --date="@${SOURCE_DATE_EPOCH:-0}" +%Y-%m-%dT%H:%M:%SZ)

bill=$(reuse spdx 2>/dev/null)
bill=$(sed -e "s/^DocumentName: .*/DocumentName: kestan-$version/" -e '/^DocumentNamespace: /d' \
  -e '/^Creator: Person: /d' -e 's/^Creator: Organization: .*/Creator: Organization: The Kestan authors ()/' \
  -e "s/^Created: .*/Created: $created/" <<<"$bill")
digest=$(sha256sum <<<"$bill" | cut -c 1-32)
sed "/^DocumentName: /a DocumentNamespace: http://spdx.org/spdxdocs/kestan-$version-$digest" <<<"$bill"
