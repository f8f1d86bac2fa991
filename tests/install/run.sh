#!/usr/bin/env bash
# Builds the library in every supported way, checks how it is linked, installs it and uses it from other projects:
# run.sh [WORD] builds only the ways whose names hold WORD.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

compilers=("gcc g++" "clang-14 clang++-14")
hardening="-D_FORTIFY_SOURCE=3 -fstack-protector-strong"
ways=(
    "Release|-DCMAKE_BUILD_TYPE=Release"
    "Debug|-DCMAKE_BUILD_TYPE=Debug"
    "LTO|-DCMAKE_BUILD_TYPE=Release|-DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON"
    "hardened|-DCMAKE_BUILD_TYPE=Release|-DCMAKE_C_FLAGS=$hardening|-DCMAKE_CXX_FLAGS=$hardening"
)

cases=0 failures=0
for pair in "${compilers[@]}"; do
    read -r cc cxx <<<"$pair"
    for way in "${ways[@]}"; do
        IFS='|' read -ra options <<<"$way"
        name=$cc-${options[0]} build=$root/build/install/$cc-${options[0]}
        [[ $name == *"${1:-}"* ]] || continue
        echo "== $name"
        cases=$((cases + 1))
        if cmake -G Ninja -S "$root" -B "$build" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
            -DZUCOM_WERROR=ON -DZUCOM_EXAMPLES=ON "${options[@]:1}" >/dev/null &&
            cmake --build "$build" -- --quiet &&
            { [[ $name == *-Debug ]] || "$root/tests/abi/properties.sh" "$build/libzucom.so.4.0.0"; } &&
            "$root/tests/install/use.sh" "$build"; then
            continue
        fi
        echo "FAIL  $name"
        failures=$((failures + 1))
    done
done
echo "INSTALL: $cases cases, 0 faults, $failures failures"
[[ $cases -gt 0 && $failures == 0 ]]
