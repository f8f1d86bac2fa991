#!/usr/bin/env bash
# Measures the library beside bare system calls and other libraries, and prints the tables as Markdown.
#
#   run.sh           some minutes
#   run.sh --quick   within a minute, for a first impression
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

case ${1:-} in
    '') exchangeRounds=150 portRounds=60 logRounds=150 loadRounds=200 repetitions=15 minTime=0.05 ;;
    --quick) exchangeRounds=20 portRounds=8 logRounds=30 loadRounds=40 repetitions=3 minTime=0.01 ;;
    *) echo "usage: benchmarks/run.sh [--quick]" >&2; exit 2 ;;
esac

cmake --preset bench >/dev/null
cmake --build build/bench --parallel "$(nproc)" >&2
programs=$PWD/build/bench/benchmarks
ulimit -n "$(ulimit -Hn)" # 500 ports and their readers

scratch=$(mktemp -d "$PWD/build/bench/run.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
: >"$scratch/off"
printf '%s\n' '[OUTPUTTER]' "logpath = \"$scratch\"" 'logfile = on' 'logfileperreader = on' '[ZUCOM]' 'logtrace = on' >"$scratch/on"
export MIRN_LOGGER_CONGIG_FILE=$scratch/off

step() { echo "measuring $1" >&2; }

# counts PROGRAM...: user instructions inside the named functions of two runs, and system calls, for one exchange
counts() {
    local name=$1 answer=$2 few many
    shift 2
    local toggles=()
    for function in "$@"; do toggles+=("--toggle-collect=$function"); done
    instructions() {
        valgrind --tool=callgrind --callgrind-out-file=/dev/null "${toggles[@]}" \
            "$programs/zucom-bench-exchange" "$name" "$answer" "$1" 2>&1 | sed -n 's/.*Collected : *//p' | sort -n | tail -n 1
    }
    calls() {
        strace -qq -o "$scratch/calls" "$programs/zucom-bench-exchange" "$name" "$answer" "$1"
        wc -l <"$scratch/calls"
    }
    few=$(instructions 100) many=$(instructions 500)
    printf 'exchange.%s.%s.instructions\t%s\n' "$answer" "$name" $(((many - few + 200) / 400))
    few=$(calls 100) many=$(calls 300)
    printf 'exchange.%s.%s.calls\t%s\n' "$answer" "$name" "$(awk "BEGIN { print ($many - $few) / 200 }")"
}

{
    step "exchanges"
    "$programs/zucom-bench-exchange" $exchangeRounds
    step "instructions and system calls of exchanges"
    for answer in 6 250; do
        counts poll $answer '*PollLine::run*'
        counts select $answer '*SelectLine::run*'
        counts zucom $answer ZUCOM_Transmit ZUCOM_Receive
        counts libmodbus $answer modbus_send_raw_request modbus_receive_confirmation
        counts Boost.Asio $answer '*AsioLine::run*'
        counts libserialport $answer sp_blocking_write sp_blocking_read
    done
    step "ports"
    "$programs/zucom-bench-ports" $portRounds
    step "log lines"
    "$programs/zucom-bench-log-line" "$scratch" $logRounds
    step "loading"
    "$programs/zucom-bench-load" "$programs/support/zucom-load-once" "$(readlink -f build/bench/libzucom.so)" \
        "$programs/support/libzucom-empty.so" $loadRounds
} >"$scratch/values"

step "pieces"
pieces() {
    "$programs/zucom-bench-pieces" --benchmark_repetitions=$repetitions --benchmark_enable_random_interleaving=true \
        --benchmark_min_time=$minTime --benchmark_report_aggregates_only=true --benchmark_format=json "$@" 2>/dev/null
}
pieces >"$scratch/pieces.json"
MIRN_LOGGER_CONGIG_FILE=$scratch/on pieces --benchmark_filter=readTimeout >"$scratch/logging.json"

step "figures without noise"
tests/figures/run.sh --markdown >"$scratch/figures" || true

python3 benchmarks/report.py "$scratch/values" "$scratch/pieces.json" "$scratch/logging.json" "$scratch/figures"
