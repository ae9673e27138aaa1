#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds, and runs all tests.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
cmake --preset release -DKESTAN_BUILD_TESTS=ON
cmake --build --preset release
ctest --preset release -j "$(nproc)"
