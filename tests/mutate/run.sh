#!/usr/bin/env bash
# Plants the bugs of mutants.txt one by one in a copy of the tree; a test program must fail for each.
# The copy is built with AddressSanitizer, so that a write beyond a buffer is a failure too.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."

work=$PWD/build/mutate
mutants=tests/mutate/mutants.txt
rm -rf "$work"
mkdir -p "$work/tree"
git ls-files -z | xargs -0 cp --parents -t "$work/tree"
trim() { sed -E 's/^ +| +$//g' <<<"$1"; }

build() { cmake --build "$work/build" --parallel "$(nproc)" --target "$@" >"$work/build.log" 2>&1; }

# passes PROGRAM... runs test programs until one fails.
passes() {
    local program
    for program in "$@"; do
        timeout 120 "$(find "$work/build/tests" -type f -name "$program" -executable)" --gtest_brief=1 >"$work/test.log" 2>&1 || return 1
    done
}

cmake -S "$work/tree" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" \
    -DZUCOM_TESTS=ON -DZUCOM_SANITIZE=address >"$work/build.log"
mapfile -t programs < <(sed -E '/^#/d; s/.*\| *//' "$mutants" | tr ' ' '\n' | sort -u)
echo "mutate: building ${programs[*]}"
build "${programs[@]}" || { cat "$work/build.log"; exit 1; }
passes "${programs[@]}" || { echo "mutate: the suite fails before any bug is planted"; cat "$work/test.log"; exit 1; }

planted=0
failures=0
while IFS= read -r line; do
    case $line in '' | '#'*) continue ;; esac
    name=$(trim "${line%% | *}"); rest=${line#* | }
    file=$(trim "${rest%% | *}"); rest=${rest#* | }
    suite=$(trim "${rest##* | }")
    edit=$(trim "${rest% | *}")
    planted=$((planted + 1))
    sed -E -i "$edit" "$work/tree/$file"
    if cmp -s "$file" "$work/tree/$file"; then
        verdict="not planted: the edit matches nothing"
    elif read -r -a tests <<<"$suite" && ! build "${tests[@]}"; then
        verdict="not planted: it does not compile"
    elif passes "${tests[@]}"; then
        verdict="NOT FOUND"
    else
        verdict="found"
    fi
    [ "$verdict" = found ] || failures=$((failures + 1))
    printf '%-70s %s\n' "$name" "$verdict"
    cp "$file" "$work/tree/$file"
done <"$mutants"
echo "mutate: $planted cases, $planted faults, $failures failures"
[ "$failures" -eq 0 ]
