#!/usr/bin/env bash
# Runs one example program against the simulated reader: check.sh SIMULATOR PROGRAM...
# SIMULATOR is the zucom program, with its emulator where it needs one, in one argument.
set -euo pipefail
read -ra simulator <<<"${1:?usage: check.sh SIMULATOR PROGRAM...}"
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cases=0 failures=0

# expect NAME RESULT BEGINNING COMMAND...: one case, by result and beginning of the output.
expect()
{
    local name=$1 wanted=$2 beginning=$3 result=0 output
    shift 3
    cases=$((cases + 1))
    output=$("$@" 2>&1) || result=$?
    if [[ $result == "$wanted" && $output == "$beginning"* ]]; then
        echo "ok    $name: $output"
    else
        echo "FAIL  $name: result $result, not $wanted, or not \"$beginning\" in front: $output"
        failures=$((failures + 1))
    fi
}

# withReader RULE COMMAND... DEVICE: runs the command while a reader answers by the rule.
withReader()
{
    local device result=0
    echo "$1" >"$work/answers"
    shift
    coproc READER { exec "${simulator[@]}" sim --answers "$work/answers"; }
    local reader=$READER_PID
    read -r device <&"${READER[0]}"
    "$@" "$device" || result=$?
    kill "$reader"
    wait "$reader" || true
    return $result
}

expect "answer" 0 "08 01 52 00 01 02 C6 F4" withReader "52 00 => 52 00 01 02" "$@"
expect "silence" 1 "receive: ZUCOM: receive timeout" withReader "* => silence" "$@"
expect "no device" 1 "open: ZUCOM: error while creating new port object" "$@" "$work/none"
echo "EXAMPLE: $cases cases, 0 faults, $failures failures"
[[ $failures == 0 ]]
