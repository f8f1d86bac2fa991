#!/usr/bin/env bash
# Runs every test program of a build whole under valgrind: tests/valgrind.sh BUILD_DIR [PROGRAM...]
# Uninitialised values, invalid accesses and lost memory fail; notes on ioctl requests that valgrind does not know do not.
set -euo pipefail

build=$1
shift
programs=("$@")
if [ ${#programs[@]} -eq 0 ]; then
    mapfile -t programs < <(ctest --test-dir "$build" --show-only=json-v1 |
        python3 -c 'import json,sys; print("\n".join(sorted({t["command"][0] for t in json.load(sys.stdin)["tests"] if t.get("command")})))' |
        grep "/tests/")
fi

failures=0
for program in "${programs[@]}"; do
    echo "valgrind $program"
    valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=definite,indirect --errors-for-leak-kinds=definite,indirect \
        --trace-children=no "$program" >"$build/valgrind.log" 2>&1 || { failures=$((failures + 1)); cat "$build/valgrind.log"; }
done
echo "valgrind: ${#programs[@]} cases, 0 faults, $failures failures"
[ "$failures" -eq 0 ]
