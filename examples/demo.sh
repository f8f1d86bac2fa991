#!/usr/bin/env bash
# Shows the library and its program at work: demo.sh BUILD_DIR [--log] [DEVICE]
# Talks to a simulated reader, or to the reader on DEVICE; --log shows what the library itself says about it.
set -euo pipefail

usage() { echo "usage: demo.sh BUILD_DIR [--log] [DEVICE]" >&2; exit 2; }

[ $# -ge 1 ] || usage
build=$1
shift
log=no
device=
for argument in "$@"; do
    case $argument in
    --log) log=yes ;;
    -*) usage ;;
    *) [ -z "$device" ] || usage; device=$argument ;;
    esac
done
read -r -a emulator <<<"${ZUCOM_EMULATOR:-}" # runs programs of another architecture
zucom=("${emulator[@]}" "$build/tools/zucom")
demo=("${emulator[@]}" "$build/examples/cpp/demo")

scratch=$(mktemp -d)
simulator=
cleanup() {
    [ -z "$simulator" ] || { kill "$simulator" && wait "$simulator"; } || true
    rm -rf "$scratch"
}
trap cleanup EXIT

heading() {
    if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then printf '\n\033[1;36m== %s\033[0m\n' "$1"; else printf '\n== %s\n' "$1"; fi
}

# The tool tells by its exit code that the frame is broken, which is what is to be seen here.
explain_broken() { "${zucom[@]}" explain "07 01 52 00 00 2A B4" || [ $? -eq 1 ]; }

step() { # what is shown, and the command that shows it
    heading "$1"
    shift
    "$@"
}

if [ -z "$device" ]; then
    # No parity shows on a pseudo-terminal, and it refuses what changes nothing: two stop bits are a change.
    line=(115200 8E2 1)
    heading "A simulated reader: zucom sim --address ${line[2]} --baud ${line[0]}"
    mkfifo "$scratch/sim"
    "${zucom[@]}" sim --address "${line[2]}" --baud "${line[0]}" >"$scratch/sim" &
    simulator=$!
    read -r device <"$scratch/sim" # waits until the device is there
    echo "$device"
    step "zucom scan: as if nobody knew its speed and address" "${zucom[@]}" scan "$device" --timeout 500
else
    step "zucom scan: how is the reader set?" "${zucom[@]}" scan "$device" --timeout 500 | tee "$scratch/found"
    read -r -a line < <(sed -n 's/.* --baud \([0-9]*\) --frame \([^ ]*\) --address \([0-9]*\).*/\1 \2 \3/p' "$scratch/found")
fi

heading "The library, from a program: examples/cpp/demo.cpp"
if [ "$log" = yes ]; then
    export MIRN_LOGGER_CONGIG_FILE="$scratch/log.conf"
    cat >"$scratch/log.conf" <<TEXT
[OUTPUTTER]
logpath = $scratch
logfile = demo
logfileshared = on
logreltime = on
[ZUCOM]
logtrace = on
logerror = on
TEXT
    "${demo[@]}" "$device" "${line[@]}"
    unset MIRN_LOGGER_CONGIG_FILE
    step "What the library logged meanwhile" cat "$scratch/demo-ZUCOM.log"
else
    "${demo[@]}" "$device" "${line[@]}"
fi

step "zucom exchange: ask again, from the shell; what is secret stays hidden" \
    "${zucom[@]}" exchange "$device" --baud "${line[0]}" --frame "${line[1]}" --address "${line[2]}" "52 00" "A0 01 02 03"
step "zucom explain: what is wrong with this answer?" explain_broken
