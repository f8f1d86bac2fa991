#!/usr/bin/env bash
# Runs every fuzz target for a number of seconds, two at a time, under AddressSanitizer and UndefinedBehaviorSanitizer.
# New inputs stay in build/fuzz/found/; an input that breaks a target is kept in build/fuzz/broken/.
# usage: fuzz/run.sh SECONDS
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

seconds=${1:-}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || { echo "usage: ./dev fuzz SECONDS" >&2; exit 2; }

build=$PWD/build/fuzz
cmake --preset fuzz >/dev/null
cmake --build "$build" --parallel "$(nproc)" --target zucom-fuzz

mkdir -p "$build/found" "$build/broken" "$build/log"

# fuzz_target NAME runs one target and leaves its output in a file.
fuzz_target() {
    mkdir -p "$build/found/$1"
    "$build/fuzz/fuzz-$1" -max_total_time="$seconds" -timeout=60 -print_final_stats=1 \
        -artifact_prefix="$build/broken/$1-" "$build/found/$1" "fuzz/corpus/$1" >"$build/log/$1" 2>&1
}
export -f fuzz_target
export build seconds

targets=$(find "$build/fuzz" -maxdepth 1 -name 'fuzz-*' -type f -executable -printf '%f\n' | sed 's/^fuzz-//' | sort)
echo "Fuzzing $(wc -w <<<"$targets") targets, $seconds s each"
failed=$build/log/failed
: >"$failed"
xargs -P 2 -I{} bash -c 'fuzz_target {} || echo {} >>'"$failed" <<<"$targets"

cases=0
executions=0
for target in $targets; do
    count=$(sed -nE 's/^stat::number_of_executed_units: *([0-9]+)$/\1/p' "$build/log/$target")
    printf '%-14s %12d executions\n' "$target" "${count:-0}"
    if grep -qx "$target" "$failed"; then tail -n 40 "$build/log/$target"; fi
    cases=$((cases + 1))
    executions=$((executions + ${count:-0}))
done
failures=$(wc -l <"$failed")
echo "fuzz: $cases cases, $executions faults, $failures failures"
[ "$failures" -eq 0 ]
