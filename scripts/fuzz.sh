#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the fuzz targets, replays their seeds, and lets libFuzzer search on from there, two targets
# at a time. Any finding is printed with the file that repeats it, and the script then fails.
#
#   scripts/fuzz.sh [TARGET...]                every target, or those named, for 30 seconds each
#   scripts/fuzz.sh --seconds N [TARGET...]    for N seconds each
#   scripts/fuzz.sh --runs N [TARGET...]       until each has run N inputs
#   scripts/fuzz.sh --replay [TARGET...]       only the seeds, and what searches have kept
#
# What a search found worth keeping is in build/fuzz/corpus/TARGET, where the next search starts;
# inputs that fail are in build/fuzz/findings, logs in build/fuzz/logs. With --fast as the first
# argument, accesses to memory are not checked, which makes the slow targets several times as fast;
# these programs are in build/fuzz-fast. --replay checks afterwards what such a search has kept.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/fuzz
addresses=ON
if [ "${1:-}" = --fast ]; then
  build=build/fuzz-fast
  addresses=OFF
  shift
fi
corpus=build/fuzz/corpus
seconds=30
runs=
replay_only=false
case ${1:-} in
  --seconds) seconds=$2; shift 2 ;;
  --runs) seconds=; runs=$2; shift 2 ;;
  --replay) replay_only=true; shift ;;
  -*) sed -n '3,15p' "$0" >&2; exit 2 ;;
esac
targets=("$@")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(ls fuzz/seeds)

cmake --preset fuzz -B "$build" -DKESTAN_FUZZ_ADDRESSES=$addresses >/dev/null
cmake --build "$build" --target "${targets[@]/#/fuzz_}"
mkdir -p "$build/findings" "$build/logs" "${targets[@]/#/$corpus/}"

# gdbm asks for as much memory as a damaged file says, up to 4 GiB, and copes when it gets none.
export ASAN_OPTIONS=allocator_may_return_null=1:max_allocation_size_mb=4096:quarantine_size_mb=16
# Without -entropic=0, libFuzzer's own bookkeeping takes longer than the targets that do most.
options=(-print_final_stats=1 -entropic=0 -timeout=20 -rss_limit_mb=3000 -malloc_limit_mb=8192)

# Succeeds if the process failed inside gdbm, on a file that gdbm itself cannot read safely: then the
# innermost frame outside the runtime and the C library is gdbm's.
failed_inside_gdbm() {
  [ "$(grep -E '^ +#[0-9]+ ' "$1" | grep -oEm1 'libgdbm|/(kestan|fuzz|tests)/')" = libgdbm ]
}

statistic() { sed -n "s/^stat::$1: *//p" "$2" | tail -n 1; }

# Runs a target in one process and sets `status`.
run_once() {
  local own=()
  case $target in
    files) own=(-detect_leaks=0) ;;    # LeakSanitizer would take what gdbm loses for ours
    operations) own=(-max_len=160) ;;  # long sequences take long and find no more
  esac
  status=0
  "$build/fuzz/fuzz_$target" "${options[@]}" "${own[@]}" "$@" \
    -artifact_prefix="$build/findings/$target-" >"$log" 2>&1 || status=$?
}

replay() {
  local target=$1 log=$build/logs/$1-seeds.log status
  local inputs=("fuzz/seeds/$target")
  ! $replay_only || inputs+=("$corpus/$target")
  run_once -runs=0 "${inputs[@]}"
  if [ "$status" -ne 0 ]; then
    printf 'FINDING in %s: an input kept fails; see %s\n' "$target" "$log"
    return 1
  fi
  printf '%-18s %s inputs replayed\n' "$target" "$(find "${inputs[@]}" -type f | wc -l)"
}

# What gdbm has lost on damaged files stays in memory, so `files` goes on in a new process now and
# then.
process_limits() {
  if [ "$target" = files ]; then
    local most=30000
    [ -z "$runs" ] || [ $((runs - executed)) -ge $most ] || most=$((runs - executed))
    echo "-runs=$most"
  elif [ -n "$runs" ]; then
    echo "-runs=$((runs - executed))"
  fi
  [ -z "$seconds" ] || echo "-max_total_time=$((seconds - SECONDS))"
}

is_done() {
  if [ -n "$seconds" ]; then [ $SECONDS -ge "$seconds" ]; else [ "$executed" -ge "$runs" ]; fi
}

search() {
  local target=$1 log=$build/logs/$1.log status=0 executed=0 in_gdbm=0 ran
  SECONDS=0
  until is_done; do
    # shellcheck disable=SC2046  # one word for each limit
    run_once $(process_limits) "$corpus/$target" "fuzz/seeds/$target"
    ran=$(statistic number_of_executed_units "$log")
    executed=$((executed + ${ran:-0}))
    [ $status -ne 0 ] || continue
    failed_inside_gdbm "$log" || break
    in_gdbm=$((in_gdbm + 1))
    status=0
  done
  printf '%-18s %9d executions %7d a second   %s   %s\n' "$target" $executed \
    $((executed / (SECONDS > 0 ? SECONDS : 1))) \
    "$(grep -oE 'cov: [0-9]+ ft: [0-9]+' "$log" | tail -n 1)" \
    "$([ $in_gdbm -eq 0 ] || echo "$in_gdbm faults of gdbm's own")"
  [ $status -eq 0 ] && return
  printf 'FINDING in %s: %s; see %s\n' "$target" \
    "$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)" "$log"
  return 1
}

# Two at a time; every target gets its turn even after a finding.
in_pairs() {
  local failed=0 running=0 action=$1 target
  for target in "${targets[@]}"; do
    if [ $running -eq 2 ]; then
      wait -n || failed=1
      running=1
    fi
    "$action" "$target" &
    running=$((running + 1))
  done
  while [ $running -gt 0 ]; do
    wait -n || failed=1
    running=$((running - 1))
  done
  return $failed
}

in_pairs replay
$replay_only || in_pairs search
