#!/usr/bin/env bash
# Compares the binary interface with its record, for amd64 and arm64: check.sh [--record]
#
# The record: the exported names (packaging/debian/libzucom4.symbols), types and layouts by libabigail
# (libzucom-ARCH.abi), and the headers that programs out there were compiled with (include/).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
symbols=$root/packaging/debian/libzucom4.symbols
version=$(sed -nE 's/^project\(zucom VERSION ([0-9.]+).*/\1/p' "$root/CMakeLists.txt")
work=$root/build/abi
mkdir -p "$work"

cases=0 failures=0
case_() # NAME COMMAND...: in the background, because `set -e` does not reach into the condition of an `if`
{
    local name=$1
    shift
    cases=$((cases + 1))
    "$@" >"$work/log" 2>&1 &
    if wait $!; then
        echo "ok    $name"
    else
        echo "FAIL  $name"
        sed 's/^/      /' "$work/log"
        failures=$((failures + 1))
    fi
}

# use ARCH: what the other functions need to know of it.
use()
{
    arch=$1 prefix="" emulator=() toolchain=()
    if [[ $arch == arm64 && $(dpkg --print-architecture) != arm64 ]]; then
        prefix=aarch64-linux-gnu- toolchain=(-DCMAKE_TOOLCHAIN_FILE="$root/cmake/arm64.cmake")
        emulator=(qemu-aarch64-static -L /usr/aarch64-linux-gnu)
    fi
    library=$work/$arch/libzucom.so.4.0.0 record=$here/libzucom-$arch.abi current=$work/libzucom-$arch.abi
}

build()
{
    cmake -G Ninja -S "$root" -B "$work/$arch" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${toolchain[@]}" >/dev/null
    cmake --build "$work/$arch" --target zucom -- --quiet
    abidw --suppressions "$here/ours.ini" --no-corpus-path --no-comp-dir-path --no-show-locs \
        --out-file "$current" "$library"
}

exported() { nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@@.*/, "", $3); print $3 }' | LC_ALL=C sort; }
recordedNames() { sed -nE 's/^ ([^@]+)@ZUCOM_4 .*/\1/p' "$symbols" | grep -v '^ZUCOM_4$' | LC_ALL=C sort; }

# Names keep the version that first had them.
recordNames()
{
    local old
    old=$(cat "$symbols" 2>/dev/null || true)
    {
        echo "libzucom.so.4 libzucom4 #MINVER#"
        echo "* Build-Depends-Package: libzucom-dev"
        { echo ZUCOM_4; exported; } | while read -r name; do
            grep -F " $name@ZUCOM_4 " <<<"$old" || echo " $name@ZUCOM_4 $version"
        done
    } >"$symbols"
}

sameNames()
{
    diff <(recordedNames | c++filt) <(exported | c++filt) && return
    echo "'<' was exported before: programs that use it no longer start. '>' is new: hide it, or ./dev abi --record."
    return 1
}

sameInterface() # RECORD
{
    local result=0
    abidiff --no-show-locs "$1" "$current" || result=$?
    ((result & 8)) && echo "Programs built with the recorded interface break."
    ((result & 4)) && echo "Only what adds to the interface may be recorded with ./dev abi --record."
    return $result
}

oldProgram() # COMPILER STANDARD SOURCE
{
    "$prefix$1" "-std=$2" -I"$here/include" "$root/tests/install/consumer/$3" -o "$work/old-$arch" \
        "$library" -Wl,-rpath,"$work/$arch"
    "${emulator[@]}" "$work/old-$arch"
}

# A record with one thing changed must be told from the library.
notices() # SED-SCRIPT
{
    sed -E "$1" "$record" >"$work/planted.abi"
    if cmp "$record" "$work/planted.abi" || sameInterface "$work/planted.abi"; then return 1; fi
}
planted=(
    "a function gone|s/_ZNK6ZuProt10generationEv/_ZNK6ZuProt11generation2Ev/g"
    "a member of ZuLoggerBase moved|/access='protected' layout-offset-in-bits='128'/{N;s/='128'(.*loggerName)/='192'\1/}"
    "two virtual slots changed|/name='ZuLoggerBase'/,/<\/class-decl>/{s/vtable-offset='2'/vtable-offset='9'/;s/vtable-offset='3'/vtable-offset='2'/;s/vtable-offset='9'/vtable-offset='3'/}"
    "ZuProt larger|s/(name='ZuProt' size-in-bits=)'[0-9]+'/\1'64'/"
)

echo "Building the library for amd64 and arm64"
for each in amd64 arm64; do
    use $each
    build
    if [[ ${1:-} == --record ]]; then
        cp "$current" "$record"
        echo "recorded $record"
    fi
done
if [[ ${1:-} == --record ]]; then
    recordNames
    rm -rf "$here/include"
    cp -r "$root/include" "$here/include"
    echo "recorded $symbols and $here/include"
fi

for each in amd64 arm64; do
    use $each
    case_ "$arch: linked as it should be" env STRIP="${prefix}strip" "$here/properties.sh" "$library"
    case_ "$arch: exported names" sameNames
    case_ "$arch: types, layouts and virtual slots" sameInterface "$record"
    case_ "$arch: an old C program runs" oldProgram gcc c99 functions.c
    case_ "$arch: an old C++ program runs" oldProgram g++ c++17 classes.cpp
    for row in "${planted[@]}"; do
        case_ "$arch: notices ${row%%|*}" notices "${row#*|}"
    done
done
echo "ABI: $cases cases, $((${#planted[@]} * 2)) faults, $failures failures"
[[ $failures == 0 ]]
