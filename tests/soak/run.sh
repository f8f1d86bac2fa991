#!/usr/bin/env bash
# run.sh MINUTES [SEED]: half of the time with one log file for all ports, half with a log file for each port.
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/../.."

minutes=${1:?usage: soak MINUTES [SEED]}
seed=${2:-1}
half=$(awk -v minutes="$minutes" 'BEGIN { if (minutes + 0 <= 0) exit 1; print minutes / 2 }') || {
    echo "soak: $minutes is no number of minutes" >&2
    exit 2
}

cmake --preset gcc >/dev/null
cmake --build build/gcc --parallel "$(nproc)" --target zucom_soak

log=$(mktemp)
trap 'rm -f "$log"' EXIT
result=0
for kind in logfileshared logfileperreader; do
    build/gcc/tests/soak/zucom_soak "$half" "$kind" "$seed" | tee "$log" | grep -v '^soak:' || result=1
    tail -n 1 "$log" >>"$log.sums"
done
awk '/^soak:/ { cases += $2; faults += $4; failures += $6 }
    END { print "soak: " cases " cases, " faults " faults, " failures " failures" }' "$log.sums"
rm -f "$log.sums"
exit $result
