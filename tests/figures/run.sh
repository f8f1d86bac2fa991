#!/usr/bin/env bash
# Holds the figures that no noise can spoil: instructions, system calls, heap and size, against allowed.txt.
#
#   run.sh              counts and compares; fails when a figure is above what is allowed
#   run.sh --markdown   prints the same as a table for a document
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."

build=build/bench
cmake --preset bench >/dev/null
cmake --build $build --target zucom-figures-all --parallel "$(nproc)" >&2

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
support=$PWD/$build/benchmarks/support
figures=$PWD/$build/benchmarks/figures/zucom-figures

: >"$scratch/off"
printf '%s\n' '[OUTPUTTER]' "logpath = $scratch" 'logfile = log' 'logfileperreader = on' '[ZUCOM]' 'logtrace = on' >"$scratch/on"
export MIRN_LOGGER_CONGIG_FILE=$scratch/off

# instructions [FUNCTION...] -- PROGRAM...: user instructions from entering to leaving the functions, or all of them
instructions() {
    local toggles=()
    while [ "$1" != -- ]; do toggles+=("--toggle-collect=$1"); shift; done
    shift
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "${toggles[@]}" "$@" 2>&1 >/dev/null |
        sed -n 's/.*Collected : *//p' | sort -n | tail -n 1
}

# syscalls PROGRAM...: system calls from start to end
syscalls() {
    strace -qq -o "$scratch/calls" "$@" >/dev/null
    wc -l <"$scratch/calls"
}

# each FEW MANY COUNT: the cost of one of the COUNT that MANY has more, to the nearest whole number
each() { echo $((($2 - $1 + $3 / 2) / $3)); }

exchangeInstructions() {
    each "$(instructions ZUCOM_Transmit ZUCOM_Receive -- "$figures" exchange "$1" 100)" \
        "$(instructions ZUCOM_Transmit ZUCOM_Receive -- "$figures" exchange "$1" 500)" 400
}

declare -A measured
measured[exchange-6-instructions]=$(exchangeInstructions 6)
measured[exchange-250-instructions]=$(exchangeInstructions 250)
measured[exchange-system-calls]=$(each "$(syscalls "$figures" exchange 6 100)" "$(syscalls "$figures" exchange 6 300)" 200)
measured[exchange-allocations]=$("$figures" exchange 250 100)

logPoint=$build/benchmarks/figures/zucom-figures-log-point
measured[log-point-off-instructions]=$(each 0 "$(instructions tenLogPoints -- "$logPoint")" 1000)

export MIRN_LOGGER_CONGIG_FILE=$scratch/on
measured[log-line-system-calls]=$(each "$(syscalls "$figures" log-lines 30)" "$(syscalls "$figures" log-lines 330)" 300)
measured[log-line-allocations]=$(each 0 "$("$figures" log-lines 300)" 300)
export MIRN_LOGGER_CONGIG_FILE=$scratch/off

read -r "measured[idle-port-heap]" "measured[receiving-port-heap]" < <("$figures" heap)

library=$(readlink -f $build/libzucom.so)
loadOnce=$support/zucom-load-once
started=$(instructions -- "$loadOnce")
measured[load-percent]=$((100 * ($(instructions -- "$loadOnce" "$library") - started) /
    ($(instructions -- "$loadOnce" "$support/libzucom-empty.so") - started)))
strip -o "$scratch/stripped" "$library"
measured[stripped-size]=$(stat -c %s "$scratch/stripped")

markdown=false
[ "${1:-}" != --markdown ] || markdown=true
cases=0 failures=0
! $markdown || printf '| figure | allowed | measured | |\n|---|---|---|---|\n'
while read -r figure allowed unit; do
    case $figure in '' | '#'*) continue ;; esac
    cases=$((cases + 1))
    verdict=ok
    if [ -z "${measured[$figure]:-}" ] || [ "${measured[$figure]}" -gt "$allowed" ]; then
        verdict=MISSED
        failures=$((failures + 1))
    fi
    if $markdown; then
        printf '| %s | %s | %s | %s |\n' "$unit" "$allowed" "${measured[$figure]:-}" "$verdict"
    else
        printf '%-28s %8s of %8s  %s  (%s)\n' "$figure" "${measured[$figure]:-}" "$allowed" "$verdict" "$unit"
    fi
done <tests/figures/allowed.txt
echo "figures: $cases cases, 0 faults, $failures failures"
[ "$failures" -eq 0 ]
